#pragma once

#include <QByteArray>
#include <QDateTime>

/// The clock of a unit: local time without time zone, as an offset to this machine's clock, and its seven bytes:
/// second, minute, hour, day, day of the week (plain, Sunday 0), month, year of the century; BCD but for the day of the
/// week.
namespace UnitClock
{
QDateTime now(qint64 offset);
qint64 offsetFor(const QDateTime& time);

QByteArray encoded(const QDateTime& time);
/// Invalid if the bytes are no time. The day of the week isn't looked at.
QDateTime decoded(const QByteArray& bytes);
} // namespace UnitClock
