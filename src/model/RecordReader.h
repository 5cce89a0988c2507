#pragma once

#include "model/GroupRelay.h"
#include "model/ScriptInfo.h"
#include "model/TerminalType.h"
#include "model/tables.h"

#include <QByteArrayList>
#include <QList>

// Readers of the records of the device. Records that are too short are passed over; bytes that mean nothing leave what
// is there.

QList<ConnectedTerminalPtr> readTerminals(const QByteArrayList& records, const TerminalTypes& types);

/// Sets the outputs of the records. Those that are missing come into being, with all lower numbers of their terminal,
/// and a terminal that is missing at the end of the groups.
void readOutputs(const QByteArrayList& records, const ParamTables& tables, QList<GroupRelayPtr>& groups,
                 const QList<ScriptInfoPtr>& scripts);

/// Sets the scripts of the records. There have to be 32.
void readScripts(const QByteArrayList& records, const ParamTables& tables, const TerminalTypes& types,
                 const QList<ScriptInfoPtr>& scripts);
