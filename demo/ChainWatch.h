#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QString>
#include <QTextStream>
#include <QTimer>

class FormWaiting;
class MainWindow;
class QLabel;
class QTableView;

/// Follows what the main window tells its user: prints each result line as it appears, and finds out how the automatic
/// chain ends, which reads terminals, outputs, scripts and log after a coordinator was found. Looks at the window from
/// outside, by the names of its widgets. Lives on the GUI thread and goes before the window.
class ChainWatch : public QObject
{
    Q_OBJECT
public:
    explicit ChainWatch(MainWindow& window);

    /// The busy form stands over the window.
    bool isBusy() const;

signals:
    /// Once, when the busy form has gone after the log and the log stands in its table, or when nothing has ended for
    /// too long. `fault` is empty if every step was a success.
    void chainEnded(const QString& fault);

private:
    void look();
    void hearResult(const QString& text);
    bool hasEnded() const;
    QString fault() const;

    MainWindow& window;
    const QLabel* resultLine;
    const QLabel* countRows;
    const QTableView* log;
    const FormWaiting* busyForm;
    QTextStream output;
    QTimer timer;
    QElapsedTimer running;
    QString printed;
    QString logOutcome; // empty until the log has been read
    bool ended = false;
};
