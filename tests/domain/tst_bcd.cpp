#include "domain/bcd.h"

#include <QTest>

class tst_bcd : public QObject
{
    Q_OBJECT

private slots:
    void packingKeepsTheLastTwoDigits_data();
    void packingKeepsTheLastTwoDigits();
    void unpackingTakesWhateverTheHalvesHold();
    void everyNumberBelowHundredComesBack();
};

void tst_bcd::packingKeepsTheLastTwoDigits_data()
{
    QTest::addColumn<int>("value");
    QTest::addColumn<int>("packed");

    QTest::newRow("zero") << 0 << 0x00;
    QTest::newRow("one digit") << 9 << 0x09;
    QTest::newRow("two digits") << 45 << 0x45;
    QTest::newRow("the greatest") << 99 << 0x99;
    QTest::newRow("three digits") << 145 << 0x45;
    QTest::newRow("255") << 255 << 0x55;
}

void tst_bcd::packingKeepsTheLastTwoDigits()
{
    QFETCH(int, value);
    QTEST(int(toBcd(quint8(value))), "packed");
}

void tst_bcd::unpackingTakesWhateverTheHalvesHold()
{
    QCOMPARE(int(fromBcd(0x45)), 45);
    QCOMPARE(int(fromBcd(0x7F)), 85);
    QCOMPARE(int(fromBcd(0xFF)), 165);
}

void tst_bcd::everyNumberBelowHundredComesBack()
{
    for (int value = 0; value < 100; ++value) {
        QCOMPARE(int(fromBcd(toBcd(quint8(value)))), value);
    }
}

QTEST_GUILESS_MAIN(tst_bcd)
#include "tst_bcd.moc"
