#include "tool/Writing.h"

#include "model/RelayInfo.h"
#include "tool/UnitReading.h"

#include <QHash>

namespace
{

constexpr int keyOfOutput = 2; ///< bytes: terminal, number
constexpr int keyOfScript = 1; ///< its number

QHash<QByteArray, QByteArray> byKey(const QByteArrayList& records, int keySize)
{
    QHash<QByteArray, QByteArray> found;
    for (const QByteArray& record : records) {
        found.insert(record.left(keySize), record);
    }
    return found;
}

/// A model with one output, and with the names that the engineer knows.
void fill(RelayInfo& model, const QByteArray& record, const GroupRelay& terminal, const RelayInformation& output)
{
    model.readOutputRecords({record});
    const quint16 address = quint8(record.at(0));
    if (const GroupRelayPtr group = model.findGroup(address)) {
        group->name = terminal.name;
    }
    if (const RelayInformationPtr read = model.findOutput(address, quint8(record.at(1)))) {
        read->name = output.name;
    }
}

void fill(RelayInfo& model, const QByteArray& record, const ScriptInfo& script)
{
    model.readScriptRecords({record});
    if (const ScriptInfoPtr read = model.findScript(quint8(record.at(0)))) {
        read->name = script.name;
    }
}

} // namespace

Writing::Writing(const RelayInfo& model)
    : outputRecords(model.makeOutputRecords()), scriptRecords(model.makeScriptRecords()),
      writtenScripts(model.scripts())
{
    const QList<GroupRelayPtr> groups = model.groups();
    for (const GroupRelayPtr& group : groups) {
        for (const RelayInformationPtr& output : std::as_const(group->outputs)) {
            writtenOutputs.append({group, output});
        }
    }
}

int Writing::count() const
{
    return outputRecords.size() + scriptRecords.size();
}

QString Writing::nameOf(int index) const
{
    if (index < writtenOutputs.size()) {
        const Output& written = writtenOutputs.at(index);
        const QString terminal =
            written.terminal->address == 0
                ? QStringLiteral("the head unit")
                : QStringLiteral("terminal %1 '%2'").arg(written.terminal->address).arg(written.terminal->name);
        return QStringLiteral("output %1 '%2' of %3")
            .arg(QString::number(written.output->number + 1), written.output->name, terminal);
    }
    const ScriptInfoPtr script = writtenScripts.value(index - writtenOutputs.size());
    return script ? QStringLiteral("script %1 '%2'").arg(QString::number(script->number + 1), script->name) : QString();
}

bool Writing::isAsked(const QByteArray& outputRecord)
{
    return outputRecord.at(0) == 0 || quint8(outputRecord.at(1)) < 2;
}

QStringList Writing::unasked() const
{
    QStringList names;
    for (int index = 0; index < outputRecords.size(); ++index) {
        if (!isAsked(outputRecords.at(index))) {
            names.append(nameOf(index));
        }
    }
    return names;
}

QVector<Writing::Differences> Writing::differencesFrom(const UnitReading& reading) const
{
    QVector<Differences> found;
    const QHash<QByteArray, QByteArray> heldOutputs = byKey(reading.outputRecords(), keyOfOutput);
    for (int index = 0; index < outputRecords.size(); ++index) {
        const QByteArray& record = outputRecords.at(index);
        // What wasn't read is in those records too, as if nobody had set it.
        const bool isRead = reading.hasOutput(quint8(record.at(0)), quint8(record.at(1)));
        const QByteArray held = isRead ? heldOutputs.value(record.left(keyOfOutput)) : QByteArray();
        if (held != record && isAsked(record)) {
            found.append(compareOutput(index, held));
        }
    }
    const QHash<QByteArray, QByteArray> heldScripts = byKey(reading.scriptRecords(), keyOfScript);
    for (int index = 0; index < scriptRecords.size(); ++index) {
        const QByteArray& record = scriptRecords.at(index);
        const bool isRead = reading.hasScript(quint8(record.at(0)));
        const QByteArray held = isRead ? heldScripts.value(record.left(keyOfScript)) : QByteArray();
        if (held != record) {
            found.append(compareScript(index, held));
        }
    }
    return found;
}

Writing::Differences Writing::compareOutput(int index, const QByteArray& held) const
{
    const Output& written = writtenOutputs.at(index);
    if (held.isEmpty()) {
        return {{nameOf(index), QStringLiteral("could not be read back"), {}, {}}};
    }
    RelayInfo before;
    RelayInfo after;
    fill(before, outputRecords.at(index), *written.terminal, *written.output);
    fill(after, held, *written.terminal, *written.output);
    return orUnnamed(configurationDifferences(before, after, Names::Ignored), index);
}

Writing::Differences Writing::compareScript(int index, const QByteArray& held) const
{
    const ScriptInfo& written = *writtenScripts.at(index);
    const int indexOfAll = outputRecords.size() + index;
    if (held.isEmpty()) {
        return {{nameOf(indexOfAll), QStringLiteral("could not be read back"), {}, {}}};
    }
    RelayInfo before;
    RelayInfo after;
    fill(before, scriptRecords.at(index), written);
    fill(after, held, written);
    return orUnnamed(configurationDifferences(before, after, Names::Ignored), indexOfAll);
}

/// Bytes may differ in what no engineer has a word for.
Writing::Differences Writing::orUnnamed(Differences differences, int index) const
{
    if (differences.isEmpty()) {
        differences.append({nameOf(index), QStringLiteral("the unit holds something else"), {}, {}});
    }
    return differences;
}
