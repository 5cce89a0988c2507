#pragma once

#include "model/GroupRelay.h"
#include "model/ScriptInfo.h"

#include <QList>
#include <QString>

class RelayInfo;

/// Scripts, terminals and outputs in the words of a person who has never seen the editor.
///
/// Plain text on one line; names and words of the catalogue stand in quotation marks. Names that nobody gave are left
/// out. Everything here takes what a file or a unit may hold, however odd.
namespace sentence
{

/// An output with the terminal that it belongs to.
struct PlacedOutput
{
    GroupRelayPtr terminal;
    RelayInformationPtr output;
};

/// "4 "Horn"".
QString numbered(const ScriptInfo& script);

/// "the head unit", "terminal 12 "Yard"".
QString terminal(const GroupRelay& terminal);

/// "outputs 1 "Horn" and 2 of terminal 12 "Yard" and output 1 of the head unit", in the order given.
QString outputs(const QList<PlacedOutput>& outputs);

/// The outputs that have a script among theirs, in the order of the model.
QList<PlacedOutput> outputsOf(const RelayInfo& model, const ScriptInfoPtr& script);

/// What a script does, one sentence: "When any terminal reports ..., output 2 of terminal 12 is switched on ...". For a
/// script with a trigger.
QString action(const RelayInfo& model, const ScriptInfoPtr& script);

} // namespace sentence
