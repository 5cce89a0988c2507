// The model as records of the device and back.

#include "domain/bcd.h"
#include "model/RelayInfo.h"
#include "model/ScriptRules.h"
#include "model/firstOf.h"
#include "model/format.h"
#include "texts/texts.h"

#include <QtEndian>

namespace
{

constexpr int outputRecordSize = 3;
constexpr int scriptRecordSize = 22;
constexpr int terminalRecordSize = 7;

constexpr quint8 noScript = 255; ///< fills a place in the list of an output's scripts

QString unnamedOutput()
{
    return QStringLiteral("???");
}

quint8 byteAt(const QByteArray& record, int index)
{
    return static_cast<quint8>(record.at(index));
}

/// A flag of the script record: item `index` of a list stands at a bit of a byte.
struct Flag
{
    int index;
    int bit;
};

constexpr Flag channelFlags[] = {{0, 4}, {1, 5}, {2, 6}, {3, 7}};
constexpr Flag filterFlags[] = {
    {ScriptInfo::ByType, 3}, {ScriptInfo::ByAddress, 2}, {ScriptInfo::ByTime, 0}, {ScriptInfo::ByDate, 1}};
constexpr Flag dayFlags[] = {{0, 1}, {1, 2}, {2, 3}, {3, 4}, {4, 5}, {5, 6}, {6, 0}};

template <std::size_t N>
quint8 packFlags(const QList<bool>& items, const Flag (&flags)[N])
{
    int bits = 0;
    for (const Flag& flag : flags) {
        bits |= items.value(flag.index) ? 1 << flag.bit : 0;
    }
    return static_cast<quint8>(bits);
}

template <std::size_t N>
QList<bool> unpackFlags(quint8 bits, const Flag (&flags)[N])
{
    QList<bool> items;
    items.reserve(N);
    for (const Flag& flag : flags) {
        items.append((bits >> flag.bit & 1) != 0);
    }
    return items;
}

/// A packed decimal number of the script record: item `index` of a list at a byte, under a mask.
struct Decimal
{
    int index;
    int byte;
    quint8 mask;
};

constexpr Decimal timeDecimals[] = {{0, 7, 127}, {1, 8, 63}, {2, 11, 127}, {3, 12, 63}};
constexpr Decimal dateDecimals[] = {{0, 9, 63}, {1, 10, 31}, {2, 13, 63}, {3, 14, 31}};

template <std::size_t N>
void packDecimals(QByteArray& record, const QList<int>& items, const Decimal (&decimals)[N])
{
    for (const Decimal& decimal : decimals) {
        const quint8 packed = toBcd(static_cast<quint8>(items.value(decimal.index)));
        record[decimal.byte] = static_cast<char>(packed & decimal.mask);
    }
}

template <std::size_t N>
QList<int> unpackDecimals(const QByteArray& record, const Decimal (&decimals)[N], int leastValue)
{
    QList<int> items;
    items.reserve(N);
    for (const Decimal& decimal : decimals) {
        items.append(qMax(leastValue, int(fromBcd(byteAt(record, decimal.byte) & decimal.mask))));
    }
    return items;
}

quint32 packAddresses(const QList<bool>& addressFilter)
{
    quint32 mask = 0;
    for (int i = 0; i < qMin(32, addressFilter.size()); ++i) {
        mask |= addressFilter.at(i) ? quint32(1) << i : 0;
    }
    return mask;
}

QList<bool> unpackAddresses(quint32 mask)
{
    QList<bool> items;
    items.reserve(32);
    for (int i = 0; i < 32; ++i) {
        items.append((mask >> i & 1) != 0);
    }
    return items;
}

quint8 codeOf(const ParamItemPtr& row)
{
    return row ? row->code : 0;
}

QByteArray makeOutputRecord(const GroupRelay& group, const RelayInformation& output)
{
    const int flags = (codeOf(output.startState) & 1) | (output.returnStartState ? 2 : 0);
    QByteArray record;
    record.append(static_cast<char>(group.address & 0xFF));
    record.append(static_cast<char>(output.number & 7));
    record.append(static_cast<char>(flags));
    for (const ScriptInfoPtr& script : output.activatedScripts) {
        record.append(static_cast<char>(script->number));
    }
    return record;
}

QByteArray makeScriptRecord(const ScriptInfo& script)
{
    const TerminalType filter = script.terminalFilter ? *script.terminalFilter : TerminalType();

    QByteArray record(scriptRecordSize, '\0');
    record[0] = static_cast<char>(script.number & 63);
    record[1] = static_cast<char>(codeOf(script.mode) & 7);
    record[2] = static_cast<char>(codeOf(script.duration) << 3 | (codeOf(script.delay) & 7));
    record[3] = static_cast<char>(scriptRules::stateCode(script.stateChannel));
    record[4] = static_cast<char>(maskOf(script.stateTerminal));
    record[5] = static_cast<char>(packFlags(script.numberChannels, channelFlags) |
                                  packFlags(script.activateFilter, filterFlags));
    record[6] = static_cast<char>(packFlags(script.daysOfWeek, dayFlags));
    packDecimals(record, script.timeFilter, timeDecimals);
    packDecimals(record, script.dateFilter, dateDecimals);
    record[15] = static_cast<char>(filter.terminalClass << 4 | (filter.version & 15));
    record[16] = static_cast<char>(filter.type);
    record[17] = static_cast<char>(filter.characteristic);
    qToLittleEndian(packAddresses(script.addressFilter), record.data() + 18);
    return record;
}

/// The length of a terminal's record, 7 and more, tells how many outputs it has.
int outputCount(int recordLength)
{
    return qMin(recordLength / 4, 4);
}

ConnectedTerminalPtr readTerminalRecord(const QByteArray& record, const TerminalTypes& types)
{
    auto terminal = ConnectedTerminalPtr::create();
    terminal->address = byteAt(record, 0);
    terminal->terminalClass = byteAt(record, 1) >> 4;
    terminal->version = byteAt(record, 1) & 15;
    terminal->type = byteAt(record, 2);
    terminal->characteristic = byteAt(record, 3);
    terminal->label = modelCode(terminal->terminalClass, terminal->version, terminal->type, terminal->characteristic);
    for (int i = 0; i < outputCount(record.size()); ++i) {
        terminal->outputs.append(texts::defaultOutputName());
    }
    if (const auto type = firstOf(types, [&](const TerminalTypePtr& each) { return sameModel(*each, *terminal); })) {
        terminal->label = type->name;
        for (int i = 0; i < qMin(terminal->outputs.size(), type->outputs.size()); ++i) {
            terminal->outputs[i] = type->outputs.at(i);
        }
    }
    return terminal;
}

} // namespace

QByteArrayList RelayInfo::makeOutputRecords() const
{
    QByteArrayList records;
    for (const GroupRelayPtr& group : groupList) {
        for (const RelayInformationPtr& output : std::as_const(group->outputs)) {
            records.append(makeOutputRecord(*group, *output));
        }
    }
    return records;
}

QByteArrayList RelayInfo::makeScriptRecords() const
{
    QByteArrayList records;
    records.reserve(scriptList.size());
    for (const ScriptInfoPtr& script : scriptList) {
        records.append(makeScriptRecord(*script));
    }
    return records;
}

void RelayInfo::readTerminalRecords(const QByteArrayList& records)
{
    connectedList.clear();
    for (const QByteArray& record : records) {
        if (record.size() >= terminalRecordSize) {
            connectedList.append(readTerminalRecord(record, types));
        }
    }
    resetGroups(false);
    sortGroups();
}

void RelayInfo::readOutputRecords(const QByteArrayList& records)
{
    resetGroups(false);
    for (const QByteArray& record : records) {
        if (record.size() < outputRecordSize) {
            continue;
        }
        const auto address = static_cast<quint16>(static_cast<qint8>(record.at(0)));
        const RelayInformationPtr output = demandOutput(address, byteAt(record, 1) & 7);
        if (output->name == unnamedOutput()) {
            output->name = texts::defaultOutputName();
        }
        output->startState = outputStateAt(byteAt(record, 2) & 1);
        output->returnStartState = (byteAt(record, 2) & 2) != 0;
        output->activatedScripts.clear();
        for (int i = outputRecordSize; i < record.size(); ++i) {
            const ScriptInfoPtr script = findScript(byteAt(record, i));
            if (script && byteAt(record, i) != noScript) {
                output->activatedScripts.append(script);
            }
        }
    }
    sortGroups();
}

/// The output of a record, which comes into being with its group and with all lower numbers that are missing.
RelayInformationPtr RelayInfo::demandOutput(quint16 address, quint8 number)
{
    GroupRelayPtr group = findGroup(address);
    if (!group) {
        group = GroupRelayPtr::create();
        group->address = address;
        group->name = texts::defaultTerminalName();
        groupList.append(group);
    }
    if (!findOutput(address, number)) {
        for (quint8 missing = 0; missing < number; ++missing) {
            if (!findOutput(address, missing)) {
                group->outputs.append(makeOutput(missing, unnamedOutput()));
            }
        }
        group->outputs.append(makeOutput(number, texts::defaultOutputName()));
    }
    return findOutput(address, number);
}

void RelayInfo::readScriptRecords(const QByteArrayList& records)
{
    resetScripts();
    for (const QByteArray& record : records) {
        if (record.size() >= scriptRecordSize) {
            readScriptRecord(*scriptList.at(byteAt(record, 0) & 31), record);
        }
    }
}

void RelayInfo::readScriptRecord(ScriptInfo& script, const QByteArray& record) const
{
    const auto rowOr = [](const ParamItemPtr& row, const ParamItemPtr& other) { return row ? row : other; };
    script.mode = rowOr(findByCode(tables.modes, byteAt(record, 1) & 7), tables.modes.first());
    script.delay = rowOr(findByCode(tables.delays, byteAt(record, 2) & 7), tables.delays.first());
    script.duration = rowOr(findByCode(tables.durations, byteAt(record, 2) >> 3), tables.durations.first());

    script.activateFilter = unpackFlags(byteAt(record, 5), filterFlags);
    script.numberChannels = unpackFlags(byteAt(record, 5), channelFlags);
    scriptRules::ensureChannel(script.numberChannels);
    script.daysOfWeek = unpackFlags(byteAt(record, 6), dayFlags);
    script.timeFilter = unpackDecimals(record, timeDecimals, 0);
    script.dateFilter = unpackDecimals(record, dateDecimals, 1);
    script.addressFilter = unpackAddresses(qFromLittleEndian<quint32>(record.constData() + 18));

    TerminalType filter;
    filter.terminalClass = byteAt(record, 15) >> 4;
    filter.version = byteAt(record, 15) & 15;
    filter.type = byteAt(record, 16);
    filter.characteristic = byteAt(record, 17);
    setTypeFilter(script, filter);

    script.stateChannel =
        stateOfRecord(byteAt(record, 3), script.activateFilter.at(ScriptInfo::ByType), filter.terminalClass);
    scriptRules::setTerminalStates(script, rowsOfMask(tables.terminalStates, byteAt(record, 4)));
}

/// The channel state that a code stands for. The families share their codes, so with a filter by type its class tells
/// them apart; without one, or with a class that no terminal has, the first row from the top is as good as any.
ParamItemPtr RelayInfo::stateOfRecord(quint8 code, bool filterByType, quint8 terminalClass) const
{
    const ParamItemPtr row = filterByType && terminalClass <= AnalogClass
                                 ? scriptRules::findStateOfClass(tables.stateChannels, terminalClass, code)
                                 : scriptRules::findStateOfCode(tables.stateChannels, code);
    return row ? row : scriptRules::makeOtherState(code);
}

/// Points the script at the row of the catalogue with these numbers; only if there is none, at a record of its own.
void RelayInfo::setTypeFilter(ScriptInfo& script, const TerminalType& wanted) const
{
    const TerminalTypePtr row = firstOf(types, [&](const TerminalTypePtr& type) { return sameModel(*type, wanted); });
    script.terminalFilter = row ? row : TerminalTypePtr::create(wanted);
}
