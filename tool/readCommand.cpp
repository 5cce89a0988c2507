#include "tool/Configuration.h"
#include "tool/Console.h"
#include "tool/OutputFile.h"
#include "tool/UnitReading.h"
#include "tool/UnitSession.h"
#include "tool/commandList.h"
#include "tool/english.h"

#include <QCommandLineParser>
#include <QJsonArray>
#include <QJsonDocument>

namespace
{

QCommandLineOption confirmOption()
{
    return {QStringLiteral("confirm"), QStringLiteral("Read everything until two answers agree.")};
}

QCommandLineOption partialOption()
{
    return {QStringLiteral("partial"), QStringLiteral("Keep what could be read even if something is missing.")};
}

/// What a file holds, and what it doesn't keep of the reading.
struct Told
{
    SavedReading saved;
    QStringList lost;
};

void tell(const UnitReading& reading, const Told& told, const QString& path, const UnitSession& unit, Console& console)
{
    if (console.isJson()) {
        QJsonObject object = unit.identity();
        object.insert(QStringLiteral("file"), path);
        object.insert(QStringLiteral("terminals"), reading.terminalCount());
        object.insert(QStringLiteral("terminalsWithOutputs"), told.saved.terminals);
        object.insert(QStringLiteral("outputs"), told.saved.outputs);
        object.insert(QStringLiteral("scripts"), reading.scripts.size());
        object.insert(QStringLiteral("errors"), QJsonArray::fromStringList(reading.failures));
        object.insert(QStringLiteral("notTold"), QJsonArray::fromStringList(told.saved.untold));
        object.insert(QStringLiteral("notKept"), QJsonArray::fromStringList(told.lost));
        console.result(QJsonDocument(object));
        return;
    }
    console.result(path + QStringLiteral(": %1 of the head unit and %2, %3; %4 found")
                              .arg(english::counted(told.saved.outputs, QStringLiteral("output")),
                                   english::counted(told.saved.terminals, QStringLiteral("terminal")),
                                   english::counted(reading.scripts.size(), QStringLiteral("script")),
                                   english::counted(reading.terminalCount(), QStringLiteral("terminal"))));
}

ExitCode read(const QCommandLineParser& commandLine, const QStringList& arguments, Console& console)
{
    const QString& path = arguments.at(0);
    if (!mayWrite(path, commandLine, console)) {
        return ExitCode::Refused;
    }
    UnitSession unit(commandLine, console);
    if (const ExitCode found = unit.open(); found != ExitCode::Done) {
        return found;
    }
    const std::optional<UnitReading> reading = readUnit(unit, commandLine.isSet(confirmOption()));
    if (!reading) {
        console.noteSoFar({{QStringLiteral("steps"), unit.stepsDone()}});
        console.error(QStringLiteral("interrupted after %1 steps; ").arg(unit.stepsDone()) + path +
                      QStringLiteral(" was not written"));
        return ExitCode::Interrupted;
    }
    tellFailures(*reading, console);
    // Written back, what is missing would be taken out of the unit.
    if (!reading->failures.isEmpty() && !commandLine.isSet(partialOption())) {
        console.error(QStringLiteral("%1 was not written; --partial keeps what could be read").arg(path));
        return ExitCode::WithErrors;
    }
    Configuration configuration;
    reading->fill(configuration.model);
    const QStringList lost = lostInAFile(configuration.model);
    for (const QString& line : lost) {
        console.error(line);
    }
    const std::optional<SavedReading> saved = saveReading(configuration.model, *reading, path, console);
    if (!saved) {
        return ExitCode::Refused;
    }
    tell(*reading, {*saved, lost}, path, unit, console);
    return reading->failures.isEmpty() && lost.isEmpty() ? ExitCode::Done : ExitCode::WithErrors;
}

} // namespace

Command readCommand()
{
    Command command;
    command.name = QStringLiteral("read");
    command.arguments = QStringLiteral("FILE.cfg");
    command.leastArguments = 1;
    command.mostArguments = 1;
    command.summary = QStringLiteral("Reads the configuration of the unit into a file");
    command.example = QStringLiteral("hubn-tool read site.cfg --confirm");
    command.options = {confirmOption(), partialOption(), forceOption()};
    command.run = read;
    return command;
}
