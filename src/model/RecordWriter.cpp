#include "model/RecordWriter.h"

#include "domain/bcd.h"
#include "model/ScriptRules.h"
#include "model/recordLayout.h"
#include "model/tables.h"

#include <QtEndian>

using namespace recordLayout;

namespace
{

quint8 codeOf(const ParamItemPtr& row)
{
    return row ? row->code : 0;
}

QByteArray outputRecord(const GroupRelay& group, const RelayInformation& output)
{
    QByteArray record(outputLeastSize, '\0');
    record[outputAddress] = char(group.address);
    record[outputNumber] = char(output.number & 7);
    record[outputFlags] =
        char((codeOf(output.startState) & startStateFlag) | (output.returnStartState ? returnFlag : 0));
    for (const ScriptInfoPtr& script : output.activatedScripts) {
        record.append(char(script->number));
    }
    return record;
}

template <std::size_t N>
int packFlags(const QList<bool>& items, const Flag (&flags)[N])
{
    int bits = 0;
    for (const Flag& flag : flags) {
        bits |= items.value(flag.item) ? 1 << flag.bit : 0;
    }
    return bits;
}

template <std::size_t N>
void packDecimals(QByteArray& record, const QList<int>& items, const Decimal (&decimals)[N])
{
    for (const Decimal& decimal : decimals) {
        const quint8 packed = toBcd(quint8(items.value(decimal.item)));
        record[decimal.byte] = char(packed & decimal.mask);
    }
}

quint32 packAddresses(const QList<bool>& addressFilter)
{
    quint32 mask = 0;
    for (int i = 0; i < qMin(32, addressFilter.size()); ++i) {
        mask |= addressFilter.at(i) ? quint32(1) << i : 0;
    }
    return mask;
}

void packModel(QByteArray& record, int at, const TerminalIdentity& model)
{
    record[at] = char(model.terminalClass << 4 | (model.version & 15));
    record[at + 1] = char(model.type);
    record[at + 2] = char(model.characteristic);
}

QByteArray scriptRecord(const ScriptInfo& script)
{
    QByteArray record(scriptSize, '\0');
    record[scriptNumber] = char(script.number & 63);
    record[scriptMode] = char(codeOf(script.mode) & 7);
    record[scriptDuration] = char(codeOf(script.duration) << 3 | (codeOf(script.delay) & 7));
    record[scriptState] = char(scriptRules::stateCode(script.stateChannel));
    record[scriptTerminalStates] = char(maskOf(script.stateTerminal));
    record[scriptChannels] =
        char(packFlags(script.numberChannels, channelFlags) | packFlags(script.activateFilter, filterFlags));
    record[scriptDays] = char(packFlags(script.daysOfWeek, dayFlags));
    packDecimals(record, script.timeFilter, timeDecimals);
    packDecimals(record, script.dateFilter, dateDecimals);
    packModel(record, scriptTypeFilter, script.terminalFilter ? *script.terminalFilter : TerminalIdentity());
    qToLittleEndian(packAddresses(script.addressFilter), record.data() + scriptAddresses);
    return record;
}

} // namespace

QByteArrayList outputRecords(const QList<GroupRelayPtr>& groups)
{
    QByteArrayList records;
    for (const GroupRelayPtr& group : groups) {
        for (const RelayInformationPtr& output : std::as_const(group->outputs)) {
            records.append(outputRecord(*group, *output));
        }
    }
    return records;
}

QByteArrayList scriptRecords(const QList<ScriptInfoPtr>& scripts)
{
    QByteArrayList records;
    records.reserve(scripts.size());
    for (const ScriptInfoPtr& script : scripts) {
        records.append(scriptRecord(*script));
    }
    return records;
}
