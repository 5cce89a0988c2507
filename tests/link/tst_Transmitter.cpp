#include "link/TransmitterBench.h"
#include "support/DebugLines.h"

#include <QSocketNotifier>
#include <QThread>
#include <QtTest>

#include <cerrno>
#include <memory>

using frames::hex;
using P = protocol_HUBN_NX_Q;

namespace
{

/// Counts what a worker on another thread gives back, on the thread of the test.
class Tally : public QObject
{
    Q_OBJECT

public:
    void watch(Transmitter* transmitter)
    {
        worker = transmitter;
        connect(worker, &Transmitter::sig_SendAnswer, this, &Tally::take);
    }

    /// Runs the event loop until that many different requests have come back.
    void waitFor(int count)
    {
        expected = count;
        QTimer::singleShot(3 * ends, &loop, &QEventLoop::quit);
        loop.exec();
    }

    QMap<QByteArray, int> times; ///< by request
    int failed = 0;
    int timedOut = 0;
    int valid = 0;
    bool consistent = true; ///< right sender, right thread, and each valid answer that of its request

private:
    void take(Transmitter* sender, const message& answer)
    {
        ++times[answer.request()];
        failed += answer.portFailed() ? 1 : 0;
        timedOut += answer.timedOut() ? 1 : 0;
        valid += answer.isValid() ? 1 : 0;
        consistent = consistent && sender == worker && QThread::currentThread() == thread() &&
                     (!answer.isValid() || answer.payload() == answer.request());
        if (times.size() == expected) {
            loop.quit();
        }
    }

    Transmitter* worker = nullptr;
    QEventLoop loop;
    int expected = 0;
};

} // namespace

class tst_Transmitter : public QObject
{
    Q_OBJECT

private slots:
    // Ports.
    void makesItsRecordsKnownToQueuedSignals();
    void opensItsPort();
    void missingPortIsReportedTwice();
    void checkOpensAnewUnderTheSameName();
    void checkTakesAnotherName();
    void checkLeavesTheQueueAndTheRequestInFlight();
    void closeReportsTheStateAlsoIfClosed();
    void ignoresWhatIsMeantForOthers();
    void portErrors_data();
    void portErrors();
    void missingPortIsReportedOnce();

    // Queue.
    void dropsWhatIsNoRequest_data();
    void dropsWhatIsNoRequest();
    void dropsARequestThatIsQueued();
    void queuesARequestEqualToTheOneInFlight();
    void retryIsNoDuplicate();
    void leavesByPriority_data();
    void leavesByPriority();

    // Exchanges.
    void answersARequest();
    void answerInPieces();
    void secondPieceTooLate();
    void silenceTimesOut();
    void everyArrivalRestartsTheTime();
    void writtenBytesRestartTheTime();
    void badFrameTimesOutWithItsStatus();
    void lateBytesDontDisturbTheNextRequest();
    void bytesWithoutARequestAreLoggedAndDropped();
    void answerTimerWithoutARequestReadsAndClears();
    void timerPathTakesAnAnswer();
    void timerPathWaitsForMore();
    void bootAnswerBySignal();
    void bootAnswerByTimerIsNeverValid();
    void bootAnswerWithoutAParser();
    void readErrorWithAGoodAnswer();
    void readErrorWithSilence();
    void marksTheWatchAsPeriodic_data();
    void marksTheWatchAsPeriodic();

    // Rates.
    void firstRequestChangesTheRate();
    void reportsEachChangeOfTheRateOnce();

    // Lost and closed ports.
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
    void longQueueDrainsOnASmallStack();

    // Diagnostics and threads.
    void diagnosticLines();
    void givesEveryRequestBackOnceFromItsOwnThread();
};

void tst_Transmitter::makesItsRecordsKnownToQueuedSignals()
{
    // The first test of all: nothing else may have registered them before.
    QCOMPARE(QMetaType::type("message"), int(QMetaType::UnknownType));
    const Transmitter worker;
    QVERIFY(QMetaType::type("message") != QMetaType::UnknownType);
    QVERIFY(QMetaType::type("StatePort") != QMetaType::UnknownType);
}

void tst_Transmitter::opensItsPort()
{
    const DebugLines debug;
    Bench bench;
    bench.worker.sl_initialization(&bench.worker, bench.line.portName());
    QCOMPARE(bench.states, (QList<int>{StateConnecting, StateSearching}));
    QVERIFY(bench.port()->isOpen());
    QCOMPARE(bench.port()->baudRate(), 1200);
    QCOMPARE(bench.line.baudRate(), 1200);
    QCOMPARE(bench.port()->dataBits(), QSerialPort::Data8);
    QCOMPARE(bench.port()->parity(), QSerialPort::NoParity);
    QCOMPARE(bench.port()->stopBits(), QSerialPort::OneStop);
    QCOMPARE(bench.port()->flowControl(), QSerialPort::NoFlowControl);
    QCOMPARE(debug.lines().size(), 1);
    QVERIFY(debug.lines().constFirst().endsWith(QStringLiteral("): CREATE AND OPEN!")));
}

void tst_Transmitter::missingPortIsReportedTwice()
{
    const DebugLines debug;
    Bench bench;
    bench.worker.sl_initialization(&bench.worker, QStringLiteral("pts/nowhere"));
    QCOMPARE(bench.states, (QList<int>{StateConnecting, StateNotFound, StateNotFound}));
    QVERIFY(!bench.port()->isOpen());
    QCOMPARE(debug.lines().size(), 1);
    QVERIFY(debug.lines().constFirst().endsWith(QStringLiteral("): PORT NOT FOUND!")));
}

void tst_Transmitter::checkOpensAnewUnderTheSameName()
{
    Bench bench;
    bench.open();
    bench.send(request("a"));
    QTRY_COMPARE_WITH_TIMEOUT(bench.line.baudRate(), 57600, ends);
    bench.worker.sl_CheckPort(&bench.worker, {});
    QCOMPARE(bench.states, (QList<int>{StateConnecting, StateSearching}));
    QCOMPARE(bench.line.baudRate(), 1200);
    QCOMPARE(bench.port()->portName(), bench.line.portName());
}

void tst_Transmitter::checkTakesAnotherName()
{
    const PseudoTerminal other;
    Bench bench;
    bench.open();
    bench.worker.sl_CheckPort(&bench.worker, other.portName());
    QCOMPARE(bench.states, (QList<int>{StateConnecting, StateSearching}));
    QCOMPARE(bench.port()->portName(), other.portName());
}

void tst_Transmitter::checkLeavesTheQueueAndTheRequestInFlight()
{
    Bench bench;
    bench.open();
    bench.send(request("a"));
    bench.send(request("b"));
    bench.worker.sl_CheckPort(&bench.worker, {});
    QVERIFY(bench.answers.isEmpty());
    QTRY_COMPARE_WITH_TIMEOUT(bench.answeredRequests(), (QByteArrayList{"a", "b"}), ends);
    QVERIFY(bench.answers.at(1).timedOut() && !bench.answers.at(1).portFailed());
}

void tst_Transmitter::closeReportsTheStateAlsoIfClosed()
{
    Bench bench;
    bench.open();
    bench.worker.sl_ClosePort(&bench.worker);
    QVERIFY(!bench.port()->isOpen());
    bench.worker.sl_ClosePort(&bench.worker);
    QCOMPARE(bench.states, (QList<int>{StatePortDisabled, StatePortDisabled}));
}

void tst_Transmitter::ignoresWhatIsMeantForOthers()
{
    Transmitter other;
    Bench bench;
    bench.worker.sl_initialization(&other, bench.line.portName());
    QVERIFY(bench.port() == nullptr);
    bench.open();
    bench.worker.sl_CheckPort(&other, {});
    bench.worker.sl_ClosePort(nullptr);
    bench.worker.sl_AddRequestInQueue(&other, request("a"));
    QVERIFY(bench.states.isEmpty());
    QVERIFY(bench.shownRequests.isEmpty());
    QVERIFY(bench.port()->isOpen());
}

void tst_Transmitter::portErrors_data()
{
    QTest::addColumn<QSerialPort::SerialPortError>("error");
    QTest::addColumn<QList<int>>("states");
    QTest::addColumn<QString>("line");

    const QString notFound = QStringLiteral("): PORT NOT FOUND!");
    const QString openError = QStringLiteral("): ERROR OPEN!");
    const QString readWrite = QStringLiteral("): ERROR WRITE / READ !");
    QTest::newRow("device not found") << QSerialPort::DeviceNotFoundError << QList<int>{3} << notFound;
    QTest::newRow("resource") << QSerialPort::ResourceError << QList<int>{3} << notFound;
    QTest::newRow("permission") << QSerialPort::PermissionError << QList<int>{2} << openError;
    QTest::newRow("open") << QSerialPort::OpenError << QList<int>{2} << openError;
    QTest::newRow("unknown") << QSerialPort::UnknownError << QList<int>{2} << openError;
    QTest::newRow("write") << QSerialPort::WriteError << QList<int>{} << readWrite;
    QTest::newRow("read") << QSerialPort::ReadError << QList<int>{} << readWrite;
    QTest::newRow("none") << QSerialPort::NoError << QList<int>{} << QString();
    QTest::newRow("parity") << QSerialPort::ParityError << QList<int>{} << QString();
    QTest::newRow("framing") << QSerialPort::FramingError << QList<int>{} << QString();
    QTest::newRow("break") << QSerialPort::BreakConditionError << QList<int>{} << QString();
    QTest::newRow("timeout") << QSerialPort::TimeoutError << QList<int>{} << QString();
    QTest::newRow("not open") << QSerialPort::NotOpenError << QList<int>{} << QString();
    QTest::newRow("unsupported") << QSerialPort::UnsupportedOperationError << QList<int>{} << QString();
}

void tst_Transmitter::portErrors()
{
    QFETCH(const QSerialPort::SerialPortError, error);
    QFETCH(const QList<int>, states);
    QFETCH(const QString, line);
    Bench bench;
    bench.open();
    const DebugLines debug;
    bench.worker.sl_onPortError(error);
    QCOMPARE(bench.states, states);
    QCOMPARE(debug.lines().size(), line.isEmpty() ? 0 : 1);
    QVERIFY(debug.lines().join(QString()).endsWith(line));
    QVERIFY(bench.answers.isEmpty());
}

void tst_Transmitter::missingPortIsReportedOnce()
{
    Bench bench;
    bench.open();
    const DebugLines debug;
    bench.worker.sl_onPortError(QSerialPort::ResourceError);
    bench.worker.sl_onPortError(QSerialPort::DeviceNotFoundError);
    bench.worker.sl_onPortError(QSerialPort::ResourceError);
    QCOMPARE(bench.states, QList<int>{StateNotFound});
    QCOMPARE(debug.lines().size(), 1);
    bench.worker.sl_onPortError(QSerialPort::OpenError);
    bench.worker.sl_onPortError(QSerialPort::OpenError);
    bench.worker.sl_onPortError(QSerialPort::ResourceError);
    QCOMPARE(bench.states, (QList<int>{3, 2, 2, 3}));
}

void tst_Transmitter::dropsWhatIsNoRequest_data()
{
    QTest::addColumn<message>("mess");
    message withoutBytes = request("a");
    withoutBytes.setRequest({});
    QTest::newRow("no bytes") << withoutBytes;
    message withoutType = request("a");
    withoutType.setRequestType(0);
    QTest::newRow("no type") << withoutType;
    QTest::newRow("an unknown class of channels") << P::requestBusyChannels(1, 5);
}

void tst_Transmitter::dropsWhatIsNoRequest()
{
    QFETCH(const message, mess);
    Bench bench;
    bench.open();
    const DebugLines debug;
    bench.send(mess);
    bench.send(request("after"));
    QTRY_COMPARE_WITH_TIMEOUT(bench.answers.size(), 1, ends);
    QCOMPARE(bench.answeredRequests(), QByteArrayList{"after"});
    QCOMPARE(debug.linesWith(QStringLiteral("request")).size(), 1);
}

void tst_Transmitter::dropsARequestThatIsQueued()
{
    Bench bench;
    bench.open();
    bench.send(request("first"));
    bench.send(request("x"));
    bench.send(request("y"));
    message twin = request("x", 50);
    twin.setBaudrate(9600);
    bench.send(twin);
    bench.send(request("y"));
    QTRY_COMPARE_WITH_TIMEOUT(bench.answers.size(), 3, ends);
    QTest::qWait(0);
    QCOMPARE(bench.answeredRequests(), (QByteArrayList{"first", "x", "y"}));
    bench.send(request("last"));
    QTRY_COMPARE_WITH_TIMEOUT(bench.answeredRequests(), (QByteArrayList{"first", "x", "y", "last"}), ends);
}

void tst_Transmitter::queuesARequestEqualToTheOneInFlight()
{
    Bench bench;
    bench.open();
    bench.send(request("x"));
    bench.send(request("x"));
    bench.send(request("x"));
    QTRY_COMPARE_WITH_TIMEOUT(bench.answeredRequests(), (QByteArrayList{"x", "x"}), ends);
    QCOMPARE(bench.shownRequests.size(), 2);
}

void tst_Transmitter::retryIsNoDuplicate()
{
    Bench bench;
    bench.open();
    bench.send(request("first"));
    message again = request("x");
    again.prepareRetry();
    bench.send(request("x"));
    bench.send(again);
    QTRY_COMPARE_WITH_TIMEOUT(bench.answeredRequests(), (QByteArrayList{"first", "x", "x"}), ends);
}

void tst_Transmitter::leavesByPriority_data()
{
    QTest::addColumn<QList<message>>("queued");
    QTest::addColumn<QByteArrayList>("leaving");
    QTest::newRow("the greater priority overtakes")
        << QList<message>{request("a", 50), request("b", 100)} << QByteArrayList{"b", "a"};
    QTest::newRow("equal priorities leave as the heap has them")
        << QList<message>{request("1"), request("2"), request("3"), request("4")} << QByteArrayList{"1", "3", "2", "4"};
    QTest::newRow("two priorities mixed")
        << QList<message>{request("a", 50), request("b", 100), request("c", 50), request("d", 100)}
        << QByteArrayList{"b", "d", "a", "c"};
    QTest::newRow("all different") << QList<message>{request("a", 3), request("b", 255), request("c", 0),
                                                     request("d", 200), request("e", 100)}
                                   << QByteArrayList{"b", "d", "e", "a", "c"};
}

void tst_Transmitter::leavesByPriority()
{
    QFETCH(const QList<message>, queued);
    QFETCH(const QByteArrayList, leaving);
    Bench bench;
    bench.open();
    bench.onReceived = [&bench](const QByteArray&) { bench.line.write(frames::answer(0)); };
    bench.send(request("in flight", 50));
    for (const message& mess : queued) {
        bench.send(mess);
    }
    QTRY_COMPARE_WITH_TIMEOUT(bench.answeredRequests(), (QByteArrayList{"in flight"} + leaving), ends);
    QCOMPARE(bench.shownRequests, bench.answeredRequests());
}

void tst_Transmitter::answersARequest()
{
    Bench bench;
    bench.open();
    const message sent = P::requestReadConfig(1, 7, 0);
    bench.onReceived = [&bench](const QByteArray&) { bench.line.write(hex("C20601000500C0010002013803")); };
    bench.send(sent);
    QTRY_COMPARE_WITH_TIMEOUT(bench.answers.size(), 1, ends);

    const message& answer = bench.answers.constFirst();
    QCOMPARE(bench.received, sent.request());
    QCOMPARE(answer.request(), sent.request());
    QVERIFY(answer.isValid());
    QVERIFY(!answer.timedOut());
    QVERIFY(!answer.portFailed());
    QCOMPARE(answer.answerCode(), 0);
    QCOMPARE(answer.payload(), hex("C1000201"));
    QCOMPARE(answer.rawAnswer(), hex("C20601000500C0010002013803"));
    QCOMPARE(int(answer.address()), 7);
    QCOMPARE(int(answer.attempts()), 3);
    QCOMPARE(bench.shownRequests, QByteArrayList{sent.request()});
    QCOMPARE(bench.shownAnswers, QByteArrayList{answer.rawAnswer()});
    QVERIFY(bench.states.isEmpty());
}

void tst_Transmitter::answerInPieces()
{
    Bench bench;
    bench.open();
    const QByteArray whole = frames::answer(0, "0123456789");
    int written = 0;
    QTimer pieces;
    pieces.setInterval(10);
    connect(&pieces, &QTimer::timeout, &bench, [&] {
        bench.line.write(whole.mid(written, 1));
        if (++written == whole.size()) {
            pieces.stop();
        }
    });
    bench.onReceived = [&pieces](const QByteArray&) { pieces.start(); };
    // A busy machine may stretch a gap beyond the time that the worker waits; such a run says nothing.
    for (int run = 0; run < 10 && (bench.answers.isEmpty() || bench.answers.constLast().timedOut()); ++run) {
        pieces.stop();
        written = 0;
        bench.answers.clear();
        bench.send(P::requestReadLogInfo(1));
        QTRY_COMPARE_WITH_TIMEOUT(bench.answers.size(), 1, ends);
    }
    QVERIFY(bench.answers.constFirst().isValid());
    QCOMPARE(bench.answers.constFirst().rawAnswer(), whole);
    QCOMPARE(bench.answers.constFirst().payload(), QByteArray("0123456789"));
}

void tst_Transmitter::secondPieceTooLate()
{
    const DebugLines debug;
    Bench bench;
    bench.open();
    const QByteArray whole = frames::answer(0, "0123456789");
    bench.onReceived = [&](const QByteArray&) { bench.line.write(whole.left(9)); };
    bench.send(P::requestReadLogInfo(1));
    QTRY_COMPARE_WITH_TIMEOUT(bench.answers.size(), 1, ends);
    QVERIFY(bench.answers.constFirst().timedOut());
    QCOMPARE(bench.answers.constFirst().rawAnswer(), whole.left(9));
    QCOMPARE(bench.answers.constFirst().parseStatus(), int(PacketIncomplete));

    bench.line.write(whole.mid(9));
    QTRY_COMPARE_WITH_TIMEOUT(debug.linesWith(QStringLiteral("without request")).size(), 1, ends);
    QVERIFY(debug.linesWith(QStringLiteral("without request"))
                .constFirst()
                .endsWith(QLatin1Char('"') + QString::fromLatin1(whole.mid(9).toHex()) + QLatin1Char('"')));
    QCOMPARE(bench.answers.size(), 1);
}

void tst_Transmitter::silenceTimesOut()
{
    Bench bench;
    bench.open();
    bench.send(P::requestReadLogInfo(1));
    QTRY_COMPARE_WITH_TIMEOUT(bench.answers.size(), 1, ends);
    QVERIFY(bench.answers.constFirst().timedOut());
    QVERIFY(!bench.answers.constFirst().portFailed());
    QCOMPARE(bench.answers.constFirst().parseStatus(), int(PacketNotParsed));
    QCOMPARE(bench.shownAnswers, QByteArrayList{QByteArray()});
    const qint64 waited = bench.answerMoments.constFirst() - bench.requestMoments.constFirst();
    QVERIFY2(waited >= 119 && waited < 1000, QByteArray::number(waited).constData());
}

void tst_Transmitter::everyArrivalRestartsTheTime()
{
    Bench bench;
    bench.open();
    qint64 lastArrival = 0;
    int noise = 0;
    QTimer source;
    source.setInterval(60);
    connect(&source, &QTimer::timeout, &bench, [&] {
        if (++noise == 5) {
            source.stop();
        }
        lastArrival = bench.clock.elapsed();
        bench.line.write("n");
    });
    bench.onReceived = [&source](const QByteArray&) { source.start(); };
    bench.send(P::requestReadLogInfo(1));
    QTRY_COMPARE_WITH_TIMEOUT(bench.answers.size(), 1, ends);
    QVERIFY(bench.answers.constFirst().timedOut());
    if (noise == 5) {
        QCOMPARE(bench.answers.constFirst().rawAnswer(), QByteArray("nnnnn"));
        QCOMPARE(bench.answers.constFirst().parseStatus(), int(PacketNoStart));
        QVERIFY(bench.answerMoments.constFirst() - lastArrival >= 119);
    }
    QVERIFY(noise >= 1);
}

void tst_Transmitter::writtenBytesRestartTheTime()
{
    Bench bench;
    bench.open();
    qint64 lastWritten = 0;
    QTimer writing;
    int calls = 0;
    writing.setInterval(50);
    connect(&writing, &QTimer::timeout, &bench, [&] {
        if (++calls == 4) {
            writing.stop();
        }
        if (bench.answers.isEmpty()) {
            lastWritten = bench.clock.elapsed();
            bench.worker.sl_onPacketWritten(1);
        }
    });
    bench.send(P::requestReadLogInfo(1));
    writing.start();
    QTRY_COMPARE_WITH_TIMEOUT(bench.answers.size(), 1, ends);
    QVERIFY(bench.answers.constFirst().timedOut());
    QVERIFY(bench.answerMoments.constFirst() - lastWritten >= 119);
}

void tst_Transmitter::badFrameTimesOutWithItsStatus()
{
    Bench bench;
    bench.open();
    QByteArray damaged = frames::answer(0, "0123456789");
    damaged[8] = 'x';
    bench.onReceived = [&](const QByteArray&) { bench.line.write(damaged); };
    bench.send(P::requestReadLogInfo(1));
    QTRY_COMPARE_WITH_TIMEOUT(bench.answers.size(), 1, ends);
    QVERIFY(bench.answers.constFirst().timedOut());
    QCOMPARE(bench.answers.constFirst().parseStatus(), int(PacketBadCrc));
    QCOMPARE(bench.answers.constFirst().rawAnswer(), damaged);
}

void tst_Transmitter::lateBytesDontDisturbTheNextRequest()
{
    const DebugLines debug;
    Bench bench;
    bench.open();
    bench.send(P::requestReadLogInfo(1));
    QTRY_COMPARE_WITH_TIMEOUT(bench.answers.size(), 1, ends);
    // A late answer waits unread in the line when the next request goes out.
    bench.line.write(frames::answer(0, "late"));
    bench.onReceived = [&](const QByteArray&) { bench.line.write(frames::answer(0, "right")); };
    bench.send(P::requestReadLogInfo(1));
    QTRY_COMPARE_WITH_TIMEOUT(bench.answers.size(), 2, ends);
    QCOMPARE(bench.answers.constLast().payload(), QByteArray("right"));
    QCOMPARE(bench.answers.constLast().rawAnswer(), frames::answer(0, "right"));
}

void tst_Transmitter::bytesWithoutARequestAreLoggedAndDropped()
{
    const DebugLines debug;
    Bench bench;
    bench.open();
    bench.line.write("stray");
    QTRY_COMPARE_WITH_TIMEOUT(debug.linesWith(QStringLiteral("answer")).size(), 1, ends);
    QVERIFY(
        debug.lines().constLast().endsWith(QStringLiteral("): answer(by signal) without request:  \"7374726179\"")));
    bench.onReceived = [&](const QByteArray&) { bench.line.write(frames::answer(0, "right")); };
    bench.send(P::requestReadLogInfo(1));
    QTRY_COMPARE_WITH_TIMEOUT(bench.answers.size(), 1, ends);
    QCOMPARE(bench.answers.constFirst().rawAnswer(), frames::answer(0, "right"));
}

void tst_Transmitter::answerTimerWithoutARequestReadsAndClears()
{
    const DebugLines debug;
    Bench bench;
    bench.open();
    // Without bytes it says nothing.
    bench.worker.sl_onPacketWritten(8);
    bench.worker.sl_onTimeout();
    QCOMPARE(debug.linesWith(QStringLiteral("answer")).size(), 0);
    // With bytes that no signal has announced.
    bench.port()->blockSignals(true);
    bench.line.write("stray");
    QTRY_COMPARE_WITH_TIMEOUT(bench.port()->bytesAvailable(), qint64(5), ends);
    bench.worker.sl_onPacketWritten(8);
    QTRY_COMPARE_WITH_TIMEOUT(debug.linesWith(QStringLiteral("answer")).size(), 1, ends);
    QVERIFY(debug.lines().constLast().endsWith(QStringLiteral("): answer(by timer) without request:  \"7374726179\"")));
    QCOMPARE(bench.port()->bytesAvailable(), qint64(0));
    QVERIFY(bench.answers.isEmpty());
    // Also on a closed port, and without a word from Qt.
    bench.port()->blockSignals(false);
    bench.worker.sl_ClosePort(&bench.worker);
    bench.worker.sl_onTimeout();
    QCOMPARE(debug.lines().size(), 2);
}

void tst_Transmitter::timerPathTakesAnAnswer()
{
    const DebugLines debug;
    Bench bench;
    bench.open();
    bench.send(P::requestReadLogInfo(1));
    QTRY_COMPARE_WITH_TIMEOUT(bench.received.size(), P::requestReadLogInfo(1).request().size(), ends);
    bench.port()->blockSignals(true);
    bench.line.write(frames::answer(0, "x"));
    QTRY_COMPARE_WITH_TIMEOUT(bench.answers.size(), 1, ends);
    QVERIFY(bench.answers.constFirst().isValid());
    QVERIFY(!bench.answers.constFirst().timedOut());
    QCOMPARE(bench.answers.constFirst().payload(), QByteArray("x"));
    QCOMPARE(debug.linesWith(QStringLiteral("by timer")).size(), 1);
    QCOMPARE(debug.linesWith(QStringLiteral("by signal")).size(), 0);
}

void tst_Transmitter::timerPathWaitsForMore()
{
    const DebugLines debug;
    Bench bench;
    bench.open();
    bench.send(P::requestReadLogInfo(1));
    QTRY_COMPARE_WITH_TIMEOUT(bench.received.size(), P::requestReadLogInfo(1).request().size(), ends);
    bench.port()->blockSignals(true);
    bench.line.write(frames::answer(0, "x").left(8));
    QTRY_COMPARE_WITH_TIMEOUT(debug.linesWith(QStringLiteral("by timer")).size(), 1, ends);
    QVERIFY(bench.answers.isEmpty());
    // The next tick finds nothing; the empty read is logged as well.
    QTRY_COMPARE_WITH_TIMEOUT(bench.answers.size(), 1, ends);
    QVERIFY(bench.answers.constFirst().timedOut());
    QCOMPARE(bench.answers.constFirst().parseStatus(), int(PacketIncomplete));
    QCOMPARE(debug.linesWith(QStringLiteral("by timer")).size(), 2);
    QVERIFY(debug.lines().constLast().endsWith(QStringLiteral("): answer(by timer):  \"\"")));
}

void tst_Transmitter::bootAnswerBySignal()
{
    Bench bench;
    QByteArrayList parsed;
    bench.worker.setBootParser([&parsed](const message& answer) {
        parsed.append(answer.rawAnswer());
        message result = answer;
        result.setParseStatus(answer.rawAnswer() == "boot" ? PacketOk : PacketIncomplete);
        return result;
    });
    bench.open();
    bench.onReceived = [&bench](const QByteArray&) { bench.line.write("bo"); };
    bench.send(bootRequest());
    QTRY_COMPARE_WITH_TIMEOUT(parsed.size(), 1, ends);
    bench.line.write("ot");
    QTRY_COMPARE_WITH_TIMEOUT(bench.answers.size(), 1, ends);
    QVERIFY(bench.answers.constFirst().isValid());
    QCOMPARE(parsed, (QByteArrayList{"bo", "boot"}));
    // A device's answer is none of the boot parser's business.
    bench.onReceived = [&bench](const QByteArray&) { bench.line.write(frames::answer(0, "device")); };
    bench.send(P::requestReadLogInfo(1));
    QTRY_COMPARE_WITH_TIMEOUT(bench.answers.size(), 2, ends);
    QCOMPARE(bench.answers.constLast().payload(), QByteArray("device"));
    QCOMPARE(parsed.size(), 2);
}

void tst_Transmitter::bootAnswerByTimerIsNeverValid()
{
    Bench bench;
    int parses = 0;
    bench.worker.setBootParser([&parses](const message& answer) {
        ++parses;
        message result = answer;
        result.setParseStatus(PacketOk);
        return result;
    });
    bench.open();
    bench.send(bootRequest());
    QTRY_COMPARE_WITH_TIMEOUT(bench.received, hex("FA0302C2F9"), ends);
    bench.port()->blockSignals(true);
    bench.line.write("boot");
    QTRY_COMPARE_WITH_TIMEOUT(bench.answers.size(), 1, ends);
    QCOMPARE(parses, 0);
    QVERIFY(bench.answers.constFirst().timedOut());
    QCOMPARE(bench.answers.constFirst().parseStatus(), int(PacketNoStart));
    QCOMPARE(bench.answers.constFirst().rawAnswer(), QByteArray("boot"));
}

void tst_Transmitter::bootAnswerWithoutAParser()
{
    Bench bench;
    bench.open();
    bench.onReceived = [&bench](const QByteArray&) { bench.line.write(hex("FA0300 0000")); };
    bench.send(bootRequest());
    QTRY_COMPARE_WITH_TIMEOUT(bench.answers.size(), 1, ends);
    QVERIFY(bench.answers.constFirst().timedOut());
    QVERIFY(!bench.answers.constFirst().isValid());
    QCOMPARE(bench.answers.constFirst().rawAnswer(), hex("FA03000000"));
}

void tst_Transmitter::readErrorWithAGoodAnswer()
{
    Bench bench;
    bench.open();
    const QByteArray whole = frames::answer(0, "0123456789");
    bool damaged = false;
    bench.onReceived = [&](const QByteArray&) { bench.line.write(whole.left(9)); };
    connect(bench.port(), &QSerialPort::readyRead, &bench, [&] {
        if (!damaged) {
            damaged = true;
            bench.worker.sl_onPortError(QSerialPort::ReadError);
            bench.line.write(whole.mid(9));
        }
    });
    bench.send(P::requestReadLogInfo(1));
    QTRY_COMPARE_WITH_TIMEOUT(bench.answers.size(), 1, ends);
    QVERIFY(bench.answers.constFirst().isValid());
    QVERIFY(bench.answers.constFirst().portFailed());
    QVERIFY(!bench.answers.constFirst().timedOut());
    QVERIFY(bench.states.isEmpty());
}

void tst_Transmitter::readErrorWithSilence()
{
    Bench bench;
    bench.open();
    bench.send(P::requestReadLogInfo(1));
    bench.worker.sl_onPortError(QSerialPort::WriteError);
    QVERIFY(bench.answers.isEmpty());
    QTRY_COMPARE_WITH_TIMEOUT(bench.answers.size(), 1, ends);
    QVERIFY(bench.answers.constFirst().portFailed());
    QVERIFY(bench.answers.constFirst().timedOut());
    // The next request knows nothing of it.
    bench.send(P::requestReadLogInfo(1));
    QTRY_COMPARE_WITH_TIMEOUT(bench.answers.size(), 2, ends);
    QVERIFY(!bench.answers.constLast().portFailed());
}

void tst_Transmitter::marksTheWatchAsPeriodic_data()
{
    QTest::addColumn<message>("mess");
    QTest::addColumn<bool>("periodic");
    QTest::newRow("time") << P::requestDeviceTime(1) << true;
    QTest::newRow("watch") << watchRequest() << true;
    QTest::newRow("search") << P::requestCheckCoordinator(1) << false;
    QTest::newRow("set the time") << P::requestSyncTime(1, "1234567") << false;
    QTest::newRow("boot request of type 2") << bootRequest() << false;
}

void tst_Transmitter::marksTheWatchAsPeriodic()
{
    QFETCH(const message, mess);
    QFETCH(const bool, periodic);
    Bench bench;
    bench.open();
    bench.send(mess);
    QTRY_COMPARE_WITH_TIMEOUT(bench.answers.size(), 1, ends);
    QCOMPARE(bench.requestFlags, QList<bool>{periodic});
    QCOMPARE(bench.answerFlags, QList<bool>{periodic});
}

void tst_Transmitter::firstRequestChangesTheRate()
{
    Bench bench;
    bench.open();
    QCOMPARE(bench.line.baudRate(), 1200);
    bench.send(P::requestReadLogInfo(1));
    QCOMPARE(bench.baudrates, QList<int>{57600});
    QCOMPARE(bench.line.baudRate(), 57600);
    QTRY_COMPARE_WITH_TIMEOUT(bench.answers.size(), 1, ends);
    // A port opened anew is back at its opening rate.
    bench.worker.sl_CheckPort(&bench.worker, {});
    bench.send(P::requestReadLogInfo(1));
    QCOMPARE(bench.baudrates, (QList<int>{57600, 57600}));
}

void tst_Transmitter::reportsEachChangeOfTheRateOnce()
{
    Bench bench;
    bench.open();
    message slow = request("slow");
    slow.setBaudrate(9600);
    message slowToo = request("slow too");
    slowToo.setBaudrate(9600);
    QList<int> rates;
    bench.onReceived = [&](const QByteArray&) { rates.append(bench.line.baudRate()); };
    bench.send(request("fast"));
    QTRY_COMPARE_WITH_TIMEOUT(bench.answers.size(), 1, ends);
    bench.send(slow);
    QTRY_COMPARE_WITH_TIMEOUT(bench.answers.size(), 2, ends);
    bench.send(slowToo);
    QTRY_COMPARE_WITH_TIMEOUT(bench.answers.size(), 3, ends);
    QCOMPARE(bench.baudrates, (QList<int>{57600, 9600}));
    QCOMPARE(rates, (QList<int>{57600, 9600, 9600}));
}

void tst_Transmitter::lostPortFailsAllButTheWatch()
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

void tst_Transmitter::watchFailsWhileThePortIsGone()
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

void tst_Transmitter::watchReopensAPortWithAnOpenError()
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

void tst_Transmitter::closedPortFailsAllButTheSwitchToBoot()
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

void tst_Transmitter::switchToBootFailsOnALostPort()
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

void tst_Transmitter::closingInFlightEndsByTheTimer()
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

void tst_Transmitter::unplugInFlightTimesOut()
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

void tst_Transmitter::hangUpInFlightTimesOut()
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

void tst_Transmitter::lostPortComesToRest_data()
{
    QTest::addColumn<bool>("hangUp");
    QTest::addColumn<bool>("writing");
    QTest::newRow("unplugged") << false << false;
    QTest::newRow("unplugged with bytes to write") << false << true;
    QTest::newRow("hung up") << true << false;
    QTest::newRow("hung up with bytes to write") << true << true;
}

void tst_Transmitter::lostPortComesToRest()
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

void tst_Transmitter::announcedBytesThatWereClearedAreNoLossOfThePort()
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

void tst_Transmitter::longQueueDrainsOnASmallStack()
{
    constexpr int count = 4000;
    PseudoTerminal line;
    QThread thread;
    thread.setStackSize(512 * 1024);
    auto* const worker = new Transmitter;
    worker->moveToThread(&thread);
    connect(&thread, &QThread::finished, worker, &QObject::deleteLater);
    Tally tally;
    tally.watch(worker);
    thread.start();
    // In one go, so that the queue is complete when the port closes.
    QMetaObject::invokeMethod(worker, [&] {
        worker->sl_initialization(worker, line.portName());
        worker->sl_AddRequestInQueue(worker, request("in flight"));
        for (int i = 0; i < count; ++i) {
            worker->sl_AddRequestInQueue(worker, request(QByteArray::number(i).constData()));
        }
        worker->sl_ClosePort(worker);
    });
    tally.waitFor(count + 1);
    QCOMPARE(tally.failed, count);
    QCOMPARE(tally.timedOut, 1);
    thread.quit();
    QVERIFY(thread.wait());
}

void tst_Transmitter::diagnosticLines()
{
    const DebugLines debug;
    Bench bench;
    bench.open();
    bench.onReceived = [&](const QByteArray&) { bench.line.write(frames::answer(0)); };
    bench.send(P::requestDeviceTime(1));
    QTRY_COMPARE_WITH_TIMEOUT(bench.answers.size(), 1, ends);
    bench.onReceived = nullptr;
    bench.worker.sl_onPortError(QSerialPort::WriteError);
    bench.worker.sl_onPortError(QSerialPort::OpenError);
    bench.worker.sl_onPortError(QSerialPort::ResourceError);

    const QString address = QStringLiteral("0x") + QString::number(quintptr(&bench.worker), 16);
    const QString head = QStringLiteral(R"(^"[0-2]\d:[0-5]\d:[0-5]\d:\d{3}"  :  Transmitter\(%1\)  :  "%2" \( %3 )")
                             .arg(address, bench.line.portName());
    const QList<QPair<int, QString>> expected = {
        {1200, QStringLiteral("): CREATE AND OPEN!")},
        {57600, QStringLiteral("): request:  \"c186010001052be8\"")},
        {57600, QStringLiteral("): answer(by signal):  \"%1\"").arg(QString::fromLatin1(frames::answer(0).toHex()))},
        {57600, QStringLiteral("): ERROR WRITE / READ !")},
        {57600, QStringLiteral("): ERROR OPEN!")},
        {57600, QStringLiteral("): PORT NOT FOUND!")},
    };
    QCOMPARE(debug.lines().size(), expected.size());
    for (int i = 0; i < expected.size(); ++i) {
        const QRegularExpression pattern(head.arg(expected.at(i).first) +
                                         QRegularExpression::escape(expected.at(i).second) + QLatin1Char('$'));
        QVERIFY2(pattern.match(debug.lines().at(i)).hasMatch(), qPrintable(debug.lines().at(i)));
    }
}

void tst_Transmitter::givesEveryRequestBackOnceFromItsOwnThread()
{
    constexpr int count = 300;
    PseudoTerminal line;
    QThread thread;
    auto* const worker = new Transmitter;
    worker->moveToThread(&thread);
    connect(&thread, &QThread::finished, worker, &QObject::deleteLater);
    Tally tally;
    tally.watch(worker);
    QRandomGenerator random(2020);
    connect(&line, &PseudoTerminal::readyRead, this, [&] {
        const QByteArray received = line.read();
        // Most are answered in two pieces, some not at all.
        if (random.bounded(20) != 0) {
            const QByteArray answer = frames::answer(0, received);
            const int cut = random.bounded(answer.size());
            line.write(answer.left(cut));
            line.write(answer.mid(cut));
        }
    });
    thread.start();
    QMetaObject::invokeMethod(worker, [&] { worker->sl_initialization(worker, line.portName()); });
    for (int i = 0; i < count; ++i) {
        const message mess = request(QByteArray::number(1000 + i).constData(), quint8(random.bounded(2) * 50 + 50));
        QMetaObject::invokeMethod(worker, [worker, mess] { worker->sl_AddRequestInQueue(worker, mess); });
    }
    tally.waitFor(count);
    QCOMPARE(tally.times.size(), count);
    thread.quit();
    QVERIFY(thread.wait());
    QCoreApplication::processEvents();
    QCOMPARE(tally.times.values(), QVector<int>(count, 1).toList());
    QVERIFY(tally.valid > count / 2);
    QCOMPARE(tally.valid + tally.timedOut, count);
    QVERIFY(tally.consistent);
}

QTEST_GUILESS_MAIN(tst_Transmitter)
#include "tst_Transmitter.moc"
