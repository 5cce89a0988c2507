#include "tool/ToolProgram.h"

#include "tool/Console.h"
#include "tool/commandList.h"

#include <QCommandLineParser>
#include <QCoreApplication>

#include <algorithm>

namespace
{

const char* const explanation = R"(Works on the unit of a radio fire and security alarm system, or on its files.

  %1
Results go to the standard output, all else to the standard error. Exit codes: 0 done, or equal; 1 done with errors, or
different; 2 nothing found; 3 refused; 4 bad input; 5 interrupted.)";

QString listOfCommands()
{
    QString list;
    for (const Command& command : commands()) {
        list += QStringLiteral("%1 %2\n  ")
                    .arg((command.name + QLatin1Char(' ') + command.arguments), -30)
                    .arg(command.summary);
    }
    return list.trimmed();
}

QString explanationOf(const Command& command)
{
    return QStringLiteral("%1.\n\nExample: %2").arg(command.summary, command.example);
}

QString jsonOption()
{
    return QStringLiteral("json");
}

/// What all commands have.
QList<QCommandLineOption> commonOptions()
{
    return {{{QStringLiteral("h"), QStringLiteral("help")},
             QStringLiteral("This help; behind a command, that of the command.")},
            {QStringLiteral("port"),
             QStringLiteral("The serial port of the unit; without it the first coordinator found is taken."),
             QStringLiteral("name")},
            {jsonOption(), QStringLiteral("Results as JSON.")},
            {QStringLiteral("quiet"), QStringLiteral("Nothing but results and errors.")},
            {QStringLiteral("simulated-unit"),
             QStringLiteral("Work on a simulated unit, to learn and to test. Each run has a new one.")}};
}

const Command* commandOf(const QString& name)
{
    const auto found = std::find_if(commands().cbegin(), commands().cend(),
                                    [&name](const Command& command) { return command.name == name; });
    return found != commands().cend() ? &*found : nullptr;
}

ExitCode refuse(Console& console, const QString& reason)
{
    console.error(reason + QStringLiteral(" (see --help)"));
    return ExitCode::BadInput;
}

ExitCode helpOrRefuse(QCommandLineParser& parser, const QStringList& arguments, Console& console)
{
    const bool isParsed = parser.parse(arguments);
    if (parser.isSet(QStringLiteral("version"))) {
        console.result(QCoreApplication::applicationName() + QLatin1Char(' ') + QCoreApplication::applicationVersion());
        return ExitCode::Done;
    }
    if (parser.isSet(QStringLiteral("help"))) {
        console.result(parser.helpText());
        return ExitCode::Done;
    }
    return refuse(console, isParsed ? QStringLiteral("no command is given") : parser.errorText());
}

ExitCode runCommand(const QStringList& arguments, Console& console)
{
    QCommandLineParser parser;
    parser.addOptions(commonOptions());

    // The first word that is no option names the command, which has options of its own.
    parser.setOptionsAfterPositionalArgumentsMode(QCommandLineParser::ParseAsPositionalArguments);
    parser.parse(arguments);
    console.setJson(parser.isSet(jsonOption()));
    const QString name = parser.positionalArguments().value(0);
    const Command* const command = commandOf(name);
    if (command == nullptr) {
        if (!name.isEmpty()) {
            return refuse(console, QStringLiteral("there is no command \"%1\"").arg(name));
        }
        parser.addVersionOption();
        parser.setApplicationDescription(QString::fromUtf8(explanation).arg(listOfCommands()));
        parser.addPositionalArgument(QStringLiteral("command"), QStringLiteral("What to do."));
        return helpOrRefuse(parser, arguments, console);
    }
    parser.setOptionsAfterPositionalArgumentsMode(QCommandLineParser::ParseAsOptions);
    parser.addOptions(command->options);
    parser.setApplicationDescription(explanationOf(*command));
    parser.addPositionalArgument(name, command->summary, name + QLatin1Char(' ') + command->arguments);
    const bool isParsed = parser.parse(arguments);
    console.setJson(parser.isSet(jsonOption()));
    if (!isParsed) {
        return refuse(console, parser.errorText());
    }
    if (parser.isSet(QStringLiteral("help"))) {
        console.result(parser.helpText());
        return ExitCode::Done;
    }
    if (parser.isSet(QStringLiteral("port")) &&
        (parser.value(QStringLiteral("port")).isEmpty() || parser.isSet(QStringLiteral("simulated-unit")))) {
        return refuse(console, QStringLiteral("--port takes the name of a port, and no simulated unit beside it"));
    }
    const QStringList given = parser.positionalArguments().mid(1);
    if (given.size() < command->leastArguments || given.size() > command->mostArguments) {
        return refuse(console, QStringLiteral("%1 takes: %2")
                                   .arg(name, command->arguments.isEmpty() ? QStringLiteral("no arguments")
                                                                           : command->arguments));
    }
    console.setQuiet(parser.isSet(QStringLiteral("quiet")));
    return command->run(parser, given, console);
}

} // namespace

const QVector<Command>& commands()
{
    // As the help lists them.
    static const QVector<Command> list{
        portsCommand(),  readCommand(), writeCommand(), diffCommand(),     checkCommand(),
        reportCommand(), logCommand(),  timeCommand(),  firmwareCommand(), decodeCommand(),
    };
    return list;
}

bool paints(const QStringList& arguments)
{
    QCommandLineParser parser;
    parser.addOptions(commonOptions());
    parser.setOptionsAfterPositionalArgumentsMode(QCommandLineParser::ParseAsPositionalArguments);
    parser.parse(arguments);
    const Command* const command = commandOf(parser.positionalArguments().value(0));
    return command != nullptr && command->paints;
}

QCommandLineOption forceOption()
{
    return {QStringLiteral("force"), QStringLiteral("Overwrite files that exist.")};
}

QCommandLineOption confirmedOption()
{
    return {QStringLiteral("yes"), QStringLiteral("Don't ask.")};
}

ExitCode runTool(const QStringList& arguments, Console& console)
{
    const ExitCode exitCode = runCommand(arguments, console);
    console.finish(exitCode);
    return exitCode;
}
