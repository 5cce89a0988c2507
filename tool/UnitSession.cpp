#include "tool/UnitSession.h"

#include "firmware/protocol_boot.h"
#include "simulator/DemoInstallation.h"
#include "simulator/UnitClock.h"
#include "simulator/UnitSimulator.h"
#include "tool/Console.h"

#include <QCommandLineParser>
#include <QEventLoop>

#include <algorithm>
#include <chrono>

namespace
{

/// Searches of a port that may find nothing: one answer may be missed.
constexpr int searchesOfPort = 2;

constexpr int eventsOfSimulatedUnit = 1200;

/// A request that was sent has its answer by then, or none.
constexpr std::chrono::milliseconds exchangeTime{500};

} // namespace

UnitSession::UnitSession(const QCommandLineParser& commandLine, Console& commandConsole, CoordinatorSeams seams)
    : console(commandConsole), givenPort(commandLine.value(QStringLiteral("port")))
{
    if (commandLine.isSet(QStringLiteral("simulated-unit"))) {
        simulatedUnit = std::make_unique<UnitSimulator>(demoInstallation(1, eventsOfSimulatedUnit, UnitClock::now(0)));
        simulatedUnit->setPace(UnitSimulator::OfTheWire);
        givenPort = simulatedUnit->portName();
    }
    if (simulatedUnit != nullptr || commandLine.isSet(QStringLiteral("port"))) {
        seams.portNames = [name = givenPort] { return QStringList{name}; };
    }
    coordinators = std::make_unique<CoordinatorLink>(seams, protocol_boot::parseAnswer);
    coordinators->setChoosingFirst(false);
    connect(coordinators.get(), &CoordinatorLink::portAdded, this, &UnitSession::watchPort);
    connect(coordinators.get(), &CoordinatorLink::busyBegun, this, [this](const QString& text, int, int maximum) {
        busyText = text;
        busyValue = 0;
        busyMaximum = maximum;
    });
    connect(coordinators.get(), &CoordinatorLink::busyTextChanged, this,
            [this](const QString& text) { busyText = text; });
    connect(coordinators.get(), &CoordinatorLink::busyMaximumChanged, this,
            [this](int maximum) { busyMaximum = maximum; });
    connect(coordinators.get(), &CoordinatorLink::busyStepDone, this, [this] {
        ++busyValue;
        showProgress();
    });
}

UnitSession::~UnitSession()
{
    // Before what it tells of.
    coordinators.reset();
}

// The search.

void UnitSession::watchPort(Port* port)
{
    searches.insert(port, {});
    connect(port, &Port::changed, this, [this, port] { noteState(port); });
}

void UnitSession::noteState(Port* port)
{
    Search& search = searches[port];
    const StatePort state = port->info().state;
    const bool isNew = state != search.state;
    search.state = state;
    if (isNew && state == StateCoordinatorNotFound) {
        ++search.failures;
        if (search.failures < searchesOfPort) {
            port->scheduleSearch();
        } else {
            port->setSearchRepeated(false);
        }
    }
    emit searchChanged(); // or why it is so has come
}

bool UnitSession::isSettled(const Port* port) const
{
    const Search search = searches.value(port);
    switch (search.state) {
    case StateCreateError:
    case StateOpenError:
    case StateNotFound:
        return !port->info().troubleAwaited;
    case StateCoordinatorConnected:
    case StateCoordinatorLost:
        return true;
    default:
        return search.failures >= searchesOfPort;
    }
}

Port* UnitSession::foundPort() const
{
    const QVector<Port*>& ports = coordinators->ports();
    const auto found = std::find_if(ports.cbegin(), ports.cend(),
                                    [](const Port* port) { return port->info().state == StateCoordinatorConnected; });
    return found != ports.cend() ? *found : nullptr;
}

bool UnitSession::runSearch(bool untilFirst)
{
    console.progress(QStringLiteral("Looking for a coordinator"), 0, 0);
    QEventLoop loop;
    const auto isOver = [this, untilFirst] {
        const QVector<Port*>& ports = coordinators->ports();
        return (untilFirst && foundPort() != nullptr) ||
               std::all_of(ports.cbegin(), ports.cend(), [this](const Port* port) { return isSettled(port); });
    };
    connect(this, &UnitSession::searchChanged, &loop, [&loop, isOver] {
        if (isOver()) {
            loop.quit();
        }
    });
    if (interruption.isRequested()) {
        return false;
    }
    coordinators->start();
    return isOver() || wait(loop);
}

bool UnitSession::isSimulationPossible()
{
    if (simulatedUnit != nullptr && !simulatedUnit->isValid()) {
        console.error(QStringLiteral("there can be no simulated unit: ") + simulatedUnit->errorString());
        return false;
    }
    return true;
}

bool UnitSession::searchAllPorts()
{
    return runSearch(false);
}

ExitCode UnitSession::open(bool alsoSilent)
{
    if (!isSimulationPossible()) {
        return ExitCode::Refused;
    }
    if (!runSearch(true)) {
        console.error(QStringLiteral("interrupted; nothing was done"));
        return ExitCode::Interrupted;
    }
    unitPort = foundPort();
    if (unitPort == nullptr && alsoSilent && !givenPort.isEmpty() &&
        coordinators->ports().constFirst()->info().state == StateCoordinatorNotFound) {
        usePort(coordinators->ports().constFirst());
        console.note(unitPort->name() +
                     QStringLiteral(": no coordinator answers; maybe the unit is in its bootloader"));
        return ExitCode::Done;
    }
    if (unitPort == nullptr) {
        return complainOfNothing();
    }
    // What is done here doesn't take so long that the unit would have to be watched beside it.
    unitPort->setWatchResting(true);
    usePort(unitPort);
    const CoordinatorInfo& coordinator = *unitPort->info().coordinator;
    console.note(QStringLiteral("%1: coordinator at address %2, serial number %3, version %4")
                     .arg(unitPort->name())
                     .arg(coordinator.address)
                     .arg(coordinator.serial)
                     .arg(coordinator.versionText()));
    return ExitCode::Done;
}

void UnitSession::usePort(Port* port)
{
    unitPort = port;
    coordinators->use(*port);
    coordinators->keepOnly(*port);
    console.noteSoFar(identity());
}

ExitCode UnitSession::complainOfNothing()
{
    if (coordinators->ports().isEmpty()) {
        console.error(QStringLiteral("there is no serial port"));
        return ExitCode::NothingFound;
    }
    if (givenPort.isEmpty()) {
        console.error(QStringLiteral("no port has a coordinator; \"hubn-tool ports\" tells of each"));
        return ExitCode::NothingFound;
    }
    const StatePort state = coordinators->ports().constFirst()->info().state;
    console.error(QStringLiteral("%1: %2").arg(givenPort, stateWithTroubleOf(*coordinators->ports().constFirst())));
    return state == StateCreateError || state == StateOpenError ? ExitCode::Refused : ExitCode::NothingFound;
}

// The unit.

CoordinatorLink& UnitSession::link()
{
    return *coordinators;
}

Port& UnitSession::port()
{
    return *unitPort;
}

QJsonObject UnitSession::identity() const
{
    if (!unitPort->info().coordinator) {
        return {{QStringLiteral("port"), unitPort->name()}};
    }
    const CoordinatorInfo& coordinator = *unitPort->info().coordinator;
    return {{QStringLiteral("port"), unitPort->name()},
            {QStringLiteral("address"), coordinator.address},
            {QStringLiteral("baudRate"), unitPort->info().baudrate},
            {QStringLiteral("serialNumber"), coordinator.serial},
            {QStringLiteral("version"), coordinator.versionText()}};
}

bool UnitSession::wait(QEventLoop& loop, const std::function<void()>& abandon)
{
    if (!interruption.isRequested()) {
        connect(&interruption, &Interruption::requested, &loop, [&loop] { loop.exit(1); });
        if (loop.exec() == 0) {
            return true;
        }
    }
    abandon();
    coordinators->abandonOperations();
    if (unitPort != nullptr) {
        QEventLoop exchange;
        connect(unitPort, &Port::answered, &exchange, &QEventLoop::quit);
        QTimer::singleShot(exchangeTime, &exchange, &QEventLoop::quit);
        exchange.exec();
    }
    return false;
}

bool UnitSession::isInterrupted()
{
    return interruption.isRequested();
}

int UnitSession::stepsDone() const
{
    return busyValue;
}

void UnitSession::beginProgress(const QString& text)
{
    busyText = text;
    busyValue = 0;
    busyMaximum = 0;
    showProgress();
}

void UnitSession::showProgress()
{
    console.progress(busyText, busyValue, busyMaximum);
}

QString UnitSession::stateOf(const Port& port)
{
    return statePortTraits(port.info().state).text().replace(QLatin1Char('\n'), QLatin1String(", "));
}

QString UnitSession::stateWithTroubleOf(const Port& port)
{
    const std::optional<PortTrouble>& trouble = port.info().trouble;
    return trouble
               ? stateOf(port) + QStringLiteral(". ") + trouble->whatIsWrong() + QLatin1Char(' ') + trouble->whatToDo()
               : stateOf(port);
}

QString UnitSession::reasonOf(const message& answer)
{
    if (answer.portFailed()) {
        return QStringLiteral("the port failed");
    }
    if (answer.timedOut()) {
        return QStringLiteral("no answer");
    }
    if (!answer.isValid()) {
        return QStringLiteral("a damaged answer");
    }
    return QStringLiteral("refused with code %1").arg(answer.answerCode());
}
