#include "simulator/LogRing.h"

#include <QtTest>

class tst_LogRing : public QObject
{
    Q_OBJECT
private slots:
    void emptyRing();
    void countsAndKeeps_data();
    void countsAndKeeps();
    void capacityStaysWithinTheCounter_data();
    void capacityStaysWithinTheCounter();
    void indexOutsideGivesNothing();
    void clearStartsAnew();
};

namespace
{
QByteArray record(int number)
{
    return QByteArray::number(number).rightJustified(LogRing::recordSize, '0');
}

LogRing filled(int capacity, int count)
{
    LogRing ring(capacity);
    for (int number = 1; number <= count; ++number) {
        ring.append(record(number));
    }
    return ring;
}
} // namespace

void tst_LogRing::emptyRing()
{
    const LogRing ring(10);
    QCOMPARE(ring.size(), 0);
    QCOMPARE(ring.counter(), quint16(0));
    QVERIFY(!ring.wrapped());
    QVERIFY(ring.records().isEmpty());
}

void tst_LogRing::countsAndKeeps_data()
{
    QTest::addColumn<int>("count");
    QTest::addColumn<int>("size");
    QTest::addColumn<int>("counter");
    QTest::addColumn<bool>("wrapped");
    QTest::addColumn<int>("oldest");
    QTest::newRow("one record") << 1 << 1 << 1 << false << 1;
    QTest::newRow("one less than full") << 4 << 4 << 4 << false << 1;
    QTest::newRow("full, nothing overwritten") << 5 << 5 << 5 << false << 1;
    QTest::newRow("first record overwritten") << 6 << 5 << 1 << true << 2;
    QTest::newRow("twice round") << 10 << 5 << 5 << true << 6;
    QTest::newRow("third time") << 13 << 5 << 3 << true << 9;
}

void tst_LogRing::countsAndKeeps()
{
    QFETCH(int, count);
    QFETCH(int, size);
    QFETCH(int, counter);
    QFETCH(bool, wrapped);
    QFETCH(int, oldest);
    const LogRing ring = filled(5, count);
    QCOMPARE(ring.size(), size);
    QCOMPARE(ring.written(), qint64(count));
    QCOMPARE(int(ring.counter()), counter);
    QCOMPARE(ring.wrapped(), wrapped);
    QByteArrayList expected;
    for (int number = oldest; number <= count; ++number) {
        expected.append(record(number));
    }
    QCOMPARE(ring.records(), expected);
    QCOMPARE(ring.at(0), record(oldest));
    QCOMPARE(ring.at(size - 1), record(count));
}

void tst_LogRing::capacityStaysWithinTheCounter_data()
{
    QTest::addColumn<int>("wanted");
    QTest::addColumn<int>("given");
    QTest::newRow("none") << 0 << 1;
    QTest::newRow("negative") << -4 << 1;
    QTest::newRow("largest") << 32767 << 32767;
    QTest::newRow("more than fifteen bits") << 32768 << 32767;
}

void tst_LogRing::capacityStaysWithinTheCounter()
{
    QFETCH(int, wanted);
    QFETCH(int, given);
    QCOMPARE(LogRing(wanted).capacity(), given);
}

void tst_LogRing::indexOutsideGivesNothing()
{
    const LogRing ring = filled(5, 7);
    QVERIFY(ring.at(-1).isEmpty());
    QVERIFY(ring.at(5).isEmpty());
}

void tst_LogRing::clearStartsAnew()
{
    LogRing ring = filled(5, 7);
    ring.clear();
    QCOMPARE(ring.counter(), quint16(0));
    QVERIFY(!ring.wrapped());
    ring.append(record(1));
    QCOMPARE(ring.records(), QByteArrayList{record(1)});
}

QTEST_GUILESS_MAIN(tst_LogRing)
#include "tst_LogRing.moc"
