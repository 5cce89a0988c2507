#include "campaign/ToolOperations.h"

#include "campaign/campaignUnit.h"

#include <QCoreApplication>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QTimer>

#include <csignal>

namespace
{

QString readFile()
{
    return QStringLiteral("read.cfg");
}

QString writtenFile()
{
    return QStringLiteral("written.cfg");
}

QString logFile()
{
    return QStringLiteral("log.json");
}

QString imageFile()
{
    return QStringLiteral("new.crypt");
}

Outcome silentlyWrong(const QString& what)
{
    return {Outcome::Wrong, what};
}

QString allOf(const ToolRun& tool)
{
    return (tool.errors + tool.results).trimmed().replace(QLatin1Char('\n'), QLatin1String("; "));
}

/// An error is on the standard error; of a write its result names what failed.
bool namesAnError(const ToolRun& tool)
{
    return tool.errors.contains(QCoreApplication::applicationName() + QStringLiteral(": ")) ||
           tool.results.contains(QStringLiteral(" of them failed")) ||
           tool.results.contains(QStringLiteral(" of them differ"));
}

} // namespace

// A command and its unit.

UnitState ToolOperation::before() const
{
    return campaignUnit();
}

void ToolOperation::prepare() const
{
}

QVector<UnitRequest> ToolOperation::learn()
{
    const std::unique_ptr<ToolRun> tool = runOnce({}, 1, true);
    return tool->exitCode == ExitCode::Done && judge(*tool).verdict == Outcome::Right ? unit->requests()
                                                                                      : QVector<UnitRequest>();
}

Outcome ToolOperation::run(const FaultCase& faultCase)
{
    // On a busy machine the search may find nothing; that is no part of the case, unless it is to fail there.
    constexpr int searches = 20;
    std::unique_ptr<ToolRun> tool;
    for (int count = 0; count < searches; ++count) {
        tool = runOnce({faultCase.fault}, faultCase.seed, faultCase.repeatsLostLogBlock());
        const bool isFound = tool->exitCode != ExitCode::NothingFound && tool->exitCode != ExitCode::Refused;
        if (isFound || faultCase.step.isOfSearch()) {
            break;
        }
    }
    const Outcome outcome = ofMetFault(judge(*tool), faultCase, unit->requests());
    if (outcome.verdict != Outcome::Right) {
        unit.reset(); // it may still be without power
    }
    return outcome;
}

std::unique_ptr<ToolRun> ToolOperation::runOnce(const QVector<UnitFault>& faults, quint32 seed,
                                                bool repeatsLostLogBlock)
{
    if (unit == nullptr) {
        unit = std::make_unique<UnitSimulator>();
    }
    UnitState state = before();
    state.repeatsLostLogBlock = repeatsLostLogBlock;
    unit->setState(state);
    unit->clearRequests();
    prepare();
    unit->setFaults(faults, seed);
    QTimer overdue;
    overdue.setSingleShot(true);
    // The command takes it for Ctrl+C.
    QObject::connect(&overdue, &QTimer::timeout, &overdue, [] { std::raise(SIGINT); });
    overdue.start(stuckAfter);
    auto tool = std::make_unique<ToolRun>(arguments() + QStringList{QStringLiteral("--port"), unit->portName()});
    overdue.stop();
    unit->setFaults({});
    unit->plugIn();
    return tool;
}

Outcome ToolOperation::judge(const ToolRun& tool)
{
    switch (tool.exitCode) {
    case ExitCode::Done:
        return judgeDone();
    case ExitCode::Interrupted:
        return {Outcome::Stuck, allOf(tool)};
    default:
        break;
    }
    if (!namesAnError(tool)) {
        return silentlyWrong(QStringLiteral("exit code %1 without a word: ").arg(int(tool.exitCode)) + allOf(tool));
    }
    const Outcome outcome = judgeError();
    return {outcome.verdict, outcome.what + allOf(tool)};
}

Outcome ToolOperation::judgeError() const
{
    return {Outcome::Counted, {}};
}

// The commands.

QStringList ToolRead::arguments() const
{
    return {QStringLiteral("read"), readFile()};
}

void ToolRead::prepare() const
{
    QFile::remove(readFile());
}

Outcome ToolRead::judgeDone()
{
    const QByteArray file = contentOf(readFile());
    if (trueFile.isEmpty() && fileHolds(readFile(), campaignUnit())) {
        trueFile = file;
    }
    return file == trueFile && !file.isEmpty() ? Outcome() : silentlyWrong(QStringLiteral("another file"));
}

Outcome ToolRead::judgeError() const
{
    return QFile::exists(readFile()) ? silentlyWrong(QStringLiteral("a file of a reading that failed: "))
                                     : ToolOperation::judgeError();
}

QStringList ToolWrite::arguments() const
{
    return {QStringLiteral("write"), writtenFile(), QStringLiteral("--verify")};
}

UnitState ToolWrite::before() const
{
    return blankCampaignUnit();
}

void ToolWrite::prepare() const
{
    if (!QFile::exists(writtenFile())) {
        saveConfiguration(campaignUnit(), writtenFile());
    }
}

Outcome ToolWrite::judgeDone()
{
    const UnitState after = unit->state();
    return after.outputs == campaignUnit().outputs && after.scripts == campaignUnit().scripts
               ? Outcome()
               : silentlyWrong(QStringLiteral("the unit holds something else"));
}

QStringList ToolLog::arguments() const
{
    return {QStringLiteral("log"), logFile()};
}

void ToolLog::prepare() const
{
    QFile::remove(logFile());
}

Outcome ToolLog::judgeDone()
{
    const QByteArray file = contentOf(logFile());
    const bool isFirst = trueFile.isEmpty();
    if (isFirst && QJsonDocument::fromJson(file).array().size() >= campaignUnit().log.size()) {
        trueFile = file;
    }
    return file == trueFile && !file.isEmpty() ? Outcome() : silentlyWrong(QStringLiteral("another file"));
}

QStringList ToolFirmware::arguments() const
{
    return {QStringLiteral("firmware"), imageFile(), QStringLiteral("--yes")};
}

void ToolFirmware::prepare() const
{
    QFile file(imageFile());
    if (file.open(QIODevice::WriteOnly)) {
        file.write(campaignImage());
    }
}

Outcome ToolFirmware::judgeDone()
{
    const UnitState after = unit->state();
    return after.firmwareComplete && after.firmware == campaignImage()
               ? Outcome()
               : silentlyWrong(QStringLiteral("another image in the unit"));
}
