#include "model/RelayInfo.h"

#include "model/Device.h"
#include "model/firstOf.h"
#include "model/format.h"
#include "model/tables.h"
#include "texts/texts.h"

#include <algorithm>

namespace
{

constexpr int scriptCount = 32;
constexpr quint8 outputsOfTerminal = 8;

bool isIdle(const GroupRelay& group)
{
    return std::all_of(group.outputs.begin(), group.outputs.end(),
                       [](const RelayInformationPtr& output) { return output->activatedScripts.isEmpty(); });
}

/// Removes the groups behind the head unit that a test accepts.
template <typename Fits>
void removeTerminals(QList<GroupRelayPtr>& groups, Fits fits)
{
    if (!groups.isEmpty()) {
        groups.erase(std::remove_if(groups.begin() + 1, groups.end(), fits), groups.end());
    }
}

} // namespace

RelayInfo::RelayInfo(QObject* parent) : QObject(parent), tables(makeParamTables())
{
    types.append(TerminalTypePtr::create());
    types.last()->background = unsetColor();
    scriptList.reserve(scriptCount);
    for (int i = 0; i < scriptCount; ++i) {
        scriptList.append(ScriptInfoPtr::create());
    }
    resetScripts();
    appendHeadUnit(false);
}

ScriptInfoPtr RelayInfo::findScript(quint8 number) const
{
    return firstOfNumber(scriptList, number);
}

GroupRelayPtr RelayInfo::findGroup(quint16 address) const
{
    return firstOf(groupList, [address](const GroupRelayPtr& group) { return group->address == address; });
}

RelayInformationPtr RelayInfo::findOutput(quint16 address, quint8 number) const
{
    const GroupRelayPtr group = findGroup(address);
    return group ? firstOfNumber(group->outputs, number) : RelayInformationPtr();
}

ConnectedTerminalPtr RelayInfo::findConnectedTerminal(quint8 address) const
{
    return firstOf(connectedList,
                   [address](const ConnectedTerminalPtr& terminal) { return terminal->address == address; });
}

GroupRelayPtr RelayInfo::makeTerminalGroup(const ConnectedTerminal& terminal) const
{
    auto group = GroupRelayPtr::create();
    group->address = terminal.address;
    group->name = terminal.label;
    group->connected = true;
    for (const QString& name : terminal.outputs) {
        group->outputs.append(makeOutput(quint8(group->outputs.size()), name, tables.outputStates.first()));
    }
    return group;
}

void RelayInfo::appendHeadUnit(bool connected)
{
    auto group = GroupRelayPtr::create();
    group->address = 0;
    group->name = texts::headUnitName();
    group->expand = true;
    group->connected = connected;
    for (quint8 number = 0; number < outputsOfTerminal; ++number) {
        group->outputs.append(makeOutput(number, texts::headUnitOutputName(), tables.outputStates.first()));
    }
    groupList.append(group);
}

void RelayInfo::sortGroups()
{
    // The head unit stays in front even of addresses from 128 up, which a record extends to negative numbers.
    std::stable_sort(groupList.begin() + 1, groupList.end(), [](const GroupRelayPtr& a, const GroupRelayPtr& b) {
        return static_cast<qint16>(a->address) < static_cast<qint16>(b->address);
    });
}

GroupRelayPtr RelayInfo::addGroup(const QString& name, quint16 address)
{
    auto group = GroupRelayPtr::create();
    group->address = address;
    group->name = name;
    group->expand = true;
    groupList.append(group);
    sortGroups();
    return group;
}

void RelayInfo::addOutput(const GroupRelayPtr& group, const QString& name)
{
    for (quint8 number = 0; number < outputsOfTerminal; ++number) {
        if (!firstOfNumber(group->outputs, number)) {
            group->outputs.append(makeOutput(number, name, tables.outputStates.first()));
            return;
        }
    }
    group->outputs.append(RelayInformationPtr::create());
}

quint16 RelayInfo::removeGroup(const GroupRelayPtr& group)
{
    const int position = groupList.indexOf(group);
    if (position <= 0) {
        return 0;
    }
    groupList.removeAt(position);
    return groupList.at(position - 1)->address;
}

void RelayInfo::removeDisconnectedGroups()
{
    removeTerminals(groupList, [](const GroupRelayPtr& group) { return !group->connected; });
}

void RelayInfo::removeIdleGroups()
{
    removeTerminals(groupList, [](const GroupRelayPtr& group) { return !group->connected && isIdle(*group); });
}

void RelayInfo::setCatalogue(const Device& catalogue)
{
    for (int index = 0; index < catalogue.deviceCount(); ++index) {
        const QVariantList row = catalogue.deviceRow(index);
        addTerminalType(index == 0, row.at(0).toString(), row.at(1).value<quint8>(), row.at(2).value<quint8>(),
                        row.at(3).value<quint8>(), row.at(4).value<quint8>(), row.at(5).toStringList());
    }
}

void RelayInfo::addTerminalType(bool first, const QString& name, quint8 terminalClass, quint8 version, quint8 type,
                                quint8 characteristic, const QStringList& outputs)
{
    if (first) {
        types = {TerminalTypePtr::create()};
        types.last()->background = unsetColor();
    }
    auto row = TerminalTypePtr::create();
    row->label = QStringLiteral("%1 (%2)").arg(name, modelCode(terminalClass, version, type, characteristic));
    row->terminalClass = terminalClass;
    row->version = version;
    row->type = type;
    row->characteristic = characteristic;
    row->name = name;
    row->outputs = outputs;
    types.append(row);
    std::stable_sort(types.begin(), types.end(),
                     [](const TerminalTypePtr& a, const TerminalTypePtr& b) { return a->label < b->label; });
}

void RelayInfo::resetGroups(bool headUnitOnly)
{
    groupList.clear();
    appendHeadUnit(true);
    if (headUnitOnly) {
        return;
    }
    for (const ConnectedTerminalPtr& terminal : std::as_const(connectedList)) {
        if (terminal->terminalClass == ExecutiveClass) {
            groupList.append(makeTerminalGroup(*terminal));
        }
    }
}

void RelayInfo::resetScripts()
{
    for (int i = 0; i < scriptList.size(); ++i) {
        ScriptInfo& script = *scriptList.at(i);
        const bool marked = script.marked;
        script = ScriptInfo();
        script.marked = marked;
        script.number = quint8(i);
        script.mode = tables.modes.first();
        script.delay = tables.delays.first();
        script.duration = tables.durations.first();
        script.stateChannel = tables.stateChannels.first();
    }
}
