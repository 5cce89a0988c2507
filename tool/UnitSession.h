#pragma once

#include "link/CoordinatorLink.h"
#include "tool/ExitCode.h"
#include "tool/Interruption.h"

#include <QHash>
#include <QJsonObject>
#include <QString>

#include <functional>
#include <memory>

class Console;
class QCommandLineParser;
class QEventLoop;
class UnitSimulator;

/// The unit that a command works on: a link, the port with the coordinator, and what is under way on it.
///
/// A command creates one, opens it and calls its operations, each of which runs the event loop until it is over or
/// somebody wishes the program to end. Progress and notes go to the command's console.
class UnitSession : public QObject
{
    Q_OBJECT

public:
    /// The seams are those of the link; the command line may name a port instead of theirs.
    UnitSession(const QCommandLineParser& commandLine, Console& commandConsole, CoordinatorSeams seams = {});
    ~UnitSession() override;
    Q_DISABLE_COPY_MOVE(UnitSession)

    /// Asks all ports, or the one that was named, until each has found a coordinator or none. False if interrupted.
    bool searchAllPorts();

    /// Finds the unit, notes which one, and ends all other ports: who is at work on one leaves the others to other
    /// programs. Anything but Done has been told. With `alsoSilent` the port that was named
    /// will do even if no coordinator answers there, as of a unit that waits in its bootloader.
    ExitCode open(bool alsoSilent = false);

    /// Whether a simulated unit that was asked for could be had. If not, that has been told.
    bool isSimulationPossible();

    /// Whether somebody wishes the program to end.
    bool isInterrupted();

    CoordinatorLink& link();
    Port& port(); ///< of the unit; after open()
    QJsonObject identity() const;

    /// Runs the event loop until `loop` is quit. False if interrupted: the exchange on the wire has ended then, and
    /// nothing more is sent, once `abandon` has ended what the link knows nothing of.
    bool wait(
        QEventLoop& loop, const std::function<void()>& abandon = [] {});

    /// Begins to count steps anew, under this text.
    void beginProgress(const QString& text);

    /// The steps that are over since the last operation began.
    int stepsDone() const;

    /// A port's state, on one line.
    static QString stateOf(const Port& port);

    /// The same with what is wrong with the port and what to do.
    static QString stateWithTroubleOf(const Port& port);

    /// Why a step failed, in words.
    static QString reasonOf(const message& answer);

signals:
    /// The state of a port has changed.
    void searchChanged();

private:
    void watchPort(Port* port);
    void noteState(Port* port);
    bool isSettled(const Port* port) const;
    bool runSearch(bool untilFirst);
    void usePort(Port* port);
    Port* foundPort() const;
    void showProgress();
    ExitCode complainOfNothing();

    Console& console;
    std::unique_ptr<UnitSimulator> simulatedUnit;
    QString givenPort;
    std::unique_ptr<CoordinatorLink> coordinators;
    Interruption interruption;
    Port* unitPort = nullptr;

    struct Search
    {
        StatePort state = StateConnecting;
        int failures = 0; ///< searches that found no coordinator
    };
    QHash<const Port*, Search> searches;

    QString busyText;
    int busyValue = 0;
    int busyMaximum = 0;
};
