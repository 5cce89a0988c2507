#pragma once

#include <QDir>
#include <QObject>
#include <QString>
#include <QTimer>

#include <functional>
#include <vector>

class ChainWatch;
class MainWindow;
class QWidget;

/// Saves pictures of the program into a directory, numbered in the order in which they were taken: the busy form as
/// often as its text changes while the automatic chain runs, and then, one after the other, the coordinator form, the
/// window with each of its tabs, its docks, the executive terminals of the tree, the add-terminal form and the summary
/// of a script. Lives on the GUI thread and goes before the window.
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
    using Step = std::function<void()>;

    void addSteps();
    void addTabSteps();
    void addFormSteps();
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
    int count = 0;
    QString fault;
};
