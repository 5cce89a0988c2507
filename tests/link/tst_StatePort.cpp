#include "link/StatePort.h"

#include <QtTest>

class tst_StatePort : public QObject
{
    Q_OBJECT

private slots:
    void isShownAndActedOn_data();
    void isShownAndActedOn();
};

void tst_StatePort::isShownAndActedOn_data()
{
    QTest::addColumn<int>("state");
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("autoDisconnect");
    QTest::addColumn<bool>("showControls");

    QTest::newRow("connecting") << 0 << QStringLiteral("Connection to port...") << false << false;
    QTest::newRow("create error") << 1 << QStringLiteral("Error opening the port\nPort disabled") << true << true;
    QTest::newRow("open error") << 2 << QStringLiteral("Error opening the port\nPort disabled") << true << true;
    QTest::newRow("not found") << 3 << QStringLiteral("Port not found") << true << true;
    QTest::newRow("searching") << 4 << QStringLiteral("Search of coordinator...") << false << false;
    QTest::newRow("no coordinator") << 5 << QStringLiteral("Coordinator not found\nPort disabled") << true << true;
    QTest::newRow("connected") << 6 << QStringLiteral("Coordinator connected") << false << true;
    QTest::newRow("lost") << 7 << QStringLiteral("Coordinator was disabled (!)") << false << true;
    QTest::newRow("disabled") << 8 << QStringLiteral("Port disabled") << false << true;
    QTest::newRow("beyond the last") << 9 << QStringLiteral("???") << false << true;
    QTest::newRow("below the first") << -1 << QStringLiteral("???") << false << true;
}

void tst_StatePort::isShownAndActedOn()
{
    QFETCH(const int, state);
    const StatePortTraits& traits = statePortTraits(StatePort(state));
    QTEST(traits.text(), "text");
    QTEST(traits.autoDisconnect, "autoDisconnect");
    QTEST(traits.showControls, "showControls");
}

QTEST_GUILESS_MAIN(tst_StatePort)
#include "tst_StatePort.moc"
