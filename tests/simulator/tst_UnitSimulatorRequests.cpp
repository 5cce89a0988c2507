#include "simulator/UnitClock.h"
#include "simulator/UnitSimulatorTest.h"

namespace
{

constexpr const char* writeScript3 =
    "C1 86 01 00 17 02 03 01 2A 01 00 15 3E 30 08 01 01 45 17 01 01 F0 00 00 11 00 00 00 49 59";

} // namespace

/// What the unit answers to each request, and what it keeps of it.
class tst_UnitSimulatorRequests : public UnitSimulatorTest
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

    void answersInBytes_data();
    void answersInBytes();
    void numbersItsRequests_data();
    void numbersItsRequests();
    void staysSilent_data();
    void staysSilent();
    void answersAtItsRatesOnly();
    void answersFromItsAddress();
    void reservedBytesAreStuffed();
    void requestsMayComeInPieces();
    void noiseBeforeARequestIsPassedOver();

    void keepsWhatIsWritten();
    void writesOfAnyLengthAreKept();
    void clockFollowsTheTimeThatWasSet();
    void clockCanBeMissing();
};

void tst_UnitSimulatorRequests::answersInBytes_data()
{
    QTest::addColumn<QByteArray>("request");
    QTest::addColumn<QByteArray>("answer");
    const auto row = [](const char* name, const char* request, const char* answer) {
        QTest::newRow(name) << hex(request) << hex(answer);
    };
    row("set time", "C1 86 01 00 08 05 56 34 12 25 05 09 20 68 F5", accepted);
    row("set an impossible time", "C1 86 01 00 08 05 60 34 12 25 05 09 20 EF 7B", outOfRange);
    row("log block of an empty log", logFirst, "C2 86 01 00 01 00 FB B3");
    row("log information", "C1 86 01 00 02 06 00 35 5A", "C2 86 01 00 05 00 E8 03 00 00 82 7C");
    row("write output", writeOutput51, accepted);
    row("write script", writeScript3, accepted);
    row("write a script of 20 bytes",
        "C1 86 01 00 16 02 03 01 2A 01 00 15 3E 30 08 01 01 45 17 01 01 F0 00 00 11 00 00 22 1D", outOfRange);
    row("read output", "C1 86 01 00 03 01 00 00 CA F6", output51Empty);
    row("read output of address 32", "C1 86 01 00 03 01 20 00 F9 D5", outOfRange);
    row("read output 8", "C1 86 01 00 03 01 00 08 82 7A", outOfRange);
    row("read script", readScript0, scriptEmpty);
    row("read script 32", "C1 86 01 00 02 02 20 57 1C", outOfRange);
    row("check of the coordinator", whoAreYou, itIsMe);
    row("broadcast search", "C1 86 00 00 03 01 00 00 E1 F2", output51Empty);
    const char* const noTerminals = "C2 06 01 00 11 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 69 03";
    row("busy list system", "C1 06 01 00 04 7F 15 FF FF 09 2A", noTerminals);
    row("busy list sensor", "C1 06 01 00 03 15 FF FF 9B 66", noTerminals);
    row("busy list executive", "C1 06 01 00 03 35 FF FF A0 65",
        "C2 06 01 00 11 00 10 80 01 00 00 00 00 00 00 00 00 00 00 00 00 00 7E E3");
    row("busy list interface", "C1 06 01 00 03 55 FF FF ED 60", noTerminals);
    row("busy list analog", "C1 06 01 00 03 95 FF FF 77 6A", noTerminals);
    const char* const noSuchTerminal = "C2 06 01 00 01 02 BC 1A";
    row("information system", "C1 06 01 00 03 7F 14 05 48 45", noSuchTerminal);
    row("information sensor", "C1 06 01 00 02 14 05 1B AE", noSuchTerminal);
    row("information executive", "C1 06 01 00 02 34 05 28 8D", "C2 06 01 00 09 00 05 21 41 20 00 00 00 00 19 BE");
    row("information interface", "C1 06 01 00 02 54 05 7D E8", noSuchTerminal);
    row("information analog", "C1 06 01 00 02 94 05 D7 22", noSuchTerminal);
    row("enter the bootloader", "C1 06 01 00 01 6F 22 AE", entered);
    row("enter the bootloader, whoever is there", enterBoot, entered);
    row("unknown command", "C1 06 01 00 01 77 EB 32", "C2 06 01 00 01 01 27 28");
}

void tst_UnitSimulatorRequests::answersInBytes()
{
    QFETCH(QByteArray, request);
    QFETCH(QByteArray, answer);
    unit->change([](UnitState& state) {
        state.terminals = {UnitTerminal::make(5, 2, 1, 0x41, 0x20, 8), UnitTerminal::make(16, 2, 1, 0x31, 0x10),
                           UnitTerminal::make(17, 2, 2, 0x52, 0x20, 8)};
    });
    COMPARE_ANSWER(request, answer);
    QCOMPARE(unit->requests().size(), 1);
    QCOMPARE(unit->requests().first().frame, request);
    QCOMPARE(unit->requests().first().answer, answer);
    QVERIFY(unit->requests().first().heard);
}

void tst_UnitSimulatorRequests::numbersItsRequests_data()
{
    QTest::addColumn<QByteArray>("request");
    QTest::addColumn<int>("requestType");
    QTest::addColumn<int>("bootType");
    const auto device = [](int type, const char* request) {
        QTest::addRow("device %d %s", type, request) << hex(request) << type << 0;
    };
    const auto boot = [](int type, const QByteArray& request) {
        QTest::addRow("boot %d", type) << request << 0 << type;
    };
    device(1, "C1 86 01 00 08 05 56 34 12 25 05 09 20 68 F5");
    device(2, "C1 86 01 00 01 05 2B E8");
    device(3, logFirst);
    device(3, logNext);
    device(4, "C1 86 01 00 02 06 00 35 5A");
    device(5, writeOutput51);
    device(6, writeScript3);
    device(7, "C1 86 01 00 03 01 00 00 CA F6");
    device(8, readScript0);
    device(9, whoAreYou);
    device(10, "C1 86 00 00 03 01 00 00 E1 F2");
    device(12, "C1 06 01 00 04 7F 15 FF FF 09 2A");
    device(13, "C1 06 01 00 03 15 FF FF 9B 66");
    device(14, "C1 06 01 00 03 35 FF FF A0 65");
    device(15, "C1 06 01 00 03 55 FF FF ED 60");
    device(16, "C1 06 01 00 03 95 FF FF 77 6A");
    device(17, "C1 06 01 00 03 7F 14 05 48 45");
    device(18, "C1 06 01 00 02 14 05 1B AE");
    device(19, "C1 06 01 00 02 34 05 28 8D");
    device(20, "C1 06 01 00 02 54 05 7D E8");
    device(21, "C1 06 01 00 02 94 05 D7 22");
    device(22, "C1 06 01 00 01 6F 22 AE");
    device(UnitRequest::unknownRequest, "C1 06 01 00 01 77 EB 32");
    boot(1, hex(bootStart));
    boot(2, hex(bootHello));
    boot(3, hex(bootErase));
    boot(4, hex(bootBegin));
    boot(5, bootBlock(0, QByteArray(128, '\x11')));
    boot(6, bootBlock(0, QByteArray(127, '\x11')));
    boot(6, bootBlock(9, QByteArray()));
}

void tst_UnitSimulatorRequests::numbersItsRequests()
{
    QFETCH(QByteArray, request);
    QFETCH(int, requestType);
    QFETCH(int, bootType);
    port->write(request);
    QTRY_COMPARE_WITH_TIMEOUT(unit->requestCount(), 1, patience);
    QCOMPARE(unit->requests().first().requestType, requestType);
    QCOMPARE(unit->requests().first().bootType, bootType);
    if (requestType != 0) {
        QCOMPARE(unit->requestCount(requestType), 1);
    } else {
        QCOMPARE(unit->bootRequestCount(bootType), 1);
    }
    unit->clearRequests();
    QCOMPARE(unit->requestCount(), 0);
}

void tst_UnitSimulatorRequests::staysSilent_data()
{
    QTest::addColumn<QByteArray>("request");
    QTest::newRow("another coordinator's address") << hex("C1 06 02 00 01 61 91 62");
    QTest::newRow("wrong checksum") << hex("C1 06 01 00 01 61 5C 48");
    QTest::newRow("checksum bytes changed round") << hex("C1 06 01 00 01 61 47 5C");
    QTest::newRow("length of nothing") << hex("C1 06 01 00 00 61 5C 47");
    QTest::newRow("bad escape") << hex("C1 06 01 00 C0 03 01 61 5C 47");
    QTest::newRow("an answer") << hex(itIsMe);
    QTest::newRow("noise") << hex("00 11 22 FF C0 C2");
    QTest::newRow("boot packet outside the bootloader") << hex(bootHello);
    QTest::newRow("half a request") << hex("C1 06 01 00");
}

/// The next request gets its answer and nothing else comes.
void tst_UnitSimulatorRequests::staysSilent()
{
    QFETCH(QByteArray, request);
    COMPARE_ANSWER(request + hex(whoAreYou), hex(itIsMe));
}

void tst_UnitSimulatorRequests::answersAtItsRatesOnly()
{
    unit->change([](UnitState& state) { state.baudRates = {9600}; });
    port->write(hex(whoAreYou));
    QTRY_COMPARE_WITH_TIMEOUT(unit->requestCount(9), 1, patience);
    QVERIFY(port->setBaudRate(9600));
    COMPARE_ANSWER(hex(whoAreYou), hex(itIsMe));

    const QVector<UnitRequest> requests = unit->requests();
    QCOMPARE(requests.at(0).baudRate, 57600);
    QVERIFY(!requests.at(0).heard);
    QVERIFY(requests.at(0).answer.isEmpty());
    QCOMPARE(requests.at(1).baudRate, 9600);
    QVERIFY(requests.at(1).heard);
}

void tst_UnitSimulatorRequests::answersFromItsAddress()
{
    unit->change([](UnitState& state) { state.address = 2; });
    COMPARE_ANSWER(hex(whoAreYou) + hex("C1 06 02 00 01 61 91 62"), hex("C2 06 02 00 05 00 67 12 02 06 DD 24"));
}

void tst_UnitSimulatorRequests::reservedBytesAreStuffed()
{
    unit->change([](UnitState& state) { state.serialNumber = 0xC1C0; });
    COMPARE_ANSWER(hex(whoAreYou), hex("C2 06 01 00 05 00 C0 00 C0 01 02 06 7A 3B"));
    // Terminal 7, output 0: the low byte of the checksum is C2.
    COMPARE_ANSWER(hex("C1 86 01 00 03 01 07 00 C0 02 BB"), hex(output51Empty));
    QCOMPARE(unit->requests().last().requestType, 7);
}

void tst_UnitSimulatorRequests::requestsMayComeInPieces()
{
    const QByteArray request = hex(whoAreYou);
    for (int cut = 1; cut < request.size(); ++cut) {
        port->write(request.left(cut));
        QVERIFY(port->waitForBytesWritten(patience));
        COMPARE_ANSWER(request.mid(cut), hex(itIsMe));
    }
}

void tst_UnitSimulatorRequests::noiseBeforeARequestIsPassedOver()
{
    COMPARE_ANSWER(hex("55 C1 06 01 FA 03 C1 C1 86") + hex(whoAreYou), hex(itIsMe));
}

void tst_UnitSimulatorRequests::keepsWhatIsWritten()
{
    COMPARE_ANSWER(hex(readOutput51), hex(output51Empty));
    COMPARE_ANSWER(hex(writeOutput51), hex(accepted));
    COMPARE_ANSWER(hex(readOutput51), hex(output51));
    QCOMPARE(unit->state().outputs.at(5).at(1), hex("03 03 07"));

    COMPARE_ANSWER(hex(writeScript3), hex(accepted));
    COMPARE_ANSWER(hex("C1 86 01 00 02 02 03 CE 0F"),
                   hex("C2 86 01 00 16 00 01 2A 01 00 15 3E 30 08 01 01 45 17 01 01 F0 00 00 11 00 00 00 43 17"));
    COMPARE_ANSWER(hex(readScript0), hex(scriptEmpty));
}

void tst_UnitSimulatorRequests::writesOfAnyLengthAreKept()
{
    QByteArray longest = hex("C1 86 01 00 00 01 1F 01 01") + QByteArray(100, '\x05');
    longest[4] = char(longest.size() - 5);
    COMPARE_ANSWER(frames::withChecksum(longest), hex(accepted));
    QCOMPARE(unit->state().outputs.at(31).at(1), QByteArray(1, '\x01') + QByteArray(100, '\x05'));
}

void tst_UnitSimulatorRequests::clockFollowsTheTimeThatWasSet()
{
    COMPARE_ANSWER(hex("C1 86 01 00 08 05 56 34 12 25 05 09 20 68 F5"), hex(accepted));
    // Seven bytes none of which can be reserved, so the answer has 15.
    const QByteArray time = dataOf(ask(hex("C1 86 01 00 01 05 2B E8"), 15));
    QCOMPARE(time.mid(2), hex("12 25 05 09 20")); // Friday
    const QDateTime shown = UnitClock::decoded(time);
    const qint64 passed = QDateTime(QDate(2020, 9, 25), QTime(12, 34, 56), Qt::UTC).secsTo(shown);
    QVERIFY2(passed >= 0 && passed < 60, qPrintable(shown.toString()));
}

void tst_UnitSimulatorRequests::clockCanBeMissing()
{
    unit->change([](UnitState& state) { state.timeRefusal = 3; });
    COMPARE_ANSWER(hex("C1 86 01 00 01 05 2B E8"), hex("C2 86 01 00 01 03 60 81"));
    COMPARE_ANSWER(hex("C1 86 01 00 08 05 56 34 12 25 05 09 20 68 F5"), hex("C2 86 01 00 01 03 60 81"));
    QCOMPARE(unit->state().clockOffset, 0);
}

QTEST_GUILESS_MAIN(tst_UnitSimulatorRequests)
#include "tst_UnitSimulatorRequests.moc"
