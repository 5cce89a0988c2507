#include "defaultSettings.h"

#include "domain/terminals.h"
#include "model/RelayInfo.h"
#include "model/ScriptRules.h"
#include "model/tables.h"

namespace
{

constexpr quint8 anyFault = 0x7E; ///< all fault bits of a terminal

/// One script as it is written down here. The channel state is the one that the class reports under the code.
struct Script
{
    const char* name;
    quint8 mode;
    quint8 duration;
    TerminalClass terminalClass;
    quint8 state; ///< ParamItem::notActiveCode: faults of any terminal instead
};

/// One output of the head unit with the positions of its scripts.
struct Output
{
    const char* name;
    QList<int> scripts;
};

constexpr Script scripts[] = {
    {"Fire alarm: siren", 3, 0, SensorClass, 1},
    {"Alarm button: siren", 3, 0, InterfaceClass, 0x01},
    {"High level alarm: siren", 2, 0, AnalogClass, 1},
    {"Test button: siren for 3 seconds", 1, 3, InterfaceClass, 0x08},
    {"Fault of a terminal: fault lamp", 1, 0, SensorClass, ParamItem::notActiveCode},
    {"Short of a loop: fault lamp", 2, 0, SensorClass, 2},
    {"Tamper of a loop: fault lamp", 2, 0, SensorClass, 3},
    {"Arm button: armed lamp on", 1, 0, InterfaceClass, 0x02},
    {"Disarm button: lamp and siren off", 0, 0, InterfaceClass, 0x04},
};

void fillScript(const RelayInfo& model, const Script& from, ScriptInfo& script)
{
    script.name = QString::fromLatin1(from.name);
    script.mode = findByCode(model.modes(), from.mode);
    script.duration = findByCode(model.durations(), from.duration);
    if (from.state == ParamItem::notActiveCode) {
        scriptRules::setTerminalStates(script, rowsOfMask(model.terminalStates(), anyFault));
        return;
    }
    script.activateFilter[ScriptInfo::ByType] = true;
    script.terminalFilter->terminalClass = from.terminalClass;
    scriptRules::setStateChannel(script, scriptRules::makeOtherState(from.state), scriptRules::TypeFilter::Keep);
    scriptRules::adaptStateToFilter(script, model.stateChannels());
    script.numberChannels = {true, true, true, true};
}

} // namespace

void fillDefaultSettings(RelayInfo& model)
{
    const QList<Output> outputs = {
        {"Siren", {0, 1, 2, 3, 8}},
        {"Fault lamp", {4, 5, 6}},
        {"Armed lamp", {7, 8}},
    };
    int position = 0;
    for (const Script& script : scripts) {
        fillScript(model, script, *model.scripts().at(position++));
    }
    const GroupRelayPtr headUnit = model.groups().constFirst();
    for (int i = 0; i < outputs.size(); ++i) {
        const RelayInformationPtr output = headUnit->outputs.at(i);
        output->name = QString::fromLatin1(outputs.at(i).name);
        for (const int script : outputs.at(i).scripts) {
            output->activatedScripts.append(model.scripts().at(script));
        }
    }
    model.setComment(
        QStringLiteral("Default settings: internal relay 1 is the siren, 2 the fault lamp, 3 the armed lamp."));
}
