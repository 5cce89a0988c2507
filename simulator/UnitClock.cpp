#include "simulator/UnitClock.h"

#include <array>

namespace
{
constexpr int Length = 7;
constexpr int DaysOfWeek = 7;

char bcd(int value)
{
    return char((value / 10 % 10) << 4 | value % 10);
}

/* -1 if one of the digits isn't one. */
int fromBcd(char byte)
{
    const auto value = static_cast<quint8>(byte);
    return value >> 4 > 9 || (value & 0x0F) > 9 ? -1 : (value >> 4) * 10 + (value & 0x0F);
}

/* The reading of the clock on the wall, put into a scale without summer time. */
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
    for (const char byte :
         {bcd(time.time().second()), bcd(time.time().minute()), bcd(time.time().hour()), bcd(date.day()),
          char(date.dayOfWeek() % DaysOfWeek), bcd(date.month()), bcd(date.year())}) {
        bytes.append(byte);
    }
    return bytes;
}

QDateTime UnitClock::decoded(const QByteArray& bytes)
{
    if (bytes.size() != Length) {
        return {};
    }
    const QTime time(fromBcd(bytes.at(2)), fromBcd(bytes.at(1)), fromBcd(bytes.at(0)));
    const int year = fromBcd(bytes.at(6));
    const QDate date(year < 0 ? 0 : 2000 + year, fromBcd(bytes.at(5)), fromBcd(bytes.at(3)));
    return time.isValid() && date.isValid() ? QDateTime(date, time, Qt::UTC) : QDateTime();
}
