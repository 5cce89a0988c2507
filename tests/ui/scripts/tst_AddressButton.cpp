#include "ui/scripts/AddressButton.h"

#include <QTest>

class tst_AddressButton : public QObject
{
    Q_OBJECT

private slots:
    void styleTellsSelectionAndFit_data();
    void styleTellsSelectionAndFit();
    void headUnitHasARingEvenIfUnreported();
    void toolTipNamesTheTerminal();
    void toolTipShowsOddNamesAsTheyAre();
};

void tst_AddressButton::styleTellsSelectionAndFit_data()
{
    QTest::addColumn<bool>("selected");
    QTest::addColumn<bool>("filterOff");
    QTest::addColumn<bool>("reported");
    QTest::addColumn<bool>("compatible");
    QTest::addColumn<QString>("style");
    const QString start = QStringLiteral("QPushButton{background-color: rgb(%1); border-radius: 11px; ");
    const QString end = QStringLiteral("} QToolTip {background-color: #F4F4F4; border-style: none;}");
    const QString ring = QStringLiteral("border-style: solid; border-width:3px; border-color: rgb(%1);");
    const QString grey = start.arg(QStringLiteral("230, 230, 230"));
    const QString dark = start.arg(QStringLiteral("68, 220, 0"));
    const QString light = start.arg(QStringLiteral("68, 255, 0"));
    const QString green = ring.arg(QStringLiteral("0, 120, 0"));
    const QString red = ring.arg(QStringLiteral("120, 0, 0"));
    QTest::newRow("neither selected nor reported") << false << false << false << true << grey + end;
    QTest::newRow("the same with the filter off") << false << true << false << true << grey + end;
    QTest::newRow("selected, filter off") << true << true << false << true << dark + end;
    QTest::newRow("selected, filter on") << true << false << false << true << light + end;
    QTest::newRow("reported and fitting") << false << false << true << true << grey + green + end;
    QTest::newRow("reported and unfit") << false << false << true << false << grey + red + end;
    QTest::newRow("selected, reported, fitting") << true << false << true << true << light + green + end;
    QTest::newRow("selected, reported, unfit, off") << true << true << true << false << dark + red + end;
}

void tst_AddressButton::styleTellsSelectionAndFit()
{
    QFETCH(const bool, selected);
    QFETCH(const bool, filterOff);
    QFETCH(const bool, reported);
    QFETCH(const bool, compatible);
    QFETCH(const QString, style);
    AddressButton button;
    button.address = 7;
    button.selected = selected;
    button.filterOff = filterOff;
    button.compatible = compatible;
    if (reported) {
        button.terminal = ConnectedTerminalPtr::create();
    }
    QCOMPARE(addressButtonStyle(button), style);
}

void tst_AddressButton::headUnitHasARingEvenIfUnreported()
{
    AddressButton button;
    button.address = 0;
    QVERIFY(addressButtonStyle(button).contains(QLatin1String("border-color: rgb(0, 120, 0);")));
    button.compatible = false;
    QVERIFY(addressButtonStyle(button).contains(QLatin1String("border-color: rgb(120, 0, 0);")));
}

void tst_AddressButton::toolTipNamesTheTerminal()
{
    ConnectedTerminal terminal;
    terminal.label = QStringLiteral("Haldeon-NX %2");
    terminal.terminalClass = 2;
    terminal.version = 10;
    terminal.type = 0x4;
    terminal.characteristic = 0x20;
    QCOMPARE(addressButtonToolTip(terminal),
             QStringLiteral("<p align=\"center\" style=\"margin-bottom:7px; margin-top:0px\"><b>Haldeon-NX %2</b></p>"
                            "<p align=\"center\" style=\"margin-bottom:7px; margin-top:0px\">(2a 04 20)</p>"));
}

void tst_AddressButton::toolTipShowsOddNamesAsTheyAre()
{
    ConnectedTerminal terminal;
    terminal.label = QStringLiteral("<b>A & B");
    QVERIFY(addressButtonToolTip(terminal).contains(QLatin1String("<b>&lt;b&gt;A &amp; B</b>")));
}

QTEST_MAIN(tst_AddressButton)
#include "tst_AddressButton.moc"
