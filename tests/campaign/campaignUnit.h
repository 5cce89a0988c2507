#pragma once

#include "simulator/UnitState.h"

#include <QByteArray>
#include <QString>

/// What the unit of the campaign holds: a configuration that survives a file, terminals of all classes, and ten events.
UnitState campaignUnit();

/// The same with nothing of what is written into it.
UnitState blankCampaignUnit();

/// Another configuration, for what a program holds before it reads.
UnitState otherUnit();

/// A firmware of several blocks.
QByteArray campaignImage();

/// Writes the configuration of a unit, as a reading gives it, into a file.
void saveConfiguration(const UnitState& state, const QString& path);

/// Whether a configuration file, written into a unit, makes it hold what this one holds.
bool fileHolds(const QString& path, const UnitState& state);

QByteArray contentOf(const QString& path);
