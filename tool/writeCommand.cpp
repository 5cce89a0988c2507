#include "tool/Configuration.h"
#include "tool/Console.h"
#include "tool/OutputFile.h"
#include "tool/UnitReading.h"
#include "tool/UnitSession.h"
#include "tool/commandList.h"

#include <QCommandLineParser>
#include <QEventLoop>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QJsonArray>
#include <QJsonDocument>

namespace
{

QCommandLineOption backupOption()
{
    return {QStringLiteral("backup"), QStringLiteral("Read the unit into this file first."), QStringLiteral("OLD.cfg")};
}

QCommandLineOption verifyOption()
{
    return {QStringLiteral("verify"), QStringLiteral("Read everything back afterwards and list what differs.")};
}

QCommandLineOption incompleteOption()
{
    return {QStringLiteral("incomplete"),
            QStringLiteral("Write a file that isn't whole, too; what it lacks is emptied in the unit.")};
}

/// What is written, with a name for each record.
struct Writing
{
    explicit Writing(const RelayInfo& model) : outputs(model.makeOutputRecords()), scripts(model.makeScriptRecords())
    {
        const QList<GroupRelayPtr> groups = model.groups();
        for (const GroupRelayPtr& group : groups) {
            const QString terminal = group->address == 0
                                         ? QStringLiteral("the head unit")
                                         : QStringLiteral("terminal %1 '%2'").arg(group->address).arg(group->name);
            for (const RelayInformationPtr& output : std::as_const(group->outputs)) {
                names.append(
                    QStringLiteral("output %1 '%2' of %3").arg(output->number + 1).arg(output->name, terminal));
            }
        }
        const QList<ScriptInfoPtr> list = model.scripts();
        for (const ScriptInfoPtr& script : list) {
            names.append(QStringLiteral("script %1 '%2'").arg(script->number + 1).arg(script->name));
        }
    }

    int count() const
    {
        return outputs.size() + scripts.size();
    }

    QByteArrayList outputs;
    QByteArrayList scripts;
    QStringList names; ///< of the outputs, then of the scripts
};

/// What came of a writing, or of a reading back.
struct Outcome
{
    QStringList lines;   ///< what failed, or differs
    bool isWhole = true; ///< not interrupted
};

Outcome write(const Writing& writing, UnitSession& unit)
{
    Outcome outcome;
    QEventLoop loop;
    QObject::connect(&unit.link(), &CoordinatorLink::stepFailed, &loop, [&](const message& answer) {
        outcome.lines.append(writing.names.value(unit.stepsDone()) + QStringLiteral(": ") +
                             UnitSession::reasonOf(answer));
    });
    QObject::connect(&unit.link(), &CoordinatorLink::configurationWritten, &loop, &QEventLoop::quit);
    unit.link().writeConfiguration(writing.outputs, writing.scripts);
    outcome.isWhole = unit.wait(loop);
    return outcome;
}

void compare(const QByteArrayList& written, const QByteArrayList& read, int keySize, const QStringList& names,
             QStringList& differences)
{
    QHash<QByteArray, QByteArray> records;
    for (const QByteArray& record : read) {
        records.insert(record.left(keySize), record);
    }
    for (int index = 0; index < written.size(); ++index) {
        const QByteArray& record = written.at(index);
        const auto found = records.constFind(record.left(keySize));
        if (found == records.constEnd()) {
            differences.append(names.at(index) + QStringLiteral(": could not be read back"));
        } else if (*found != record) {
            differences.append(names.at(index) + QStringLiteral(": the unit holds something else"));
        }
    }
}

/// What the unit holds otherwise than it was written.
Outcome verify(const Writing& writing, UnitSession& unit, Console& console)
{
    const std::optional<UnitReading> reading = readUnit(unit, false);
    if (!reading) {
        return {{}, false};
    }
    tellFailures(*reading, console);
    QByteArrayList outputs;
    QStringList names;
    QStringList untold;
    for (int index = 0; index < writing.outputs.size(); ++index) {
        const QByteArray& record = writing.outputs.at(index);
        const bool isAsked = quint8(record.at(0)) == 0 || record.at(1) < 2;
        if (isAsked) {
            outputs.append(record);
            names.append(writing.names.at(index));
        } else {
            untold.append(writing.names.at(index));
        }
    }
    if (!untold.isEmpty()) {
        console.note(QStringLiteral("not told by the unit, so not verified: ") + untold.join(QLatin1String(", ")));
    }
    Outcome outcome;
    compare(outputs, reading->outputRecords(), 2, names, outcome.lines);
    compare(writing.scripts, reading->scriptRecords(), 1, writing.names.mid(writing.outputs.size()), outcome.lines);
    return outcome;
}

bool makeBackup(const QString& path, UnitSession& unit, Console& console, ExitCode& exitCode)
{
    const std::optional<UnitReading> reading = readUnit(unit, false);
    if (!reading) {
        console.error(QStringLiteral("interrupted; nothing was written"));
        exitCode = ExitCode::Interrupted;
        return false;
    }
    tellFailures(*reading, console);
    const QStringList lost = lostInAFile(*reading);
    for (const QString& line : lost) {
        console.error(line);
    }
    if (!reading->failures.isEmpty() || !lost.isEmpty() || !saveReading(*reading, path, console)) {
        console.error(QStringLiteral("without a whole backup nothing is written"));
        exitCode = ExitCode::Refused;
        return false;
    }
    console.note(QStringLiteral("%1: what the unit held").arg(path));
    return true;
}

void tell(const QStringList& failures, const QStringList& differences, const Writing& writing, bool isVerified,
          const UnitSession& unit, Console& console)
{
    if (console.isJson()) {
        QJsonObject object = unit.identity();
        object.insert(QStringLiteral("records"), writing.count());
        object.insert(QStringLiteral("errors"), QJsonArray::fromStringList(failures));
        if (isVerified) {
            object.insert(QStringLiteral("differences"), QJsonArray::fromStringList(differences));
        }
        console.result(QJsonDocument(object));
        return;
    }
    const QStringList lines = failures + differences;
    for (const QString& line : lines) {
        console.result(line);
    }
    console.result(QStringLiteral("%1 outputs and %2 scripts written%3")
                       .arg(writing.outputs.size())
                       .arg(writing.scripts.size())
                       .arg(!failures.isEmpty()   ? QStringLiteral(", %1 of them failed").arg(failures.size())
                            : !isVerified         ? QString()
                            : differences.empty() ? QStringLiteral(", and read back the same")
                                                  : QStringLiteral(", %1 of them differ").arg(differences.size())));
}

/// Whether a file is there as a whole. One that was cut off, or that lost its line ends, would empty the unit.
bool isWhole(const QString& path, const Configuration& configuration, Console& console)
{
    QFile file(path);
    const QByteArray text = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    const QByteArray lastScript = QByteArrayLiteral("Script[31].");
    const bool isCut = !text.contains("[Configuration]") || !text.contains("[Scripts]") || !text.contains(lastScript);
    if (isCut) {
        console.error(path + QStringLiteral(" doesn't name all 32 scripts: it was cut off, or made by hand"));
    }
    return !isCut && configuration.faults == 0;
}

/// Whether the command line makes sense, which costs no question to the unit.
ExitCode checkBefore(const QCommandLineParser& commandLine, const QString& path, const Configuration& configuration,
                     Console& console)
{
    if (!isWhole(path, configuration, console) && !commandLine.isSet(incompleteOption())) {
        console.error(QStringLiteral("nothing is written; --incomplete writes what is there, and empties the rest"));
        return ExitCode::BadInput;
    }
    if (!commandLine.isSet(backupOption())) {
        return ExitCode::Done;
    }
    const QString backup = commandLine.value(backupOption());
    if (backup.isEmpty() || QFileInfo(backup) == QFileInfo(path)) {
        console.error(QStringLiteral("the backup needs a file of its own"));
        return ExitCode::BadInput;
    }
    return mayWrite(backup, commandLine, console) ? ExitCode::Done : ExitCode::Refused;
}

ExitCode write(const QCommandLineParser& commandLine, const QStringList& arguments, Console& console)
{
    const auto configuration = loadConfiguration(arguments.at(0), console);
    if (configuration == nullptr) {
        return ExitCode::BadInput;
    }
    if (const ExitCode checked = checkBefore(commandLine, arguments.at(0), *configuration, console);
        checked != ExitCode::Done) {
        return checked;
    }
    UnitSession unit(commandLine, console);
    if (const ExitCode found = unit.open(); found != ExitCode::Done) {
        return found;
    }
    ExitCode exitCode = ExitCode::Done;
    if (commandLine.isSet(backupOption()) && !makeBackup(commandLine.value(backupOption()), unit, console, exitCode)) {
        return exitCode;
    }
    const Writing writing(configuration->model);
    const Outcome written = write(writing, unit);
    if (!written.isWhole) {
        for (const QString& line : written.lines) {
            console.error(line);
        }
        console.error(QStringLiteral("interrupted: %1 of %2 records were written")
                          .arg(unit.stepsDone() - written.lines.size())
                          .arg(writing.count()));
        return ExitCode::Interrupted;
    }
    const bool isVerified = commandLine.isSet(verifyOption());
    const Outcome verified = isVerified ? verify(writing, unit, console) : Outcome();
    tell(written.lines, verified.lines, writing, isVerified && verified.isWhole, unit, console);
    if (!verified.isWhole) {
        console.error(QStringLiteral("interrupted before it was verified"));
        return ExitCode::Interrupted;
    }
    return written.lines.isEmpty() && verified.lines.isEmpty() ? ExitCode::Done : ExitCode::WithErrors;
}

} // namespace

Command writeCommand()
{
    Command command;
    command.name = QStringLiteral("write");
    command.arguments = QStringLiteral("FILE.cfg");
    command.leastArguments = 1;
    command.mostArguments = 1;
    command.summary = QStringLiteral("Writes a configuration file into the unit");
    command.example = QStringLiteral("hubn-tool write site.cfg --backup before.cfg --verify");
    command.options = {backupOption(), verifyOption(), incompleteOption(), forceOption()};
    command.run = write;
    return command;
}
