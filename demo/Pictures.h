#pragma once

#include <QDir>
#include <QObject>
#include <QString>
#include <QTimer>

#include <functional>
#include <utility>
#include <vector>

class ChainWatch;
class MainWindow;
class QWidget;

/// Saves pictures of the program into a directory, numbered in the order in which they were taken: the busy form as
/// often as its text changes while the automatic chain runs, and then, one after the other, the coordinator form, the
/// window with each of its tabs, finding in the log, the docks, the executive terminals of the tree, the add-terminal
/// form, the summary of a script and the loading of firmware, for which the window's dialogs have to name a file. Lives
/// on the GUI thread and goes before the window.
class Pictures : public QObject
{
    Q_OBJECT
public:
    Pictures(MainWindow& window, const ChainWatch& watch, const QDir& target);

    /// Takes the pictures of the finished window; to be called after the chain.
    void takeAll();

signals:
    /// `fault` is empty if every picture could be saved.
    void taken(const QString& fault);

private:
    /// One thing to do, with time for the window to show it before the next.
    struct Step
    {
        explicit Step(std::function<void()> what) : act(std::move(what))
        {
        }
        Step(std::function<bool()> condition, std::function<void()> what)
            : isReady(std::move(condition)), act(std::move(what))
        {
        }

        std::function<bool()> isReady; ///< what it waits for, if anything
        std::function<void()> act;
    };

    void addSteps();
    void addTabSteps();
    void addLogSteps();
    void addFormSteps();
    void addFirmwareSteps();
    void addTreeSteps();
    void nextStep();
    void lookAtBusyForm();
    void showSummary();
    void saveSummary();
    void save(QWidget* widget, const QString& name);

    MainWindow& window;
    const ChainWatch& watch;
    QDir directory;
    QTimer timer;
    QString busyText; // of the busy form's last picture
    std::vector<Step> steps;
    size_t done = 0;
    int waits = 0; // for the next step so far
    int count = 0;
    QString fault;
};
