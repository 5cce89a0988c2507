#include "link/TransmitterBench.h"
#include "support/DebugLines.h"

#include <QtTest>

using P = protocol_HUBN_NX_Q;

/// Which requests are queued, and in which order they leave.
class tst_TransmitterQueue : public QObject
{
    Q_OBJECT

private slots:
    void dropsWhatIsNoRequest_data();
    void dropsWhatIsNoRequest();
    void dropsARequestThatIsQueued();
    void queuesARequestEqualToTheOneInFlight();
    void retryIsNoDuplicate();
    void leavesByPriority_data();
    void leavesByPriority();
};

void tst_TransmitterQueue::dropsWhatIsNoRequest_data()
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

void tst_TransmitterQueue::dropsWhatIsNoRequest()
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

void tst_TransmitterQueue::dropsARequestThatIsQueued()
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

void tst_TransmitterQueue::queuesARequestEqualToTheOneInFlight()
{
    Bench bench;
    bench.open();
    bench.send(request("x"));
    bench.send(request("x"));
    bench.send(request("x"));
    QTRY_COMPARE_WITH_TIMEOUT(bench.answeredRequests(), (QByteArrayList{"x", "x"}), ends);
    QCOMPARE(bench.shownRequests.size(), 2);
}

void tst_TransmitterQueue::retryIsNoDuplicate()
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

void tst_TransmitterQueue::leavesByPriority_data()
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

void tst_TransmitterQueue::leavesByPriority()
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

QTEST_GUILESS_MAIN(tst_TransmitterQueue)
#include "tst_TransmitterQueue.moc"
