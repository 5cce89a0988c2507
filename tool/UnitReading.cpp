#include "tool/UnitReading.h"

#include "link/protocol_HUBN_NX_Q.h"
#include "model/RelayInfo.h"
#include "texts/texts.h"
#include "tool/Configuration.h"
#include "tool/ConfigurationDifference.h"
#include "tool/Console.h"
#include "tool/UnitSession.h"
#include "tool/english.h"

#include <QEventLoop>
#include <QHash>

#include <algorithm>
#include <functional>

namespace
{

/// Readings of everything in which two in a row must agree.
constexpr int mostReadings = 6;

/// The same of a step of the search for terminals, whose answers come over the radio.
constexpr int mostReadingsOfTerminal = 20;

/// Failed steps that are told one by one.
constexpr int mostToldSteps = 10;

constexpr int leastOutputRecord = 3;  ///< address, number, state; scripts follow
constexpr int leastScriptRecord = 22; ///< number and script

QString noTwoAgree()
{
    return QStringLiteral(": no two answers agree");
}

QString searchForTerminals()
{
    return QStringLiteral("the search for terminals");
}

QString nameOfOutput(quint8 terminal, quint8 number)
{
    return terminal == 0 ? QStringLiteral("output %1 of the head unit").arg(number + 1)
                         : QStringLiteral("output %1 of terminal %2").arg(number + 1).arg(terminal);
}

QString nameOfScript(quint8 number)
{
    return QStringLiteral("script %1").arg(number + 1);
}

QString failureOf(const message& answer)
{
    const QString reason = QStringLiteral(": ") + UnitSession::reasonOf(answer);
    switch (answer.requestType()) {
    case protocol_HUBN_NX_Q::Read_Script:
        return nameOfScript(answer.number()) + reason;
    case protocol_HUBN_NX_Q::Read_Config:
        return nameOfOutput(answer.address(), answer.number()) + reason;
    default:
        return searchForTerminals() + reason;
    }
}

/// Records that were read several times: each counts when two in a row were the same.
class Confirmation
{
public:
    explicit Confirmation(int keySize) : bytesOfKey(keySize)
    {
    }

    void take(const QByteArrayList& records)
    {
        QHash<QByteArray, QByteArray> now;
        for (const QByteArray& record : records) {
            const QByteArray key = record.left(bytesOfKey);
            now.insert(key, record);
            if (!keys.contains(key)) {
                keys.append(key);
            }
            if (before.value(key) == record && !confirmed.contains(key)) {
                confirmed.insert(key, record);
            }
        }
        before = now;
    }

    QByteArrayList records() const
    {
        QByteArrayList list;
        for (const QByteArray& key : keys) {
            if (confirmed.contains(key)) {
                list.append(confirmed.value(key));
            }
        }
        return list;
    }

    QByteArrayList open() const
    {
        QByteArrayList list = keys;
        list.erase(
            std::remove_if(list.begin(), list.end(), [this](const QByteArray& key) { return confirmed.contains(key); }),
            list.end());
        return list;
    }

private:
    const int bytesOfKey;
    QByteArrayList keys; ///< in the order of the reading
    QHash<QByteArray, QByteArray> before;
    QHash<QByteArray, QByteArray> confirmed;
};

/// What a reading of all outputs and scripts gave.
struct Records
{
    QByteArrayList outputs;
    QByteArrayList scripts;
    QStringList failures;
};

/// Takes away records that are too short to be any; each is a failure.
void failTooShort(QByteArrayList& records, int leastSize, QStringList& failures,
                  const std::function<QString(const QByteArray&)>& name)
{
    for (int index = records.size() - 1; index >= 0; --index) {
        if (records.at(index).size() < leastSize) {
            failures.append(name(records.at(index)) + QStringLiteral(": too short an answer"));
            records.removeAt(index);
        }
    }
}

std::optional<Records> readRecords(UnitSession& unit)
{
    Records records;
    QEventLoop loop;
    QObject::connect(&unit.link(), &CoordinatorLink::stepFailed, &loop,
                     [&records](const message& answer) { records.failures.append(failureOf(answer)); });
    QObject::connect(&unit.link(), &CoordinatorLink::outputsRead, &loop,
                     [&records](const QByteArrayList& list) { records.outputs = list; });
    QObject::connect(&unit.link(), &CoordinatorLink::scriptsRead, &loop, [&records, &loop](const QByteArrayList& list) {
        records.scripts = list;
        loop.quit();
    });
    unit.link().readConfiguration();
    if (!unit.wait(loop)) {
        return {};
    }
    failTooShort(records.outputs, leastOutputRecord, records.failures,
                 [](const QByteArray& record) { return nameOfOutput(quint8(record.at(0)), quint8(record.at(1))); });
    failTooShort(records.scripts, leastScriptRecord, records.failures,
                 [](const QByteArray& record) { return nameOfScript(quint8(record.at(0))); });
    return records;
}

bool readTerminals(UnitSession& unit, UnitReading& reading)
{
    QEventLoop loop;
    QObject::connect(&unit.link(), &CoordinatorLink::stepFailed, &loop,
                     [&reading](const message& answer) { reading.failures.append(failureOf(answer)); });
    QObject::connect(&unit.link(), &CoordinatorLink::stepUnconfirmed, &loop,
                     [&reading] { reading.failures.append(searchForTerminals() + noTwoAgree()); });
    QObject::connect(&unit.link(), &CoordinatorLink::terminalsFound, &loop,
                     [&reading, &loop](const QByteArrayList& list) {
                         reading.terminals = list;
                         loop.quit();
                     });
    unit.beginProgress(texts::busySearchingTerminals());
    unit.link().searchTerminals(mostReadingsOfTerminal);
    return unit.wait(loop);
}

std::optional<Records> readUntilConfirmed(UnitSession& unit)
{
    Confirmation outputs(2);
    Confirmation scripts(1);
    Records result;
    for (int count = 0; count < mostReadings; ++count) {
        const std::optional<Records> records = readRecords(unit);
        if (!records) {
            return {};
        }
        outputs.take(records->outputs);
        scripts.take(records->scripts);
        result.failures = records->failures;
        if (records->outputs.isEmpty() && records->scripts.isEmpty()) {
            break; // nobody is there any more
        }
        if (count > 0 && result.failures.isEmpty() && outputs.open().isEmpty() && scripts.open().isEmpty()) {
            break;
        }
    }
    result.outputs = outputs.records();
    result.scripts = scripts.records();
    const QByteArrayList openOutputs = outputs.open();
    for (const QByteArray& key : openOutputs) {
        result.failures.append(nameOfOutput(quint8(key.at(0)), quint8(key.at(1))) + noTwoAgree());
    }
    const QByteArrayList openScripts = scripts.open();
    for (const QByteArray& key : openScripts) {
        result.failures.append(nameOfScript(quint8(key.at(0))) + noTwoAgree());
    }
    return result;
}

bool isUnused(const GroupRelayPtr& group)
{
    const QList<RelayInformationPtr>& outputs = group->outputs;
    return !group->connected && std::all_of(outputs.cbegin(), outputs.cend(), [](const RelayInformationPtr& output) {
        const bool startsOff = output->startState && output->startState->code == 0;
        return output->activatedScripts.isEmpty() && startsOff && !output->returnStartState;
    });
}

/// Takes away what the unit has for every address: terminals that it doesn't report, with outputs that nobody set.
void removeUnusedGroups(RelayInfo& model)
{
    const QList<GroupRelayPtr> groups = model.groups();
    for (const GroupRelayPtr& group : groups) {
        if (isUnused(group)) {
            model.removeGroup(group);
        }
    }
}

} // namespace

void UnitReading::fill(RelayInfo& model) const
{
    model.readTerminalRecords(terminals);
    model.readOutputRecords(outputs);
    removeUnusedGroups(model);
    model.readScriptRecords(scripts);
}

int UnitReading::terminalCount() const
{
    return int(std::count_if(terminals.cbegin(), terminals.cend(),
                             [](const QByteArray& record) { return !record.isEmpty(); }));
}

bool UnitReading::hasOutput(int terminal, int number) const
{
    return std::any_of(outputs.cbegin(), outputs.cend(), [terminal, number](const QByteArray& record) {
        return quint8(record.at(0)) == terminal && quint8(record.at(1)) == number;
    });
}

bool UnitReading::hasScript(int number) const
{
    return std::any_of(scripts.cbegin(), scripts.cend(),
                       [number](const QByteArray& record) { return quint8(record.at(0)) == number; });
}

QByteArrayList UnitReading::outputRecords() const
{
    Configuration configuration;
    configuration.model.readTerminalRecords(terminals);
    configuration.model.readOutputRecords(outputs);
    return configuration.model.makeOutputRecords();
}

QByteArrayList UnitReading::scriptRecords() const
{
    Configuration configuration;
    configuration.model.readScriptRecords(scripts);
    return configuration.model.makeScriptRecords();
}

std::optional<UnitReading> readUnit(UnitSession& unit, bool confirmed)
{
    UnitReading reading;
    if (!readTerminals(unit, reading)) {
        return {};
    }
    const std::optional<Records> records = confirmed ? readUntilConfirmed(unit) : readRecords(unit);
    if (!records) {
        return {};
    }
    reading.outputs = records->outputs;
    reading.scripts = records->scripts;
    reading.failures += records->failures;
    return reading;
}

void tellFailures(const UnitReading& reading, Console& console)
{
    const QStringList told = reading.failures.mid(0, mostToldSteps);
    for (const QString& failure : told) {
        console.error(failure);
    }
    if (const int untold = reading.failures.size() - told.size(); untold > 0) {
        console.error(english::counted(untold, QStringLiteral("more step")) + QStringLiteral(" failed"));
    }
}

QStringList takeUnread(RelayInfo& model, const UnitReading& reading)
{
    QStringList names;
    const QList<GroupRelayPtr> groups = model.groups();
    for (const GroupRelayPtr& group : groups) {
        const auto isUnread = [&](const RelayInformationPtr& output) {
            return !reading.hasOutput(group->address, output->number);
        };
        for (const RelayInformationPtr& output : std::as_const(group->outputs)) {
            if (isUnread(output)) {
                names.append(nameOfOutput(quint8(group->address), output->number));
            }
        }
        group->outputs.erase(std::remove_if(group->outputs.begin(), group->outputs.end(), isUnread),
                             group->outputs.end());
    }
    return names;
}

QStringList lostInAFile(const RelayInfo& read)
{
    // A file has no day 31 and no December.
    Configuration kept;
    kept.model.loadFileContents(read.fileContents());
    QStringList lost;
    const auto differences = configurationDifferences(read, kept.model, Names::Compared);
    for (const ConfigurationDifference& difference : differences) {
        lost.append(QStringLiteral("the file gives back another value: ") + inWords(difference));
    }
    return lost;
}

std::optional<SavedReading> saveReading(RelayInfo& read, const UnitReading& reading, const QString& path,
                                        Console& console)
{
    if (read.saveToFile(path) != RelayInfo::FileOk) {
        console.error(QStringLiteral("%1 can't be written").arg(path));
        return {};
    }
    SavedReading saved;
    const QList<GroupRelayPtr> groups = read.groups();
    for (const GroupRelayPtr& group : groups) {
        saved.terminals += int(group->address != 0 && !group->outputs.isEmpty());
        saved.outputs += group->outputs.size();
    }
    saved.untold = takeUnread(read, reading);
    if (!saved.untold.isEmpty()) {
        console.note(QStringLiteral("not told by the unit, so in the file as if nobody had set it: ") +
                     saved.untold.join(QLatin1String(", ")));
    }
    return saved;
}
