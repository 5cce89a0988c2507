#include "model/format.h"

#include <QColor>
#include <QTest>

/// Display texts.
class tst_format : public QObject
{
    Q_OBJECT

private slots:
    void numberedNamesCountFromOne();
    void namesAreShownAsTheyAre();
    void theHeadUnitHasNoAddressInItsTitle();
    void outputTitlesNameTerminalAndOutput();
    void colorNamesAreLowerCaseWithoutAlpha();
    void modelCodesAreHexadecimal_data();
    void modelCodesAreHexadecimal();
};

void tst_format::numberedNamesCountFromOne()
{
    QCOMPARE(numberedName(QStringLiteral("Siren"), 0), QStringLiteral("1. Siren"));
    QCOMPARE(numberedName(QString(), 31), QStringLiteral("32. "));
}

void tst_format::namesAreShownAsTheyAre()
{
    // A name may look like a place marker of the format.
    QCOMPARE(numberedName(QStringLiteral("%1 %2"), 4), QStringLiteral("5. %1 %2"));
    QCOMPARE(terminalTitle(QStringLiteral("%2"), 5), QStringLiteral("%2 (5)"));
    QCOMPARE(outputTitle(QStringLiteral("%3"), 5, QStringLiteral("%4"), 0), QStringLiteral("%3 #5(%4 1)"));
}

void tst_format::theHeadUnitHasNoAddressInItsTitle()
{
    QCOMPARE(terminalTitle(QStringLiteral("HUBN-NX-Q"), 0), QStringLiteral("HUBN-NX-Q"));
    QCOMPARE(terminalTitle(QStringLiteral("Haldeon-NX"), 5), QStringLiteral("Haldeon-NX (5)"));
}

void tst_format::outputTitlesNameTerminalAndOutput()
{
    QCOMPARE(outputTitle(QStringLiteral("HUBN-NX-Q"), 0, QStringLiteral("Internal relay"), 0),
             QStringLiteral("HUBN-NX-Q (Internal relay 1)"));
    QCOMPARE(outputTitle(QStringLiteral("Haldeon-NX"), 5, QStringLiteral("Output"), 1),
             QStringLiteral("Haldeon-NX #5(Output 2)"));
}

void tst_format::colorNamesAreLowerCaseWithoutAlpha()
{
    QCOMPARE(colorName(QColor(30, 144, 255, 150)), QStringLiteral("#1e90ff"));
    QCOMPARE(colorName(QColor(0, 255, 17)), QStringLiteral("#00ff11"));
}

void tst_format::modelCodesAreHexadecimal_data()
{
    QTest::addColumn<int>("terminalClass");
    QTest::addColumn<int>("version");
    QTest::addColumn<int>("type");
    QTest::addColumn<int>("characteristic");
    QTest::addColumn<QString>("code");

    QTest::newRow("a siren") << 2 << 1 << 0x41 << 0x20 << QStringLiteral("21 41 20");
    QTest::newRow("padded, lower case") << 0 << 0xA << 0x0B << 0x0C << QStringLiteral("0a 0b 0c");
    QTest::newRow("decimal class") << 15 << 0 << 0 << 0 << QStringLiteral("150 00 00");
}

void tst_format::modelCodesAreHexadecimal()
{
    QFETCH(int, terminalClass);
    QFETCH(int, version);
    QFETCH(int, type);
    QFETCH(int, characteristic);
    QTEST(modelCode(quint8(terminalClass), quint8(version), quint8(type), quint8(characteristic)), "code");
}

QTEST_GUILESS_MAIN(tst_format)
#include "tst_format.moc"
