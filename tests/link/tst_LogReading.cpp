#include "Answers.h"
#include "OperationRecorder.h"
#include "link/LogReading.h"
#include "link/protocol_HUBN_NX_Q.h"
#include "support/DebugLines.h"
#include "texts/texts.h"

#include <QtTest>

namespace
{

QString adding()
{
    return QStringLiteral("text Adding the event log to the table is in progress...");
}

QString unchanged()
{
    return QStringLiteral("result Log of events of device has not changed");
}

} // namespace

class tst_LogReading : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void asksForTheCounterFirst();
    void withoutAPortGivesTheLogBack();
    void showsTheBusyFormOnceTheLogHasChanged();
    void countsInQuartersOfTheRecords_data();
    void countsInQuartersOfTheRecords();
    void readsAnEmptyLogWithOneRequest();
    void leavesAnUnchangedLogAlone();
    void readsAnUnchangedLogWhenForced();
    void doesNotReadWithoutACounter();
    void goesOnAfterEachFullBlock();
    void asksOnceMoreAfterAFullLastBlock();
    void endsWithABlockOfAnotherLength_data();
    void endsWithABlockOfAnotherLength();
    void countsBrokenRecordsOfOneReading();
    void countsTheEventsThatARepeatedBlockLeftOut_data();
    void countsTheEventsThatARepeatedBlockLeftOut();
    void forgetsRepeatedBlocksOfTheReadingBefore();
    void givesUpWhenTheInformationFails();
    void givesUpWhenABlockFails();
    void readsAgainAfterAFailedBlockOnlyIfTheLogChanges();
    void asksForTheCounterOnceAtATime();
    void asksAgainWhenTheCounterCouldNotBeRead();
    void asksAgainOnAPortThatWasChosenAnew();
    void handlesItsOwnTypes();

private:
    void answerInfo(const QByteArray& payload);
    void answerBlock(const QByteArray& payload, int repeats = 0);
    QStringList takeEvents()
    {
        return recorder->take();
    }

    std::unique_ptr<LogReading> operation;
    std::unique_ptr<OperationRecorder> recorder;
};

void tst_LogReading::init()
{
    operation = std::make_unique<LogReading>();
    recorder = std::make_unique<OperationRecorder>(*operation);
    operation->setCoordinator(4);
    connect(operation.get(), &LogReading::recordsRead, recorder.get(), [this](const QByteArrayList& records, bool end) {
        recorder->events.append(QStringLiteral("records %1 %2").arg(records.size()).arg(end));
        for (const QByteArray& record : records) {
            QCOMPARE(record.size(), 16);
        }
    });
    connect(operation.get(), &LogReading::notNecessary, recorder.get(),
            [this] { recorder->events.append(QStringLiteral("not necessary")); });
    connect(operation.get(), &LogReading::incomplete, recorder.get(),
            [this] { recorder->events.append(QStringLiteral("incomplete")); });
}

void tst_LogReading::answerInfo(const QByteArray& payload)
{
    operation->takeAnswer(answers::good(protocol_HUBN_NX_Q::requestReadLogInfo(4), payload), false);
}

void tst_LogReading::answerBlock(const QByteArray& payload, int repeats)
{
    message request = protocol_HUBN_NX_Q::requestReadLog(4, true);
    for (int i = 0; i < repeats; ++i) {
        request.prepareRetry();
    }
    operation->takeAnswer(answers::good(request, payload), false);
}

void tst_LogReading::asksForTheCounterFirst()
{
    operation->start();
    QCOMPARE(takeEvents(),
             QStringList({QStringLiteral("result Reading log of events started..."), QStringLiteral("send 4")}));
    QCOMPARE(recorder->requests.at(0).request(), protocol_HUBN_NX_Q::requestReadLogInfo(4).request());
}

void tst_LogReading::withoutAPortGivesTheLogBack()
{
    LogReading unconnected;
    OperationRecorder events(unconnected);
    connect(&unconnected, &LogReading::notNecessary, &events,
            [&events] { events.events.append(QStringLiteral("not necessary")); });
    unconnected.start();
    QCOMPARE(events.take(), QStringList({QStringLiteral("result ") + texts::resultLogStarted(),
                                         QStringLiteral("send 4"), QStringLiteral("not necessary")}));
    // Every time: nothing is on its way.
    unconnected.start();
    QCOMPARE(events.take().constLast(), QStringLiteral("not necessary"));
}

void tst_LogReading::showsTheBusyFormOnceTheLogHasChanged()
{
    operation->start();
    takeEvents();
    answerInfo(QByteArray::fromHex("e8030900"));
    QCOMPARE(takeEvents(), QStringList({QStringLiteral("begun 0..2 Reading log of events is in progress..."),
                                        QStringLiteral("shown"), QStringLiteral("send 3")}));
    QCOMPARE(recorder->requests.last().request(), protocol_HUBN_NX_Q::requestReadLog(4, true).request());
}

void tst_LogReading::countsInQuartersOfTheRecords_data()
{
    QTest::addColumn<QByteArray>("info");
    QTest::addColumn<int>("maximum");
    QTest::newRow("counter") << QByteArray::fromHex("e8030f00") << 3;
    QTest::newRow("counter of two bytes") << QByteArray::fromHex("e8030f01") << 67;
    QTest::newRow("wrapped: capacity") << QByteArray::fromHex("ea030f80") << 250;
    QTest::newRow("largest counter") << QByteArray::fromHex("ffffff7f") << 8191;
    QTest::newRow("more than needed") << QByteArray::fromHex("e803080001") << 2;
}

void tst_LogReading::countsInQuartersOfTheRecords()
{
    QFETCH(QByteArray, info);
    QFETCH(int, maximum);
    operation->start();
    answerInfo(info);
    QVERIFY(recorder->events.contains(QStringLiteral("begun 0..%1 ").arg(maximum) + texts::busyReadingLog()));
}

void tst_LogReading::readsAnEmptyLogWithOneRequest()
{
    operation->start();
    takeEvents();
    answerInfo(QByteArray::fromHex("e8030000"));
    QCOMPARE(takeEvents(), QStringList({QStringLiteral("begun 0..0 ") + texts::busyReadingLog(),
                                        QStringLiteral("shown"), QStringLiteral("send 3")}));
    answerBlock({});
    QCOMPARE(takeEvents(), QStringList({QStringLiteral("step"), QStringLiteral("records 0 1"),
                                        QStringLiteral("result Reading log of events SUCCESSFUL COMPLETE"), adding()}));
}

void tst_LogReading::leavesAnUnchangedLogAlone()
{
    operation->start();
    answerInfo(QByteArray::fromHex("e8030900"));
    answerBlock({});
    operation->start();
    takeEvents();
    answerInfo(QByteArray::fromHex("e8030900"));
    QCOMPARE(takeEvents(), QStringList({unchanged(), QStringLiteral("not necessary"), QStringLiteral("hidden")}));
}

void tst_LogReading::readsAnUnchangedLogWhenForced()
{
    operation->start();
    answerInfo(QByteArray::fromHex("e8030900"));
    answerBlock({});
    operation->forceNext();
    operation->start();
    takeEvents();
    answerInfo(QByteArray::fromHex("e8030900"));
    QCOMPARE(takeEvents().constLast(), QStringLiteral("send 3"));
}

// An unknown counter equals that of a reading that never was.
void tst_LogReading::doesNotReadWithoutACounter()
{
    operation->start();
    takeEvents();
    answerInfo(QByteArray::fromHex("e80309"));
    QCOMPARE(takeEvents(), QStringList({unchanged(), QStringLiteral("not necessary"), QStringLiteral("hidden")}));

    operation->start();
    answerInfo(QByteArray::fromHex("e8030900"));
    takeEvents();
    answerInfo(QByteArray(1, 'x'));
    QCOMPARE(takeEvents().constFirst(), QStringLiteral("begun 0..0 ") + texts::busyReadingLog());
}

void tst_LogReading::goesOnAfterEachFullBlock()
{
    operation->start();
    answerInfo(QByteArray::fromHex("e8030900"));
    takeEvents();
    answerBlock(QByteArray(64, 'a'));
    QCOMPARE(takeEvents(),
             QStringList({QStringLiteral("step"), QStringLiteral("records 4 0"), QStringLiteral("send 3")}));
    QCOMPARE(recorder->requests.last().request(), protocol_HUBN_NX_Q::requestReadLog(4, false).request());
}

void tst_LogReading::asksOnceMoreAfterAFullLastBlock()
{
    operation->start();
    answerInfo(QByteArray::fromHex("e8030400"));
    answerBlock(QByteArray(64, 'a'));
    takeEvents();
    answerBlock({});
    QCOMPARE(takeEvents(), QStringList({QStringLiteral("step"), QStringLiteral("records 0 1"),
                                        QStringLiteral("result ") + texts::resultLogOk(), adding()}));
}

void tst_LogReading::endsWithABlockOfAnotherLength_data()
{
    QTest::addColumn<int>("length");
    QTest::addColumn<int>("records");
    QTest::addColumn<int>("errors");
    QTest::newRow("one record") << 16 << 1 << 0;
    QTest::newRow("three records") << 48 << 3 << 0;
    QTest::newRow("part of a record") << 15 << 0 << 1;
    QTest::newRow("a record and a part") << 17 << 1 << 1;
    QTest::newRow("70 bytes: 4 records and a part") << 70 << 4 << 1;
    QTest::newRow("five records") << 80 << 5 << 0;
}

void tst_LogReading::endsWithABlockOfAnotherLength()
{
    QFETCH(int, length);
    QFETCH(int, records);
    QFETCH(int, errors);
    operation->start();
    answerInfo(QByteArray::fromHex("e8030900"));
    takeEvents();
    answerBlock(QByteArray(length, 'a'));
    const QString result = errors == 0
                               ? texts::resultLogOk()
                               : QStringLiteral("Reading log of events WAS COMPLETED WITH ERROR (Number of error = 1)");
    QStringList events{QStringLiteral("step"), QStringLiteral("records %1 1").arg(records),
                       QStringLiteral("result ") + result, adding()};
    if (errors > 0) {
        events.insert(1, QStringLiteral("incomplete"));
    }
    QCOMPARE(takeEvents(), events);
}

void tst_LogReading::countsBrokenRecordsOfOneReading()
{
    operation->start();
    answerInfo(QByteArray::fromHex("e8030900"));
    answerBlock(QByteArray(70, 'a'));
    operation->start();
    answerInfo(QByteArray::fromHex("e8030a00"));
    answerBlock(QByteArray(70, 'a'));
    QVERIFY(recorder->events.filter(QStringLiteral("= 2)")).isEmpty());
    QCOMPARE(recorder->events.filter(QStringLiteral("= 1)")).size(), 2);
}

// A unit may go on to the next block although its answer was lost.
void tst_LogReading::countsTheEventsThatARepeatedBlockLeftOut_data()
{
    QTest::addColumn<QByteArray>("info");
    QTest::addColumn<QList<int>>("records");
    QTest::addColumn<QList<int>>("repeats");
    QTest::addColumn<int>("errors");
    const QByteArray eleven = QByteArray::fromHex("e8030b00");
    const QList<int> whole{4, 4, 3};
    const QList<int> without4{4, 3};
    QTest::newRow("no block repeated, none missing") << eleven << whole << QList<int>{0, 0, 0} << 0;
    QTest::newRow("no block repeated, four missing") << eleven << without4 << QList<int>{0, 0} << 0;
    QTest::newRow("first block repeated, four missing") << eleven << without4 << QList<int>{1, 0} << 0;
    QTest::newRow("second block repeated, none missing") << eleven << whole << QList<int>{0, 1, 0} << 0;
    QTest::newRow("second block repeated, four missing") << eleven << without4 << QList<int>{0, 1} << 4;
    QTest::newRow("second block repeated three times") << eleven << without4 << QList<int>{0, 3} << 4;
    QTest::newRow("last block repeated, three missing") << eleven << QList<int>{4, 4, 0} << QList<int>{0, 0, 1} << 3;
    QTest::newRow("repeated, one in the place of three") << eleven << QList<int>{4, 4, 1} << QList<int>{0, 1, 0} << 2;
    QTest::newRow("repeated, more than announced") << eleven << QList<int>{4, 4, 4, 0} << QList<int>{0, 1, 0, 0} << 0;
    QTest::newRow("wrapped: the whole ring counts")
        << QByteArray::fromHex("0c000380") << QList<int>{4, 4, 0} << QList<int>{0, 1, 0} << 4;
}

void tst_LogReading::countsTheEventsThatARepeatedBlockLeftOut()
{
    QFETCH(QByteArray, info);
    QFETCH(QList<int>, records);
    QFETCH(QList<int>, repeats);
    QFETCH(int, errors);
    operation->start();
    answerInfo(info);
    for (int block = 0; block < records.size(); ++block) {
        answerBlock(QByteArray(16 * records.at(block), 'a'), repeats.at(block));
    }
    const QString result =
        errors == 0
            ? texts::resultLogOk()
            : QStringLiteral("Reading log of events WAS COMPLETED WITH ERROR (Number of error = %1)").arg(errors);
    QCOMPARE(takeEvents().filter(QStringLiteral("result ")).constLast(), QStringLiteral("result ") + result);
}

void tst_LogReading::forgetsRepeatedBlocksOfTheReadingBefore()
{
    operation->start();
    answerInfo(QByteArray::fromHex("e8030b00"));
    answerBlock(QByteArray(64, 'a'));
    answerBlock(QByteArray(48, 'a'), 1);
    operation->start();
    answerInfo(QByteArray::fromHex("e8030c00"));
    takeEvents();
    answerBlock(QByteArray(64, 'a'));
    answerBlock({});
    QVERIFY(recorder->events.contains(QStringLiteral("result ") + texts::resultLogOk()));
}

void tst_LogReading::givesUpWhenTheInformationFails()
{
    const DebugLines lines;
    operation->start();
    takeEvents();
    operation->takeAnswer(answers::timedOut(protocol_HUBN_NX_Q::requestReadLogInfo(4)), true);
    QCOMPARE(takeEvents(), QStringList({QStringLiteral("result ERROR reading log of events"),
                                        QStringLiteral("incomplete"), QStringLiteral("records 0 1"), adding()}));
    QCOMPARE(lines.linesWith(QStringLiteral("END Read INFO Log with error")).size(), 1);
}

void tst_LogReading::givesUpWhenABlockFails()
{
    const DebugLines lines;
    operation->start();
    answerInfo(QByteArray::fromHex("e8030900"));
    answerBlock(QByteArray(64, 'a'));
    takeEvents();
    operation->takeAnswer(answers::refused(protocol_HUBN_NX_Q::requestReadLog(4, false), 1, QByteArray(64, 'b')), true);
    QCOMPARE(takeEvents(), QStringList({QStringLiteral("result ERROR reading log of events"),
                                        QStringLiteral("incomplete"), QStringLiteral("records 0 1"), adding()}));
    QCOMPARE(lines.linesWith(QStringLiteral("END Read Log with error")).size(), 1);
}

void tst_LogReading::readsAgainAfterAFailedBlockOnlyIfTheLogChanges()
{
    operation->start();
    answerInfo(QByteArray::fromHex("e8030900"));
    operation->takeAnswer(answers::timedOut(protocol_HUBN_NX_Q::requestReadLog(4, true)), true);
    operation->start();
    takeEvents();
    answerInfo(QByteArray::fromHex("e8030900"));
    QCOMPARE(takeEvents().constFirst(), unchanged());
}

// The second answer would end the reading that the first began.
void tst_LogReading::asksForTheCounterOnceAtATime()
{
    operation->start();
    takeEvents();
    operation->start();
    QCOMPARE(takeEvents(), QStringList());
    answerInfo(QByteArray::fromHex("e8030900"));
    answerBlock({});
    operation->start();
    QCOMPARE(takeEvents().constLast(), QStringLiteral("send 4"));
}

void tst_LogReading::asksAgainWhenTheCounterCouldNotBeRead()
{
    operation->start();
    operation->takeAnswer(answers::timedOut(protocol_HUBN_NX_Q::requestReadLogInfo(4)), true);
    takeEvents();
    operation->start();
    QCOMPARE(takeEvents().constLast(), QStringLiteral("send 4"));
}

// The answer of the port before comes to nobody.
void tst_LogReading::asksAgainOnAPortThatWasChosenAnew()
{
    operation->start();
    takeEvents();
    operation->setCoordinator(5);
    operation->start();
    QCOMPARE(takeEvents().constLast(), QStringLiteral("send 4"));
}

void tst_LogReading::handlesItsOwnTypes()
{
    for (int type = 0; type < 30; ++type) {
        QCOMPARE(operation->handles(type), type == 3 || type == 4);
    }
}

QTEST_GUILESS_MAIN(tst_LogReading)
#include "tst_LogReading.moc"
