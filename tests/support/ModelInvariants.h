#pragma once

#include "model/RelayInfo.h"
#include "model/ScriptRules.h"

#include <QString>

/// What holds for every model, whatever was read into it. Returns the first thing that doesn't hold, or nothing.
inline QString brokenInvariant(const RelayInfo& model)
{
    const QList<GroupRelayPtr> groups = model.groups();
    if (groups.isEmpty()) {
        return QStringLiteral("no head unit");
    }
    for (const GroupRelayPtr& group : groups) {
        if (!group) {
            return QStringLiteral("null group");
        }
        for (const RelayInformationPtr& output : std::as_const(group->outputs)) {
            if (!output || output->activatedScripts.contains({})) {
                return QStringLiteral("null output or script of an output");
            }
            if (output->startState && !model.outputStates().contains(output->startState)) {
                return QStringLiteral("start state that isn't in the table");
            }
        }
    }
    const QList<ScriptInfoPtr> scripts = model.scripts();
    if (scripts.size() != 32) {
        return QStringLiteral("not 32 scripts");
    }
    for (const ScriptInfoPtr& script : scripts) {
        if (!model.modes().contains(script->mode) || !model.delays().contains(script->delay) ||
            !model.durations().contains(script->duration)) {
            return QStringLiteral("mode, delay or duration that isn't in its table");
        }
        if (!model.stateChannels().contains(script->stateChannel) &&
            scriptRules::kindOf(script->stateChannel) != scriptRules::StateKind::Other) {
            return QStringLiteral("channel state that is neither in the table nor the script's own");
        }
        for (const ParamItemPtr& state : std::as_const(script->stateTerminal)) {
            if (!model.terminalStates().contains(state)) {
                return QStringLiteral("terminal state that isn't in the table");
            }
        }
        if (script->activateFilter.size() != 4 || script->daysOfWeek.size() != 7 || script->timeFilter.size() != 4 ||
            script->dateFilter.size() != 4 || script->addressFilter.size() != 32 ||
            script->numberChannels.size() != 4) {
            return QStringLiteral("list of a wrong size");
        }
        if (!script->numberChannels.contains(true)) {
            return QStringLiteral("no channel");
        }
        if (script->notActive == scriptRules::hasTrigger(*script)) {
            return QStringLiteral("flag of the trigger");
        }
        if (!script->terminalFilter || script->terminalFilter->terminalClass > 15 ||
            script->terminalFilter->version > 15) {
            return QStringLiteral("type filter");
        }
    }
    return {};
}
