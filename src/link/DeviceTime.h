#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QString>

class message;

/// The unit's clock: how it is set and how it is shown. Stateless; any thread.
namespace devicetime
{

struct Shown
{
    QString text;
    bool correct = false; ///< the whole time could be read
};

/// The seven bytes that set the clock: second, minute, hour, day, day of the week with Sunday as 0, month, year of the
/// century; all in BCD but the day of the week.
QByteArray toBytes(const QDateTime& time);

/// What the user sees of an answer to the request for the time, however much of it there is.
Shown fromAnswer(const message& answer);

/// The time that a whole answer gives, as local time; invalid if there is no such time.
QDateTime valueOf(const message& answer);

} // namespace devicetime
