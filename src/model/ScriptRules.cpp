#include "model/ScriptRules.h"

#include "model/firstOf.h"
#include "model/tables.h"
#include "texts/texts.h"

namespace scriptRules
{

namespace
{

constexpr int channelCount = 4;

} // namespace

quint8 stateCode(const ParamItemPtr& state)
{
    return state ? state->effectiveCode() : ParamItem::notActiveCode;
}

bool isLongPress(const ParamItemPtr& state)
{
    return kindOf(state) == StateKind::Button && stateCode(state) > 15;
}

ParamItemPtr findState(const ParamItems& rows, const QString& name)
{
    return firstOf(rows, [&](const ParamItemPtr& row) { return row->name == name; });
}

ParamItemPtr findLinkedState(const ParamItems& rows, StateKind kind, const QString& linkedName, bool longPress)
{
    return firstOf(rows, [&](const ParamItemPtr& row) {
        return kindOf(row) == kind && row->linked && row->linked->name == linkedName && isLongPress(row) == longPress;
    });
}

ParamItems linkedStates(const ParamItems& rows, StateKind kind)
{
    ParamItems states;
    for (const ParamItemPtr& row : rows) {
        if (kindOf(row) == kind && row->linked) {
            states.append(row->linked);
        }
    }
    return states;
}

ParamItemPtr findStateOfCode(const ParamItems& rows, quint8 code)
{
    return firstOf(rows, [&](const ParamItemPtr& row) { return row->effectiveCode() == code; });
}

ParamItemPtr findStateOfClass(const ParamItems& rows, quint8 terminalClass, quint8 code)
{
    const StateFamily* const family = familyOfClass(terminalClass);
    return firstOf(rows,
                   [&](const ParamItemPtr& row) { return familyOf(row) == family && row->effectiveCode() == code; });
}

ParamItemPtr makeOtherState(quint8 code)
{
    auto state = ParamItemPtr::create();
    state->code = code;
    state->name = texts::otherState();
    state->icon = emptyIcon();
    return state;
}

ParamItemPtr withPress(const ParamItems& rows, const ParamItemPtr& state, bool longPress)
{
    if (!state || !state->linked) {
        return state;
    }
    const ParamItemPtr found = findLinkedState(rows, kindOf(state), state->linked->name, longPress);
    return found ? found : state;
}

bool hasTrigger(const ScriptInfo& script)
{
    return stateCode(script.stateChannel) != ParamItem::notActiveCode || !script.stateTerminal.isEmpty();
}

void updateTrigger(ScriptInfo& script)
{
    script.notActive = !hasTrigger(script);
}

void setStateChannel(ScriptInfo& script, const ParamItemPtr& state, TypeFilter typeFilter)
{
    script.stateChannel = state;
    if (kindOf(state) == StateKind::NotActive) {
        script.numberChannels.clear();
    } else {
        const bool unfit = script.activateFilter.value(ScriptInfo::ByType) && script.terminalFilter &&
                           !classFitsState(script.terminalFilter->terminalClass, state);
        if (unfit && typeFilter == TypeFilter::SwitchOffIfUnfit) {
            script.activateFilter[ScriptInfo::ByType] = false;
        }
        ensureChannel(script.numberChannels);
    }
    updateTrigger(script);
}

bool classFitsState(quint8 terminalClass, const ParamItemPtr& state)
{
    return terminalClass == AnyClass || familyOf(state) == familyOfClass(terminalClass);
}

bool adaptStateToFilter(ScriptInfo& script, const ParamItems& rows)
{
    const StateKind kind = kindOf(script.stateChannel);
    if (!script.activateFilter.value(ScriptInfo::ByType) || !script.terminalFilter || kind == StateKind::NotActive) {
        return false;
    }
    const quint8 terminalClass = script.terminalFilter->terminalClass;
    // "<Other>" is looked up again for every class: the new class may have a row for its code.
    if (terminalClass == AnyClass || (kind != StateKind::Other && classFitsState(terminalClass, script.stateChannel))) {
        return false;
    }
    const quint8 code = stateCode(script.stateChannel);
    const ParamItemPtr found = findStateOfClass(rows, terminalClass, code);
    if (!found && kind == StateKind::Other) {
        return false;
    }
    setStateChannel(script, found ? found : makeOtherState(code), TypeFilter::Keep);
    return true;
}

void setTerminalStates(ScriptInfo& script, const ParamItems& states)
{
    script.stateTerminal = states;
    updateTrigger(script);
}

void ensureChannel(QList<bool>& numberChannels)
{
    if (!numberChannels.contains(true)) {
        numberChannels = {true, false, false, false};
    }
}

bool toggleChannel(QList<bool>& numberChannels, int channel)
{
    if (channel < 0 || channel >= qMin(channelCount, numberChannels.size())) {
        return false;
    }
    if (numberChannels.at(channel) && numberChannels.count(true) == 1) {
        return false;
    }
    numberChannels[channel] = !numberChannels.at(channel);
    return true;
}

bool passesTypeFilter(const ScriptInfo& script, const ConnectedTerminal& terminal)
{
    if (!script.activateFilter.value(ScriptInfo::ByType) || !script.terminalFilter) {
        return true;
    }
    const TerminalType& filter = *script.terminalFilter;
    const auto differ = [](quint8 a, quint8 b, int mask) { return (a & mask) != (b & mask); };
    const bool rejected = (terminal.terminalClass != filter.terminalClass && filter.terminalClass != AnyClass) ||
                          (terminal.version != filter.version && filter.version != 0) ||
                          (differ(terminal.type, filter.type, 0xF0) && filter.type > 15) ||
                          (differ(terminal.type, filter.type, 0x0F) && (filter.type & 0x0F) != 0) ||
                          (terminal.characteristic != filter.characteristic && filter.characteristic != 0);
    return !rejected;
}

void makeTypeFilterPrivate(ScriptInfo& script)
{
    auto own = TerminalTypePtr::create();
    if (script.terminalFilter) {
        static_cast<TerminalIdentity&>(*own) = *script.terminalFilter;
    }
    script.terminalFilter = own;
}

quint8 allowedClass(int value)
{
    if (value >= 5 && value <= 9) {
        return AnyClass;
    }
    if (value >= 10 && value <= 14) {
        return AnalogClass;
    }
    return quint8(qBound(0, value, 15));
}

} // namespace scriptRules
