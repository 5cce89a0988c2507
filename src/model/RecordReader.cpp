#include "model/RecordReader.h"

#include "domain/bcd.h"
#include "domain/byteAt.h"
#include "model/ScriptRules.h"
#include "model/firstOf.h"
#include "model/format.h"
#include "model/recordLayout.h"
#include "texts/texts.h"

#include <QtEndian>

using namespace recordLayout;

namespace
{

constexpr quint8 noScript = 255; ///< fills a place in the list of an output's scripts

/// The name of an output that no record has told of yet.
QString placeholderName()
{
    return QStringLiteral("???");
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

QList<bool> unpackAddresses(quint32 mask)
{
    QList<bool> items;
    items.reserve(32);
    for (int i = 0; i < 32; ++i) {
        items.append((mask >> i & 1) != 0);
    }
    return items;
}

TerminalIdentity unpackModel(const QByteArray& record, int at)
{
    TerminalIdentity model;
    model.terminalClass = byteAt(record, at) >> 4;
    model.version = byteAt(record, at) & 15;
    model.type = byteAt(record, at + 1);
    model.characteristic = byteAt(record, at + 2);
    return model;
}

int outputCount(int recordLength)
{
    return qMin(recordLength / 4, 4);
}

QList<ScriptInfoPtr> scriptsOf(const QByteArray& outputRecord, const QList<ScriptInfoPtr>& scripts)
{
    QList<ScriptInfoPtr> found;
    for (int i = outputScripts; i < outputRecord.size(); ++i) {
        const ScriptInfoPtr script = firstOfNumber(scripts, byteAt(outputRecord, i));
        if (script && byteAt(outputRecord, i) != noScript) {
            found.append(script);
        }
    }
    return found;
}

GroupRelay& demandGroup(QList<GroupRelayPtr>& groups, quint16 address)
{
    GroupRelayPtr group = firstOf(groups, [&](const GroupRelayPtr& each) { return each->address == address; });
    if (!group) {
        group = GroupRelayPtr::create();
        group->address = address;
        group->name = texts::defaultTerminalName();
        groups.append(group);
    }
    return *group;
}

TerminalTypePtr findType(const TerminalTypes& types, const TerminalIdentity& model)
{
    return firstOf(types, [&](const TerminalTypePtr& type) { return sameModel(*type, model); });
}

ConnectedTerminalPtr makeTerminal(const QByteArray& record, const TerminalTypes& types)
{
    auto terminal = ConnectedTerminalPtr::create();
    terminal->address = byteAt(record, terminalAddress);
    static_cast<TerminalIdentity&>(*terminal) = unpackModel(record, terminalModel);
    terminal->label = modelCode(terminal->terminalClass, terminal->version, terminal->type, terminal->characteristic);
    for (int i = 0; i < outputCount(record.size()); ++i) {
        terminal->outputs.append(texts::defaultOutputName());
    }
    if (const TerminalTypePtr type = findType(types, *terminal)) {
        terminal->label = type->name;
        for (int i = 0; i < qMin(terminal->outputs.size(), type->outputs.size()); ++i) {
            terminal->outputs[i] = type->outputs.at(i);
        }
    }
    return terminal;
}

RelayInformationPtr demandOutput(GroupRelay& group, quint8 number, const ParamItemPtr& startState)
{
    if (const RelayInformationPtr known = firstOfNumber(group.outputs, number)) {
        return known;
    }
    for (quint8 missing = 0; missing <= number; ++missing) {
        if (!firstOfNumber(group.outputs, missing)) {
            group.outputs.append(makeOutput(missing, placeholderName(), startState));
        }
    }
    return group.outputs.last();
}

/// The channel state that a code stands for. The families share their codes, so with a filter by type its class tells
/// them apart; without one, or with a class that no terminal has, the first row from the top is as good as any.
ParamItemPtr stateOf(const ParamItems& rows, quint8 code, bool filterByType, quint8 terminalClass)
{
    const ParamItemPtr row = filterByType && terminalClass < terminalClasses
                                 ? scriptRules::findStateOfClass(rows, terminalClass, code)
                                 : scriptRules::findStateOfCode(rows, code);
    return row ? row : scriptRules::makeOtherState(code);
}

void readScript(const QByteArray& record, const ParamTables& tables, const TerminalTypes& types, ScriptInfo& script)
{
    const auto rowOfCode = [](const ParamItems& rows, int code) {
        const ParamItemPtr row = findByCode(rows, code);
        return row ? row : rows.first();
    };
    script.mode = rowOfCode(tables.modes, byteAt(record, scriptMode) & 7);
    script.delay = rowOfCode(tables.delays, byteAt(record, scriptDuration) & 7);
    script.duration = rowOfCode(tables.durations, byteAt(record, scriptDuration) >> 3);

    script.activateFilter = unpackFlags(byteAt(record, scriptChannels), filterFlags);
    script.numberChannels = unpackFlags(byteAt(record, scriptChannels), channelFlags);
    scriptRules::ensureChannel(script.numberChannels);
    script.daysOfWeek = unpackFlags(byteAt(record, scriptDays), dayFlags);
    script.timeFilter = unpackDecimals(record, timeDecimals, 0);
    script.dateFilter = unpackDecimals(record, dateDecimals, 1);
    script.addressFilter = unpackAddresses(qFromLittleEndian<quint32>(record.constData() + scriptAddresses));

    // A type that the catalogue doesn't have gets a record of the script's own.
    const TerminalIdentity model = unpackModel(record, scriptTypeFilter);
    script.terminalFilter = findType(types, model);
    if (!script.terminalFilter) {
        script.terminalFilter = TerminalTypePtr::create();
        static_cast<TerminalIdentity&>(*script.terminalFilter) = model;
    }

    script.stateChannel = stateOf(tables.stateChannels, byteAt(record, scriptState),
                                  script.activateFilter.at(ScriptInfo::ByType), model.terminalClass);
    scriptRules::setTerminalStates(script, rowsOfMask(tables.terminalStates, byteAt(record, scriptTerminalStates)));
}

} // namespace

QList<ConnectedTerminalPtr> readTerminals(const QByteArrayList& records, const TerminalTypes& types)
{
    QList<ConnectedTerminalPtr> list;
    for (const QByteArray& record : records) {
        if (record.size() >= terminalLeastSize) {
            list.append(makeTerminal(record, types));
        }
    }
    return list;
}

void readOutputs(const QByteArrayList& records, const ParamTables& tables, QList<GroupRelayPtr>& groups,
                 const QList<ScriptInfoPtr>& scripts)
{
    for (const QByteArray& record : records) {
        if (record.size() < outputLeastSize) {
            continue;
        }
        // The byte has a sign: 0x80 is the address -128.
        GroupRelay& group = demandGroup(groups, quint16(qint8(record.at(outputAddress))));
        const RelayInformationPtr output =
            demandOutput(group, byteAt(record, outputNumber) & 7, tables.outputStates.first());
        if (output->name == placeholderName()) {
            output->name = texts::defaultOutputName();
        }
        const quint8 flags = byteAt(record, outputFlags);
        output->startState = tables.outputStates.value(flags & startStateFlag);
        output->returnStartState = (flags & returnFlag) != 0;
        output->activatedScripts = scriptsOf(record, scripts);
    }
}

void readScripts(const QByteArrayList& records, const ParamTables& tables, const TerminalTypes& types,
                 const QList<ScriptInfoPtr>& scripts)
{
    for (const QByteArray& record : records) {
        if (record.size() >= scriptSize) {
            readScript(record, tables, types, *scripts.at(byteAt(record, scriptNumber) & 31));
        }
    }
}
