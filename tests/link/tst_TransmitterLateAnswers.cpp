#include "firmware/protocol_boot.h"
#include "link/LateAnswers.h"
#include "link/TransmitterBench.h"

#include <QtTest>

#include <chrono>

namespace
{

using namespace std::chrono_literals;

message resendOf(message mess)
{
    mess.prepareRetry();
    return mess;
}

/// A worker that keeps late answers apart.
class CarefulBench : public Bench
{
public:
    CarefulBench()
    {
        worker.setBootParser(&protocol_boot::parseAnswer);
        worker.keepLateAnswersApart();
        open();
    }

    /// Lets bytes arrive as soon as a number of requests has come back.
    void writeAfterAnswer(int count, const QByteArray& bytes)
    {
        connect(&worker, &Transmitter::sig_SendAnswer, this, [this, count, bytes] {
            if (answers.size() == count) {
                line.write(bytes);
            }
        });
    }

    /// Lets bytes arrive as soon as a number of requests has gone out.
    void writeAfterRequest(int count, const QByteArray& bytes)
    {
        connect(&worker, &Transmitter::sig_SendRequestInForm, this, [this, count, bytes] {
            if (shownRequests.size() == count) {
                line.write(bytes);
            }
        });
    }

    /// What the requests got, in the order of their ends.
    QByteArrayList payloads() const
    {
        QByteArrayList result;
        for (const message& answer : answers) {
            result.append(answer.payload());
        }
        return result;
    }
};

} // namespace

/// The worker over a line whose unit answers late, too late or not at all.
class tst_TransmitterLateAnswers : public QObject
{
    Q_OBJECT

private slots:
    void aLateAnswerIsNotTheNextRequests();
    void aResendTakesTheLateAnswerAndWaitsForItsOwn();
    void aLateAnswerOfTheBootloaderIsCountedToo();
    void silenceIsWaitedOutOnce();
    void whatWakesASilentLineBelongsToNoRequest();
    void requestsOnALostPortFailAtOnce();
    void theWatchGoesOnOverASilentLine();
    void withoutTheRuleRequestsFollowEachOther();
};

void tst_TransmitterLateAnswers::aLateAnswerIsNotTheNextRequests()
{
    CarefulBench bench;
    bench.writeAfterAnswer(1, frames::answer(0, "to a"));
    bench.writeAfterRequest(2, frames::answer(0, "to b"));
    bench.send(request("a"));
    bench.send(request("b"));
    QTRY_COMPARE_WITH_TIMEOUT(bench.answers.size(), 2, ends);
    QVERIFY(bench.answers.constFirst().timedOut());
    QCOMPARE(bench.payloads(), (QByteArrayList{"", "to b"}));
}

void tst_TransmitterLateAnswers::aResendTakesTheLateAnswerAndWaitsForItsOwn()
{
    CarefulBench bench;
    connect(&bench.worker, &Transmitter::sig_SendAnswer, &bench, [&bench] {
        if (bench.answers.size() == 1) {
            bench.send(resendOf(request("a")));
            bench.send(request("b"));
        }
    });
    bench.writeAfterRequest(2, frames::answer(0, "first"));
    bench.writeAfterAnswer(2, frames::answer(0, "second"));
    bench.writeAfterRequest(3, frames::answer(0, "to b"));
    bench.send(request("a"));
    QTRY_COMPARE_WITH_TIMEOUT(bench.answers.size(), 3, ends);
    QCOMPARE(bench.shownRequests, (QByteArrayList{"a", "a", "b"}));
    QCOMPARE(bench.payloads(), (QByteArrayList{"", "first", "to b"}));
}

void tst_TransmitterLateAnswers::aLateAnswerOfTheBootloaderIsCountedToo()
{
    CarefulBench bench;
    bench.writeAfterAnswer(1, frames::withChecksum(frames::hex("0300")).prepend('\xFA'));
    bench.writeAfterRequest(2, frames::answer(0, "to b"));
    bench.send(bootRequest());
    bench.send(request("b"));
    QTRY_COMPARE_WITH_TIMEOUT(bench.answers.size(), 2, ends);
    QCOMPARE(bench.payloads(), (QByteArrayList{"", "to b"}));
    // It went out because the answer had come, not because time had passed.
    QVERIFY(bench.requestMoments.at(1) - bench.requestMoments.at(0) < LateAnswers::quiet.count());
}

void tst_TransmitterLateAnswers::silenceIsWaitedOutOnce()
{
    CarefulBench bench;
    for (const char* bytes : {"a", "b", "c", "d"}) {
        bench.send(request(bytes));
    }
    QTRY_COMPARE_WITH_TIMEOUT(bench.answers.size(), 4, ends);
    // Equal priorities leave as the first, then the second and so on from behind.
    QVERIFY(bench.requestMoments.at(1) - bench.requestMoments.at(0) >= LateAnswers::quiet.count());
    for (int i = 2; i < 4; ++i) {
        QVERIFY(bench.requestMoments.at(i) - bench.requestMoments.at(i - 1) < LateAnswers::quiet.count());
    }
}

void tst_TransmitterLateAnswers::whatWakesASilentLineBelongsToNoRequest()
{
    CarefulBench bench;
    // As if late: it may be that to the request before.
    bench.writeAfterRequest(3, frames::answer(0, "whose?"));
    bench.writeAfterRequest(4, frames::answer(0, "its own"));
    for (const char* bytes : {"a", "b", "c"}) {
        bench.send(request(bytes));
    }
    QTRY_COMPARE_WITH_TIMEOUT(bench.answers.size(), 3, ends);
    QVERIFY(bench.answers.at(2).timedOut());
    QVERIFY(bench.answers.at(2).rawAnswer().isEmpty());
    bench.send(resendOf(bench.answers.at(2)));
    QTRY_COMPARE_WITH_TIMEOUT(bench.answers.size(), 4, ends);
    QCOMPARE(bench.answers.at(3).payload(), QByteArray("its own"));
    QVERIFY(bench.requestMoments.at(3) - bench.requestMoments.at(2) >= LateAnswers::quiet.count());
}

void tst_TransmitterLateAnswers::requestsOnALostPortFailAtOnce()
{
    CarefulBench bench;
    connect(&bench.worker, &Transmitter::sig_SendAnswer, &bench, [&bench] {
        if (bench.answers.size() == 1) {
            bench.send(request("b"));
            bench.line.unplug();
        }
    });
    bench.send(request("a"));
    QTRY_COMPARE_WITH_TIMEOUT(bench.answers.size(), 2, ends);
    QCOMPARE(bench.states, QList<int>{StateNotFound});
    QVERIFY(bench.answers.at(1).portFailed());
    bench.send(request("c"));
    QTRY_COMPARE_WITH_TIMEOUT(bench.answers.size(), 3, ends);
    QVERIFY(bench.answers.at(2).portFailed());
    QCOMPARE(bench.shownRequests, QByteArrayList{"a"});
}

void tst_TransmitterLateAnswers::theWatchGoesOnOverASilentLine()
{
    CarefulBench bench;
    const message time = protocol_HUBN_NX_Q::requestDeviceTime(1);
    connect(&bench.worker, &Transmitter::sig_SendAnswer, &bench, [&] {
        if (bench.answers.size() == 1) {
            bench.send(time);
            bench.send(watchRequest());
        }
    });
    // The same question again; its answer is right whichever of the two it belongs to.
    bench.writeAfterRequest(2, frames::answer(0, "here"));
    bench.send(watchRequest());
    QTRY_COMPARE_WITH_TIMEOUT(bench.answers.size(), 3, ends);
    const QByteArray check = watchRequest().request();
    QCOMPARE(bench.shownRequests, (QByteArrayList{check, check, time.request()}));
    QCOMPARE(bench.answers.at(1).payload(), QByteArray("here"));
}

void tst_TransmitterLateAnswers::withoutTheRuleRequestsFollowEachOther()
{
    Bench bench;
    bench.open();
    bench.send(request("a"));
    bench.send(request("b"));
    QTRY_COMPARE_WITH_TIMEOUT(bench.answers.size(), 1, ends);
    QCOMPARE(bench.shownRequests, (QByteArrayList{"a", "b"}));
}

QTEST_GUILESS_MAIN(tst_TransmitterLateAnswers)
#include "tst_TransmitterLateAnswers.moc"
