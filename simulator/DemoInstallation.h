#pragma once

#include "simulator/UnitState.h"

#include <QDateTime>

/// The unit of a small office building with a warehouse: smoke and motion detectors, sirens, an exit sign, a fault
/// lamp, ventilation, heating, door locks, panic buttons and thermometers, the scripts that tie them together, and a
/// log that ends at `now`. The same arguments give the same unit.
UnitState demoInstallation(quint32 seed, int events, const QDateTime& now);
