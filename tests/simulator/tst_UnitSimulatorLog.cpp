#include "simulator/UnitSimulatorTest.h"

namespace
{

/// Record n of a log, of plain digits.
QByteArray record(int number)
{
    return QByteArray::number(number).rightJustified(LogRing::recordSize, '0');
}

UnitState withLog(int capacity, int count)
{
    UnitState state;
    state.log = LogRing(capacity);
    for (int number = 1; number <= count; ++number) {
        state.log.append(record(number));
    }
    return state;
}

} // namespace

/// The log as it is read, block after block.
class tst_UnitSimulatorLog : public UnitSimulatorTest
{
    Q_OBJECT

private slots:
    void init()
    {
        start(UnitState());
    }
    void cleanup()
    {
        end();
    }

    void logComesNewestBlockFirst_data();
    void logComesNewestBlockFirst();
    void logReadingIsNotDisturbedByNewEvents();
    void overwrittenRecordsAreMissingAtTheEnd();
    void lostLogBlock_data();
    void lostLogBlock();
    void logGrowsWhileRunning();
    void givenUpLogBlockCountsAsLost();

private:
    /// The data of a log block, asked for again where a busy machine was too late with it.
    QByteArray askLogBlock(const char* request, int length);
};

QByteArray tst_UnitSimulatorLog::askLogBlock(const char* request, int length)
{
    QByteArray answer;
    for (int attempt = 0; attempt < 10 && answer.size() != 8 + length; ++attempt) {
        port->readAll();
        answer.clear();
        port->write(hex(request));
        while (answer.size() < 8 + length && port->waitForReadyRead(2000)) {
            answer += port->readAll();
        }
    }
    return dataOf(answer);
}

void tst_UnitSimulatorLog::logComesNewestBlockFirst_data()
{
    QTest::addColumn<int>("capacity");
    QTest::addColumn<int>("written");
    QTest::addColumn<QVector<int>>("blockLengths");
    QTest::addColumn<QVector<int>>("recordNumbers");
    QTest::newRow("three records") << 10 << 3 << QVector<int>{3} << QVector<int>{1, 2, 3};
    QTest::newRow("one block and an empty end") << 10 << 4 << QVector<int>{4, 0} << QVector<int>{1, 2, 3, 4};
    QTest::newRow("a short block at the end") << 10 << 6 << QVector<int>{4, 2} << QVector<int>{3, 4, 5, 6, 1, 2};
    QTest::newRow("full") << 8 << 8 << QVector<int>{4, 4, 0} << QVector<int>{5, 6, 7, 8, 1, 2, 3, 4};
    QTest::newRow("wrapped") << 8 << 11 << QVector<int>{4, 4, 0} << QVector<int>{8, 9, 10, 11, 4, 5, 6, 7};
    QTest::newRow("wrapped, uneven capacity") << 5 << 12 << QVector<int>{4, 1} << QVector<int>{9, 10, 11, 12, 8};
}

void tst_UnitSimulatorLog::logComesNewestBlockFirst()
{
    QFETCH(int, capacity);
    QFETCH(int, written);
    QFETCH(QVector<int>, blockLengths);
    QFETCH(QVector<int>, recordNumbers);
    start(withLog(capacity, written));
    QByteArray records;
    const char* request = logFirst;
    for (const int length : blockLengths) {
        const QByteArray block = ask(hex(request), 8 + length * 16);
        QCOMPARE(block.size(), 8 + length * 16);
        records += dataOf(block);
        request = logNext;
    }
    QByteArray expected;
    for (const int number : recordNumbers) {
        expected += record(number);
    }
    QCOMPARE(records, expected);

    const QByteArray information = dataOf(ask(hex("C1 86 01 00 02 06 00 35 5A"), 12));
    QCOMPARE(int(information.at(0)), capacity);
    QCOMPARE(int(information.at(2)), written > capacity ? written % capacity : written);
    QCOMPARE(quint8(information.at(3)), quint8(written > capacity ? 0x80 : 0));
}

void tst_UnitSimulatorLog::logReadingIsNotDisturbedByNewEvents()
{
    start(withLog(100, 6));
    QCOMPARE(dataOf(ask(hex(logFirst), 72)), record(3) + record(4) + record(5) + record(6));
    unit->change([](UnitState& state) { state.log.append(record(7)); });
    QCOMPARE(dataOf(ask(hex(logNext), 40)), record(1) + record(2));
    QCOMPARE(dataOf(ask(hex(logFirst), 72)), record(4) + record(5) + record(6) + record(7));
}

void tst_UnitSimulatorLog::overwrittenRecordsAreMissingAtTheEnd()
{
    start(withLog(6, 6));
    QCOMPARE(dataOf(ask(hex(logFirst), 72)), record(3) + record(4) + record(5) + record(6));
    unit->change([](UnitState& state) { state.log.append(record(7)); });
    QCOMPARE(dataOf(ask(hex(logNext), 24)), record(2));
    unit->change([](UnitState& state) { state.log.append(QByteArrayList{record(8), record(9)}); });
    QCOMPARE(dataOf(ask(hex(logNext), 8)), QByteArray());
}

void tst_UnitSimulatorLog::lostLogBlock_data()
{
    QTest::addColumn<bool>("repeats");
    QTest::addColumn<QByteArray>("afterTheLoss");
    QTest::newRow("repeated") << true << record(5) + record(6) + record(7) + record(8);
    QTest::newRow("passed over") << false << record(1) + record(2) + record(3) + record(4);
}

void tst_UnitSimulatorLog::lostLogBlock()
{
    QFETCH(bool, repeats);
    QFETCH(QByteArray, afterTheLoss);
    UnitState state = withLog(100, 12);
    state.repeatsLostLogBlock = repeats;
    start(state);
    unit->setFaults({UnitFault(UnitFault::LoseAnswer).onRequest(3).from(2).times(1)});
    QCOMPARE(dataOf(ask(hex(logFirst), 72)), record(9) + record(10) + record(11) + record(12));
    port->write(hex(logNext));
    QTRY_COMPARE_WITH_TIMEOUT(unit->requestCount(3), 2, patience);
    QCOMPARE(dataOf(ask(hex(logNext), 72)), afterTheLoss);
}

void tst_UnitSimulatorLog::logGrowsWhileRunning()
{
    unit->growLog(1, 5);
    QTRY_VERIFY_WITH_TIMEOUT(unit->state().log.size() >= 5, patience);
    unit->growLog(0);
    const int size = unit->state().log.size();
    COMPARE_ANSWER(hex(whoAreYou), hex(itIsMe));
    QCOMPARE(unit->state().log.size(), size);
    const QByteArrayList events = unit->state().log.records();
    for (const QByteArray& event : events) {
        QCOMPARE(event.size(), 16);
    }
}

void tst_UnitSimulatorLog::givenUpLogBlockCountsAsLost()
{
    start(withLog(100, 12));
    QCOMPARE(dataOf(ask(hex(logFirst), 72)), record(9) + record(10) + record(11) + record(12));
    QCOMPARE(dataOf(ask(hex(logNext) + hex(logNext), 72)), record(5) + record(6) + record(7) + record(8));
    QCOMPARE(dataOf(ask(hex(logNext), 72)), record(1) + record(2) + record(3) + record(4));

    // The same where it breaks off in the middle.
    unit->change([](UnitState& state) { state.baudRates = {1200}; });
    unit->setPace(UnitSimulator::OfTheWire);
    QVERIFY(port->setBaudRate(1200));
    const int bothAnswers = 72 + hex(itIsMe).size();
    QByteArray begin;
    // Once more where a busy machine was too late to break in.
    for (int run = 0; run < 10 && (run == 0 || begin.size() >= bothAnswers); ++run) {
        QCOMPARE(askLogBlock(logFirst, 64), record(9) + record(10) + record(11) + record(12));
        begin.clear();
        port->write(hex(logNext));
        QTRY_VERIFY_WITH_TIMEOUT(!(begin += port->readAll()).isEmpty(), patience);
        tell(hex(whoAreYou));
        QTRY_VERIFY_WITH_TIMEOUT((begin += port->readAll()).endsWith(hex(itIsMe)), patience);
    }
    QVERIFY2(begin.size() < bothAnswers, begin.toHex(' ').constData());
    QCOMPARE(askLogBlock(logNext, 64), record(5) + record(6) + record(7) + record(8));
}

QTEST_GUILESS_MAIN(tst_UnitSimulatorLog)
#include "tst_UnitSimulatorLog.moc"
