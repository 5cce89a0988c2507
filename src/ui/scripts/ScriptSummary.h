#pragma once

#include "model/ScriptInfo.h"

#include <QString>

/// The summary of a script as rich text for a tooltip: mode, times, triggers and filters, so that the editor need not
/// be opened. A null script gives the title "Script unknown" alone. Names of scripts and models are shown as they are
/// written, whatever they contain.
QString scriptSummary(const ScriptInfoPtr& script);
