#include "simulator/SimulatorProgram.h"

#include "simulator/DemoInstallation.h"
#include "simulator/LogGenerator.h"
#include "simulator/StateFile.h"
#include "simulator/UnitClock.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFileInfo>
#include <QSocketNotifier>

#include <array>
#include <csignal>
#include <cstdio>

#include <sys/signalfd.h>
#include <unistd.h>

namespace
{
const char* const explanation = R"(A head unit HUBN-NX-Q that isn't there, behind a pseudo-terminal.

The first line printed is the name of its port, as "pts/3"; open it with 8N1 at one of the unit's baud rates. The
program runs until it is told to quit, by a command or a signal, and then saves its state if it was given a state file.

Commands on the standard input: save, unplug, plug, event, quit.
Signals: SIGINT and SIGTERM quit, SIGUSR1 saves.

A fault is a kind and, after a colon, what it is to hit and how:
  request=TYPE or boot=TYPE   only requests of this type (see simulator/README.md for the numbers)
  from=N                      from the Nth of them on
  times=N                     N of them in a row, otherwise all that follow
  chance=P                    each of those with this chance, 0 to 1
  value=N, amount=N, bytes=HEX   depending on the kind
For example:
  --fault damage-answer:chance=0.05
  --fault unplug:request=7,from=10,times=1,value=1500

Kinds: )";

sigset_t handledSignals()
{
    sigset_t set;
    sigemptyset(&set);
    for (const int number : {SIGINT, SIGTERM, SIGUSR1}) {
        sigaddset(&set, number);
    }
    return set;
}

struct Options
{
    QCommandLineOption state{QStringLiteral("state"),
                             QStringLiteral("Begin with the state in this file, if it is there, and save into it."),
                             QStringLiteral("file")};
    QCommandLineOption blank{QStringLiteral("blank"),
                             QStringLiteral("Begin with a unit from the factory instead of an installation.")};
    QCommandLineOption events{QStringLiteral("events"), QStringLiteral("Events in the log of the installation (1200)."),
                              QStringLiteral("number"), QStringLiteral("1200")};
    QCommandLineOption seed{QStringLiteral("seed"), QStringLiteral("What chance depends on: log, faults (1)."),
                            QStringLiteral("number"), QStringLiteral("1")};
    QCommandLineOption address{QStringLiteral("address"), QStringLiteral("Address of the coordinator."),
                               QStringLiteral("number")};
    QCommandLineOption baud{QStringLiteral("baud"),
                            QStringLiteral("A rate at which the unit answers; may be given more than once."),
                            QStringLiteral("rate")};
    QCommandLineOption noClock{QStringLiteral("no-clock"), QStringLiteral("Refuse time requests with this code."),
                               QStringLiteral("code")};
    QCommandLineOption skipLost{QStringLiteral("skip-lost-log-blocks"),
                                QStringLiteral("Go on after a log block whose answer was lost.")};
    QCommandLineOption pace{QStringLiteral("pace"), QStringLiteral("Keep the pace of the wire.")};
    QCommandLineOption think{QStringLiteral("think"), QStringLiteral("Take this long over each answer (0)."),
                             QStringLiteral("ms"), QStringLiteral("0")};
    QCommandLineOption grow{QStringLiteral("grow-log"), QStringLiteral("A new event every so often."),
                            QStringLiteral("ms")};
    QCommandLineOption fault{QStringLiteral("fault"), QStringLiteral("A fault; may be given more than once."),
                             QStringLiteral("rule")};
    QCommandLineOption trace{QStringLiteral("trace"), QStringLiteral("Print every request and answer.")};

    QList<QCommandLineOption> all() const
    {
        return {state, blank, events, seed, address, baud, noClock, skipLost, pace, think, grow, fault, trace};
    }
};

const Options& options()
{
    static const Options list;
    return list;
}

/// The number that an option was given; false if it is none or out of range.
bool number(const QCommandLineParser& parser, const QCommandLineOption& option, int lowest, int highest, int& value)
{
    bool ok = false;
    value = parser.value(option).toInt(&ok);
    return ok && value >= lowest && value <= highest;
}

} // namespace

SimulatorProgram::SimulatorProgram() : output(stdout), errors(stderr)
{
}

SimulatorProgram::~SimulatorProgram()
{
    delete signalNotifier; // before its descriptor is closed
    if (signalDescriptor >= 0) {
        ::close(signalDescriptor);
    }
}

bool SimulatorProgram::blockSignals()
{
    const sigset_t set = handledSignals();
    return pthread_sigmask(SIG_BLOCK, &set, nullptr) == 0;
}

bool SimulatorProgram::start(const QStringList& arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QString::fromUtf8(explanation) +
                                     UnitFault::kindNames().join(QStringLiteral(", ")));
    parser.addHelpOption();
    parser.addVersionOption();
    parser.addOptions(options().all());
    parser.process(arguments);
    if (!parser.positionalArguments().isEmpty()) {
        return complain(
            QStringLiteral("don't know what to do with \"%1\"").arg(parser.positionalArguments().constFirst()));
    }

    UnitState state;
    QVector<UnitFault> rules;
    int thinkingTime = 0;
    int seed = 0;
    int interval = 0;
    if (!initialState(parser, state) || !faults(parser, rules)) {
        return false;
    }
    if (!number(parser, options().think, 0, 60000, thinkingTime) || !number(parser, options().seed, 0, INT_MAX, seed) ||
        (parser.isSet(options().grow) && !number(parser, options().grow, 1, INT_MAX, interval))) {
        return complain(QStringLiteral("--think, --seed and --grow-log take whole numbers"));
    }

    unit = std::make_unique<UnitSimulator>(state);
    if (!unit->isValid()) {
        return complain(unit->errorString());
    }
    unit->setFaults(rules, quint32(seed));
    unit->setPace(parser.isSet(options().pace) ? UnitSimulator::OfTheWire : UnitSimulator::AtOnce, thinkingTime);
    unit->growLog(interval, quint32(seed));
    if (parser.isSet(options().trace)) {
        connect(unit.get(), &UnitSimulator::requestReceived, this, &SimulatorProgram::trace);
    }
    if (!listenToSignals()) {
        return complain(QStringLiteral("can't receive signals"));
    }
    inputNotifier = new QSocketNotifier(STDIN_FILENO, QSocketNotifier::Read, this);
    connect(inputNotifier, &QSocketNotifier::activated, this, &SimulatorProgram::receiveInput);
    output << unit->portName() << Qt::endl;
    return true;
}

bool SimulatorProgram::initialState(const QCommandLineParser& parser, UnitState& state)
{
    int events = 0;
    int seed = 0;
    if (!number(parser, options().events, 0, LogRing::maximumCapacity, events) ||
        !number(parser, options().seed, 0, INT_MAX, seed)) {
        return complain(QStringLiteral("--events takes a number up to %1").arg(LogRing::maximumCapacity));
    }
    stateFile = parser.value(options().state);
    if (!stateFile.isEmpty() && QFileInfo::exists(stateFile)) {
        QString reason;
        const std::optional<UnitState> loaded = StateFile::load(stateFile, &reason);
        if (!loaded) {
            stateFile.clear(); // or the end of the program would overwrite it
            return complain(reason);
        }
        state = *loaded;
    } else if (!parser.isSet(options().blank)) {
        state = demoInstallation(quint32(seed), events, UnitClock::now(0));
    }

    int value = 0;
    if (parser.isSet(options().address)) {
        if (!number(parser, options().address, 1, 254, value)) {
            return complain(QStringLiteral("an address is a number from 1 to 254"));
        }
        state.address = quint8(value);
    }
    if (parser.isSet(options().noClock)) {
        if (!number(parser, options().noClock, 1, 255, value)) {
            return complain(QStringLiteral("a refusal is a code from 1 to 255"));
        }
        state.timeRefusal = quint8(value);
    }
    if (parser.isSet(options().baud)) {
        state.baudRates.clear();
        const QStringList rates = parser.values(options().baud);
        for (const QString& rate : rates) {
            state.baudRates.append(rate.toInt());
        }
        if (state.baudRates.contains(0)) {
            return complain(QStringLiteral("a baud rate is a number such as 9600"));
        }
    }
    if (parser.isSet(options().skipLost)) {
        state.repeatsLostLogBlock = false;
    }
    return true;
}

bool SimulatorProgram::faults(const QCommandLineParser& parser, QVector<UnitFault>& rules)
{
    const QStringList texts = parser.values(options().fault);
    for (const QString& text : texts) {
        QString reason;
        const std::optional<UnitFault> fault = UnitFault::fromText(text, &reason);
        if (!fault) {
            return complain(QStringLiteral("--fault %1: %2").arg(text, reason));
        }
        rules.append(*fault);
    }
    return true;
}

bool SimulatorProgram::listenToSignals()
{
    const sigset_t set = handledSignals();
    signalDescriptor = signalfd(-1, &set, SFD_NONBLOCK | SFD_CLOEXEC);
    if (signalDescriptor < 0) {
        return false;
    }
    signalNotifier = new QSocketNotifier(signalDescriptor, QSocketNotifier::Read, this);
    connect(signalNotifier, &QSocketNotifier::activated, this, &SimulatorProgram::receiveSignal);
    return true;
}

void SimulatorProgram::receiveSignal()
{
    signalfd_siginfo info{};
    if (::read(signalDescriptor, &info, sizeof info) != ssize_t(sizeof info)) {
        return;
    }
    if (info.ssi_signo == SIGUSR1) {
        save();
    } else {
        finish();
    }
}

/// The end of the input doesn't end the program: it may run in the background.
void SimulatorProgram::receiveInput()
{
    std::array<char, 512> block{};
    const ssize_t count = ::read(STDIN_FILENO, block.data(), block.size());
    if (count <= 0) {
        inputNotifier->setEnabled(false);
        return;
    }
    typed.append(block.data(), int(count));
    for (int end = typed.indexOf('\n'); end >= 0; end = typed.indexOf('\n')) {
        const QString command = QString::fromUtf8(typed.left(end)).trimmed();
        typed.remove(0, end + 1);
        if (!command.isEmpty()) {
            obey(command);
        }
    }
}

void SimulatorProgram::obey(const QString& command)
{
    const QHash<QString, std::function<QString()>> commands{
        {QStringLiteral("save"), [this] { return save() ? QStringLiteral("saved") : QStringLiteral("not saved"); }},
        {QStringLiteral("unplug"),
         [this] {
             unit->unplug();
             return QStringLiteral("unplugged");
         }},
        {QStringLiteral("plug"),
         [this] { return unit->plugIn() ? unit->portName() : QStringLiteral("can't be plugged in"); }},
        {QStringLiteral("event"),
         [this] {
             unit->change([](UnitState& state) {
                 LogGenerator generator(quint32(state.log.written()), LogGenerator::Plausible, state.terminals);
                 state.log.append(generator.next(UnitClock::now(state.clockOffset)));
             });
             return QStringLiteral("%1 events").arg(unit->state().log.size());
         }},
        {QStringLiteral("quit"),
         [this] {
             finish();
             return QStringLiteral("ends");
         }},
    };
    const auto known = commands.constFind(command);
    if (known == commands.constEnd()) {
        QStringList names = commands.keys();
        names.sort();
        output << "commands: " << names.join(QStringLiteral(", ")) << Qt::endl;
    } else {
        output << (*known)() << Qt::endl;
    }
}

void SimulatorProgram::trace(const UnitRequest& request)
{
    const QString type =
        request.bootType != 0 ? QStringLiteral("boot %1").arg(request.bootType) : QString::number(request.requestType);
    output << request.baudRate << " " << type << (request.heard ? ": " : " (not heard): ")
           << QString::fromLatin1(request.frame.toHex(' ')) << " -> " << QString::fromLatin1(request.answer.toHex(' '))
           << Qt::endl;
}

bool SimulatorProgram::save()
{
    if (stateFile.isEmpty()) {
        return complain(QStringLiteral("there is no state file to save into"));
    }
    QString reason;
    return StateFile::save(unit->state(), stateFile, &reason) || complain(reason);
}

void SimulatorProgram::finish()
{
    const bool kept = stateFile.isEmpty() || save();
    QCoreApplication::exit(kept ? 0 : 1);
}

bool SimulatorProgram::complain(const QString& text)
{
    errors << QCoreApplication::applicationName() << ": " << text << Qt::endl;
    return false;
}
