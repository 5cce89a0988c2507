#include "LinkRecorder.h"
#include "support/DebugLines.h"
#include "support/Eventually.h"
#include "texts/texts.h"

#include <QRegularExpression>
#include <QtTest>

namespace
{

using Protocol = protocol_HUBN_NX_Q;

/// Answers everything that was asked since the last call, with data that suit.
void answerAll(LinkRecorder& recorder)
{
    while (!recorder.sent.isEmpty()) {
        const LinkRecorder::Sent sent = recorder.sent.takeFirst();
        sent.port->takeAnswer(suitableAnswer(sent.request));
    }
}

} // namespace

/// What a link does with the answers of its current port: resends, the clock, and the operations one after the other.
class tst_LinkOperations : public QObject
{
    Q_OBJECT

private slots:
    void answersOfOtherPortsAreDropped();
    void unknownTypesAreDroppedAfterTheirAttempts();
    void aFailedStepIsSentFourTimes();
    void aRefusedStepIsSentFourTimes();
    void resendsKeepTheRateOfThePort();

    void theTimeOfTheUnitIsShown();
    void theTimeOfOtherPortsIsNotShown();
    void theLastTimeStaysInViewAfterDisconnecting();
    void settingTheTimeSendsSevenBytes();
    void settingTheTimeIsResentOnlyIfNothingCame_data();
    void settingTheTimeIsResentOnlyIfNothingCame();
    void withoutAPortNoTimeIsSet();

    void theWholeChainInOrder();
    void writingEndsTheBusyState();
    void readingWithoutAPortIsNoDeadEnd();
    void writingNothingIsNoDeadEnd();
    void aRunningOperationIsNotEndedByOneBefore();
    void readingTheLogWithoutAPortGivesTheViewBack();
    void anUnchangedLogEndsTheBusyState();
    void aForcedLogReadingReads();
};

// Steps.

void tst_LinkOperations::answersOfOtherPortsAreDropped()
{
    LinkRecorder recorder({portA, portB});
    recorder.take();
    message request = Protocol::requestReadConfig(1, 0, 0);
    recorder.port(0)->takeAnswer(answers::timedOut(request));
    QCOMPARE(recorder.take(), QStringList());
    letFind(recorder.port(0));
    recorder.take();
    recorder.port(1)->takeAnswer(answers::good(request));
    recorder.port(1)->takeAnswer(answers::timedOut(request));
    request = Protocol::requestSyncTime(1, QByteArray(7, '\0'));
    recorder.port(1)->takeAnswer(answers::timedOut(request));
    QCOMPARE(recorder.take(), QStringList());
}

void tst_LinkOperations::unknownTypesAreDroppedAfterTheirAttempts()
{
    LinkRecorder recorder({portA});
    letFind(recorder.port());
    recorder.take();
    const DebugLines lines;
    message request = Protocol::requestReadConfig(1, 0, 0);
    request.setRequestType(77);
    recorder.port(0)->takeAnswer(answers::good(request));
    QCOMPARE(recorder.take(), QStringList());
    recorder.port(0)->takeAnswer(answers::timedOut(request));
    QCOMPARE(recorder.take(), QStringList(QStringLiteral("send 77 at 57600")));
    QCOMPARE(lines.linesWith(QStringLiteral("Error UNKNOWN COMMAND")).size(), 1);
    request.setAttempts(0);
    recorder.port(0)->takeAnswer(answers::timedOut(request));
    QCOMPARE(recorder.take(), QStringList());
}

void tst_LinkOperations::aFailedStepIsSentFourTimes()
{
    LinkRecorder recorder({portA});
    letFind(recorder.port());
    recorder.link.readConfiguration();
    const DebugLines lines;
    recorder.take();
    for (int attempt = 0; attempt < 4; ++attempt) {
        QCOMPARE(recorder.sent.last().request.request(), Protocol::requestReadConfig(1, 0, 0).request());
        QCOMPARE(int(recorder.sent.last().request.attempts()), 3 - attempt);
        QVERIFY(!recorder.sent.last().request.timedOut());
        QCOMPARE(recorder.busySteps, 0);
        recorder.port(0)->takeAnswer(answers::timedOut(recorder.sent.last().request));
    }
    QCOMPARE(recorder.sent.last().request.request(), Protocol::requestReadConfig(1, 0, 1).request());
    QCOMPARE(recorder.busySteps, 1);
    const QStringList logged = lines.linesWith(QStringLiteral(" (FormChoiceCoordinator): "));
    QCOMPARE(logged.size(), 4);
    for (int attempt = 0; attempt < 4; ++attempt) {
        const QRegularExpression line(QStringLiteral("^\"\\d\\d:\\d\\d:\\d\\d:\\d\\d\\d\" +\\(FormChoiceCoordinator\\):"
                                                     " +Error Read CONFIGURATION! +\\(attempts remained = +%1 *\\)$")
                                          .arg(3 - attempt));
        QVERIFY2(line.match(logged.at(attempt)).hasMatch(), qPrintable(logged.at(attempt)));
    }
}

void tst_LinkOperations::aRefusedStepIsSentFourTimes()
{
    LinkRecorder recorder({portA});
    letFind(recorder.port());
    recorder.link.readConfiguration();
    recorder.take();
    for (int attempt = 0; attempt < 4; ++attempt) {
        recorder.port(0)->takeAnswer(answers::refused(recorder.sent.last().request, 1, "data"));
    }
    QCOMPARE(recorder.take().count(QStringLiteral("send 7 at 57600")), 4);
    QCOMPARE(int(recorder.sent.last().request.number()), 1);
}

void tst_LinkOperations::resendsKeepTheRateOfThePort()
{
    LinkRecorder recorder({portA});
    letFind(recorder.port(0), 1, 9600);
    recorder.link.readConfiguration();
    recorder.take();
    recorder.port(0)->takeAnswer(answers::timedOut(recorder.sent.last().request));
    QCOMPARE(recorder.take(), QStringList(QStringLiteral("send 7 at 9600")));
}

// Clock.

void tst_LinkOperations::theTimeOfTheUnitIsShown()
{
    LinkRecorder recorder({portA});
    letFind(recorder.port());
    Port* const port = recorder.port();
    recorder.take();
    const message request = Protocol::requestDeviceTime(1);
    port->takeAnswer(answers::good(request, QByteArray::fromHex("56341225050920")));
    port->takeAnswer(answers::timedOut(request));
    port->takeAnswer(answers::refused(request, 5, QByteArray(7, '\1')));
    // Never resent: the next tick asks again.
    QCOMPARE(recorder.take(),
             QStringList({QStringLiteral("time 1 12:34:56 25.09.2020, FRI"),
                          QStringLiteral("time 0 --:--:-- --.--.----"), QStringLiteral("time 0 Not supported")}));
}

void tst_LinkOperations::theTimeOfOtherPortsIsNotShown()
{
    LinkRecorder recorder({portA, portB});
    letFind(recorder.port(0));
    letFind(recorder.port(1));
    recorder.take();
    recorder.port(1)->takeAnswer(answers::good(Protocol::requestDeviceTime(1), QByteArray(7, '\1')));
    QCOMPARE(recorder.take(), QStringList());
}

void tst_LinkOperations::theLastTimeStaysInViewAfterDisconnecting()
{
    LinkRecorder recorder({portA});
    letFind(recorder.port());
    Port* const port = recorder.port();
    recorder.port()->close();
    recorder.take();
    // The question was in the queue or on the wire when the port was closed.
    const message request = Protocol::requestDeviceTime(1);
    port->takeAnswer(answers::portFailed(request));
    port->takeAnswer(answers::timedOut(request));
    QCOMPARE(recorder.take(), QStringList());
}

void tst_LinkOperations::settingTheTimeSendsSevenBytes()
{
    CoordinatorSeams seams;
    seams.now = [] { return QDateTime(QDate(2020, 9, 25), QTime(12, 34, 56)); };
    LinkRecorder recorder({portA}, seams);
    letFind(recorder.port());
    recorder.take();
    recorder.link.setDeviceTime();
    QCOMPARE(recorder.take(), QStringList(QStringLiteral("send 1 at 57600")));
    QCOMPARE(recorder.sent.last().request.request(), QByteArray::fromHex("c186010008055634122505092068f5"));
}

void tst_LinkOperations::settingTheTimeIsResentOnlyIfNothingCame_data()
{
    QTest::addColumn<message>("answer");
    QTest::addColumn<int>("resends");
    const message request = Protocol::requestSyncTime(1, QByteArray(7, '\0'));
    message last = answers::timedOut(request);
    last.setAttempts(0);
    QTest::newRow("accepted") << answers::good(request) << 0;
    QTest::newRow("refused") << answers::refused(request, 5) << 0;
    QTest::newRow("silence") << answers::timedOut(request) << 1;
    QTest::newRow("port failed") << answers::portFailed(request) << 1;
    QTest::newRow("damaged") << answers::damaged(request) << 1;
    QTest::newRow("the last attempt") << last << 0;
}

void tst_LinkOperations::settingTheTimeIsResentOnlyIfNothingCame()
{
    QFETCH(message, answer);
    QFETCH(int, resends);
    LinkRecorder recorder({portA});
    letFind(recorder.port());
    recorder.take();
    recorder.port(0)->takeAnswer(answer);
    QCOMPARE(recorder.count(QStringLiteral("send 1 at 57600")), resends);
    QCOMPARE(recorder.events.size(), resends);
}

void tst_LinkOperations::withoutAPortNoTimeIsSet()
{
    LinkRecorder recorder({portA});
    recorder.take();
    recorder.link.setDeviceTime();
    QCOMPARE(recorder.take(), QStringList());
}

// Operations. What they do in detail is tested with each of them.

void tst_LinkOperations::theWholeChainInOrder()
{
    LinkRecorder recorder({portA});
    using Link = CoordinatorLink;
    connect(&recorder.link, &Link::terminalsFound, &recorder.link, &Link::readConfiguration);
    connect(&recorder.link, &Link::scriptsRead, &recorder.link, &Link::readLog);
    letFind(recorder.port());
    recorder.sent = {recorder.sent.last()};
    recorder.take();
    answerAll(recorder);
    const QStringList events = recorder.take();
    QCOMPARE(stepsOf(events), stepsOfTheChain());
    QCOMPARE(events.filter(QStringLiteral("result")), resultsOfTheChain());
    // Until somebody has taken the events.
    QVERIFY(recorder.isBusy);
    QCOMPARE(recorder.busyText, texts::busyAddingLog());
}

void tst_LinkOperations::writingEndsTheBusyState()
{
    LinkRecorder recorder({portA});
    letFind(recorder.port());
    recorder.sent.clear();
    recorder.take();
    recorder.link.writeConfiguration({"a", "b"}, {"c"});
    QVERIFY(recorder.isBusy);
    QCOMPARE(recorder.busyMaximum, 3);
    answerAll(recorder);
    QVERIFY(!recorder.isBusy);
    QCOMPARE(recorder.busySteps, 3);
    QCOMPARE(recorder.take(),
             QStringList({QStringLiteral("send 5 at 57600"), QStringLiteral("result ") + texts::resultWriteStarted(),
                          QStringLiteral("send 5 at 57600"), QStringLiteral("send 6 at 57600"),
                          QStringLiteral("result ") + texts::resultWriteOutputsOk() + QLatin1Char('\n') +
                              texts::resultWriteScriptsOk()}));
}

void tst_LinkOperations::readingWithoutAPortIsNoDeadEnd()
{
    LinkRecorder recorder;
    recorder.link.readConfiguration();
    QVERIFY(recorder.isBusy);
    QCOMPARE(recorder.take(), QStringList(QStringLiteral("result ") + texts::resultReadStarted()));
    EVENTUALLY(!recorder.isBusy);
}

void tst_LinkOperations::writingNothingIsNoDeadEnd()
{
    LinkRecorder recorder({portA});
    letFind(recorder.port());
    recorder.link.writeConfiguration({}, {});
    QVERIFY(recorder.isBusy);
    EVENTUALLY(!recorder.isBusy);
}

void tst_LinkOperations::aRunningOperationIsNotEndedByOneBefore()
{
    LinkRecorder recorder({portA});
    LinkRecorder other;
    // The other link is busy for the same time; twice that is surely longer.
    const auto waitLonger = [&other] {
        for (int time = 0; time < 2; ++time) {
            other.link.readConfiguration();
            EVENTUALLY(!other.isBusy);
        }
    };
    // Shown for nothing, and then for the search that follows a choice.
    recorder.link.readConfiguration();
    letFind(recorder.port());
    waitLonger();
    QVERIFY(recorder.isBusy);
    // And then for a reading.
    recorder.link.writeConfiguration({}, {});
    recorder.link.readConfiguration();
    waitLonger();
    QVERIFY(recorder.isBusy);
}

void tst_LinkOperations::readingTheLogWithoutAPortGivesTheViewBack()
{
    LinkRecorder recorder;
    recorder.link.readLog();
    QCOMPARE(recorder.take(), QStringList({QStringLiteral("result ") + texts::resultLogStarted(),
                                           QStringLiteral("send 4 at 1200"), QStringLiteral("log not necessary")}));
    QVERIFY(recorder.sent.last().port == nullptr);
    QVERIFY(!recorder.isBusy);
}

void tst_LinkOperations::anUnchangedLogEndsTheBusyState()
{
    LinkRecorder recorder({portA});
    letFind(recorder.port());
    recorder.sent.clear();
    recorder.link.readLog();
    answerAll(recorder);
    recorder.take();
    QVERIFY(recorder.isBusy);
    recorder.link.readLog();
    answerAll(recorder);
    QCOMPARE(
        recorder.take(),
        QStringList({QStringLiteral("result ") + texts::resultLogStarted(), QStringLiteral("send 4 at 57600"),
                     QStringLiteral("result ") + texts::resultLogUnchanged(), QStringLiteral("log not necessary")}));
    QVERIFY(!recorder.isBusy);
}

void tst_LinkOperations::aForcedLogReadingReads()
{
    LinkRecorder recorder({portA});
    letFind(recorder.port());
    recorder.sent.clear();
    recorder.link.readLog();
    answerAll(recorder);
    recorder.take();
    recorder.link.forceLogReading();
    recorder.link.readLog();
    answerAll(recorder);
    QCOMPARE(recorder.count(QStringLiteral("send 3")), 2);
}

QTEST_GUILESS_MAIN(tst_LinkOperations)
#include "tst_LinkOperations.moc"
