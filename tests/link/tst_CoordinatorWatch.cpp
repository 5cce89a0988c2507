#include "FormRecorder.h"
#include "link/protocol_HUBN_NX_Q.h"
#include "simulator/UnitSimulator.h"
#include "support/Eventually.h"
#include "support/threadedTestMain.h"

#include <QtTest>

namespace
{

using Protocol = protocol_HUBN_NX_Q;

QString connectedText()
{
    return QStringLiteral("Coordinator connected");
}

QString lostText()
{
    return QStringLiteral("Coordinator was disabled (!)");
}

} // namespace

/// The coordinator form with its real workers, and units at the other end: the watch over found coordinators.
class tst_CoordinatorWatch : public QObject
{
    Q_OBJECT

private slots:
    void theFirstTickTurnsTheStatus();
    void theWatchShowsTheTimeOfTheUnit();
    void theWatchBringsALostPortBack();
    void theWatchBringsASilentUnitBack();
    void withoutTheCheckBoxNothingIsAsked();
    void theWatchRestsWhileFirmwareIsLoaded();
    void disconnectingAndConnectingFindsTheUnitAgain();
};

void tst_CoordinatorWatch::theFirstTickTurnsTheStatus()
{
    const UnitSimulator unit;
    const FormRecorder recorder({unit.portName()});
    EVENTUALLY(recorder.has(QStringLiteral("status 1")));
    const QStringList statuses = recorder.events.filter(QStringLiteral("status"));
    const QString rest = QLatin1Char(' ') + unit.portName() + QStringLiteral(" 57600 1 4711 6.02");
    QCOMPARE(statuses, QStringList({QStringLiteral("status 2") + rest, QStringLiteral("status 2") + rest,
                                    QStringLiteral("status 1") + rest}));
}

void tst_CoordinatorWatch::theWatchShowsTheTimeOfTheUnit()
{
    UnitSimulator unit;
    const FormRecorder recorder({unit.portName()});
    EVENTUALLY(recorder.has(QStringLiteral("time 1 ")));
    unit.change([](UnitState& state) { state.timeRefusal = 5; });
    EVENTUALLY(recorder.has(QStringLiteral("time 0 Not supported")));
    unit.change([](UnitState& state) { state.timeRefusal = 0; });
    unit.setFaults({UnitFault(UnitFault::LoseAnswer).onRequest(Protocol::Read_Time)});
    EVENTUALLY(recorder.has(QStringLiteral("time 0 --:--:-- --.--.----")));
    QCOMPARE(recorder.state(), connectedText());
}

void tst_CoordinatorWatch::theWatchBringsALostPortBack()
{
    UnitSimulator unit;
    FormRecorder recorder({unit.portName()});
    EVENTUALLY(recorder.has(QStringLiteral("status 1")));
    unit.unplug();
    EVENTUALLY(recorder.state() == lostText());
    QCOMPARE(recorder.text(0, 2), QStringLiteral("Coordinator 1"));
    QCOMPARE(recorder.connectButton()->text(), QStringLiteral("Disconnect"));
    QVERIFY(recorder.has(QStringLiteral("status 0")));
    recorder.take();
    unit.change([](UnitState& state) { state.serialNumber = 815; });
    QVERIFY(unit.plugIn());
    EVENTUALLY(recorder.state() == connectedText());
    QCOMPARE(recorder.text(0, 3), QStringLiteral("815"));
    QVERIFY(recorder.has(QStringLiteral("status 1")));
    EVENTUALLY(recorder.has(QStringLiteral("time 1")));
    // Neither a search nor a choice.
    QVERIFY(!recorder.has(QStringLiteral("send 10")));
    QVERIFY(!recorder.has(QStringLiteral("enable")));
}

void tst_CoordinatorWatch::theWatchBringsASilentUnitBack()
{
    UnitSimulator unit;
    const FormRecorder recorder({unit.portName()});
    EVENTUALLY(recorder.has(QStringLiteral("status 1")));
    unit.setFaults({UnitFault(UnitFault::LoseRequest)});
    EVENTUALLY(recorder.state() == lostText());
    unit.setFaults({});
    EVENTUALLY(recorder.state() == connectedText());
}

void tst_CoordinatorWatch::withoutTheCheckBoxNothingIsAsked()
{
    UnitSimulator watched;
    UnitSimulator unit;
    const FormRecorder recorder({watched.portName(), unit.portName()});
    EVENTUALLY(recorder.state(0) == connectedText() && recorder.state(1) == connectedText());
    recorder.check(1)->click();
    EVENTUALLY(recorder.has(QStringLiteral("terminals 0")));
    unit.clearRequests();
    watched.clearRequests();
    EVENTUALLY(watched.requestCount(Protocol::Search_Address) >= 3);
    QCOMPARE(unit.requestCount(), 0);
    recorder.check(1)->click();
    EVENTUALLY(unit.requestCount(Protocol::Search_Address) >= 1);
    EVENTUALLY(unit.requestCount(Protocol::Read_Time) >= 1);
}

void tst_CoordinatorWatch::theWatchRestsWhileFirmwareIsLoaded()
{
    UnitSimulator watched;
    UnitSimulator unit;
    FormRecorder recorder({watched.portName(), unit.portName()});
    EVENTUALLY(recorder.state(0) == connectedText() && recorder.state(1) == connectedText());
    EVENTUALLY(recorder.has(QStringLiteral("terminals 0")));
    const bool firstIsCurrent = recorder.table()->currentRow() == 0;
    UnitSimulator& loaded = firstIsCurrent ? watched : unit;
    UnitSimulator& other = firstIsCurrent ? unit : watched;
    recorder.form.sl_CurrentLoadingFirmwareIsRunning(true);
    EVENTUALLY(other.requestCount(Protocol::Search_Address) >= 2);
    loaded.clearRequests();
    other.clearRequests();
    EVENTUALLY(other.requestCount(Protocol::Search_Address) >= 3);
    QCOMPARE(loaded.requestCount(), 0);
    recorder.form.sl_CurrentLoadingFirmwareIsRunning(false);
    EVENTUALLY(loaded.requestCount(Protocol::Search_Address) >= 1);
}

void tst_CoordinatorWatch::disconnectingAndConnectingFindsTheUnitAgain()
{
    const UnitSimulator unit;
    FormRecorder recorder({unit.portName()});
    EVENTUALLY(recorder.has(QStringLiteral("time 1")));
    recorder.take();
    recorder.connectButton()->click();
    EVENTUALLY(recorder.state() == QStringLiteral("Port disabled"));
    // The time of the unit is left in view.
    QVERIFY(!recorder.has(QStringLiteral("time")));
    // What is asked of a closed port fails at once.
    recorder.form.sl_SendRequestReadScript(31);
    EVENTUALLY(recorder.has(QStringLiteral("scripts 0")));
    QCOMPARE(recorder.state(), QStringLiteral("Port disabled"));
    recorder.take();
    recorder.connectButton()->click();
    EVENTUALLY(recorder.state() == connectedText());
    EVENTUALLY(recorder.has(QStringLiteral("status 1")));
    // It is the current port all along.
    QVERIFY(!recorder.has(QStringLiteral("enable")));
    recorder.form.sl_SendRequestReadScript(31);
    EVENTUALLY(recorder.has(QStringLiteral("scripts 1")));
}

HUBN_THREADED_TEST_MAIN(tst_CoordinatorWatch)
#include "tst_CoordinatorWatch.moc"
