#include "link/CoordinatorLink.h"

#include "link/ConfigurationReading.h"
#include "link/ConfigurationWriting.h"
#include "link/DeviceTime.h"
#include "link/LogReading.h"
#include "link/TerminalSearch.h"
#include "link/protocol_HUBN_NX_Q.h"
#include "texts/texts.h"

#include <QDebug>

#include <algorithm>
#include <chrono>
#include <utility>

namespace
{

/// Of a request that no port is there for.
constexpr int defaultBaudrate = 1200;

/// How long the busy state lasts if nothing was sent.
constexpr std::chrono::seconds nothingSentTime{1};

PortStatus statusOf(const PortInfo& port)
{
    if (!port.watched) {
        return PortStatus::NotWatched;
    }
    return port.state == StateCoordinatorConnected ? PortStatus::Connected : PortStatus::NotConnected;
}

} // namespace

CoordinatorLink::CoordinatorLink(CoordinatorSeams linkSeams, Transmitter::BootParser bootParser, QObject* parent)
    : QObject(parent), clock(std::move(linkSeams.now)), timerNothingSent(this),
      terminalSearch(new TerminalSearch(this)), configurationReading(new ConfigurationReading(this)),
      configurationWriting(new ConfigurationWriting(this)),
      logReading(new LogReading(this)), operations{terminalSearch, configurationReading, configurationWriting,
                                                   logReading},
      portList(std::move(linkSeams.portNames), std::move(bootParser), this)
{
    qRegisterMetaType<StatePort>("StatePort");
    connectOperations();
    connect(&portList, &PortList::added, this, &CoordinatorLink::addPort);
    connect(&portList, &PortList::updated, this, &CoordinatorLink::portListUpdated);
    timerNothingSent.setSingleShot(true);
    timerNothingSent.setInterval(nothingSentTime);
    connect(&timerNothingSent, &QTimer::timeout, this, &CoordinatorLink::busyHidden);
}

void CoordinatorLink::connectOperations()
{
    for (DeviceOperation* const operation : operations) {
        connect(operation, &DeviceOperation::requestReady, this, &CoordinatorLink::sendAtRate);
        connect(operation, &DeviceOperation::begun, &timerNothingSent, &QTimer::stop);
        connect(operation, &DeviceOperation::begun, this, &CoordinatorLink::busyBegun);
        connect(operation, &DeviceOperation::textChanged, this, &CoordinatorLink::busyTextChanged);
        connect(operation, &DeviceOperation::maximumChanged, this, &CoordinatorLink::busyMaximumChanged);
        connect(operation, &DeviceOperation::stepDone, this, &CoordinatorLink::busyStepDone);
        connect(operation, &DeviceOperation::shown, this, &CoordinatorLink::busyShown);
        connect(operation, &DeviceOperation::hidden, this, &CoordinatorLink::busyHidden);
        connect(operation, &DeviceOperation::nothingSent, &timerNothingSent, qOverload<>(&QTimer::start));
        connect(operation, &DeviceOperation::resultReady, this, &CoordinatorLink::resultReady);
    }
    connect(terminalSearch, &TerminalSearch::terminalsFound, this, &CoordinatorLink::terminalsFound);
    connect(terminalSearch, &TerminalSearch::unconfirmed, this, &CoordinatorLink::stepUnconfirmed);
    connect(configurationReading, &ConfigurationReading::outputsRead, this, &CoordinatorLink::outputsRead);
    connect(configurationReading, &ConfigurationReading::scriptsRead, this, &CoordinatorLink::scriptsRead);
    connect(configurationWriting, &ConfigurationWriting::written, this, &CoordinatorLink::configurationWritten);
    connect(logReading, &LogReading::announced, this, &CoordinatorLink::logAnnounced);
    connect(logReading, &LogReading::recordsRead, this, &CoordinatorLink::logRead);
    connect(logReading, &LogReading::incomplete, this, &CoordinatorLink::logIncomplete);
    connect(logReading, &LogReading::notNecessary, this, &CoordinatorLink::logNotNecessary);
}

// Ports.

void CoordinatorLink::addPort(Port* port)
{
    port->setSearchRepeated(current == nullptr);
    connect(port, &Port::statusDue, this, [this, port] {
        if (port == current) {
            emit statusReported(statusOf(port->info()));
        }
    });
    connect(port, &Port::coordinatorSeen, this, [this, port] {
        // The first coordinator found is chosen without the user, though not over the dialogs of a load: the watch
        // comes back to it after them.
        if (choosesFirst && current == nullptr && !isFirmwareAtHand) {
            emit foundFirst(port);
            choose(port);
        }
    });
    connect(port, &Port::answered, this, [this, port](const message& answer) { takeAnswer(port, answer); });
    emit portAdded(port);
}

// The current port.

void CoordinatorLink::choose(Port* port)
{
    if (port != nullptr) {
        setCurrent(*port);
        if (chosenAddress != noCoordinator) {
            terminalSearch->start();
        }
        tellCurrent();
    }
    emit chosen(port);
    if (chosenAddress == noCoordinator) {
        return;
    }
    timerNothingSent.stop();
    emit busyBegun(texts::busySearchingTerminals(), 0, 1);
    emit busyShown();
    if (port == nullptr) {
        timerNothingSent.start();
    }
}

void CoordinatorLink::use(Port& port)
{
    setCurrent(port);
    tellCurrent();
}

void CoordinatorLink::setCurrent(Port& port)
{
    if (current != nullptr) {
        disconnect(current->worker(), &Transmitter::sig_SendRequestInForm, this, nullptr);
        disconnect(current->worker(), &Transmitter::sig_SendAnswerInForm, this, nullptr);
    }
    current = &port;
    chosenAddress = port.address();
    chosenBaudrate = port.info().baudrate;
    connect(port.worker(), &Transmitter::sig_SendRequestInForm, this, &CoordinatorLink::requestShown);
    connect(port.worker(), &Transmitter::sig_SendAnswerInForm, this, &CoordinatorLink::answerShown);
    for (Port* const other : ports()) {
        other->setSearchRepeated(false);
    }
    for (DeviceOperation* const operation : operations) {
        operation->setCoordinator(chosenAddress);
    }
}

void CoordinatorLink::tellCurrent()
{
    emit operationsEnabled(chosenAddress != noCoordinator);
    emit statusReported(PortStatus::NotWatched);
}

// Answers.

void CoordinatorLink::takeAnswer(const Port* port, const message& answer)
{
    const int type = answer.requestType();
    const bool isOfCurrentPort = port == current;
    if (answer.bootType() != 0 || type == protocol_HUBN_NX_Q::Switch_To_Boot) {
        if (isOfCurrentPort || port == firmwarePort) {
            emit firmwareAnswered(answer);
        }
    } else if (!isOfCurrentPort) {
        return;
    } else if (type == protocol_HUBN_NX_Q::Read_Time) {
        answerDeviceTime(answer);
    } else if (type == protocol_HUBN_NX_Q::Sync_Time) {
        answerTimeWritten(answer);
    } else {
        answerOperation(answer);
    }
}

void CoordinatorLink::answerDeviceTime(const message& answer)
{
    // The last time stays in view, also if the question was still on its way when the port was disconnected.
    if (!current->info().connected) {
        return;
    }
    const devicetime::Shown shown = devicetime::fromAnswer(answer);
    emit deviceTimeRead(shown.text, shown.correct);
}

void CoordinatorLink::answerTimeWritten(const message& answer)
{
    // Whether the unit has taken the time isn't asked: the watch shows its clock anyway.
    if (!answer.isAnswered() && answer.hasAttempts()) {
        resend(answer);
    } else {
        emit deviceTimeWritten(!answer.isErrorAnswer());
    }
}

void CoordinatorLink::answerOperation(const message& answer)
{
    const bool failed = answer.isErrorAnswer();
    if (isAbandoned) {
        if (!failed) {
            emit busyStepDone();
        }
        return;
    }
    const auto* const operation =
        std::find_if(operations.begin(), operations.end(),
                     [&answer](const DeviceOperation* candidate) { return candidate->handles(answer.requestType()); });
    const bool isHandled = operation != operations.end();
    if (failed) {
        // The name by which this line has always been found in the logs.
        qDebug() << now().toString(QStringLiteral("hh:mm:ss:zzz"))
                 << " (FormChoiceCoordinator): " << protocol_HUBN_NX_Q::failureLabel(answer.requestType())
                 << " (attempts remained = " << answer.attempts() << ")";
        if (answer.hasAttempts()) {
            resend(answer);
            return;
        }
        if (!isHandled || (*operation)->endsStep(answer)) {
            emit stepFailed(answer);
        }
    }
    if (isHandled) {
        (*operation)->takeAnswer(answer, failed);
    }
}

void CoordinatorLink::resend(message answer)
{
    answer.prepareRetry();
    sendAtRate(answer);
}

void CoordinatorLink::sendAtRate(message request)
{
    request.setBaudrate(current != nullptr ? current->info().baudrate : defaultBaudrate);
    send(request);
}

void CoordinatorLink::send(const message& request)
{
    if (isAbandoned) {
        return;
    }
    if (current != nullptr) {
        current->send(request);
    } else {
        emit requestDropped(request);
    }
}

// Operations.

void CoordinatorLink::searchTerminals(int mostReadings)
{
    terminalSearch->start(mostReadings);
}

void CoordinatorLink::readConfiguration()
{
    configurationReading->start();
}

void CoordinatorLink::readOutput(quint8 address, quint8 number)
{
    configurationReading->readOutput(address, number);
}

void CoordinatorLink::readScript(quint8 number)
{
    configurationReading->readScript(number);
}

void CoordinatorLink::writeConfiguration(const QByteArrayList& outputs, const QByteArrayList& scripts)
{
    configurationWriting->start(outputs, scripts);
}

void CoordinatorLink::setDeviceTime()
{
    if (current != nullptr) {
        sendAtRate(protocol_HUBN_NX_Q::requestSyncTime(chosenAddress, devicetime::toBytes(now())));
    }
}

QDateTime CoordinatorLink::now() const
{
    return clock ? clock() : QDateTime::currentDateTime();
}

void CoordinatorLink::readLog()
{
    logReading->start();
}

void CoordinatorLink::forceLogReading()
{
    logReading->forceNext();
}

// Firmware.

void CoordinatorLink::setFirmwareRunner(FirmwareRunner runner)
{
    firmwareRunner = std::move(runner);
}

void CoordinatorLink::loadFirmware(Port& port)
{
    if (!firmwareRunner) {
        return;
    }
    // An automatic search would close the port in the middle of a load; it comes back when the user is done here.
    const bool isSearchDue = port.holdSearch();
    isFirmwareAtHand = true;
    firmwareRunner({port.address(), port.info().baudrate, [&port](const message& request) { port.send(request); },
                    [this, &port](bool running) { setFirmwarePort(running ? &port : nullptr); }});
    isFirmwareAtHand = false;
    if (isSearchDue) {
        port.scheduleSearch();
    }
}

void CoordinatorLink::setFirmwareRunning(bool running)
{
    setFirmwarePort(running ? current : nullptr);
}

void CoordinatorLink::setFirmwarePort(Port* port)
{
    if (firmwarePort != nullptr) {
        firmwarePort->setWatchResting(false);
    }
    firmwarePort = port;
    if (firmwarePort != nullptr) {
        firmwarePort->setWatchResting(true);
    }
}
