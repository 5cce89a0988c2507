#pragma once

#include <QStringList>

class RelayInfo;

/// What an engineer should look at before he leaves, a sentence each: scripts and outputs that wait for each other in
/// vain, scripts that nobody can set off, states that a unit can't tell apart. With `isRead`, for a model that was read
/// from a unit, terminals that aren't connected too.
QStringList reportChecks(const RelayInfo& model, bool isRead);
