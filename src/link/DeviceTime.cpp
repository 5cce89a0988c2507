#include "link/DeviceTime.h"

#include "domain/bcd.h"
#include "link/message.h"
#include "texts/texts.h"

namespace devicetime
{

namespace
{

constexpr int secondAt = 0;
constexpr int minuteAt = 1;
constexpr int hourAt = 2;
constexpr int dayAt = 3;
constexpr int weekdayAt = 4;
constexpr int monthAt = 5;
constexpr int yearAt = 6;

constexpr int firstYear = 2000; ///< of the century that the unit knows

char bcdByte(int value)
{
    return char(toBcd(quint8(value)));
}

QString twoDigits(const QByteArray& payload, int offset)
{
    return QStringLiteral("%1").arg(fromBcd(quint8(payload.at(offset))), 2, 10, QLatin1Char('0'));
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
    QByteArray bytes(yearAt + 1, '\0');
    bytes[secondAt] = bcdByte(time.time().second());
    bytes[minuteAt] = bcdByte(time.time().minute());
    bytes[hourAt] = bcdByte(time.time().hour());
    bytes[dayAt] = bcdByte(time.date().day());
    bytes[weekdayAt] = char(time.date().dayOfWeek() % 7);
    bytes[monthAt] = bcdByte(time.date().month());
    bytes[yearAt] = bcdByte(time.date().year() % 100);
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
    if (payload.size() > hourAt) {
        shown.text = QStringLiteral("%1:%2:%3 ")
                         .arg(twoDigits(payload, hourAt), twoDigits(payload, minuteAt), twoDigits(payload, secondAt));
    }
    if (payload.size() > yearAt) {
        shown.text += QStringLiteral("%1.%2.20%3, ")
                          .arg(twoDigits(payload, dayAt), twoDigits(payload, monthAt), twoDigits(payload, yearAt)) +
                      weekdayName(quint8(payload.at(weekdayAt)));
        shown.correct = true;
    }
    return shown;
}

QDateTime valueOf(const message& answer)
{
    const QByteArray& payload = answer.payload();
    if (payload.size() <= yearAt) {
        return {};
    }
    const auto number = [&payload](int offset) { return int(fromBcd(quint8(payload.at(offset)))); };
    return {QDate(firstYear + number(yearAt), number(monthAt), number(dayAt)),
            QTime(number(hourAt), number(minuteAt), number(secondAt))};
}

} // namespace devicetime
