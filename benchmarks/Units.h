#pragma once

#include <QByteArrayList>
#include <QSharedPointer>

#include "simulator/UnitState.h"

class RelayInfo;

/// Units and configurations that several benchmarks work on.
namespace units
{

/// A unit with ten terminals of all classes and a log of so many records.
UnitState installation(int logRecords);

/// Records of an event log, of every code and class of event.
QByteArrayList logRecords(int count);

/// A model of 32 terminals, the head unit among them, with 8 outputs each and 32 scripts, all of them in use.
QSharedPointer<RelayInfo> fullModel();

} // namespace units
