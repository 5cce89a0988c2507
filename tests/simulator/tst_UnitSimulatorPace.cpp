#include "simulator/UnitSimulatorTest.h"

/// The unit in time: the pace of the wire, requests that come before the answer is out, and its threads.
class tst_UnitSimulatorPace : public UnitSimulatorTest
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

    void keepsThePaceOfTheWire_data();
    void keepsThePaceOfTheWire();
    void requestsAreRecordedWithTheirTime();
    void answersWhileTheOwnerIsBusy();
    void worksInTheCallersEventLoop();
    void requestGivenUpIsDoneButNotAnswered();

    void manyUnitsAtOnce();
};

void tst_UnitSimulatorPace::keepsThePaceOfTheWire_data()
{
    QTest::addColumn<int>("rate");
    QTest::addColumn<int>("thinkingTime");
    QTest::addColumn<double>("milliseconds");
    // 8 bytes of request and 12 of answer, ten bits each.
    QTest::newRow("57600") << 57600 << 0 << 200 / 57.6;
    QTest::newRow("9600") << 9600 << 0 << 200 / 9.6;
    QTest::newRow("9600 and thinking") << 9600 << 30 << 30 + 200 / 9.6;
}

void tst_UnitSimulatorPace::keepsThePaceOfTheWire()
{
    QFETCH(int, rate);
    QFETCH(int, thinkingTime);
    QFETCH(double, milliseconds);
    unit->change([rate](UnitState& state) { state.baudRates = {rate}; });
    unit->setPace(UnitSimulator::OfTheWire, thinkingTime);
    QVERIFY(port->setBaudRate(rate));
    double quickest = patience;
    // A busy machine may be late with each of ten answers, but not with all of many.
    for (int count = 0; count < 10 || (quickest >= milliseconds + 50 && count < 200); ++count) {
        QElapsedTimer time;
        time.start();
        COMPARE_ANSWER(hex(whoAreYou), hex(itIsMe));
        quickest = qMin(quickest, double(time.nsecsElapsed()) / 1e6);
    }
    QVERIFY2(quickest >= milliseconds, qPrintable(QString::number(quickest)));
    QVERIFY2(quickest < milliseconds + 50, qPrintable(QString::number(quickest)));
}

void tst_UnitSimulatorPace::requestsAreRecordedWithTheirTime()
{
    const auto before = std::chrono::steady_clock::now();
    COMPARE_ANSWER(hex(whoAreYou), hex(itIsMe));
    COMPARE_ANSWER(hex(readScript0), hex(scriptEmpty));
    const auto after = std::chrono::steady_clock::now();
    const QVector<UnitRequest> requests = unit->requests();
    QVERIFY(before <= requests.at(0).received);
    QVERIFY(requests.at(0).received < requests.at(1).received);
    QVERIFY(requests.at(1).received <= after);
}

/// This thread never returns to its event loop while the unit answers.
void tst_UnitSimulatorPace::answersWhileTheOwnerIsBusy()
{
    const QByteArray expected = hex(itIsMe);
    for (int count = 0; count < 20; ++count) {
        port->write(hex(whoAreYou));
        QByteArray answer;
        while (answer.size() < expected.size() && port->waitForReadyRead(patience)) {
            answer += port->readAll();
        }
        QCOMPARE(answer, expected);
    }
}

void tst_UnitSimulatorPace::worksInTheCallersEventLoop()
{
    start(UnitState(), UnitSimulator::OnCallersThread);
    COMPARE_ANSWER(hex(writeOutput51), hex(accepted));
    QCOMPARE(unit->state().outputs.at(5).at(1), hex("03 03 07"));
    QCOMPARE(unit->requestCount(5), 1);
}

void tst_UnitSimulatorPace::requestGivenUpIsDoneButNotAnswered()
{
    COMPARE_ANSWER(hex(writeOutput51) + hex(whoAreYou), hex(itIsMe));
    QVERIFY(unit->requests().first().heard);
    QVERIFY(unit->requests().first().answer.isEmpty());
    COMPARE_ANSWER(hex(readOutput51), hex(output51));

    unit->setPace(UnitSimulator::OfTheWire);
    COMPARE_ANSWER(hex(readOutput51) + hex(whoAreYou), hex(itIsMe));
    // The second request comes while the answer to the first, of thirty bytes, is on its way.
    unit->change([](UnitState& state) { state.baudRates = {1200}; });
    QVERIFY(port->setBaudRate(1200));
    const int bothAnswers = hex(scriptEmpty).size() + hex(itIsMe).size();
    QByteArray answer;
    // Once more where a busy machine was too late to break in.
    for (int run = 0; run < 10 && (run == 0 || answer.size() >= bothAnswers); ++run) {
        answer.clear();
        port->write(hex(readScript0));
        QTRY_VERIFY_WITH_TIMEOUT(!(answer += port->readAll()).isEmpty(), patience);
        port->write(hex(whoAreYou));
        QTRY_VERIFY_WITH_TIMEOUT((answer += port->readAll()).endsWith(hex(itIsMe)), patience);
    }
    QVERIFY2(answer.size() < bothAnswers, answer.toHex(' ').constData());
}

void tst_UnitSimulatorPace::manyUnitsAtOnce()
{
    std::vector<std::unique_ptr<UnitSimulator>> units;
    QStringList names;
    for (int count = 0; count < 20; ++count) {
        units.push_back(std::make_unique<UnitSimulator>());
        QVERIFY(units.back()->isValid());
        names.append(units.back()->portName());
    }
    QCOMPARE(names.removeDuplicates(), 0);
    COMPARE_ANSWER(hex(whoAreYou), hex(itIsMe));
}

QTEST_GUILESS_MAIN(tst_UnitSimulatorPace)
#include "tst_UnitSimulatorPace.moc"
