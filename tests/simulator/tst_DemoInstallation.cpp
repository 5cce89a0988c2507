#include "simulator/DemoInstallation.h"

#include <QSet>
#include <QtTest>

class tst_DemoInstallation : public QObject
{
    Q_OBJECT
private slots:
    void sameArgumentsSameUnit();
    void hasTerminalsOfEveryClass();
    void recordsTellTheNumberOfOutputs();
    void scriptsAreWholeAndUsed();
    void scriptFieldsStandInTheirPlaces();
    void logEndsNow();
};

namespace
{
const QDateTime noon(QDate(2024, 3, 4), QTime(12, 0), Qt::UTC);
} // namespace

void tst_DemoInstallation::sameArgumentsSameUnit()
{
    QVERIFY(demoInstallation(1, 300, noon) == demoInstallation(1, 300, noon));
    QVERIFY(demoInstallation(1, 300, noon) != demoInstallation(2, 300, noon));
}

void tst_DemoInstallation::hasTerminalsOfEveryClass()
{
    QSet<int> classes;
    QSet<int> addresses;
    const UnitState state = demoInstallation(1, 0, noon);
    for (const UnitTerminal& terminal : state.terminals) {
        classes.insert(terminal.channelClass);
        addresses.insert(terminal.address);
        QCOMPARE(int(terminal.infoRecord.at(0)), int(terminal.address));
        QCOMPARE(terminal.infoRecord.at(1) >> 4, terminal.channelClass);
        QVERIFY(terminal.address < UnitState::addressCount);
    }
    QCOMPARE(classes, (QSet<int>{0, 1, 2, 3, 4}));
    QCOMPARE(addresses.size(), state.terminals.size());
}

void tst_DemoInstallation::recordsTellTheNumberOfOutputs()
{
    const UnitState state = demoInstallation(1, 0, noon);
    QMap<int, int> lengths;
    for (const UnitTerminal& terminal : state.terminals) {
        lengths[terminal.address] = terminal.infoRecord.size();
    }
    QCOMPARE(lengths.value(5), 7);
    QCOMPARE(lengths.value(3), 8);
    QCOMPARE(lengths.value(17), 16);
}

void tst_DemoInstallation::scriptsAreWholeAndUsed()
{
    const UnitState state = demoInstallation(1, 0, noon);
    QSet<int> active;
    for (int number = 0; number < UnitState::scriptCount; ++number) {
        QCOMPARE(state.scripts.at(size_t(number)).size(), int(UnitState::scriptLength));
        if (state.scripts.at(size_t(number)) != UnitState::emptyScript()) {
            active.insert(number);
        }
    }
    QSet<int> used;
    for (const auto& outputs : state.outputs) {
        for (const QByteArray& output : outputs) {
            for (int index = 1; index < output.size(); ++index) {
                used.insert(output.at(index));
            }
        }
    }
    QCOMPARE(used, active);
    QVERIFY(active.size() >= 10);
}

/// The first: pulsation, five minutes, fire, channels 1 and 2, filter by address 1, 2, 4, 14, 24.
void tst_DemoInstallation::scriptFieldsStandInTheirPlaces()
{
    QCOMPARE(demoInstallation(1, 0, noon).scripts.at(0).toHex(' '),
             QByteArray("03 98 01 00 34 00 00 00 01 01 00 00 01 01 f0 00 00 0b 20 80 00"));
}

void tst_DemoInstallation::logEndsNow()
{
    const LogRing log = demoInstallation(1, 1200, noon).log;
    QCOMPARE(log.size(), 1200);
    QVERIFY(!log.wrapped());
    QCOMPARE(log.at(1199).left(4), QByteArray::fromHex("00 52 04 83"));
    QCOMPARE(demoInstallation(1, 10000, noon).log.size(), 10000);
}

QTEST_GUILESS_MAIN(tst_DemoInstallation)
#include "tst_DemoInstallation.moc"
