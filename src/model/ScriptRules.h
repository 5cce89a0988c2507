#pragma once

#include "model/ParamItem.h"
#include "model/ScriptInfo.h"
#include "model/StateFamily.h"
#include "model/TerminalType.h"

#include <QList>
#include <QString>

/// What ties the fields of a script together: its trigger, the channels and the flag "not active" that follow from it,
/// and the terminal filter that has to fit it. All are plain functions on the record, without a widget; the editor
/// calls one for each choice of the user and then shows the record.
///
/// Where a function takes rows, these are RelayInfo::stateChannels(). States that are chosen are always the very rows
/// of that table; only a state that no row has gets a private row, named texts::otherState().
namespace scriptRules
{

/// The code that goes to the device for a channel state; ParamItem::notActiveCode without a row.
quint8 stateCode(const ParamItemPtr& state);

/// True for a button state whose code is 16 or more.
bool isLongPress(const ParamItemPtr& state);

/// @name Finding a channel state. Null if no row fits.
/// @{
ParamItemPtr findState(const ParamItems& rows, const QString& name); ///< first row with the name
/// Of a family, by the name of its linked row and the press; families without keys know the short press only.
ParamItemPtr findLinkedState(const ParamItems& rows, StateKind kind, const QString& linkedName, bool longPress);
ParamItemPtr findStateOfCode(const ParamItems& rows, quint8 code); ///< first row of an effective code, of any family
ParamItemPtr findStateOfClass(const ParamItems& rows, quint8 terminalClass, quint8 code); ///< first that it reports
/// @}

/// The states of a family: what its rows are linked to, in their order.
ParamItems linkedStates(const ParamItems& rows, StateKind kind);

/// A new private row "<Other>".
ParamItemPtr makeOtherState(quint8 code);

/// The same key with the other press: for a state with a linked row the row of equal names whose press is the one
/// asked for; the state itself if there is none or nothing is linked.
ParamItemPtr withPress(const ParamItems& rows, const ParamItemPtr& state, bool longPress);

/// True if a script has a trigger: an effective state code other than ParamItem::notActiveCode, or a terminal state.
bool hasTrigger(const ScriptInfo& script);

/// Sets notActive from hasTrigger().
void updateTrigger(ScriptInfo& script);

/// What an edit of the channel state does to the filter by type.
enum class TypeFilter
{
    SwitchOffIfUnfit, ///< the user chose a state: a filter whose class can't report it goes off
    Keep              ///< the state is adapted to the filter, or a record is only shown
};

/// Sets the channel state and all that hangs on it: "Not active" empties numberChannels; any other state makes sure
/// that a channel is set; the filter by type is switched off as asked for; notActive follows.
void setStateChannel(ScriptInfo& script, const ParamItemPtr& state, TypeFilter typeFilter);

/// True if terminals of the class can report a state: a class with a family reports that family, and no other class
/// does. Class 15 reports all.
bool classFitsState(quint8 terminalClass, const ParamItemPtr& state);

/// Gives a script the state of the same code that the class of its type filter can report; "<Other>" if that class has
/// no such state. It acts only with the filter by type on, a class other than 15 and a state other than "Not active".
/// The code never changes: 0x81 under class 3 becomes the long press of button 1. Returns true if it changed the row.
bool adaptStateToFilter(ScriptInfo& script, const ParamItems& rows);

/// Replaces the terminal states that trigger the script. notActive follows.
void setTerminalStates(ScriptInfo& script, const ParamItems& states);

/// Sets channel 1 if none is set or the list is empty.
void ensureChannel(QList<bool>& numberChannels);

/// Switches a channel (0 to 3) on or off. The last one stays on; returns false then, or if there is no such channel.
bool toggleChannel(QList<bool>& numberChannels, int channel);

/// True unless the script filters by type and its filter rejects the terminal.
bool passesTypeFilter(const ScriptInfo& script, const ConnectedTerminal& terminal);

/// Gives the script a type filter of its own, labelled "<other type>", with the numbers of the former filter. An edit
/// of the numbers must never reach a row of the catalogue, which scripts share.
void makeTypeFilterPrivate(ScriptInfo& script);

/// The class that stands for a number that was typed or stepped to: 5 to 9 jump to 15, 10 to 14 to 4.
quint8 allowedClass(int value);

} // namespace scriptRules
