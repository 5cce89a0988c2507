#include "tool/ReportChecks.h"

#include "model/RelayInfo.h"
#include "model/ScriptRules.h"
#include "tool/ScriptSentence.h"
#include "tool/ScriptTrigger.h"
#include "tool/english.h"

#include <algorithm>

namespace
{

/// Active scripts, each judged by itself.
QStringList faultsOf(const RelayInfo& model, const ScriptInfoPtr& script)
{
    QStringList faults;
    const QString name = QStringLiteral("Script ") + sentence::numbered(*script);
    if (sentence::outputsOf(model, script).isEmpty()) {
        faults.append(name + QStringLiteral(" is active but drives no output."));
    }
    if (sentence::hearsNobody(*script)) {
        faults.append(name + QStringLiteral(" filters by address, but no address is chosen."));
    }
    // The unit keeps nothing but the number of a state. Without a class it stands for the first row that has it.
    const ParamItemPtr& state = script->stateChannel;
    const bool hasClass = script->activateFilter.value(ScriptInfo::ByType) && script->terminalFilter &&
                          script->terminalFilter->terminalClass != AnyClass;
    if (state && state->linked && !hasClass) {
        const ParamItemPtr first = scriptRules::findStateOfCode(model.stateChannels(), scriptRules::stateCode(state));
        if (first && first != state) {
            const QString other = first->linked ? first->linked->name : first->name;
            faults.append(name + QStringLiteral(" waits for ") + english::quoted(state->linked->name) +
                          QStringLiteral(" of terminals of any class; by its number the unit can't tell that state "
                                         "from ") +
                          english::quoted(other) + QLatin1Char('.'));
        }
    }
    return faults;
}

/// Scripts of an output that never run, in the order of the output.
QStringList idleScripts(const RelayInformation& output)
{
    QStringList names;
    for (const ScriptInfoPtr& script : output.activatedScripts) {
        const QString name = QStringLiteral("script ") + sentence::numbered(*script);
        if (!scriptRules::hasTrigger(*script) && !names.contains(name)) {
            names.append(name);
        }
    }
    return names;
}

QStringList faultsOf(const GroupRelayPtr& group)
{
    QStringList faults;
    for (const RelayInformationPtr& output : qAsConst(group->outputs)) {
        const QStringList idle = idleScripts(*output);
        if (!idle.isEmpty()) {
            faults.append(english::capitalized(sentence::outputs({{group, output}})) + QStringLiteral(" waits for ") +
                          english::list(idle) +
                          (idle.size() == 1 ? QStringLiteral(", which has no trigger.")
                                            : QStringLiteral(", which have no trigger.")));
        }
    }
    return faults;
}

} // namespace

QStringList reportChecks(const RelayInfo& model, bool isRead)
{
    QStringList faults;
    const QList<ScriptInfoPtr> scripts = model.scripts();
    for (const ScriptInfoPtr& script : scripts) {
        if (scriptRules::hasTrigger(*script)) {
            faults += faultsOf(model, script);
        }
    }
    const QList<GroupRelayPtr> groups = model.groups();
    for (const GroupRelayPtr& group : groups) {
        faults += faultsOf(group);
    }
    for (const GroupRelayPtr& group : groups) {
        if (isRead && group->address != 0 && !group->connected) {
            faults.append(english::capitalized(sentence::terminal(*group)) +
                          QStringLiteral(" has outputs but isn't connected."));
        }
    }
    return faults;
}
