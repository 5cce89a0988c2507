#pragma once

#include "domain/terminals.h"
#include "model/ParamTables.h"
#include "texts/texts.h"

namespace scriptRules
{

/// What kind of channel state a script waits for. It goes by the name of the row.
enum class StateKind
{
    NotActive, ///< "Not active", or no row at all
    Plain,     ///< Norm, alarm, short, tamper of a loop
    Analog,    ///< "State of analog terminal"; the state itself is the linked row
    Button,    ///< "State of PNB-NX"; the key and its press are the linked row
    Other      ///< "<Other>": a code that the user typed or that no row fits
};

/// States that only the terminals of one class report. They have a table of their own, and the channel states have a
/// row for each of them, linked to it; all these rows bear the one name of the family.
///
/// The codes of the families overlap with each other and with those of the plain states.
struct StateFamily
{
    StateKind kind;
    QString (*name)();
    TerminalClass terminalClass;
    ParamItems ParamTables::*states;
};

/// In the order of their rows among the channel states. Files name those by position: a new family comes last.
constexpr StateFamily stateFamilies[] = {
    {StateKind::Analog, texts::stateAnalog, AnalogClass, &ParamTables::analogStates},
    {StateKind::Button, texts::statePanicButton, InterfaceClass, &ParamTables::buttonStates},
};

/// The family that a channel state belongs to; null for a state without a linked row.
const StateFamily* familyOf(const ParamItemPtr& state);

/// The family that the terminals of a class report; null for a class that reports plain states.
const StateFamily* familyOfClass(quint8 terminalClass);

StateKind kindOf(const ParamItemPtr& state);

} // namespace scriptRules
