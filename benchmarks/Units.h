#pragma once

#include "eventlog/EventOfTable.h"
#include "simulator/UnitState.h"

#include <QByteArrayList>
#include <QList>
#include <QSharedPointer>

class RelayInfo;

/// Units and configurations that several benchmarks work on.
namespace units
{

/// A unit with ten terminals of all classes and a log of so many records.
UnitState installation(int logRecords);

/// Records of an event log, of every code and class of event.
QByteArrayList logRecords(int count);

constexpr int wholeLog = 32767; ///< records of the largest log

/// The rows of the largest log, numbered, in the batches that the program writes.
QList<QList<EventOfTable>> logBatches();

/// What a unit tells of so many executive terminals with two outputs each, the first one at address 1.
QByteArrayList terminalRecords(int count);

/// A model of the head unit, 31 terminals with so many outputs each, and 32 scripts, all of them in use.
QSharedPointer<RelayInfo> fullModel(int outputsOfTerminal);

} // namespace units
