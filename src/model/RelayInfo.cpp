#include "model/RelayInfo.h"

#include "model/firstOf.h"
#include "model/tables.h"

namespace
{

constexpr int scriptCount = 32;

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

RelayInfo::~RelayInfo() = default;

ParamItems RelayInfo::stateChannels() const
{
    return tables.stateChannels;
}

ParamItems RelayInfo::buttonStates() const
{
    return tables.buttonStates;
}

ParamItems RelayInfo::analogStates() const
{
    return tables.analogStates;
}

ParamItems RelayInfo::terminalStates() const
{
    return tables.terminalStates;
}

ParamItems RelayInfo::outputStates() const
{
    return tables.outputStates;
}

ParamItems RelayInfo::modes() const
{
    return tables.modes;
}

ParamItems RelayInfo::durations() const
{
    return tables.durations;
}

ParamItems RelayInfo::delays() const
{
    return tables.delays;
}

TerminalTypes RelayInfo::terminalTypes() const
{
    return types;
}

QList<ScriptInfoPtr> RelayInfo::scripts() const
{
    return scriptList;
}

QList<GroupRelayPtr> RelayInfo::groups() const
{
    return groupList;
}

QList<ConnectedTerminalPtr> RelayInfo::connectedTerminals() const
{
    return connectedList;
}

QString RelayInfo::comment() const
{
    return commentText;
}

void RelayInfo::setComment(const QString& comment)
{
    commentText = comment;
}

int RelayInfo::errorCount() const
{
    return fileErrors;
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
