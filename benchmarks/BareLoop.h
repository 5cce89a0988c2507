#pragma once

#include "benchmarks/Figures.h"
#include "simulator/UnitRequest.h"

#include <QVector>

class QString;
class UnitSimulator;

/// What the program's exchanges are measured by: the same bytes over the same kind of line, in a loop of write, poll
/// and read that does nothing else.
namespace bareLoop
{

/// Sends each request, at its rate, and waits for as many bytes as its answer has. Returns false if the line broke or
/// fell silent.
bool run(const QString& portName, const QVector<UnitRequest>& pattern);

/// The milliseconds of such a loop over a unit, from the first request's first byte to the last answer's last; not a
/// number if it couldn't be run.
double timeOver(const UnitSimulator& unit, const QVector<UnitRequest>& pattern);

} // namespace bareLoop
