#include "simulator/UnitSimulatorTest.h"

namespace
{

UnitState inBootloader()
{
    UnitState state;
    state.inBootloader = true;
    return state;
}

} // namespace

/// The bootloader: an image block after block, and what it refuses.
class tst_UnitSimulatorBootloader : public UnitSimulatorTest
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

    void bootloaderTakesAnImage();
    void bootloaderAnswersInBytes();
    void blockSentTwiceIsStoredOnce();
    void blockOutOfOrderIsAWriteError();
    void blockNumbersWrap();
    void imageThatIsNotWholeIsNotStarted();
    void powerLostInTheBootloaderComesBackThere();
    void bootloaderKnowsOneRateOnly();
};

void tst_UnitSimulatorBootloader::bootloaderTakesAnImage()
{
    const QByteArray first(128, '\x11');
    COMPARE_ANSWER(hex(enterBoot), hex(entered));
    QVERIFY(unit->state().inBootloader);
    COMPARE_ANSWER(hex(whoAreYou) + hex(bootHello), hex(bootOk)); // the unit itself is silent now
    COMPARE_ANSWER(hex(bootErase), hex(bootOk));
    COMPARE_ANSWER(hex(bootBegin), hex(bootOk));
    COMPARE_ANSWER(bootBlock(0, first), hex(bootOk));
    COMPARE_ANSWER(bootBlock(1, "end"), hex(bootOk));
    QVERIFY(unit->state().firmwareComplete);
    COMPARE_ANSWER(hex(bootStart), hex(bootOk));
    QCOMPARE(unit->state().firmware, hex("12 34") + first + "end");
    QVERIFY(!unit->state().inBootloader);
    COMPARE_ANSWER(hex(whoAreYou), hex(itIsMe));
}

void tst_UnitSimulatorBootloader::bootloaderAnswersInBytes()
{
    start(inBootloader());
    COMPARE_ANSWER(hex("FA 03 02 C2 F9"), hex("FA 03 00 D0 DA"));
    COMPARE_ANSWER(hex("FA 05 04 12 34 91 DF"), hex("FA 03 00 D0 DA"));
    COMPARE_ANSWER(hex("FA 07 05 00 AA AA AA 87 16"), hex("FA 03 00 D0 DA"));
    COMPARE_ANSWER(hex("FA 04 05 01 63 35"), hex("FA 03 01 59 CB")); // behind the last block
    QCOMPARE(unit->state().firmware, hex("12 34 AA AA AA"));
}

void tst_UnitSimulatorBootloader::blockSentTwiceIsStoredOnce()
{
    start(inBootloader());
    const QByteArray block(128, '\x22');
    COMPARE_ANSWER(hex(bootBegin), hex(bootOk));
    COMPARE_ANSWER(hex(bootBegin), hex(bootOk));
    COMPARE_ANSWER(bootBlock(0, block), hex(bootOk));
    COMPARE_ANSWER(bootBlock(0, block), hex(bootOk));
    COMPARE_ANSWER(bootBlock(1, block), hex(bootOk)); // the same bytes under the next number are another block
    COMPARE_ANSWER(bootBlock(2, QByteArray()), hex(bootOk));
    COMPARE_ANSWER(bootBlock(2, QByteArray()), hex(bootOk));
    QCOMPARE(unit->state().firmware, hex("12 34") + block + block);
    QVERIFY(unit->state().firmwareComplete);
}

void tst_UnitSimulatorBootloader::blockOutOfOrderIsAWriteError()
{
    start(inBootloader());
    COMPARE_ANSWER(bootBlock(0, "early"), hex(bootWriteError)); // before the begin
    COMPARE_ANSWER(hex(bootBegin), hex(bootOk));
    COMPARE_ANSWER(bootBlock(1, "skipped"), hex(bootWriteError));
    QCOMPARE(unit->state().firmware, hex("12 34"));
}

void tst_UnitSimulatorBootloader::blockNumbersWrap()
{
    start(inBootloader());
    QByteArray image = hex("12 34");
    COMPARE_ANSWER(hex(bootBegin), hex(bootOk));
    for (int number = 0; number < 258; ++number) {
        const QByteArray block(128, char(number / 3));
        image += block;
        COMPARE_ANSWER(bootBlock(number & 0xFF, block), hex(bootOk));
    }
    COMPARE_ANSWER(bootBlock(2, "x"), hex(bootOk));
    QCOMPARE(unit->state().firmware, image + "x");
}

void tst_UnitSimulatorBootloader::imageThatIsNotWholeIsNotStarted()
{
    start(inBootloader());
    COMPARE_ANSWER(hex(bootBegin), hex(bootOk));
    COMPARE_ANSWER(hex(bootStart), hex(bootWriteError));
    QVERIFY(unit->state().inBootloader);
}

void tst_UnitSimulatorBootloader::powerLostInTheBootloaderComesBackThere()
{
    start(inBootloader());
    unit->setFaults({UnitFault(UnitFault::LosePower).onBoot(5).from(2).times(1).value(1)});
    const QByteArray block(128, '\x33');
    COMPARE_ANSWER(hex(bootBegin), hex(bootOk));
    COMPARE_ANSWER(bootBlock(0, block), hex(bootOk));
    port->write(bootBlock(1, block));
    QTRY_COMPARE_WITH_TIMEOUT(unit->bootRequestCount(5), 2, patience);
    // Dead first, then there again: sooner or later it greets.
    QByteArray answer;
    for (int attempt = 0; attempt < 1000 && !answer.contains(hex(bootOk)); ++attempt) {
        port->write(hex(bootHello));
        port->waitForReadyRead(20);
        answer += port->readAll();
    }
    QVERIFY(answer.contains(hex(bootOk)));
    QVERIFY(unit->state().inBootloader);
    // The run has to begin again. Answers to the greetings may still come before this one.
    port->write(bootBlock(1, block));
    QTRY_VERIFY_WITH_TIMEOUT((answer += port->readAll()).endsWith(hex(bootWriteError)), patience);
}

void tst_UnitSimulatorBootloader::bootloaderKnowsOneRateOnly()
{
    UnitState state = inBootloader();
    state.baudRates = {9600};
    start(state);
    QVERIFY(port->setBaudRate(9600));
    port->write(hex(bootHello));
    QTRY_COMPARE_WITH_TIMEOUT(unit->bootRequestCount(2), 1, patience);
    QVERIFY(!unit->requests().first().heard);
    QVERIFY(port->setBaudRate(57600));
    COMPARE_ANSWER(hex(bootHello), hex(bootOk));
}

QTEST_GUILESS_MAIN(tst_UnitSimulatorBootloader)
#include "tst_UnitSimulatorBootloader.moc"
