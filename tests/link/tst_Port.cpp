#include "LinkRecorder.h"
#include "support/Eventually.h"

#include <QSemaphore>
#include <QSignalSpy>
#include <QThread>
#include <QtTest>

#include <memory>

using Protocol = protocol_HUBN_NX_Q;

namespace
{

/// A port that doesn't exist, and what its worker is told. What the worker says of it waits for an event loop, which
/// most tests stay out of.
class PortRecorder : public QObject
{
public:
    PortRecorder()
    {
        connect(&port, &Port::initRequested, this, [this] { events.append(QStringLiteral("init")); });
        connect(&port, &Port::openRequested, this, [this] { events.append(QStringLiteral("open")); });
        connect(&port, &Port::closeRequested, this, [this] { events.append(QStringLiteral("close")); });
        connect(&port, &Port::sendRequested, this, [this](Transmitter*, const message& request) {
            sent.append(request);
            events.append(QStringLiteral("send %1 at %2").arg(request.requestType()).arg(request.baudrate()));
        });
        connect(&port, &Port::statusDue, this, [this] { events.append(QStringLiteral("status")); });
        connect(&port, &Port::coordinatorSeen, this, [this] { events.append(QStringLiteral("coordinator")); });
        connect(&port, &Port::answered, this, [this](const message& answer) { others.append(answer); });
        port.start();
    }

    QStringList take()
    {
        QStringList taken;
        taken.swap(events);
        return taken;
    }

    Port port{portA};
    QStringList events;
    QVector<message> sent;
    QVector<message> others;
};

QStringList lines(std::initializer_list<const char*> texts)
{
    QStringList result;
    for (const char* const text : texts) {
        result.append(QLatin1String(text));
    }
    return result;
}

} // namespace

class tst_Port : public QObject
{
    Q_OBJECT

private slots:
    void beginsByOpeningItsPort();
    void theWorkerLivesOnAThreadOfItsOwn();

    void takesEachState_data();
    void takesEachState();
    void aWatchedPortOnlyCountsAsLost_data();
    void aWatchedPortOnlyCountsAsLost();
    void aWatchedPortThatWasClosedIsDisabled();
    void keepsTheCauseInViewAfterClosing_data();
    void keepsTheCauseInViewAfterClosing();
    void knowsTheBaudrateOfTheLine();

    void sweepsTheRates();
    void searchesAtTheRateAtWhichBytesCame();
    void aSilentPortIsClosed();
    void aNamelessPortIsClosed();
    void aCoordinatorThatWasFoundIsWatched();
    void aSilentPortIsSearchedFiveTimesInAll();
    void aSearchThatNobodyNeedsIsNotRepeated();

    void closingForgetsTheCoordinator();
    void openingSearchesAgain();
    void aCheckThatComesAfterClosingSaysNothing();

    void switchingTheWatchOffIsTold();
    void aLostCoordinatorIsKeptAndComesBack();
    void theWatchTakesOverWhatHasChanged();
    void theWatchKeepsAskingTheAddressThatWasFound();
    void aRestingWatchAsksNothing();
    void passesOtherAnswersOn();

    void endsItsThread();
    void endsBehindWhatWasSentBefore();
    void aStuckWorkerGoesByItselfLater();
};

// The beginning.

void tst_Port::beginsByOpeningItsPort()
{
    const PortRecorder recorder;
    QCOMPARE(recorder.port.name(), portA);
    QCOMPARE(recorder.events, lines({"init"}));
    const PortInfo& info = recorder.port.info();
    QCOMPARE(info.state, StateConnecting);
    QVERIFY(info.connected);
    QVERIFY(!info.watched);
    QCOMPARE(info.baudrate, 0);
    QVERIFY(!info.lineBaudrate);
    QVERIFY(!info.coordinator);
    QCOMPARE(int(recorder.port.address()), 255);
}

void tst_Port::theWorkerLivesOnAThreadOfItsOwn()
{
    const PortRecorder recorder;
    const Transmitter* const worker = recorder.port.worker();
    QVERIFY(worker->thread() != QThread::currentThread());
    QVERIFY(worker->thread()->isRunning());
    QCOMPARE(worker->thread()->objectName(), portA);
    QVERIFY(worker->parent() == nullptr);
}

// States.

void tst_Port::takesEachState_data()
{
    QTest::addColumn<int>("state");
    QTest::addColumn<QStringList>("told");
    QTest::newRow("connecting") << 0 << lines({"status"});
    QTest::newRow("setting refused") << 1 << lines({"status", "close"});
    QTest::newRow("not opened") << 2 << lines({"status", "close"});
    QTest::newRow("not there") << 3 << lines({"status", "close"});
    QTest::newRow("searching") << 4 << lines({"status", "send 10 at 57600"});
    QTest::newRow("no coordinator") << 5 << lines({"status", "close"});
    QTest::newRow("connected") << 6 << lines({"status"});
    QTest::newRow("lost") << 7 << lines({"status"});
    QTest::newRow("disabled") << 8 << lines({"status"});
    QTest::newRow("beyond the last") << 9 << lines({"status"});
}

void tst_Port::takesEachState()
{
    QFETCH(int, state);
    QFETCH(QStringList, told);
    PortRecorder recorder;
    recorder.take();
    const QSignalSpy changes(&recorder.port, &Port::changed);
    recorder.port.setState(StatePort(state));
    QCOMPARE(int(recorder.port.info().state), state);
    QVERIFY(!changes.isEmpty());
    QCOMPARE(recorder.port.info().connected, !told.contains(QStringLiteral("close")));
    QCOMPARE(recorder.take(), told);
}

void tst_Port::aWatchedPortOnlyCountsAsLost_data()
{
    QTest::addColumn<int>("state");
    for (const int state : {0, 1, 2, 3, 4, 5, 7, 9}) {
        QTest::addRow("state %d", state) << state;
    }
}

void tst_Port::aWatchedPortOnlyCountsAsLost()
{
    QFETCH(int, state);
    PortRecorder recorder;
    letFind(&recorder.port);
    QVERIFY(recorder.port.info().watched);
    recorder.take();
    recorder.port.setState(StatePort(state));
    QCOMPARE(recorder.port.info().state, StateCoordinatorLost);
    QVERIFY(recorder.port.info().connected);
    QCOMPARE(recorder.take(), lines({"status"}));
}

void tst_Port::aWatchedPortThatWasClosedIsDisabled()
{
    PortRecorder recorder;
    letFind(&recorder.port);
    QVERIFY(recorder.port.info().watched);
    recorder.port.setState(StatePortDisabled);
    QCOMPARE(recorder.port.info().state, StatePortDisabled);
}

void tst_Port::keepsTheCauseInViewAfterClosing_data()
{
    QTest::addColumn<int>("cause");
    QTest::addColumn<int>("shown");
    QTest::newRow("setting refused") << 1 << 1;
    QTest::newRow("not opened") << 2 << 2;
    QTest::newRow("not there") << 3 << 3;
    QTest::newRow("no coordinator") << 5 << 5;
    QTest::newRow("a connection is no cause") << 6 << 8;
    QTest::newRow("a loss is no cause") << 7 << 8;
    QTest::newRow("a search is no cause") << 4 << 8;
}

void tst_Port::keepsTheCauseInViewAfterClosing()
{
    QFETCH(int, cause);
    QFETCH(int, shown);
    PortRecorder recorder;
    recorder.port.setState(StatePort(cause));
    recorder.port.setState(StatePortDisabled);
    QCOMPARE(int(recorder.port.info().state), shown);
}

void tst_Port::knowsTheBaudrateOfTheLine()
{
    PortRecorder recorder;
    recorder.port.setLineBaudrate(9600);
    QCOMPARE(recorder.port.info().lineBaudrate.value_or(0), 9600);
    // It says nothing of a coordinator.
    QCOMPARE(recorder.port.info().baudrate, 0);
}

// Search.

void tst_Port::sweepsTheRates()
{
    PortRecorder recorder;
    recorder.take();
    recorder.port.setState(StateSearching);
    recorder.port.takeAnswer(answers::timedOut(recorder.sent.last()));
    QCOMPARE(recorder.take(), lines({"status", "send 10 at 57600", "send 10 at 9600"}));
}

void tst_Port::searchesAtTheRateAtWhichBytesCame()
{
    PortRecorder recorder;
    recorder.port.setState(StateSearching);
    recorder.port.takeAnswer(answers::timedOut(recorder.sent.last()));
    recorder.take();
    recorder.port.takeAnswer(answers::damaged(recorder.sent.last()));
    recorder.port.takeAnswer(answers::timedOut(recorder.sent.last()));
    recorder.port.takeAnswer(answers::refused(recorder.sent.last(), 2));
    QCOMPARE(recorder.take(), lines({"send 9 at 9600", "send 9 at 9600", "send 9 at 9600"}));
    QCOMPARE(int(recorder.sent.last().address()), 3);
    recorder.port.takeAnswer(answers::good(recorder.sent.last(), identity, 3));
    QCOMPARE(recorder.port.info().baudrate, 9600);
    QCOMPARE(int(recorder.port.address()), 3);
}

void tst_Port::aSilentPortIsClosed()
{
    PortRecorder recorder;
    recorder.port.setState(StateSearching);
    recorder.port.takeAnswer(answers::timedOut(recorder.sent.last()));
    recorder.take();
    recorder.port.takeAnswer(answers::timedOut(recorder.sent.last()));
    QCOMPARE(recorder.take(), lines({"status", "close"}));
    QCOMPARE(recorder.port.info().state, StateCoordinatorNotFound);
    QVERIFY(!recorder.port.info().connected);
    QVERIFY(recorder.port.holdSearch());
}

void tst_Port::aNamelessPortIsClosed()
{
    PortRecorder recorder;
    recorder.port.setState(StateSearching);
    recorder.port.takeAnswer(answers::good(recorder.sent.last()));
    for (int address = 1; address < 8; ++address) {
        recorder.port.takeAnswer(answers::timedOut(recorder.sent.last()));
    }
    recorder.take();
    recorder.port.takeAnswer(answers::timedOut(recorder.sent.last()));
    QCOMPARE(recorder.take(), lines({"status", "close"}));
    QCOMPARE(recorder.port.info().state, StateCoordinatorNotFound);
    // Whatever is there, it won't become a coordinator.
    QVERIFY(!recorder.port.holdSearch());
}

void tst_Port::aCoordinatorThatWasFoundIsWatched()
{
    PortRecorder recorder;
    recorder.port.takeAnswer(answers::good(CoordinatorSearch::begin()));
    recorder.take();
    connect(&recorder.port, &Port::statusDue, &recorder,
            // The status comes with the state, before the watch.
            [&recorder] { QVERIFY(!recorder.port.info().watched); });
    recorder.port.takeAnswer(searchAnswer(4));
    QCOMPARE(recorder.take(), lines({"coordinator", "status"}));
    const PortInfo& info = recorder.port.info();
    QCOMPARE(info.state, StateCoordinatorConnected);
    QVERIFY(info.watched);
    QCOMPARE(LinkRecorder::identityOf(recorder.port), QStringLiteral("- 4 4711 6.02"));
}

void tst_Port::aSilentPortIsSearchedFiveTimesInAll()
{
    PortRecorder recorder;
    const auto letSearch = [&recorder] {
        recorder.port.setState(StateSearching);
        recorder.port.takeAnswer(answers::timedOut(recorder.sent.last()));
        recorder.port.takeAnswer(answers::timedOut(recorder.sent.last()));
    };
    letSearch();
    for (int repeat = 0; repeat < 4; ++repeat) {
        recorder.take();
        recorder.port.repeatSearch(); // as its timer does
        QCOMPARE(recorder.take(), lines({"open"}));
        letSearch();
    }
    QVERIFY(!recorder.port.holdSearch());
}

void tst_Port::aSearchThatNobodyNeedsIsNotRepeated()
{
    PortRecorder recorder;
    recorder.port.setState(StateSearching);
    recorder.port.takeAnswer(answers::timedOut(recorder.sent.last()));
    recorder.port.takeAnswer(answers::timedOut(recorder.sent.last()));
    recorder.take();
    recorder.port.setSearchRepeated(false);
    recorder.port.repeatSearch();
    QCOMPARE(recorder.take(), QStringList());
    recorder.port.setState(StateSearching);
    recorder.port.takeAnswer(answers::timedOut(recorder.sent.last()));
    recorder.port.takeAnswer(answers::timedOut(recorder.sent.last()));
    QVERIFY(!recorder.port.holdSearch());
}

// Connect and disconnect.

void tst_Port::closingForgetsTheCoordinator()
{
    PortRecorder recorder;
    letFind(&recorder.port, 3, 9600);
    recorder.port.setLineBaudrate(9600);
    recorder.take();
    recorder.port.close();
    QCOMPARE(recorder.take(), lines({"close"}));
    const PortInfo& info = recorder.port.info();
    QVERIFY(!info.connected);
    QVERIFY(!info.watched);
    QVERIFY(!info.coordinator);
    QVERIFY(!info.lineBaudrate);
    // For a firmware load.
    QCOMPARE(info.baudrate, 9600);
    recorder.port.setState(StatePortDisabled);
    QCOMPARE(recorder.port.info().state, StatePortDisabled);
}

void tst_Port::openingSearchesAgain()
{
    PortRecorder recorder;
    letFind(&recorder.port);
    recorder.port.close();
    recorder.take();
    recorder.port.open();
    QCOMPARE(recorder.take(), lines({"open"}));
    QVERIFY(recorder.port.info().connected);
    QVERIFY(!recorder.port.info().watched);
}

void tst_Port::aCheckThatComesAfterClosingSaysNothing()
{
    PortRecorder recorder;
    letFind(&recorder.port);
    recorder.port.close();
    recorder.port.setState(StatePortDisabled);
    recorder.take();
    recorder.port.takeAnswer(answers::timedOut(CoordinatorSearch::check(1, 57600)));
    recorder.port.takeAnswer(answers::good(CoordinatorSearch::check(1, 57600), identity));
    QCOMPARE(recorder.take(), QStringList());
    QCOMPARE(recorder.port.info().state, StatePortDisabled);
    QVERIFY(!recorder.port.info().coordinator);
}

// Watch.

void tst_Port::switchingTheWatchOffIsTold()
{
    PortRecorder recorder;
    letFind(&recorder.port);
    recorder.take();
    recorder.port.setWatched(false);
    QVERIFY(!recorder.port.info().watched);
    QCOMPARE(recorder.take(), lines({"status"}));
    // Switched on again, it waits for its first answer.
    recorder.port.setWatched(true);
    QVERIFY(recorder.port.info().watched);
    QCOMPARE(recorder.take(), QStringList());
}

void tst_Port::aLostCoordinatorIsKeptAndComesBack()
{
    PortRecorder recorder;
    letFind(&recorder.port);
    for (const message& failure : {answers::timedOut(CoordinatorSearch::check(1, 57600)),
                                   answers::portFailed(CoordinatorSearch::check(1, 57600)),
                                   answers::refused(CoordinatorSearch::check(1, 57600), 3)}) {
        recorder.port.takeAnswer(failure);
        QCOMPARE(recorder.port.info().state, StateCoordinatorLost);
        QCOMPARE(int(recorder.port.address()), 1);
        recorder.port.takeAnswer(answers::good(CoordinatorSearch::check(1, 57600), identity));
        QCOMPARE(recorder.port.info().state, StateCoordinatorConnected);
    }
}

void tst_Port::theWatchTakesOverWhatHasChanged()
{
    PortRecorder recorder;
    letFind(&recorder.port);
    recorder.port.takeAnswer(answers::good(CoordinatorSearch::check(1, 57600), QByteArray::fromHex("0200010b")));
    QCOMPARE(LinkRecorder::identityOf(recorder.port), QStringLiteral("- 1 2 11.01"));
}

void tst_Port::theWatchKeepsAskingTheAddressThatWasFound()
{
    PortRecorder recorder;
    letFind(&recorder.port, 4);
    // A stray byte in front of the answer moves the address out of its place.
    recorder.port.takeAnswer(answers::good(CoordinatorSearch::check(4, 57600), identity, 77));
    QCOMPARE(int(recorder.port.address()), 77);
    const auto asked = [&recorder] {
        recorder.sent.clear();
        recorder.port.checkCoordinator();
        return recorder.sent;
    };
    QVector<message> questions = asked();
    QCOMPARE(questions.size(), 2);
    QCOMPARE(questions.at(0).request(), CoordinatorSearch::check(4, 57600).request());
    QCOMPARE(questions.at(1).request(), Protocol::requestDeviceTime(4).request());
    QCOMPARE(questions.at(1).baudrate(), 57600);
    // The next search may find another one.
    recorder.port.close();
    letFind(&recorder.port, 5);
    questions = asked();
    QCOMPARE(questions.at(0).request(), CoordinatorSearch::check(5, 57600).request());
}

void tst_Port::aRestingWatchAsksNothing()
{
    PortRecorder recorder;
    letFind(&recorder.port);
    recorder.take();
    recorder.port.setWatchResting(true);
    recorder.port.checkCoordinator();
    QCOMPARE(recorder.take(), QStringList());
    recorder.port.setWatchResting(false);
    recorder.port.checkCoordinator();
    QCOMPARE(recorder.take(), lines({"send 11 at 57600", "send 2 at 57600"}));
}

void tst_Port::passesOtherAnswersOn()
{
    PortRecorder recorder;
    const message answer = answers::good(Protocol::requestReadScript(1, 5));
    recorder.port.takeAnswer(answer);
    QCOMPARE(recorder.others, QVector<message>{answer});
}

// The end.

void tst_Port::endsItsThread()
{
    QPointer<Transmitter> worker;
    QPointer<QThread> thread;
    {
        const PortRecorder recorder;
        worker = recorder.port.worker();
        thread = worker->thread();
    }
    QVERIFY(worker.isNull());
    QVERIFY(thread.isNull());
}

void tst_Port::endsBehindWhatWasSentBefore()
{
    // Shared, since the worker's thread writes it.
    const auto answered = std::make_shared<QSemaphore>();
    {
        PortRecorder recorder;
        connect(recorder.port.worker(), &Transmitter::sig_SendAnswer, [answered] { answered->release(); });
        recorder.port.send(CoordinatorSearch::begin());
        recorder.port.send(Protocol::requestReadScript(1, 5));
    }
    QCOMPARE(answered->available(), 2);
}

void tst_Port::aStuckWorkerGoesByItselfLater()
{
    const auto letGo = std::make_shared<QSemaphore>();
    QSemaphore isStuck;
    QPointer<Transmitter> worker;
    QPointer<QThread> thread;
    {
        const PortRecorder recorder;
        worker = recorder.port.worker();
        thread = worker->thread();
        QMetaObject::invokeMethod(worker, [&isStuck, letGo] {
            isStuck.release();
            letGo->acquire();
        });
        isStuck.acquire();
    }
    QVERIFY(!thread.isNull());
    letGo->release();
    EVENTUALLY(worker.isNull() && thread.isNull());
}

QTEST_GUILESS_MAIN(tst_Port)
#include "tst_Port.moc"
