#include "LinkRecorder.h"
#include "simulator/UnitSimulator.h"
#include "support/Eventually.h"

#include <QtTest>

namespace
{

using Protocol = protocol_HUBN_NX_Q;

} // namespace

/// A link with its real workers, and units at the other end: the watch over found coordinators.
class tst_CoordinatorWatch : public QObject
{
    Q_OBJECT

private slots:
    void theFirstTickTurnsTheStatus();
    void theWatchShowsTheTimeOfTheUnit();
    void theWatchBringsALostPortBack();
    void theWatchBringsASilentUnitBack();
    void withoutTheWatchNothingIsAsked();
    void theWatchRestsWhileFirmwareIsLoaded();
    void disconnectingAndConnectingFindsTheUnitAgain();
};

void tst_CoordinatorWatch::theFirstTickTurnsTheStatus()
{
    const UnitSimulator unit;
    const LinkRecorder recorder({unit.portName()});
    EVENTUALLY(recorder.has(QStringLiteral("status 1")));
    const QStringList statuses = recorder.events.filter(QStringLiteral("status"));
    const QString rest = QLatin1Char(' ') + unit.portName() + QStringLiteral(" 57600 1 4711 6.02");
    QCOMPARE(statuses, QStringList({QStringLiteral("status 2") + rest, QStringLiteral("status 2") + rest,
                                    QStringLiteral("status 1") + rest}));
}

void tst_CoordinatorWatch::theWatchShowsTheTimeOfTheUnit()
{
    UnitSimulator unit;
    const LinkRecorder recorder({unit.portName()});
    EVENTUALLY(recorder.has(QStringLiteral("time 1 ")));
    unit.change([](UnitState& state) { state.timeRefusal = 5; });
    EVENTUALLY(recorder.has(QStringLiteral("time 0 Not supported")));
    unit.change([](UnitState& state) { state.timeRefusal = 0; });
    unit.setFaults({UnitFault(UnitFault::LoseAnswer).onRequest(Protocol::Read_Time)});
    EVENTUALLY(recorder.has(QStringLiteral("time 0 --:--:-- --.--.----")));
    QCOMPARE(recorder.state(), StateCoordinatorConnected);
}

void tst_CoordinatorWatch::theWatchBringsALostPortBack()
{
    UnitSimulator unit;
    LinkRecorder recorder({unit.portName()});
    EVENTUALLY(recorder.has(QStringLiteral("status 1")));
    unit.unplug();
    EVENTUALLY(recorder.state() == StateCoordinatorLost);
    QCOMPARE(int(recorder.port(0)->address()), 1);
    QVERIFY(recorder.info().connected);
    QVERIFY(recorder.has(QStringLiteral("status 0")));
    recorder.take();
    unit.change([](UnitState& state) { state.serialNumber = 815; });
    QVERIFY(unit.plugIn());
    EVENTUALLY(recorder.state() == StateCoordinatorConnected);
    QCOMPARE(int(recorder.info().coordinator->serial), 815);
    QVERIFY(recorder.has(QStringLiteral("status 1")));
    EVENTUALLY(recorder.has(QStringLiteral("time 1")));
    // Neither a search nor a choice.
    QVERIFY(!recorder.has(QStringLiteral("send 10")));
    QVERIFY(!recorder.has(QStringLiteral("enable")));
}

void tst_CoordinatorWatch::theWatchBringsASilentUnitBack()
{
    UnitSimulator unit;
    const LinkRecorder recorder({unit.portName()});
    EVENTUALLY(recorder.has(QStringLiteral("status 1")));
    unit.setFaults({UnitFault(UnitFault::LoseRequest)});
    EVENTUALLY(recorder.state() == StateCoordinatorLost);
    unit.setFaults({});
    EVENTUALLY(recorder.state() == StateCoordinatorConnected);
}

void tst_CoordinatorWatch::withoutTheWatchNothingIsAsked()
{
    UnitSimulator watched;
    UnitSimulator unit;
    const LinkRecorder recorder({watched.portName(), unit.portName()});
    EVENTUALLY(recorder.state(0) == StateCoordinatorConnected && recorder.state(1) == StateCoordinatorConnected);
    recorder.port(1)->setWatched(false);
    EVENTUALLY(recorder.has(QStringLiteral("terminals 0")));
    unit.clearRequests();
    watched.clearRequests();
    EVENTUALLY(watched.requestCount(Protocol::Search_Address) >= 3);
    QCOMPARE(unit.requestCount(), 0);
    recorder.port(1)->setWatched(true);
    EVENTUALLY(unit.requestCount(Protocol::Search_Address) >= 1);
    EVENTUALLY(unit.requestCount(Protocol::Read_Time) >= 1);
}

void tst_CoordinatorWatch::theWatchRestsWhileFirmwareIsLoaded()
{
    UnitSimulator watched;
    UnitSimulator unit;
    LinkRecorder recorder({watched.portName(), unit.portName()});
    EVENTUALLY(recorder.state(0) == StateCoordinatorConnected && recorder.state(1) == StateCoordinatorConnected);
    EVENTUALLY(recorder.has(QStringLiteral("terminals 0")));
    const bool firstIsCurrent = recorder.link.currentPort() == recorder.port(0);
    UnitSimulator& loaded = firstIsCurrent ? watched : unit;
    UnitSimulator& other = firstIsCurrent ? unit : watched;
    recorder.link.setFirmwareRunning(true);
    EVENTUALLY(other.requestCount(Protocol::Search_Address) >= 2);
    loaded.clearRequests();
    other.clearRequests();
    EVENTUALLY(other.requestCount(Protocol::Search_Address) >= 3);
    QCOMPARE(loaded.requestCount(), 0);
    recorder.link.setFirmwareRunning(false);
    EVENTUALLY(loaded.requestCount(Protocol::Search_Address) >= 1);
}

void tst_CoordinatorWatch::disconnectingAndConnectingFindsTheUnitAgain()
{
    const UnitSimulator unit;
    LinkRecorder recorder({unit.portName()});
    EVENTUALLY(recorder.has(QStringLiteral("time 1")));
    recorder.take();
    recorder.port()->close();
    EVENTUALLY(recorder.state() == StatePortDisabled);
    // The time of the unit is left in view.
    QVERIFY(!recorder.has(QStringLiteral("time")));
    // What is asked of a closed port fails at once.
    recorder.link.readScript(31);
    EVENTUALLY(recorder.has(QStringLiteral("scripts 0")));
    QCOMPARE(recorder.state(), StatePortDisabled);
    recorder.take();
    recorder.port()->open();
    EVENTUALLY(recorder.state() == StateCoordinatorConnected);
    EVENTUALLY(recorder.has(QStringLiteral("status 1")));
    // It is the current port all along.
    QVERIFY(!recorder.has(QStringLiteral("enable")));
    recorder.link.readScript(31);
    EVENTUALLY(recorder.has(QStringLiteral("scripts 1")));
}

QTEST_GUILESS_MAIN(tst_CoordinatorWatch)
#include "tst_CoordinatorWatch.moc"
