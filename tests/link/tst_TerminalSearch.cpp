#include "Answers.h"
#include "OperationRecorder.h"
#include "link/TerminalSearch.h"
#include "link/protocol_HUBN_NX_Q.h"

#include <QtTest>

namespace
{

QByteArray bitmapOf(const QVector<int>& addresses)
{
    QByteArray bitmap(16, '\0');
    for (const int address : addresses) {
        bitmap[(address - 1) / 8] = char(quint8(bitmap.at((address - 1) / 8)) | 1U << ((address - 1) % 8));
    }
    return bitmap;
}

/// A search and the unit that it asks, whose answers may change from one reading to the next.
struct Search
{
    Search()
    {
        operation.setCoordinator(6);
        QObject::connect(&operation, &TerminalSearch::terminalsFound, &recorder, [this](const QByteArrayList& list) {
            terminals = list;
            recorder.events.append(QStringLiteral("found"));
        });
        QObject::connect(&operation, &TerminalSearch::unconfirmed, &recorder, [this](const message& answer) {
            recorder.events.append(QStringLiteral("unconfirmed %1").arg(answer.requestType()));
        });
    }

    void run()
    {
        operation.start(mostReadings);
        for (int i = 0; i < recorder.requests.size() && i < 1000; ++i) {
            const message request = recorder.requests.at(i);
            QByteArrayList& prepared = answersOf[request.requestType()];
            if (request.requestType() >= protocol_HUBN_NX_Q::Terminal_System_Info) {
                // Behind the code, which has two bytes in the first class.
                const int place = request.requestType() == protocol_HUBN_NX_Q::Terminal_System_Info ? 7 : 6;
                asked.append({request.requestType(), quint8(request.request().at(place))});
            }
            const message answer = prepared.isEmpty()     ? answers::good(request, QByteArray(16, '\0'))
                                   : prepared.size() == 1 ? answers::good(request, prepared.first())
                                                          : answers::good(request, prepared.takeFirst());
            operation.takeAnswer(answer, false);
        }
    }

    QVector<int> sentTypes() const
    {
        QVector<int> types;
        for (const message& request : recorder.requests) {
            types.append(request.requestType());
        }
        return types;
    }

    int mostReadings = 0;
    TerminalSearch operation;
    OperationRecorder recorder{operation};
    QHash<int, QByteArrayList> answersOf; ///< by type; the last one again and again
    QVector<QPair<int, int>> asked;       ///< type and address of each question for a terminal
    QByteArrayList terminals;
};

} // namespace

class tst_TerminalSearch : public QObject
{
    Q_OBJECT

private slots:
    void beginsWithTheSystemClass();
    void readsEachClassTwiceInOrder();
    void aUnitWithoutTerminalsIsFoundEmptyAtOnce();
    void asksEveryTerminalTwiceInOrderOfItsClass();
    void takesBitsForAddresses_data();
    void takesBitsForAddresses();
    void scalesTheBarWithTheTerminals();
    void equalRecordsAppearOnce();
    void readsAgainUntilTwoReadingsAgree();
    void withoutALimitItReadsForever();
    void aLimitEndsAStepOfWhichNoTwoReadingsAgree();
    void theLastReadingWithinTheLimitCounts();
    void aFailedReadingThatIsReadAgainEndsNoStep();
    void aConfirmingReadingHasAllAttemptsAgain();
    void everyAnswerOfTheFirstClassStartsTheListsAfresh();
    void silenceCountsAsNoData();
    void aLostConfirmationIsReadAgain();
    void anEmptyRecordCanStandOnce();
    void handlesItsOwnTypes();
};

void tst_TerminalSearch::beginsWithTheSystemClass()
{
    Search search;
    search.operation.start();
    QCOMPARE(search.recorder.take(), QStringList(QStringLiteral("send 12")));
    QCOMPARE(search.recorder.requests.at(0).request(), protocol_HUBN_NX_Q::requestBusyChannels(6, 0).request());
    QVERIFY(search.recorder.requests.at(0).repeatCheck());
}

void tst_TerminalSearch::readsEachClassTwiceInOrder()
{
    Search search;
    search.run();
    QCOMPARE(search.sentTypes(), QVector<int>({12, 12, 13, 13, 14, 14, 15, 15, 16, 16}));
}

void tst_TerminalSearch::aUnitWithoutTerminalsIsFoundEmptyAtOnce()
{
    Search search;
    search.terminals = {QByteArray("untouched")};
    search.run();
    QVERIFY(search.terminals.isEmpty());
    QCOMPARE(search.recorder.events.mid(search.recorder.events.size() - 3),
             QStringList({QStringLiteral("maximum 103"), QStringLiteral("step"), QStringLiteral("found")}));
}

void tst_TerminalSearch::asksEveryTerminalTwiceInOrderOfItsClass()
{
    Search search;
    search.answersOf[16] = {bitmapOf({7})};
    search.answersOf[12] = {bitmapOf({1})};
    search.answersOf[14] = {bitmapOf({124, 2, 3})};
    search.run();
    const QVector<QPair<int, int>> expected{{17, 1}, {17, 1},   {19, 2},   {19, 2}, {19, 3},
                                            {19, 3}, {19, 124}, {19, 124}, {21, 7}, {21, 7}};
    QCOMPARE(search.asked, expected);
    QCOMPARE(search.recorder.requests.at(10).request(), protocol_HUBN_NX_Q::requestTerminalInfo(6, 0, 1).request());
}

void tst_TerminalSearch::takesBitsForAddresses_data()
{
    QTest::addColumn<QByteArray>("bitmap");
    QTest::addColumn<QVector<int>>("addresses");
    QVector<int> all(124);
    std::iota(all.begin(), all.end(), 1);
    QTest::newRow("lowest bit of the first byte") << QByteArray::fromHex("01") << QVector<int>({1});
    QTest::newRow("highest bit of the first byte") << QByteArray::fromHex("80") << QVector<int>({8});
    QTest::newRow("lowest bit of the second byte") << QByteArray::fromHex("0001") << QVector<int>({9});
    QTest::newRow("address 124") << bitmapOf({124}) << QVector<int>({124});
    QTest::newRow("address 125 and above don't count") << bitmapOf({125, 126, 127, 128}) << QVector<int>();
    QTest::newRow("all bits") << QByteArray(16, '\xff') << all;
    QTest::newRow("more bytes than addresses") << QByteArray(16, '\0') + QByteArray(20, '\xff') << QVector<int>();
}

void tst_TerminalSearch::takesBitsForAddresses()
{
    QFETCH(QByteArray, bitmap);
    QFETCH(QVector<int>, addresses);
    Search search;
    search.answersOf[13] = {bitmap};
    search.answersOf[18] = {QByteArray()};
    search.run();
    QVector<int> asked;
    for (const auto& question : qAsConst(search.asked)) {
        asked.append(question.second);
    }
    QCOMPARE(asked, addresses);
}

void tst_TerminalSearch::scalesTheBarWithTheTerminals()
{
    Search search;
    search.answersOf[13] = {bitmapOf({1, 2})};
    search.answersOf[15] = {bitmapOf({9})};
    search.run();
    QVERIFY(search.recorder.events.contains(QStringLiteral("maximum 106")));
    // One for the classes and one for each terminal.
    QCOMPARE(search.recorder.events.count(QStringLiteral("step")), 4);
}

void tst_TerminalSearch::equalRecordsAppearOnce()
{
    Search search;
    search.answersOf[13] = {bitmapOf({1, 2, 3})};
    const QByteArray first("first");
    const QByteArray second("second");
    search.answersOf[18] = {first, first, second, second, first, first};
    search.run();
    QCOMPARE(search.terminals, QByteArrayList({first, second}));
}

void tst_TerminalSearch::readsAgainUntilTwoReadingsAgree()
{
    Search search;
    search.answersOf[13] = {bitmapOf({1}), bitmapOf({2}), bitmapOf({1}), bitmapOf({1, 2}), bitmapOf({1, 2})};
    search.answersOf[18] = {QByteArray("a"), QByteArray("b"), QByteArray("b"), QByteArray("c"), QByteArray("c")};
    search.run();
    QCOMPARE(search.sentTypes().count(13), 5);
    QCOMPARE(search.asked, (QVector<QPair<int, int>>{{18, 1}, {18, 1}, {18, 1}, {18, 2}, {18, 2}}));
    QCOMPARE(search.terminals, QByteArrayList({QByteArray("b"), QByteArray("c")}));
}

void tst_TerminalSearch::withoutALimitItReadsForever()
{
    Search search;
    for (int reading = 0; reading < 200; ++reading) {
        search.answersOf[12].append(bitmapOf({1 + reading % 2}));
    }
    search.answersOf[12].append(bitmapOf({}));
    search.run();
    QCOMPARE(search.sentTypes().count(12), 202);
    QVERIFY(!search.recorder.events.contains(QStringLiteral("unconfirmed 12")));
}

void tst_TerminalSearch::aLimitEndsAStepOfWhichNoTwoReadingsAgree()
{
    Search search;
    search.mostReadings = 3;
    search.answersOf[13] = {bitmapOf({1}), bitmapOf({2}), bitmapOf({1}), bitmapOf({3})};
    search.answersOf[14] = {bitmapOf({5, 6})};
    search.answersOf[19] = {QByteArray("a"), QByteArray("b"), QByteArray("c"), QByteArray("d")};
    search.run();
    QCOMPARE(search.sentTypes().count(13), 3);
    // What nothing confirmed counts as no data: no terminal of that class is asked, and the first one has no record.
    QCOMPARE(search.asked, (QVector<QPair<int, int>>{{19, 5}, {19, 5}, {19, 5}, {19, 6}, {19, 6}}));
    QCOMPARE(search.terminals, QByteArrayList({QByteArray(), QByteArray("d")}));
    QCOMPARE(search.recorder.events.filter(QStringLiteral("unconfirmed")),
             QStringList({QStringLiteral("unconfirmed 13"), QStringLiteral("unconfirmed 19")}));
    QCOMPARE(search.recorder.events.last(), QStringLiteral("found"));
}

void tst_TerminalSearch::theLastReadingWithinTheLimitCounts()
{
    Search search;
    search.mostReadings = 3;
    search.answersOf[13] = {bitmapOf({1}), bitmapOf({2}), bitmapOf({2})};
    search.answersOf[18] = {QByteArray("a")};
    search.run();
    QCOMPARE(search.terminals, QByteArrayList({QByteArray("a")}));
    QVERIFY(search.recorder.events.filter(QStringLiteral("unconfirmed")).isEmpty());
}

void tst_TerminalSearch::aFailedReadingThatIsReadAgainEndsNoStep()
{
    Search search;
    search.operation.start();
    search.operation.takeAnswer(answers::good(search.recorder.requests.at(0), bitmapOf({1})), false);
    QVERIFY(!search.operation.endsStep(answers::timedOut(search.recorder.requests.at(1))));
    search.operation.takeAnswer(answers::timedOut(search.recorder.requests.at(1)), true);
    QVERIFY(search.operation.endsStep(answers::timedOut(search.recorder.requests.at(2))));
}

void tst_TerminalSearch::aConfirmingReadingHasAllAttemptsAgain()
{
    Search search;
    search.operation.start();
    message answer = answers::good(search.recorder.requests.at(0), bitmapOf({1}));
    answer.setAttempts(0);
    search.operation.takeAnswer(answer, false);
    const message& again = search.recorder.requests.at(1);
    QCOMPARE(int(again.attempts()), 3);
    QCOMPARE(again.repeatPayload(), bitmapOf({1}));
    QVERIFY(again.payload().isEmpty());
    QVERIFY(again.rawAnswer().isEmpty());
}

void tst_TerminalSearch::everyAnswerOfTheFirstClassStartsTheListsAfresh()
{
    Search search;
    search.answersOf[12] = {bitmapOf({1})};
    search.answersOf[17] = {QByteArray("only")};
    search.run();
    search.recorder.requests.clear();
    search.asked.clear();
    search.run();
    QCOMPARE(search.asked.size(), 2);
    QCOMPARE(search.terminals, QByteArrayList({QByteArray("only")}));
}

void tst_TerminalSearch::silenceCountsAsNoData()
{
    Search search;
    search.operation.start();
    for (int i = 0; i < search.recorder.requests.size() && i < 100; ++i) {
        message silence = answers::timedOut(search.recorder.requests.at(i));
        silence.setAttempts(0);
        search.operation.takeAnswer(silence, true);
    }
    QCOMPARE(search.sentTypes(), QVector<int>({12, 13, 14, 15, 16}));
    QCOMPARE(search.recorder.events.last(), QStringLiteral("found"));
}

void tst_TerminalSearch::aLostConfirmationIsReadAgain()
{
    Search search;
    search.operation.start();
    search.operation.takeAnswer(answers::good(search.recorder.requests.at(0), bitmapOf({1})), false);
    // The confirmation never comes: its emptiness differs from the first reading, and must be confirmed itself.
    search.operation.takeAnswer(answers::timedOut(search.recorder.requests.at(1)), true);
    QCOMPARE(search.sentTypes(), QVector<int>({12, 12, 12}));
    search.operation.takeAnswer(answers::timedOut(search.recorder.requests.at(2)), true);
    QCOMPARE(search.sentTypes(), QVector<int>({12, 12, 12, 13}));
}

void tst_TerminalSearch::anEmptyRecordCanStandOnce()
{
    Search search;
    search.answersOf[13] = {bitmapOf({1, 2})};
    search.answersOf[18] = {QByteArray()};
    search.run();
    QCOMPARE(search.terminals, QByteArrayList({QByteArray()}));
}

void tst_TerminalSearch::handlesItsOwnTypes()
{
    const TerminalSearch operation;
    for (int type = 0; type < 30; ++type) {
        QCOMPARE(operation.handles(type), type >= 12 && type <= 21);
    }
}

QTEST_GUILESS_MAIN(tst_TerminalSearch)
#include "tst_TerminalSearch.moc"
