#pragma once

#include "model/GroupRelay.h"
#include "model/ScriptInfo.h"
#include "model/tables.h"

#include <QList>
#include <QString>

/// The text of a configuration file, with CR LF at the end of each line on every platform. A line feed of the comment
/// becomes CR LF as well. Names go as they are, but for a CR LF, which the reader would take for the end of the line.
QString configurationText(const ParamTables& tables, const QList<GroupRelayPtr>& groups,
                          const QList<ScriptInfoPtr>& scripts, const QString& comment);
