#include "tool/Configuration.h"
#include "tool/Console.h"
#include "tool/OutputFile.h"
#include "tool/UnitReading.h"
#include "tool/UnitSession.h"
#include "tool/commandList.h"

#include <QCommandLineParser>
#include <QEventLoop>
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

/// What was refused or lost on the way; nothing if interrupted.
std::optional<QStringList> write(const Writing& writing, UnitSession& unit)
{
    QStringList failures;
    QEventLoop loop;
    QObject::connect(&unit.link(), &CoordinatorLink::stepFailed, &loop, [&](const message& answer) {
        failures.append(writing.names.value(unit.stepsDone()) + QStringLiteral(": ") + UnitSession::reasonOf(answer));
    });
    QObject::connect(&unit.link(), &CoordinatorLink::configurationWritten, &loop, &QEventLoop::quit);
    unit.link().writeConfiguration(writing.outputs, writing.scripts);
    return unit.wait(loop) ? std::make_optional(failures) : std::nullopt;
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

/// What the unit holds otherwise than it was written; nothing if interrupted.
std::optional<QStringList> verify(const Writing& writing, UnitSession& unit)
{
    const std::optional<UnitReading> reading = readUnit(unit, false);
    if (!reading) {
        return {};
    }
    QStringList differences;
    compare(writing.outputs, reading->outputRecords(), 2, writing.names.mid(0, writing.outputs.size()), differences);
    compare(writing.scripts, reading->scriptRecords(), 1, writing.names.mid(writing.outputs.size()), differences);
    return differences;
}

bool makeBackup(const QString& path, UnitSession& unit, Console& console, ExitCode& exitCode)
{
    const std::optional<UnitReading> reading = readUnit(unit, false);
    if (!reading) {
        console.error(QStringLiteral("interrupted; nothing was written"));
        exitCode = ExitCode::Interrupted;
        return false;
    }
    for (const QString& failure : reading->failures) {
        console.error(failure);
    }
    const auto lost = reading->failures.isEmpty() ? saveReading(*reading, path, console) : std::nullopt;
    if (!lost) {
        console.error(QStringLiteral("without a whole backup nothing is written"));
        exitCode = ExitCode::Refused;
        return false;
    }
    for (const QString& line : *lost) {
        console.error(line);
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

ExitCode write(const QCommandLineParser& commandLine, const QStringList& arguments, Console& console)
{
    const auto configuration = loadConfiguration(arguments.at(0), console);
    if (configuration == nullptr) {
        return ExitCode::BadInput;
    }
    if (configuration->model.errorCount() != 0 && !commandLine.isSet(forceOption())) {
        console.error(QStringLiteral("nothing is written; --force writes the rest"));
        return ExitCode::BadInput;
    }
    const QString backup = commandLine.value(backupOption());
    if (!backup.isEmpty() && !mayWrite(backup, commandLine, console)) {
        return ExitCode::Refused;
    }
    UnitSession unit(commandLine, console);
    if (const ExitCode found = unit.open(); found != ExitCode::Done) {
        return found;
    }
    ExitCode exitCode = ExitCode::Done;
    if (!backup.isEmpty() && !makeBackup(backup, unit, console, exitCode)) {
        return exitCode;
    }
    const Writing writing(configuration->model);
    const std::optional<QStringList> failures = write(writing, unit);
    if (!failures) {
        console.error(
            QStringLiteral("interrupted: %1 of %2 records were written").arg(unit.stepsDone()).arg(writing.count()));
        return ExitCode::Interrupted;
    }
    QStringList differences;
    const bool isVerified = commandLine.isSet(verifyOption());
    if (isVerified) {
        const std::optional<QStringList> found = verify(writing, unit);
        if (!found) {
            console.error(QStringLiteral("interrupted: all was written, but not verified"));
            return ExitCode::Interrupted;
        }
        differences = *found;
    }
    tell(*failures, differences, writing, isVerified, unit, console);
    return failures->isEmpty() && differences.isEmpty() ? ExitCode::Done : ExitCode::WithErrors;
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
    command.options = {backupOption(), verifyOption(), forceOption()};
    command.run = write;
    return command;
}
