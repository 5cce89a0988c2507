#include "simulator/UnitClock.h"

#include "simulator/bcd.h"

#include <array>

namespace
{
constexpr int length = 7;
constexpr int daysOfWeek = 7;

/// The reading of the clock on the wall, put into a scale without summer time.
QDateTime localNow()
{
    const QDateTime now = QDateTime::currentDateTime();
    return {now.date(), now.time(), Qt::UTC};
}

} // namespace

QDateTime UnitClock::now(qint64 offset)
{
    return localNow().addSecs(offset);
}

qint64 UnitClock::offsetFor(const QDateTime& time)
{
    const QDateTime now = localNow();
    return QDateTime(now.date(), QTime(now.time().hour(), now.time().minute(), now.time().second()), Qt::UTC)
        .secsTo(time);
}

QByteArray UnitClock::encoded(const QDateTime& time)
{
    const QDate date = time.date();
    QByteArray bytes;
    for (const int byte : {toBcd(time.time().second()), toBcd(time.time().minute()), toBcd(time.time().hour()),
                           toBcd(date.day()), date.dayOfWeek() % daysOfWeek, toBcd(date.month()), toBcd(date.year())}) {
        bytes.append(char(byte));
    }
    return bytes;
}

QDateTime UnitClock::decoded(const QByteArray& bytes)
{
    if (bytes.size() != length) {
        return {};
    }
    const QTime time(fromBcd(bytes.at(2)), fromBcd(bytes.at(1)), fromBcd(bytes.at(0)));
    const int year = fromBcd(bytes.at(6));
    const QDate date(year < 0 ? 0 : 2000 + year, fromBcd(bytes.at(5)), fromBcd(bytes.at(3)));
    return time.isValid() && date.isValid() ? QDateTime(date, time, Qt::UTC) : QDateTime();
}
