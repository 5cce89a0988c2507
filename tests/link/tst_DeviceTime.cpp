#include "Answers.h"
#include "link/DeviceTime.h"
#include "link/protocol_HUBN_NX_Q.h"

#include <QtTest>

class tst_DeviceTime : public QObject
{
    Q_OBJECT

private slots:
    void writesTheSevenBytesOfAMoment_data();
    void writesTheSevenBytesOfAMoment();
    void showsWhatTheUnitAnswers_data();
    void showsWhatTheUnitAnswers();
    void showsNotSupportedEvenIfDataCame_data();
    void showsNotSupportedEvenIfDataCame();
};

void tst_DeviceTime::writesTheSevenBytesOfAMoment_data()
{
    QTest::addColumn<QDateTime>("time");
    QTest::addColumn<QByteArray>("bytes");
    const auto moment = [](int year, int month, int day, int hour, int minute, int second) {
        return QDateTime(QDate(year, month, day), QTime(hour, minute, second));
    };
    QTest::newRow("a Friday") << moment(2020, 9, 25, 12, 34, 56) << QByteArray::fromHex("56341225050920");
    QTest::newRow("a Sunday is day 0") << moment(2023, 12, 31, 23, 59, 59) << QByteArray::fromHex("59592331001223");
    QTest::newRow("a Monday is day 1") << moment(2024, 1, 1, 0, 0, 0) << QByteArray::fromHex("00000001010124");
    QTest::newRow("a Saturday is day 6") << moment(2000, 1, 1, 1, 2, 3) << QByteArray::fromHex("03020101060100");
    QTest::newRow("the year without its century")
        << moment(2199, 10, 10, 10, 10, 10) << QByteArray::fromHex("10101010041099");
}

void tst_DeviceTime::writesTheSevenBytesOfAMoment()
{
    QFETCH(QDateTime, time);
    QTEST(devicetime::toBytes(time), "bytes");
}

void tst_DeviceTime::showsWhatTheUnitAnswers_data()
{
    QTest::addColumn<QByteArray>("payload");
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("correct");
    QTest::newRow("all of it") << QByteArray::fromHex("56341225050920") << QStringLiteral("12:34:56 25.09.2020, FRI")
                               << true;
    QTest::newRow("leading zeros") << QByteArray::fromHex("01020304000501")
                                   << QStringLiteral("03:02:01 04.05.2001, SUN") << true;
    QTest::newRow("Monday") << QByteArray::fromHex("01020304010501") << QStringLiteral("03:02:01 04.05.2001, MON")
                            << true;
    QTest::newRow("Tuesday") << QByteArray::fromHex("01020304020501") << QStringLiteral("03:02:01 04.05.2001, TUE")
                             << true;
    QTest::newRow("Wednesday") << QByteArray::fromHex("01020304030501") << QStringLiteral("03:02:01 04.05.2001, WED")
                               << true;
    QTest::newRow("Thursday") << QByteArray::fromHex("01020304040501") << QStringLiteral("03:02:01 04.05.2001, THU")
                              << true;
    QTest::newRow("Saturday") << QByteArray::fromHex("01020304060501") << QStringLiteral("03:02:01 04.05.2001, SAT")
                              << true;
    QTest::newRow("a day that no week has")
        << QByteArray::fromHex("01020304070501") << QStringLiteral("03:02:01 04.05.2001, ???") << true;
    QTest::newRow("a large day of the week")
        << QByteArray::fromHex("01020304ff0501") << QStringLiteral("03:02:01 04.05.2001, ???") << true;
    QTest::newRow("bytes that aren't decimal")
        << QByteArray::fromHex("0a1bff04000501") << QStringLiteral("165:21:10 04.05.2001, SUN") << true;
    QTest::newRow("one byte more") << QByteArray::fromHex("5634122505092077")
                                   << QStringLiteral("12:34:56 25.09.2020, FRI") << true;
    QTest::newRow("the year is missing") << QByteArray::fromHex("563412250509") << QStringLiteral("12:34:56 ") << false;
    QTest::newRow("time only") << QByteArray::fromHex("563412") << QStringLiteral("12:34:56 ") << false;
    QTest::newRow("too short") << QByteArray::fromHex("5634") << QStringLiteral("--:--:-- --.--.----") << false;
    QTest::newRow("nothing") << QByteArray() << QStringLiteral("--:--:-- --.--.----") << false;
}

void tst_DeviceTime::showsWhatTheUnitAnswers()
{
    QFETCH(QByteArray, payload);
    const message request = protocol_HUBN_NX_Q::requestDeviceTime(1);
    const devicetime::Shown shown =
        devicetime::fromAnswer(payload.isEmpty() ? answers::timedOut(request) : answers::good(request, payload));
    QTEST(shown.text, "text");
    QTEST(shown.correct, "correct");
}

void tst_DeviceTime::showsNotSupportedEvenIfDataCame_data()
{
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("text");
    QTest::newRow("code 3") << 3 << QStringLiteral("Not supported");
    QTest::newRow("code 5") << 5 << QStringLiteral("Not supported");
    QTest::newRow("another refusal doesn't hide the data") << 4 << QStringLiteral("12:34:56 25.09.2020, FRI");
}

void tst_DeviceTime::showsNotSupportedEvenIfDataCame()
{
    QFETCH(int, code);
    const message answer =
        answers::refused(protocol_HUBN_NX_Q::requestDeviceTime(1), code, QByteArray::fromHex("56341225050920"));
    const devicetime::Shown shown = devicetime::fromAnswer(answer);
    QTEST(shown.text, "text");
    QCOMPARE(shown.correct, code == 4);
}

QTEST_GUILESS_MAIN(tst_DeviceTime)
#include "tst_DeviceTime.moc"
