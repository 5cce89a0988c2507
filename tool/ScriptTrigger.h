#pragma once

#include "model/ScriptInfo.h"

#include <QString>
#include <QStringList>

class RelayInfo;

/// The first half of a script's sentence: what it waits for.
namespace sentence
{

/// Who reports, with models by their names in the catalogue: "any terminal", "a sensor (terminals 3, 5-7)", "the head
/// unit or terminal 4".
QString reporter(const RelayInfo& model, const ScriptInfo& script);

/// What is reported: ""Alarm (fire)" on channel 1 or 2, or the status "Tamper"".
QString report(const ScriptInfo& script);

/// When it counts: "between 22:00 and 06:00 the next day", "Monday to Friday", "from 1 May to 30 September"; nothing if
/// always.
QStringList periods(const ScriptInfo& script);

/// Whether a script filters by address and its list of addresses is empty, so that no terminal can set it off.
bool hearsNobody(const ScriptInfo& script);

} // namespace sentence
