#include "simulator/LogGenerator.h"

#include <QSet>
#include <QtTest>

class tst_LogGenerator : public QObject
{
    Q_OBJECT
private slots:
    void timeIsPackedIntoFourBytes();
    void sameSeedSameRecords();
    void everythingCoversEveryCodeAndClass();
    void everythingComesWithinACycle();
    void everythingHasImpossibleTimes();
    void plausibleTellsOfItsTerminalsOnly();
    void plausibleChangesFollowOnEachOther();
    void historyEndsAtItsEnd();
};

namespace
{
const QDateTime afternoon(QDate(2020, 9, 25), QTime(14, 37), Qt::UTC);

struct Fields
{
    int terminalClass;
    int type;
    int code;
    int address;
    QByteArray data;
};

Fields fieldsOf(const QByteArray& record)
{
    const auto at = [&record](int index) { return int(quint8(record.at(index))); };
    return {at(4) >> 4, at(5), at(9), at(10), record.mid(11)};
}

/// Minutes of 2000 and later, from the packed time.
qint64 minutesOf(const QByteArray& record)
{
    const auto at = [&record](int index) { return int(quint8(record.at(index))); };
    const auto bcd = [](int byte) { return (byte >> 4) * 10 + (byte & 15); };
    const int year = (at(0) & 0x80) | (at(1) & 0xC0) >> 1 | (at(2) & 0xC0) >> 3 | (at(3) & 0xE0) >> 5;
    const QDate date(2000 + bcd(year), bcd(at(3) & 0x1F), bcd(at(2) & 0x3F));
    return QDate(2000, 1, 1).daysTo(date) * 1440 + bcd(at(1) & 0x3F) * 60 + bcd(at(0) & 0x7F);
}

QVector<UnitTerminal> someTerminals()
{
    return {UnitTerminal::make(3, 2, 1, 0x41, 0x20), UnitTerminal::make(7, 1, 1, 0x41, 0x10),
            UnitTerminal::make(11, 3, 1, 0x30, 0x10), UnitTerminal::make(15, 4, 1, 0x15, 0x23)};
}
} // namespace

void tst_LogGenerator::timeIsPackedIntoFourBytes()
{
    LogGenerator generator(1, LogGenerator::Plausible);
    const QByteArray record = generator.next(afternoon);
    QCOMPARE(record.size(), 16);
    QCOMPARE(record.left(4), QByteArray::fromHex("37 54 25 09"));
    const QDateTime late(QDate(2099, 12, 31), QTime(23, 59), Qt::UTC);
    QCOMPARE(generator.next(late).left(4), QByteArray::fromHex("D9 23 F1 32"));
}

void tst_LogGenerator::sameSeedSameRecords()
{
    for (const auto variety : {LogGenerator::Plausible, LogGenerator::Everything}) {
        const QByteArrayList first = LogGenerator(5, variety, someTerminals()).history(500, afternoon);
        QCOMPARE(LogGenerator(5, variety, someTerminals()).history(500, afternoon), first);
        QVERIFY(LogGenerator(6, variety, someTerminals()).history(500, afternoon) != first);
    }
}

void tst_LogGenerator::everythingCoversEveryCodeAndClass()
{
    LogGenerator generator(3, LogGenerator::Everything);
    QSet<int> codes;
    QSet<int> classes;
    QSet<int> classesOfChannelEvents;
    const QByteArrayList records = generator.history(5000, afternoon);
    for (const QByteArray& record : records) {
        QCOMPARE(record.size(), 16);
        const Fields fields = fieldsOf(record);
        codes.insert(fields.code);
        classes.insert(fields.terminalClass);
        if (fields.code == 1) {
            classesOfChannelEvents.insert(fields.terminalClass);
        }
    }
    QCOMPARE(classes.size(), 16);
    QCOMPARE(classesOfChannelEvents.size(), 16);
    for (const int code : {0, 1, 2, 3}) {
        QVERIFY(codes.contains(code));
    }
    QVERIFY(codes.size() > 100); // unknown ones as well
}

void tst_LogGenerator::everythingComesWithinACycle()
{
    LogGenerator generator(9, LogGenerator::Everything);
    QSet<QPair<int, int>> seen;
    const QByteArrayList records = generator.history(generator.cycleLength(), afternoon);
    for (const QByteArray& record : records) {
        const Fields fields = fieldsOf(record);
        seen.insert({fields.address, qMin(fields.code, 4)});
    }
    QCOMPARE(seen.size(), generator.cycleLength()); // each terminal with each of its events
}

void tst_LogGenerator::everythingHasImpossibleTimes()
{
    LogGenerator generator(2, LogGenerator::Everything);
    int impossible = 0;
    for (int count = 0; count < 1000; ++count) {
        impossible += generator.next(afternoon).left(4) == QByteArray::fromHex("37 54 25 09") ? 0 : 1;
    }
    QVERIFY(impossible > 0);
    QVERIFY(impossible < 100);
}

void tst_LogGenerator::plausibleTellsOfItsTerminalsOnly()
{
    LogGenerator generator(4, LogGenerator::Plausible, someTerminals());
    QMap<int, int> classOfAddress;
    const QByteArrayList records = generator.history(2000, afternoon);
    for (const QByteArray& record : records) {
        const Fields fields = fieldsOf(record);
        QVERIFY(fields.code >= 0 && fields.code <= 3);
        classOfAddress[fields.address] = fields.terminalClass;
    }
    QCOMPARE(classOfAddress, (QMap<int, int>{{0, 0}, {3, 2}, {7, 1}, {11, 3}, {15, 4}}));
}

void tst_LogGenerator::plausibleChangesFollowOnEachOther()
{
    LogGenerator generator(8, LogGenerator::Plausible, someTerminals());
    QMap<int, char> status;
    const QByteArrayList records = generator.history(2000, afternoon);
    int changes = 0;
    for (const QByteArray& record : records) {
        const Fields fields = fieldsOf(record);
        if (fields.code == 2) {
            QCOMPARE(fields.data.at(0), status.value(fields.address, '\0'));
            QVERIFY(fields.data.at(1) != fields.data.at(0));
            status[fields.address] = fields.data.at(1);
            ++changes;
        }
    }
    QVERIFY(changes > 100);
}

void tst_LogGenerator::historyEndsAtItsEnd()
{
    LogGenerator generator(1, LogGenerator::Plausible, someTerminals());
    const QByteArrayList records = generator.history(300, afternoon);
    QCOMPARE(records.size(), 300);
    QCOMPARE(records.last().left(4), QByteArray::fromHex("37 54 25 09"));
    qint64 before = 0;
    for (const QByteArray& record : records) {
        QVERIFY(minutesOf(record) >= before);
        before = minutesOf(record);
    }
    QVERIFY(LogGenerator(1, LogGenerator::Plausible).history(0, afternoon).isEmpty());
}

QTEST_GUILESS_MAIN(tst_LogGenerator)
#include "tst_LogGenerator.moc"
