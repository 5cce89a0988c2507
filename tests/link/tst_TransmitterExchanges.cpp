#include "link/TransmitterBench.h"
#include "support/DebugLines.h"

#include <QtTest>

using frames::hex;
using P = protocol_HUBN_NX_Q;

/// What a request gets: an answer in whatever pieces, bytes that are none, or silence.
class tst_TransmitterExchanges : public QObject
{
    Q_OBJECT

private slots:
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
};

void tst_TransmitterExchanges::answersARequest()
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

void tst_TransmitterExchanges::answerInPieces()
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

void tst_TransmitterExchanges::secondPieceTooLate()
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

void tst_TransmitterExchanges::silenceTimesOut()
{
    qint64 quickest = ends;
    // A busy machine may stretch the time of one silence, but not that of all.
    for (int run = 0; run < 10 && quickest >= 1000; ++run) {
        Bench bench;
        bench.open();
        bench.send(P::requestReadLogInfo(1));
        QTRY_COMPARE_WITH_TIMEOUT(bench.answers.size(), 1, ends);
        QVERIFY(bench.answers.constFirst().timedOut());
        QVERIFY(!bench.answers.constFirst().portFailed());
        QCOMPARE(bench.answers.constFirst().parseStatus(), int(PacketNotParsed));
        QCOMPARE(bench.shownAnswers, QByteArrayList{QByteArray()});
        const qint64 waited = bench.answerMoments.constFirst() - bench.requestMoments.constFirst();
        QVERIFY2(waited >= 119, QByteArray::number(waited).constData());
        quickest = qMin(quickest, waited);
    }
    QVERIFY2(quickest < 1000, QByteArray::number(quickest).constData());
}

void tst_TransmitterExchanges::everyArrivalRestartsTheTime()
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

void tst_TransmitterExchanges::writtenBytesRestartTheTime()
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

void tst_TransmitterExchanges::badFrameTimesOutWithItsStatus()
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

void tst_TransmitterExchanges::lateBytesDontDisturbTheNextRequest()
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

void tst_TransmitterExchanges::bytesWithoutARequestAreLoggedAndDropped()
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

void tst_TransmitterExchanges::answerTimerWithoutARequestReadsAndClears()
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

void tst_TransmitterExchanges::timerPathTakesAnAnswer()
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

void tst_TransmitterExchanges::timerPathWaitsForMore()
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

void tst_TransmitterExchanges::bootAnswerBySignal()
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

void tst_TransmitterExchanges::bootAnswerByTimerIsNeverValid()
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

void tst_TransmitterExchanges::bootAnswerWithoutAParser()
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

void tst_TransmitterExchanges::readErrorWithAGoodAnswer()
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

void tst_TransmitterExchanges::readErrorWithSilence()
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

void tst_TransmitterExchanges::marksTheWatchAsPeriodic_data()
{
    QTest::addColumn<message>("mess");
    QTest::addColumn<bool>("periodic");
    QTest::newRow("time") << P::requestDeviceTime(1) << true;
    QTest::newRow("watch") << watchRequest() << true;
    QTest::newRow("search") << P::requestCheckCoordinator(1) << false;
    QTest::newRow("set the time") << P::requestSyncTime(1, "1234567") << false;
    QTest::newRow("boot request of type 2") << bootRequest() << false;
}

void tst_TransmitterExchanges::marksTheWatchAsPeriodic()
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

QTEST_GUILESS_MAIN(tst_TransmitterExchanges)
#include "tst_TransmitterExchanges.moc"
