#pragma once

#include "domain/terminals.h"
#include "link/Port.h"
#include "link/PortList.h"
#include "link/message.h"

#include <QByteArrayList>
#include <QDateTime>
#include <QObject>
#include <QStringList>
#include <QTimer>
#include <QVector>

#include <array>
#include <functional>

class ConfigurationReading;
class ConfigurationWriting;
class DeviceOperation;
class LogReading;
class TerminalSearch;

/// What the link takes from its surroundings; an empty function means the real thing.
struct CoordinatorSeams
{
    std::function<QStringList()> portNames; ///< names of the serial ports; QSerialPortInfo
    std::function<QDateTime()> now;         ///< local date and time; QDateTime::currentDateTime
};

/// One port as a firmware load sees it.
struct FirmwarePort
{
    quint8 address = noCoordinator; ///< coordinator address of the port
    int baudrate = 0;               ///< rate at which a coordinator answered, 0 if none ever did
    std::function<void(const message&)> send;
    std::function<void(bool)> setRunning; ///< while true the port's watch rests and boot answers come back
};

/// Runs a firmware load on a port and returns when it is over. Answers arrive by CoordinatorLink::firmwareAnswered. The
/// link, whose function is still running meanwhile, mustn't be destroyed within it, also not by an event that its
/// dialogs let in.
using FirmwareRunner = std::function<void(const FirmwarePort&)>;

/// What is told of the current port. The numbers are those that the main window knows.
enum class PortStatus : quint8
{
    NotConnected = 0, ///< watched, and the coordinator doesn't answer
    Connected = 1,    ///< watched, and it answers
    NotWatched = 2,
};

/// The link to the units: all serial ports, the one of them that is the current port, and the operations on it.
///
/// It keeps a Port for each serial port that was seen since start(), looks for new ones once a second, and makes the
/// first one with a coordinator the current port. All device operations go to the current port, one at a time; each is
/// a DeviceOperation, and the link gives them their answers, resends failed steps at most three times, and passes on
/// what they want shown and what they found.
///
/// A program may have several, each with ports of its own. Belongs to the thread that created it, which needs an event
/// loop; all signals are emitted there. Its end closes its ports and ends their threads, within Port::closingTime for
/// all of them together.
class CoordinatorLink : public QObject
{
    Q_OBJECT

public:
    /// Without a parser no answer to a boot request is valid; it runs on the ports' threads.
    explicit CoordinatorLink(CoordinatorSeams linkSeams = {}, Transmitter::BootParser bootParser = {},
                             QObject* parent = nullptr);

    /// Begins to look for ports. Once, when all signals are connected.
    void start()
    {
        portList.start();
    }

    /// In order of discovery; a port that disappears stays.
    const QVector<Port*>& ports() const
    {
        return portList.ports();
    }

    /// The port with this worker, which may be gone; null if there is none.
    Port* portOf(const Transmitter* worker) const
    {
        return portList.portOf(worker);
    }

    /// Null before the first choice; a disconnect doesn't clear it.
    Port* currentPort() const
    {
        return current;
    }

    /// Coordinator address of the current port, noCoordinator if there is no current port or it was chosen without an
    /// address.
    quint8 currentAddress() const
    {
        return chosenAddress;
    }

    /// Baud rate at which the current port was chosen, 1200 if there is no current port.
    int currentBaudrate() const
    {
        return chosenBaudrate;
    }

    /// Makes a port the current one and begins the search for terminals if it has a coordinator. Without a port the
    /// current one stays.
    void choose(Port* port);

    /// Makes a port the current one, and no more.
    void use(Port& port);

    /// Ends all ports but this one, which goes on as it is, and looks for no new ones, for a link that has nothing more
    /// to do with them. Those that ended stay in ports(), and nothing may be asked of them any more.
    void keepOnly(const Port& port)
    {
        portList.keepOnly(port);
    }

    /// Whether the first coordinator that is found is chosen without the user, as it is from the beginning.
    void setChoosingFirst(bool on)
    {
        choosesFirst = on;
    }

    /// Makes the next log reading read the log even if its counter hasn't changed.
    void forceLogReading();

    /// What loadFirmware() calls. Without one it does nothing.
    void setFirmwareRunner(FirmwareRunner runner);
    void loadFirmware(Port& port);

    // Operations of the current port.

    /// Nothing more is sent to the current port, and of the operations at hand nothing more is told than that the
    /// request on its way was answered well, if it is (busyStepDone). The link stays so: no further operation can
    /// begin.
    void abandonOperations()
    {
        isAbandoned = true;
    }

    /// With so many readings of one step at the most until two in a row agree; 0 for as many as it takes.
    void searchTerminals(int mostReadings = 0);

    /// Reads all outputs, then all scripts. The busy state stays for the receiver of the scripts to end.
    void readConfiguration();
    void readOutput(quint8 address, quint8 number);
    void readScript(quint8 number);

    /// Writes output records and script records, and ends the busy state after the last script.
    void writeConfiguration(const QByteArrayList& outputs, const QByteArrayList& scripts);

    /// Sets the unit's clock to the PC's.
    void setDeviceTime();

    /// Reads the log from its beginning if its counter has changed since the last reading.
    void readLog();

    /// Sends a request, as it is, to the current port.
    void send(const message& request);

    /// A firmware load begins or ends on the current port.
    void setFirmwareRunning(bool running);

public slots:
    /// Looks for new ports.
    void updatePortList()
    {
        portList.update();
    }

signals:
    /// A new port, which hasn't been started yet.
    void portAdded(Port* port);
    void portListUpdated();

    /// The first coordinator was found, on a port that is about to be chosen without the user.
    void foundFirst(Port* port);

    /// A choice was made, by the user or by itself, with a port or without.
    void chosen(Port* port);
    void statusReported(PortStatus status); ///< of the current port
    void operationsEnabled(bool enable);    ///< whether the current port has a coordinator

    /// A request for the current port was dropped, since there is none.
    void requestDropped(const message& request);

    // Packets of the current port; periodic marks those of the watch.
    void requestShown(const QDateTime& time, const QByteArray& request, bool periodic);
    void answerShown(const QDateTime& time, const QByteArray& answer, bool periodic);

    // The busy state: what is going on and how far it is. Between shown() and hidden() the user has to wait.
    void busyBegun(const QString& text, int minimum, int maximum);
    void busyTextChanged(const QString& text);
    void busyMaximumChanged(int maximum);
    void busyStepDone();
    void busyShown();
    void busyHidden();

    // Results. Those of the operations are what the operations say, see there.
    void outputsRead(const QByteArrayList& outputs);
    void scriptsRead(const QByteArrayList& scripts);
    void configurationWritten();
    void logAnnounced(int records); ///< so many events the unit has, before the first of them
    void logRead(const QByteArrayList& records, bool end);
    void logIncomplete();
    void logNotNecessary();
    void terminalsFound(const QByteArrayList& terminals);
    void deviceTimeRead(const QString& time, bool correct);
    void deviceTimeWritten(bool accepted);

    /// A step of an operation failed, its last attempt too. One that is asked once more, and then answered, didn't.
    void stepFailed(const message& answer);
    /// A step of the search for terminals ended without two answers that agree.
    void stepUnconfirmed(const message& answer);
    void resultReady(const QString& result);
    void firmwareAnswered(const message& answer);

private:
    void connectOperations();
    QDateTime now() const;
    void addPort(Port* port);
    void setCurrent(Port& port);
    void tellCurrent();
    void setFirmwarePort(Port* port);
    void takeAnswer(const Port* port, const message& answer);
    void answerDeviceTime(const message& answer);
    void answerTimeWritten(const message& answer);
    void answerOperation(const message& answer);
    void sendAtRate(message request);
    void resend(message answer);

    const std::function<QDateTime()> clock;
    Port* current = nullptr;
    quint8 chosenAddress = noCoordinator;
    int chosenBaudrate = 1200;
    bool choosesFirst = true;
    bool isAbandoned = false;     ///< the operations at hand are
    Port* firmwarePort = nullptr; ///< on which a firmware load runs
    FirmwareRunner firmwareRunner;
    bool isFirmwareAtHand = false; ///< the dialogs of a port's firmware load are open, that of its file among them
    QTimer timerNothingSent;       ///< ends the busy state again where there is nothing to wait for
    TerminalSearch* terminalSearch;
    ConfigurationReading* configurationReading;
    ConfigurationWriting* configurationWriting;
    LogReading* logReading;
    const std::array<DeviceOperation*, 4> operations;
    PortList portList; ///< the first to go, as its ports know the others
};
