#pragma once

#include "simulator/UnitState.h"

#include <QByteArray>
#include <QString>

#include <optional>

/// What a unit remembers, as text: one "key = value" to a line, blank lines and lines that begin with "#" don't count.
/// Bytes are hexadecimal. A key that is missing leaves the factory's value; the keys terminal, output, script, event
/// and firmware may come any number of times. The text that write() gives explains itself.
namespace StateFile
{
QByteArray write(const UnitState& state);
/// Empty if a line makes no sense; `error` then names it.
std::optional<UnitState> read(const QByteArray& text, QString* error);

/// The same with a file. A file is replaced as a whole or not at all.
bool save(const UnitState& state, const QString& fileName, QString* error);
std::optional<UnitState> load(const QString& fileName, QString* error);
} // namespace StateFile
