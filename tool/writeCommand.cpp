#include "tool/Configuration.h"
#include "tool/Console.h"
#include "tool/OutputFile.h"
#include "tool/UnitReading.h"
#include "tool/UnitSession.h"
#include "tool/Writing.h"
#include "tool/commandList.h"

#include <QCommandLineParser>
#include <QEventLoop>
#include <QFile>
#include <QFileInfo>
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

/// What came of a writing.
struct Outcome
{
    QStringList failures;
    bool isWhole = true; ///< not interrupted
};

/// What came of a reading back.
struct Verification
{
    QVector<Writing::Differences> records; ///< those that differ
    bool isWhole = true;                   ///< not interrupted
};

Outcome write(const Writing& writing, UnitSession& unit)
{
    Outcome outcome;
    QEventLoop loop;
    QObject::connect(&unit.link(), &CoordinatorLink::stepFailed, &loop, [&](const message& answer) {
        outcome.failures.append(writing.nameOf(unit.stepsDone()) + QStringLiteral(": ") +
                                UnitSession::reasonOf(answer));
    });
    QObject::connect(&unit.link(), &CoordinatorLink::configurationWritten, &loop, &QEventLoop::quit);
    unit.link().writeConfiguration(writing.outputs(), writing.scripts());
    outcome.isWhole = unit.wait(loop);
    return outcome;
}

/// What the unit holds otherwise than it was written.
Verification verify(const Writing& writing, UnitSession& unit, Console& console)
{
    const std::optional<UnitReading> reading = readUnit(unit, false);
    if (!reading) {
        return {{}, false};
    }
    tellFailures(*reading, console);
    const QStringList unasked = writing.unasked();
    if (!unasked.isEmpty()) {
        console.note(QStringLiteral("not told by the unit, so not verified: ") + unasked.join(QLatin1String(", ")));
    }
    return {writing.differencesFrom(*reading), true};
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
    Configuration configuration;
    reading->fill(configuration.model);
    const QStringList lost = lostInAFile(configuration.model);
    for (const QString& line : lost) {
        console.error(line);
    }
    if (!reading->failures.isEmpty() || !lost.isEmpty() || !saveReading(configuration.model, *reading, path, console)) {
        console.error(QStringLiteral("without a whole backup nothing is written"));
        exitCode = ExitCode::Refused;
        return false;
    }
    console.noteSoFar({{QStringLiteral("backup"), path}});
    console.note(QStringLiteral("%1: what the unit held").arg(path));
    return true;
}

QString howItEnded(const QStringList& failures, const Verification* verification)
{
    if (!failures.isEmpty()) {
        return QStringLiteral(", %1 of them failed").arg(failures.size());
    }
    if (verification == nullptr) {
        return {};
    }
    return verification->records.isEmpty() ? QStringLiteral(", and read back the same")
                                           : QStringLiteral(", %1 of them differ").arg(verification->records.size());
}

/// Without a verification nothing was read back.
void tell(const QStringList& failures, const Verification* verification, const Writing& writing,
          const UnitSession& unit, Console& console)
{
    QVector<ConfigurationDifference> differences;
    if (verification != nullptr) {
        for (const Writing::Differences& ofRecord : verification->records) {
            differences += ofRecord;
        }
    }
    if (console.isJson()) {
        QJsonObject object = unit.identity();
        object.insert(QStringLiteral("records"), writing.count());
        object.insert(QStringLiteral("errors"), QJsonArray::fromStringList(failures));
        if (verification != nullptr) {
            object.insert(QStringLiteral("differences"), jsonOf(differences));
        }
        console.result(QJsonDocument(object));
        return;
    }
    for (const QString& line : failures) {
        console.result(line);
    }
    for (const ConfigurationDifference& difference : qAsConst(differences)) {
        console.result(inWords(difference));
    }
    console.result(QStringLiteral("%1 outputs and %2 scripts written")
                       .arg(writing.outputs().size())
                       .arg(writing.scripts().size()) +
                   howItEnded(failures, verification));
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
        for (const QString& line : written.failures) {
            console.error(line);
        }
        const int count = unit.stepsDone() - written.failures.size();
        console.noteSoFar({{QStringLiteral("records"), writing.count()}, {QStringLiteral("written"), count}});
        console.error(QStringLiteral("interrupted: %1 of %2 records were written").arg(count).arg(writing.count()));
        return ExitCode::Interrupted;
    }
    const bool isVerified = commandLine.isSet(verifyOption());
    const Verification verified = isVerified ? verify(writing, unit, console) : Verification();
    tell(written.failures, isVerified && verified.isWhole ? &verified : nullptr, writing, unit, console);
    if (!verified.isWhole) {
        console.error(QStringLiteral("interrupted before it was verified"));
        return ExitCode::Interrupted;
    }
    return written.failures.isEmpty() && verified.records.isEmpty() ? ExitCode::Done : ExitCode::WithErrors;
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
