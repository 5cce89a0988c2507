#include "link/DeviceTime.h"

#include "domain/bcd.h"
#include "link/message.h"
#include "texts/texts.h"

namespace devicetime
{

namespace
{

constexpr int Second = 0;
constexpr int Minute = 1;
constexpr int Hour = 2;
constexpr int Day = 3;
constexpr int Weekday = 4;
constexpr int Month = 5;
constexpr int Year = 6;

char bcdByte(int value)
{
    return static_cast<char>(toBcd(static_cast<quint8>(value)));
}

QString twoDigits(const QByteArray& payload, int offset)
{
    return QStringLiteral("%1").arg(fromBcd(static_cast<quint8>(payload.at(offset))), 2, 10, QLatin1Char('0'));
}

QString weekdayName(int day)
{
    const QStringList names{texts::daySunday(),   texts::dayMonday(), texts::dayTuesday(), texts::dayWednesday(),
                            texts::dayThursday(), texts::dayFriday(), texts::daySaturday()};
    return names.value(day, QStringLiteral("???"));
}

} // namespace

QByteArray toBytes(const QDateTime& time)
{
    QByteArray bytes(Year + 1, '\0');
    bytes[Second] = bcdByte(time.time().second());
    bytes[Minute] = bcdByte(time.time().minute());
    bytes[Hour] = bcdByte(time.time().hour());
    bytes[Day] = bcdByte(time.date().day());
    bytes[Weekday] = static_cast<char>(time.date().dayOfWeek() % 7);
    bytes[Month] = bcdByte(time.date().month());
    bytes[Year] = bcdByte(time.date().year() % 100);
    return bytes;
}

Shown fromAnswer(const message& answer)
{
    // The codes of a unit without a clock; they count even if data come with them.
    if (answer.answerCode() == 3 || answer.answerCode() == 5) {
        return {texts::statusTimeNotSupported(), false};
    }
    const QByteArray& payload = answer.payload();
    Shown shown{QStringLiteral("--:--:-- --.--.----"), false};
    if (payload.size() > Hour) {
        shown.text = QStringLiteral("%1:%2:%3 ")
                         .arg(twoDigits(payload, Hour), twoDigits(payload, Minute), twoDigits(payload, Second));
    }
    if (payload.size() > Year) {
        shown.text += QStringLiteral("%1.%2.20%3, ")
                          .arg(twoDigits(payload, Day), twoDigits(payload, Month), twoDigits(payload, Year)) +
                      weekdayName(static_cast<quint8>(payload.at(Weekday)));
        shown.correct = true;
    }
    return shown;
}

} // namespace devicetime
