#include "link/TransmitterBench.h"
#include "support/DebugLines.h"

#include <QSocketNotifier>
#include <QtTest>

#include <algorithm>
#include <cerrno>
#include <memory>

using P = protocol_HUBN_NX_Q;

/// Ports that vanish, fail or are closed, with requests in flight and without.
class tst_TransmitterLostPorts : public QObject
{
    Q_OBJECT

private slots:
    void lostPortFailsAllButTheWatch();
    void watchFailsWhileThePortIsGone();
    void watchReopensAPortWithAnOpenError();
    void closedPortFailsAllButTheSwitchToBoot();
    void switchToBootFailsOnALostPort();
    void closingInFlightEndsByTheTimer();
    void unplugInFlightTimesOut();
    void hangUpInFlightTimesOut();
    void lostPortComesToRest_data();
    void lostPortComesToRest();
    void announcedBytesThatWereClearedAreNoLossOfThePort();
};

void tst_TransmitterLostPorts::lostPortFailsAllButTheWatch()
{
    Bench bench;
    bench.open();
    bench.line.unplug();
    QTRY_COMPARE_WITH_TIMEOUT(bench.states, QList<int>{StateNotFound}, ends);
    bench.line.plugIn();

    bench.send(P::requestDeviceTime(1));
    QCOMPARE(bench.answers.size(), 1);
    QVERIFY(bench.answers.constFirst().portFailed());
    QVERIFY(!bench.answers.constFirst().timedOut());
    QVERIFY(bench.shownRequests.isEmpty());
    QCOMPARE(bench.shownAnswers, QByteArrayList{QByteArray()});

    bench.onReceived = [&](const QByteArray&) { bench.line.write(frames::answer(0, "back")); };
    bench.send(watchRequest());
    QTRY_COMPARE_WITH_TIMEOUT(bench.answers.size(), 2, ends);
    QCOMPARE(bench.answers.constLast().payload(), QByteArray("back"));
    bench.send(P::requestDeviceTime(1));
    QTRY_COMPARE_WITH_TIMEOUT(bench.answers.size(), 3, ends);
    QVERIFY(bench.answers.constLast().isValid());
    // The return is not reported as a state; the answer tells it.
    QCOMPARE(bench.states, QList<int>{StateNotFound});
}

void tst_TransmitterLostPorts::watchFailsWhileThePortIsGone()
{
    Bench bench;
    bench.open();
    bench.line.unplug();
    QTRY_COMPARE_WITH_TIMEOUT(bench.states, QList<int>{StateNotFound}, ends);
    for (int i = 1; i <= 3; ++i) {
        bench.send(watchRequest());
        QCOMPARE(bench.answers.size(), i);
        QVERIFY(bench.answers.constLast().portFailed());
    }
    QVERIFY(bench.shownRequests.isEmpty());
    QCOMPARE(bench.states, QList<int>{StateNotFound});
}

void tst_TransmitterLostPorts::watchReopensAPortWithAnOpenError()
{
    Bench bench;
    bench.open();
    bench.worker.sl_onPortError(QSerialPort::PermissionError);
    bench.send(P::requestDeviceTime(1));
    QCOMPARE(bench.answers.size(), 1);
    QVERIFY(bench.answers.constFirst().portFailed());
    bench.onReceived = [&](const QByteArray&) { bench.line.write(frames::answer(0)); };
    bench.send(watchRequest());
    QTRY_COMPARE_WITH_TIMEOUT(bench.answers.size(), 2, ends);
    QVERIFY(bench.answers.constLast().isValid());
}

void tst_TransmitterLostPorts::closedPortFailsAllButTheSwitchToBoot()
{
    Bench bench;
    bench.open();
    bench.worker.sl_ClosePort(&bench.worker);
    bench.send(P::requestReadConfig(1, 0, 0));
    bench.send(watchRequest());
    QCOMPARE(bench.answers.size(), 2);
    QVERIFY(bench.answers.at(0).portFailed());
    QVERIFY(bench.answers.at(1).portFailed());
    QVERIFY(bench.shownRequests.isEmpty());

    bench.onReceived = [&](const QByteArray&) { bench.line.write(frames::answer(0)); };
    bench.send(P::requestSwitchToBoot(0));
    QTRY_COMPARE_WITH_TIMEOUT(bench.answers.size(), 3, ends);
    QVERIFY(bench.answers.constLast().isValid());
    QCOMPARE(bench.received, P::requestSwitchToBoot(0).request());
    // Not reported, but the port serves all requests again.
    QCOMPARE(bench.states, QList<int>{StatePortDisabled});
    bench.send(P::requestReadConfig(1, 0, 0));
    QTRY_COMPARE_WITH_TIMEOUT(bench.answers.size(), 4, ends);
    QVERIFY(bench.answers.constLast().isValid());
}

void tst_TransmitterLostPorts::switchToBootFailsOnALostPort()
{
    Bench bench;
    bench.open();
    bench.worker.sl_ClosePort(&bench.worker);
    bench.line.unplug();
    bench.send(P::requestSwitchToBoot(0));
    QCOMPARE(bench.answers.size(), 1);
    QVERIFY(bench.answers.constFirst().portFailed());
    QCOMPARE(bench.states, (QList<int>{StatePortDisabled, StateNotFound}));
}

void tst_TransmitterLostPorts::closingInFlightEndsByTheTimer()
{
    const DebugLines debug;
    Bench bench;
    bench.open();
    bench.send(request("a"));
    bench.send(request("b"));
    bench.worker.sl_ClosePort(&bench.worker);
    QVERIFY(bench.answers.isEmpty());
    QTRY_COMPARE_WITH_TIMEOUT(bench.answeredRequests(), (QByteArrayList{"a", "b"}), ends);
    QVERIFY(bench.answers.at(0).timedOut() && !bench.answers.at(0).portFailed());
    QVERIFY(!bench.answers.at(1).timedOut() && bench.answers.at(1).portFailed());
    QCOMPARE(debug.linesWith(QStringLiteral("not open")).size(), 0);
}

void tst_TransmitterLostPorts::unplugInFlightTimesOut()
{
    const DebugLines debug;
    Bench bench;
    bench.open();
    bench.onReceived = [&](const QByteArray&) { bench.line.unplug(); };
    bench.send(request("a"));
    bench.send(request("b"));
    QTRY_COMPARE_WITH_TIMEOUT(bench.answeredRequests(), (QByteArrayList{"a", "b"}), ends);
    QVERIFY(bench.answers.at(0).timedOut());
    QVERIFY(bench.answers.at(1).portFailed());
    QCOMPARE(bench.states, QList<int>{StateNotFound});
    QCOMPARE(debug.linesWith(QStringLiteral("PORT NOT FOUND!")).size(), 1);
}

void tst_TransmitterLostPorts::hangUpInFlightTimesOut()
{
    auto line = std::make_unique<PseudoTerminal>();
    Transmitter worker;
    QList<message> answers;
    connect(&worker, &Transmitter::sig_SendAnswer, this,
            [&answers](Transmitter*, const message& answer) { answers.append(answer); });
    worker.sl_initialization(&worker, line->portName());
    connect(line.get(), &PseudoTerminal::readyRead, this, [&line] {
        if (line != nullptr) {
            line.release()->deleteLater();
        }
    });
    worker.sl_AddRequestInQueue(&worker, request("a"));
    worker.sl_AddRequestInQueue(&worker, request("b"));
    QTRY_COMPARE_WITH_TIMEOUT(answers.size(), 2, ends);
    QVERIFY(line == nullptr);
    QCOMPARE(answers.at(0).request(), QByteArray("a"));
    QVERIFY(answers.at(0).timedOut());
    QCOMPARE(answers.at(1).request(), QByteArray("b"));
    QVERIFY(answers.at(1).portFailed());
    QVERIFY(!worker.findChild<QSerialPort*>()->isOpen());
}

void tst_TransmitterLostPorts::lostPortComesToRest_data()
{
    QTest::addColumn<bool>("hangUp");
    QTest::addColumn<bool>("writing");
    QTest::newRow("unplugged") << false << false;
    QTest::newRow("unplugged with bytes to write") << false << true;
    QTest::newRow("hung up") << true << false;
    QTest::newRow("hung up with bytes to write") << true << true;
}

void tst_TransmitterLostPorts::lostPortComesToRest()
{
    QFETCH(const bool, hangUp);
    QFETCH(const bool, writing);
    auto line = std::make_unique<PseudoTerminal>();
    Transmitter worker;
    QSignalSpy states(&worker, &Transmitter::sig_SendStatePort);
    QSignalSpy answers(&worker, &Transmitter::sig_SendAnswer);
    worker.sl_initialization(&worker, line->portName());
    auto* const port = worker.findChild<QSerialPort*>();
    qRegisterMetaType<QSerialPort::SerialPortError>();
    QSignalSpy errors(port, &QSerialPort::errorOccurred);
    const DebugLines debug;
    if (hangUp) {
        line.reset();
    } else {
        line->unplug();
    }
    if (writing) {
        worker.sl_AddRequestInQueue(&worker, request("a"));
    }
    QTRY_COMPARE_WITH_TIMEOUT(states.size(), 3, ends);
    QCOMPARE(states.constLast().at(1).value<StatePort>(), StateNotFound);
    QTRY_VERIFY_WITH_TIMEOUT(!port->isOpen(), ends);
    QTRY_COMPARE_WITH_TIMEOUT(answers.size(), writing ? 1 : 0, ends);
    QVERIFY2(errors.size() < 20, QByteArray::number(errors.size()).constData());
    QVERIFY(debug.linesWith(QStringLiteral("ERROR WRITE / READ !")).size() < 20);
    QCOMPARE(debug.linesWith(QStringLiteral("PORT NOT FOUND!")).size(), 1);
    QCOMPARE(states.size(), 3);
}

void tst_TransmitterLostPorts::announcedBytesThatWereClearedAreNoLossOfThePort()
{
    Bench bench;
    bench.open();
    const auto notifiers = bench.port()->findChildren<QSocketNotifier*>();
    const auto reading = std::find_if(notifiers.begin(), notifiers.end(), [](const QSocketNotifier* notifier) {
        return notifier->type() == QSocketNotifier::Read;
    });
    QVERIFY(reading != notifiers.end());
    // As if the event loop had seen the bytes before the port's buffers were cleared.
    for (const int lastFailure : {0, EAGAIN, EIO, EINTR}) {
        QEvent announcement(QEvent::SockAct);
        errno = lastFailure;
        QCoreApplication::sendEvent(*reading, &announcement);
    }
    QCOMPARE(bench.states, QList<int>{});
    QVERIFY(bench.port()->isOpen());
    // Nor is the port deaf afterwards.
    bench.onReceived = [&](const QByteArray&) { bench.line.write(frames::answer(0)); };
    bench.send(request("a"));
    QTRY_COMPARE_WITH_TIMEOUT(bench.answers.size(), 1, ends);
    QVERIFY(bench.answers.constFirst().isValid());
    // One that hangs up still is lost at once.
    bench.line.unplug();
    QTRY_COMPARE_WITH_TIMEOUT(bench.states, QList<int>{StateNotFound}, ends);
}

QTEST_GUILESS_MAIN(tst_TransmitterLostPorts)
#include "tst_TransmitterLostPorts.moc"
