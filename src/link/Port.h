#pragma once

#include "domain/terminals.h"
#include "link/CoordinatorSearch.h"
#include "link/PortTrouble.h"
#include "link/StatePort.h"
#include "link/Transmitter.h"

#include <QDeadlineTimer>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QTimer>

#include <optional>

class QThread;

/// What is known of a serial port.
struct PortInfo
{
    StatePort state = StateConnecting; ///< of a port that was closed for a cause, the cause
    bool connected = true;             ///< false: closed by the user, or for the cause that `state` tells
    bool watched = false;              ///< the coordinator is asked once a second whether it is there
    std::optional<int> lineBaudrate; ///< at which the worker talks; none if nothing was said since the port was closed
    int baudrate = 0;                ///< at which a coordinator answered; 0 until one did
    std::optional<CoordinatorInfo> coordinator; ///< as its last answer gave it; none on a closed port
    std::optional<PortTrouble> trouble;         ///< why it can't be used, if it can't; a moment behind the state
    bool troubleAwaited = false;                ///< that moment: it is being found out
};

/// One serial port: a Transmitter on a thread of its own, the search for a coordinator behind it, and the watch over
/// the one that was found.
///
/// It works from start() on. Whenever the worker has opened the port a search begins; a coordinator that was found is
/// watched, and a watched port is neither closed nor searched by itself, since the watch brings it back. A port that
/// can't be used is closed, and its state goes on telling why.
///
/// Belongs to the thread that created it, which needs an event loop; all signals are emitted there. Its end closes the
/// port and ends the worker and its thread; it waits for that no longer than `closingTime`. A worker that the system
/// keeps busy for longer is left alone, and goes by itself when it can.
class Port : public QObject
{
    Q_OBJECT

public:
    static constexpr int closingTime = 300; ///< ms from stop() on

    explicit Port(const QString& name, Transmitter::BootParser parseBootAnswer = {}, QObject* parent = nullptr);
    ~Port() override;
    Q_DISABLE_COPY_MOVE(Port)

    const QString& name() const
    {
        return portName;
    }
    const PortInfo& info() const
    {
        return known;
    }
    /// Of the coordinator; noCoordinator without one.
    quint8 address() const
    {
        return known.coordinator ? known.coordinator->address : noCoordinator;
    }

    /// To connect to and to tell ports apart; what it shall do goes by this class.
    Transmitter* worker() const
    {
        return transmitter;
    }

    /// Opens the port for the first time. Once, when all signals are connected.
    void start()
    {
        emit initRequested(transmitter, portName);
    }

    /// Begins the end, so that many ports can end side by side. It comes behind what the worker was told before, but
    /// waits for no answer: a request in flight, and those that queue behind it, end without a word.
    void stop();

    void open();  ///< anew, also an open one; a search follows
    void close(); ///< and forgets the coordinator
    void send(const message& request)
    {
        emit sendRequested(transmitter, request);
    }
    void setWatched(bool on);
    /// Without starting or stopping the watch: what counts as lost goes by it.
    void noteWatched(bool on)
    {
        known.watched = on;
    }

    /// Whether a search that met silence is repeated a second later, four times at the most. It is from the beginning.
    void setSearchRepeated(bool on)
    {
        isSearchRepeated = on;
    }

    /// Puts a repeated search off; false if none is due.
    bool holdSearch();
    /// A repeated search is due in a second.
    void scheduleSearch()
    {
        timerFirstConnect.start();
    }

    /// While it rests the watch asks nothing.
    void setWatchResting(bool on)
    {
        isWatchResting = on;
    }

    /// Has the cause looked for anew for which the port can't be used, if it can't: it may have changed by itself.
    void checkTrouble();

public slots:
    // What the worker reports.
    void setState(StatePort state);
    void setLineBaudrate(int baudrate);
    void takeAnswer(const message& answer);

    // Ticks of the timers.
    void checkCoordinator();
    void repeatSearch();

signals:
    /// Something in info() may be different.
    void changed();

    /// The status is to be told: the state was set, also to the value that it had, or the watch was switched off.
    void statusDue();

    /// The coordinator has said who it is.
    void coordinatorSeen();

    /// The end of a request that belongs neither to the search nor to the watch.
    void answered(const message& answer);

    // To the worker.
    void initRequested(Transmitter* receiver, const QString& portName);
    void openRequested(Transmitter* receiver, const QString& portName);
    void closeRequested(Transmitter* receiver);
    void sendRequested(Transmitter* receiver, const message& request);
    void troubleAsked(int number, const QString& portName, bool isGone);

private:
    void connectWorker();
    void noteTrouble(StatePort reported);
    void askTrouble(bool isGone);
    void takeTrouble(int number, PortTrouble trouble);
    void forgetTrouble();
    void answerSearch(const message& answer);
    void answerCheck(const message& answer);
    void takeCoordinator(const CoordinatorInfo& coordinator);
    void switchWatch(bool on);

    const QString portName;
    PortInfo known;
    std::optional<StatePort> troubledState; ///< whose cause was asked for
    int troubleNumber = 0;                  ///< of the last time that a cause was asked for; another answer is stale
    bool isAttemptOver = false;             ///< it is asked again without an attempt to open the port in between
    quint8 watchedAddress = noCoordinator;  ///< as the search found it, which no misread answer changes
    QPointer<QThread> thread;               ///< without an owner: it ends by itself where nobody waits for it
    Transmitter* transmitter;               ///< goes with the thread
    QTimer timerPeriodic;                   ///< the watch; 1000 ms
    QTimer timerFirstConnect;               ///< 1000 ms to the next search
    int firstConnectAttempts = 4;           ///< searches that may still start by themselves
    bool isSearchRepeated = true;
    bool isWatchResting = false;
    std::optional<QDeadlineTimer> closing; ///< since stop()
};
