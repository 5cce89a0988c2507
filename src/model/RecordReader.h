#pragma once

#include "model/GroupRelay.h"
#include "model/ScriptInfo.h"
#include "model/TerminalType.h"
#include "model/tables.h"

#include <QByteArrayList>
#include <QList>

/// Reads the records of the device into groups and scripts that were reset before. Records that are too short are
/// passed over; bytes that mean nothing leave what the reset left.
///
/// RelayInfo makes one for a reading; the tables and types must outlive it.
class RecordReader
{
public:
    RecordReader(const ParamTables& paramTables, const TerminalTypes& terminalTypes);

    QList<ConnectedTerminalPtr> terminals(const QByteArrayList& records) const;

    /// Sets the outputs of the records. Those that are missing come into being, with all lower numbers of their
    /// terminal, and a terminal that is missing at the end of the groups.
    void readOutputs(const QByteArrayList& records, QList<GroupRelayPtr>& groups,
                     const QList<ScriptInfoPtr>& scripts) const;

    void readScripts(const QByteArrayList& records, const QList<ScriptInfoPtr>& scripts) const;

private:
    ConnectedTerminalPtr makeTerminal(const QByteArray& record) const;
    RelayInformationPtr demandOutput(GroupRelay& group, quint8 number) const;
    void readScript(const QByteArray& record, ScriptInfo& script) const;
    ParamItemPtr stateOf(quint8 code, bool filterByType, quint8 terminalClass) const;
    TerminalTypePtr findType(const TerminalIdentity& model) const;

    const ParamTables& tables;
    const TerminalTypes& types;
};
