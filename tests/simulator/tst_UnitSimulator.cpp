#include "simulator/UnitClock.h"
#include "simulator/UnitSimulator.h"

#include <QElapsedTimer>
#include <QSerialPort>
#include <QSignalSpy>
#include <QtTest>

#include <memory>

/// Talks to the unit through a serial port, in bytes written out by hand.
class tst_UnitSimulator : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void cleanup();

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

    void logComesNewestBlockFirst_data();
    void logComesNewestBlockFirst();
    void logReadingIsNotDisturbedByNewEvents();
    void overwrittenRecordsAreMissingAtTheEnd();
    void lostLogBlock_data();
    void lostLogBlock();
    void logGrowsWhileRunning();

    void bootloaderTakesAnImage();
    void bootloaderAnswersInBytes();
    void blockSentTwiceIsStoredOnce();
    void blockOutOfOrderIsAWriteError();
    void blockNumbersWrap();
    void imageThatIsNotWholeIsNotStarted();
    void powerLostInTheBootloaderComesBackThere();
    void bootloaderKnowsOneRateOnly();

    void faults_data();
    void faults();
    void lostRequestIsNotDone();
    void lostAnswerIsDoneAllTheSame();
    void refusedWriteIsNotDone();
    void changedAnswerHasARightChecksum();
    void damagedAnswerDiffersInOneBit();
    void splitAnswerComesInPieces();
    void lateAnswerComesLate();
    void sameSeedSameFaults();
    void unplugsAtTheNthRequestAndComesBack();
    void unplugsWithinAnAnswer();
    void staysUnpluggedUntilPluggedIn();

    void keepsThePaceOfTheWire_data();
    void keepsThePaceOfTheWire();
    void requestsAreRecordedWithTheirTime();
    void answersWhileTheOwnerIsBusy();
    void worksInTheCallersEventLoop();
    void requestGivenUpIsDoneButNotAnswered();
    void givenUpLogBlockCountsAsLost();
    void answerThatAFaultDelaysComesAllTheSame();
    void manyUnitsAtOnce();

private:
    bool open();
    void start(const UnitState& state, UnitSimulator::Place place = UnitSimulator::OnOwnThread);
    /// Sends a request and waits until the unit has dealt with it.
    void tell(const QByteArray& request);
    /// What the unit sends after `request`, as far as it is as long as `expected`.
    QByteArray ask(const QByteArray& request, int expectedLength);
    /// The data of a log block, asked for again where a busy machine was too late with it.
    QByteArray askLogBlock(const char* request, int length);

    std::unique_ptr<UnitSimulator> unit;
    std::unique_ptr<QSerialPort> port;
};

namespace
{
constexpr int patience = 20000;

QByteArray hex(const char* text)
{
    return QByteArray::fromHex(text);
}

const char* const whoAreYou = "C1 06 01 00 01 61 5C 47";
const char* const itIsMe = "C2 06 01 00 05 00 67 12 02 06 0D AE"; // serial number 4711, version 6.02
const char* const logFirst = "C1 86 01 00 01 06 B0 DA";
const char* const logNext = "C1 86 01 80 01 06 5C D6";
const char* const readScript0 = "C1 86 01 00 02 02 00 55 3D";
const char* const scriptEmpty =
    "C2 86 01 00 16 00 00 00 FF 00 10 00 00 00 01 01 00 00 01 01 F0 00 00 00 00 00 00 FC FB";
const char* const writeOutput51 = "C1 86 01 00 06 01 05 01 03 03 07 C7 2A";
const char* const readOutput51 = "C1 86 01 00 03 01 05 01 FB 99";
const char* const output51 = "C2 86 01 00 04 00 03 03 07 73 22";
const char* const output51Empty = "C2 86 01 00 02 00 00 8B A6";
const char* const writeScript3 =
    "C1 86 01 00 17 02 03 01 2A 01 00 15 3E 30 08 01 01 45 17 01 01 F0 00 00 11 00 00 00 49 59";
const char* const accepted = "C2 86 01 00 01 00 FB B3";
const char* const outOfRange = "C2 86 01 00 01 02 E9 90";
const char* const enterBoot = "C1 06 00 00 01 6F 99 B2"; // to whoever is there
const char* const entered = "C2 06 01 00 01 00 AE 39";
const char* const bootHello = "FA 03 02 C2 F9";
const char* const bootErase = "FA 03 03 4B E8";
const char* const bootBegin = "FA 05 04 12 34 91 DF";
const char* const bootStart = "FA 03 01 59 CB";
const char* const bootOk = "FA 03 00 D0 DA";
const char* const bootWriteError = "FA 03 01 59 CB";

/// The same sum as in the unit, counted in the plainest way.
QByteArray withChecksum(const QByteArray& bytes, int from)
{
    quint16 sum = 0xFFFF;
    const QByteArray summed = bytes.mid(from);
    for (const char byte : summed) {
        sum ^= quint8(byte);
        for (int bit = 0; bit < 8; ++bit) {
            sum = quint16((sum & 1) != 0 ? (sum >> 1) ^ 0x8408 : sum >> 1);
        }
    }
    return bytes + char(sum & 0xFF) + char(sum >> 8);
}

QByteArray bootBlock(int number, const QByteArray& content)
{
    return withChecksum(QByteArray("\xFA") + char(content.size() + 4) + '\x05' + char(number) + content, 1);
}

/// The data of an answer without reserved bytes.
QByteArray dataOf(const QByteArray& answer)
{
    return answer.mid(6, answer.size() - 8);
}

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

UnitState inBootloader()
{
    UnitState state;
    state.inBootloader = true;
    return state;
}
} // namespace

void tst_UnitSimulator::init()
{
    start(UnitState());
}

void tst_UnitSimulator::cleanup()
{
    port.reset();
    unit.reset();
}

void tst_UnitSimulator::start(const UnitState& state, UnitSimulator::Place place)
{
    port.reset();
    unit = std::make_unique<UnitSimulator>(state, place);
    QVERIFY2(unit->isValid(), qPrintable(unit->errorString()));
    port = std::make_unique<QSerialPort>();
    QVERIFY2(open(), qPrintable(port->errorString()));
}

bool tst_UnitSimulator::open()
{
    port->close();
    port->setPortName(unit->portName());
    return port->open(QIODevice::ReadWrite) && port->setBaudRate(57600);
}

QByteArray tst_UnitSimulator::ask(const QByteArray& request, int expectedLength)
{
    port->write(request);
    QByteArray answer;
    QElapsedTimer time;
    time.start();
    while (answer.size() < expectedLength && !time.hasExpired(patience)) {
        QTest::qWait(0);
        port->waitForReadyRead(5);
        answer += port->readAll();
    }
    return answer;
}

QByteArray tst_UnitSimulator::askLogBlock(const char* request, int length)
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

void tst_UnitSimulator::tell(const QByteArray& request)
{
    const int before = unit->requestCount();
    port->write(request);
    QTRY_COMPARE_WITH_TIMEOUT(unit->requestCount(), before + 1, patience);
}

#define COMPARE_ANSWER(request, expected)                                                                              \
    do {                                                                                                               \
        const QByteArray wanted = (expected);                                                                          \
        QCOMPARE(ask((request), wanted.size()).toHex(' '), wanted.toHex(' '));                                         \
    } while (false)

void tst_UnitSimulator::answersInBytes_data()
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

void tst_UnitSimulator::answersInBytes()
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

void tst_UnitSimulator::numbersItsRequests_data()
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

void tst_UnitSimulator::numbersItsRequests()
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

void tst_UnitSimulator::staysSilent_data()
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
void tst_UnitSimulator::staysSilent()
{
    QFETCH(QByteArray, request);
    COMPARE_ANSWER(request + hex(whoAreYou), hex(itIsMe));
}

void tst_UnitSimulator::answersAtItsRatesOnly()
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

void tst_UnitSimulator::answersFromItsAddress()
{
    unit->change([](UnitState& state) { state.address = 2; });
    COMPARE_ANSWER(hex(whoAreYou) + hex("C1 06 02 00 01 61 91 62"), hex("C2 06 02 00 05 00 67 12 02 06 DD 24"));
}

void tst_UnitSimulator::reservedBytesAreStuffed()
{
    unit->change([](UnitState& state) { state.serialNumber = 0xC1C0; });
    COMPARE_ANSWER(hex(whoAreYou), hex("C2 06 01 00 05 00 C0 00 C0 01 02 06 7A 3B"));
    // Terminal 7, output 0: the low byte of the checksum is C2.
    COMPARE_ANSWER(hex("C1 86 01 00 03 01 07 00 C0 02 BB"), hex(output51Empty));
    QCOMPARE(unit->requests().last().requestType, 7);
}

void tst_UnitSimulator::requestsMayComeInPieces()
{
    const QByteArray request = hex(whoAreYou);
    for (int cut = 1; cut < request.size(); ++cut) {
        port->write(request.left(cut));
        QVERIFY(port->waitForBytesWritten(patience));
        COMPARE_ANSWER(request.mid(cut), hex(itIsMe));
    }
}

void tst_UnitSimulator::noiseBeforeARequestIsPassedOver()
{
    COMPARE_ANSWER(hex("55 C1 06 01 FA 03 C1 C1 86") + hex(whoAreYou), hex(itIsMe));
}

void tst_UnitSimulator::keepsWhatIsWritten()
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

void tst_UnitSimulator::writesOfAnyLengthAreKept()
{
    QByteArray longest = hex("C1 86 01 00 00 01 1F 01 01") + QByteArray(100, '\x05');
    longest[4] = char(longest.size() - 5);
    COMPARE_ANSWER(withChecksum(longest, 0), hex(accepted));
    QCOMPARE(unit->state().outputs.at(31).at(1), QByteArray(1, '\x01') + QByteArray(100, '\x05'));
}

void tst_UnitSimulator::clockFollowsTheTimeThatWasSet()
{
    COMPARE_ANSWER(hex("C1 86 01 00 08 05 56 34 12 25 05 09 20 68 F5"), hex(accepted));
    // Seven bytes none of which can be reserved, so the answer has 15.
    const QByteArray time = dataOf(ask(hex("C1 86 01 00 01 05 2B E8"), 15));
    QCOMPARE(time.mid(2), hex("12 25 05 09 20")); // Friday
    const QDateTime shown = UnitClock::decoded(time);
    const qint64 passed = QDateTime(QDate(2020, 9, 25), QTime(12, 34, 56), Qt::UTC).secsTo(shown);
    QVERIFY2(passed >= 0 && passed < 60, qPrintable(shown.toString()));
}

void tst_UnitSimulator::clockCanBeMissing()
{
    unit->change([](UnitState& state) { state.timeRefusal = 3; });
    COMPARE_ANSWER(hex("C1 86 01 00 01 05 2B E8"), hex("C2 86 01 00 01 03 60 81"));
    COMPARE_ANSWER(hex("C1 86 01 00 08 05 56 34 12 25 05 09 20 68 F5"), hex("C2 86 01 00 01 03 60 81"));
    QCOMPARE(unit->state().clockOffset, 0);
}

void tst_UnitSimulator::logComesNewestBlockFirst_data()
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

void tst_UnitSimulator::logComesNewestBlockFirst()
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

void tst_UnitSimulator::logReadingIsNotDisturbedByNewEvents()
{
    start(withLog(100, 6));
    QCOMPARE(dataOf(ask(hex(logFirst), 72)), record(3) + record(4) + record(5) + record(6));
    unit->change([](UnitState& state) { state.log.append(record(7)); });
    QCOMPARE(dataOf(ask(hex(logNext), 40)), record(1) + record(2));
    QCOMPARE(dataOf(ask(hex(logFirst), 72)), record(4) + record(5) + record(6) + record(7));
}

void tst_UnitSimulator::overwrittenRecordsAreMissingAtTheEnd()
{
    start(withLog(6, 6));
    QCOMPARE(dataOf(ask(hex(logFirst), 72)), record(3) + record(4) + record(5) + record(6));
    unit->change([](UnitState& state) { state.log.append(record(7)); });
    QCOMPARE(dataOf(ask(hex(logNext), 24)), record(2));
    unit->change([](UnitState& state) { state.log.append(QByteArrayList{record(8), record(9)}); });
    QCOMPARE(dataOf(ask(hex(logNext), 8)), QByteArray());
}

void tst_UnitSimulator::lostLogBlock_data()
{
    QTest::addColumn<bool>("repeats");
    QTest::addColumn<QByteArray>("afterTheLoss");
    QTest::newRow("repeated") << true << record(5) + record(6) + record(7) + record(8);
    QTest::newRow("passed over") << false << record(1) + record(2) + record(3) + record(4);
}

void tst_UnitSimulator::lostLogBlock()
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

void tst_UnitSimulator::logGrowsWhileRunning()
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

void tst_UnitSimulator::bootloaderTakesAnImage()
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

void tst_UnitSimulator::bootloaderAnswersInBytes()
{
    start(inBootloader());
    COMPARE_ANSWER(hex("FA 03 02 C2 F9"), hex("FA 03 00 D0 DA"));
    COMPARE_ANSWER(hex("FA 05 04 12 34 91 DF"), hex("FA 03 00 D0 DA"));
    COMPARE_ANSWER(hex("FA 07 05 00 AA AA AA 87 16"), hex("FA 03 00 D0 DA"));
    COMPARE_ANSWER(hex("FA 04 05 01 63 35"), hex("FA 03 01 59 CB")); // behind the last block
    QCOMPARE(unit->state().firmware, hex("12 34 AA AA AA"));
}

void tst_UnitSimulator::blockSentTwiceIsStoredOnce()
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

void tst_UnitSimulator::blockOutOfOrderIsAWriteError()
{
    start(inBootloader());
    COMPARE_ANSWER(bootBlock(0, "early"), hex(bootWriteError)); // before the begin
    COMPARE_ANSWER(hex(bootBegin), hex(bootOk));
    COMPARE_ANSWER(bootBlock(1, "skipped"), hex(bootWriteError));
    QCOMPARE(unit->state().firmware, hex("12 34"));
}

void tst_UnitSimulator::blockNumbersWrap()
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

void tst_UnitSimulator::imageThatIsNotWholeIsNotStarted()
{
    start(inBootloader());
    COMPARE_ANSWER(hex(bootBegin), hex(bootOk));
    COMPARE_ANSWER(hex(bootStart), hex(bootWriteError));
    QVERIFY(unit->state().inBootloader);
}

void tst_UnitSimulator::powerLostInTheBootloaderComesBackThere()
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

void tst_UnitSimulator::bootloaderKnowsOneRateOnly()
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

void tst_UnitSimulator::faults_data()
{
    QTest::addColumn<UnitFault>("fault");
    QTest::addColumn<QByteArray>("hit");
    const auto row = [](const char* name, const UnitFault& fault, const char* answer) {
        QTest::newRow(name) << fault << hex(answer);
    };
    row("refusal", UnitFault(UnitFault::Refuse).value(2), "C2 06 01 00 01 02 BC 1A");
    row("refusal by default", UnitFault(UnitFault::Refuse), "C2 06 01 00 01 01 27 28");
    row("wrong checksum", UnitFault(UnitFault::BadChecksum), "C2 06 01 00 05 00 67 12 02 06 0C AE");
    row("given noise before", UnitFault(UnitFault::NoiseBefore).bytes(hex("FF C2")),
        "FF C2 C2 06 01 00 05 00 67 12 02 06 0D AE");
    row("given noise behind", UnitFault(UnitFault::NoiseAfter).bytes(hex("C0 01")),
        "C2 06 01 00 05 00 67 12 02 06 0D AE C0 01");
    row("noise of its own later", UnitFault(UnitFault::NoiseLater).bytes(hex("AB")).value(5),
        "C2 06 01 00 05 00 67 12 02 06 0D AE AB");
    row("other data", UnitFault(UnitFault::ReplaceAnswer).bytes(hex("00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00")),
        "C2 06 01 00 11 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 69 03");
    row("no data", UnitFault(UnitFault::ReplaceAnswer), "C2 06 01 00 01 00 AE 39");
    row("in pieces", UnitFault(UnitFault::SplitAnswer).amount(12).value(1), itIsMe);
    row("late", UnitFault(UnitFault::DelayAnswer).value(5), itIsMe);
}

/// The second of three requests is hit.
void tst_UnitSimulator::faults()
{
    QFETCH(UnitFault, fault);
    QFETCH(QByteArray, hit);
    unit->setFaults({fault.onRequest(9).from(2).times(1)});
    COMPARE_ANSWER(hex(whoAreYou), hex(itIsMe));
    COMPARE_ANSWER(hex(whoAreYou), hit);
    COMPARE_ANSWER(hex(readScript0), hex(scriptEmpty));
    COMPARE_ANSWER(hex(whoAreYou), hex(itIsMe));
}

void tst_UnitSimulator::lostRequestIsNotDone()
{
    unit->setFaults({UnitFault(UnitFault::LoseRequest).onRequest(5).times(1)});
    tell(hex(writeOutput51));
    COMPARE_ANSWER(hex(readOutput51), hex(output51Empty));
    QVERIFY(!unit->requests().first().heard);
}

void tst_UnitSimulator::lostAnswerIsDoneAllTheSame()
{
    unit->setFaults({UnitFault(UnitFault::LoseAnswer).onRequest(5).times(1)});
    tell(hex(writeOutput51));
    COMPARE_ANSWER(hex(readOutput51), hex(output51));
    QVERIFY(unit->requests().first().heard);
    QVERIFY(unit->requests().first().answer.isEmpty());
}

void tst_UnitSimulator::refusedWriteIsNotDone()
{
    unit->setFaults({UnitFault(UnitFault::Refuse).onRequest(5).value(2)});
    COMPARE_ANSWER(hex(writeOutput51), hex(outOfRange));
    COMPARE_ANSWER(hex(readOutput51), hex(output51Empty));
}

void tst_UnitSimulator::changedAnswerHasARightChecksum()
{
    unit->change([](UnitState& state) { state.outputs[5][1] = QByteArray(20, '\x09'); });
    unit->setFaults({UnitFault(UnitFault::ChangeAnswer).onRequest(7).from(2)});
    const QByteArray right = dataOf(ask(hex(readOutput51), 28));
    QCOMPARE(right, QByteArray(20, '\x09'));
    for (int count = 0; count < 5; ++count) {
        port->write(hex(readOutput51));
        QTRY_COMPARE_WITH_TIMEOUT(unit->requestCount(), count + 2, patience);
        QTRY_VERIFY_WITH_TIMEOUT(!unit->requests().last().answer.isEmpty(), patience);
        QByteArray frame = unit->requests().last().answer.left(1);
        const QByteArray stuffed = unit->requests().last().answer.mid(1);
        for (int index = 0; index < stuffed.size(); ++index) {
            const bool escape = stuffed.at(index) == '\xC0';
            frame += escape ? char(stuffed.at(++index) ^ '\xC0') : stuffed.at(index);
        }
        QCOMPARE(frame, withChecksum(frame.chopped(2), 0));
        int differences = 0;
        for (int index = 0; index < right.size(); ++index) {
            differences += frame.at(6 + index) == right.at(index) ? 0 : 1;
        }
        QCOMPARE(differences, 1);
    }
}

void tst_UnitSimulator::damagedAnswerDiffersInOneBit()
{
    unit->setFaults({UnitFault(UnitFault::DamageAnswer).from(2)});
    const QByteArray right = ask(hex(readScript0), hex(scriptEmpty).size());
    for (int count = 0; count < 10; ++count) {
        const QByteArray wrong = ask(hex(readScript0), right.size());
        QCOMPARE(wrong.size(), right.size());
        uint bits = 0;
        for (int index = 0; index < right.size(); ++index) {
            bits += qPopulationCount(quint8(right.at(index) ^ wrong.at(index)));
        }
        QCOMPARE(bits, 1U);
    }
}

void tst_UnitSimulator::splitAnswerComesInPieces()
{
    unit->setFaults({UnitFault(UnitFault::SplitAnswer).amount(4).value(60)});
    int pieces = 0;
    QByteArray answer;
    QElapsedTimer time;
    time.start();
    port->write(hex(whoAreYou));
    while (answer.size() < hex(itIsMe).size() && port->waitForReadyRead(patience)) {
        answer += port->readAll();
        ++pieces;
    }
    QCOMPARE(answer, hex(itIsMe));
    QVERIFY2(time.elapsed() >= 180, qPrintable(QString::number(time.elapsed())));
    QVERIFY(pieces >= 2); // fewer than four where this process slept through a gap
}

void tst_UnitSimulator::lateAnswerComesLate()
{
    unit->setFaults({UnitFault(UnitFault::DelayAnswer).value(150)});
    QElapsedTimer time;
    time.start();
    COMPARE_ANSWER(hex(whoAreYou), hex(itIsMe));
    QVERIFY2(time.elapsed() >= 150, qPrintable(QString::number(time.elapsed())));
}

void tst_UnitSimulator::sameSeedSameFaults()
{
    const QVector<UnitFault> faults{UnitFault(UnitFault::DamageAnswer).withChance(0.5),
                                    UnitFault(UnitFault::NoiseBefore).withChance(0.3),
                                    UnitFault(UnitFault::LoseAnswer).withChance(0.2)};
    const auto answers = [&](quint32 seed) {
        unit->clearRequests();
        unit->setFaults(faults, seed);
        for (int count = 1; count <= 40; ++count) {
            tell(hex(whoAreYou));
        }
        QByteArrayList all;
        const QVector<UnitRequest> requests = unit->requests();
        for (const UnitRequest& request : requests) {
            all.append(request.answer);
        }
        return all;
    };
    const QByteArrayList first = answers(7);
    QCOMPARE(first.size(), 40);
    QVERIFY(first.contains(QByteArray()));
    QVERIFY(first.contains(hex(itIsMe)));
    QCOMPARE(answers(7), first);
    QVERIFY(answers(8) != first);
}

void tst_UnitSimulator::unplugsAtTheNthRequestAndComesBack()
{
    unit->setFaults({UnitFault(UnitFault::Unplug).onRequest(9).from(3).times(1).value(50)});
    QSignalSpy changes(unit.get(), &UnitSimulator::pluggedInChanged);
    COMPARE_ANSWER(hex(whoAreYou), hex(itIsMe));
    COMPARE_ANSWER(hex(whoAreYou), hex(itIsMe));
    port->write(hex(whoAreYou));
    QTRY_COMPARE_WITH_TIMEOUT(port->error(), QSerialPort::ResourceError, patience);
    QTRY_COMPARE_WITH_TIMEOUT(changes.size(), 2, patience);
    QCOMPARE(changes.at(0).at(0).toBool(), false);
    QCOMPARE(changes.at(1).at(0).toBool(), true);
    QVERIFY2(open(), qPrintable(port->errorString()));
    COMPARE_ANSWER(hex(whoAreYou), hex(itIsMe));
    QCOMPARE(unit->requestCount(9), 4);
    QVERIFY(!unit->requests().at(2).heard);
}

void tst_UnitSimulator::unplugsWithinAnAnswer()
{
    unit->setFaults({UnitFault(UnitFault::Unplug).amount(5).times(1)});
    port->write(hex(writeOutput51));
    QTRY_COMPARE_WITH_TIMEOUT(unit->isPluggedIn(), false, patience);
    QVERIFY(unit->requests().first().heard);
    QVERIFY(unit->plugIn());
    QVERIFY2(open(), qPrintable(port->errorString()));
    COMPARE_ANSWER(hex(readOutput51), hex(output51)); // it was done before the cable came off
}

void tst_UnitSimulator::staysUnpluggedUntilPluggedIn()
{
    const QString name = unit->portName();
    unit->unplug();
    QVERIFY(!unit->isPluggedIn());
    QTRY_COMPARE_WITH_TIMEOUT(port->error(), QSerialPort::ResourceError, patience);
    QVERIFY(!open());
    QVERIFY(unit->plugIn());
    QCOMPARE(unit->portName(), name);
    QVERIFY(open());
    COMPARE_ANSWER(hex(whoAreYou), hex(itIsMe));
}

void tst_UnitSimulator::keepsThePaceOfTheWire_data()
{
    QTest::addColumn<int>("rate");
    QTest::addColumn<int>("thinkingTime");
    QTest::addColumn<double>("milliseconds");
    // 8 bytes of request and 12 of answer, ten bits each.
    QTest::newRow("57600") << 57600 << 0 << 200 / 57.6;
    QTest::newRow("9600") << 9600 << 0 << 200 / 9.6;
    QTest::newRow("9600 and thinking") << 9600 << 30 << 30 + 200 / 9.6;
}

void tst_UnitSimulator::keepsThePaceOfTheWire()
{
    QFETCH(int, rate);
    QFETCH(int, thinkingTime);
    QFETCH(double, milliseconds);
    unit->change([rate](UnitState& state) { state.baudRates = {rate}; });
    unit->setPace(UnitSimulator::OfTheWire, thinkingTime);
    QVERIFY(port->setBaudRate(rate));
    double quickest = patience;
    for (int count = 0; count < 10; ++count) {
        QElapsedTimer time;
        time.start();
        COMPARE_ANSWER(hex(whoAreYou), hex(itIsMe));
        quickest = qMin(quickest, double(time.nsecsElapsed()) / 1e6);
    }
    QVERIFY2(quickest >= milliseconds, qPrintable(QString::number(quickest)));
    QVERIFY2(quickest < milliseconds + 50, qPrintable(QString::number(quickest)));
}

void tst_UnitSimulator::requestsAreRecordedWithTheirTime()
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
void tst_UnitSimulator::answersWhileTheOwnerIsBusy()
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

void tst_UnitSimulator::worksInTheCallersEventLoop()
{
    start(UnitState(), UnitSimulator::OnCallersThread);
    COMPARE_ANSWER(hex(writeOutput51), hex(accepted));
    QCOMPARE(unit->state().outputs.at(5).at(1), hex("03 03 07"));
    QCOMPARE(unit->requestCount(5), 1);
}

void tst_UnitSimulator::requestGivenUpIsDoneButNotAnswered()
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
    port->write(hex(readScript0));
    QByteArray answer;
    QTRY_VERIFY_WITH_TIMEOUT(!(answer += port->readAll()).isEmpty(), patience);
    port->write(hex(whoAreYou));
    QTRY_VERIFY_WITH_TIMEOUT((answer += port->readAll()).endsWith(hex(itIsMe)), patience);
    QVERIFY2(answer.size() < hex(scriptEmpty).size() + hex(itIsMe).size(), answer.toHex(' ').constData());
}

void tst_UnitSimulator::givenUpLogBlockCountsAsLost()
{
    start(withLog(100, 12));
    QCOMPARE(dataOf(ask(hex(logFirst), 72)), record(9) + record(10) + record(11) + record(12));
    QCOMPARE(dataOf(ask(hex(logNext) + hex(logNext), 72)), record(5) + record(6) + record(7) + record(8));
    QCOMPARE(dataOf(ask(hex(logNext), 72)), record(1) + record(2) + record(3) + record(4));

    // The same where it breaks off in the middle.
    unit->change([](UnitState& state) { state.baudRates = {1200}; });
    unit->setPace(UnitSimulator::OfTheWire);
    QVERIFY(port->setBaudRate(1200));
    QCOMPARE(askLogBlock(logFirst, 64), record(9) + record(10) + record(11) + record(12));
    port->write(hex(logNext));
    QByteArray begin;
    QTRY_VERIFY_WITH_TIMEOUT(!(begin += port->readAll()).isEmpty(), patience);
    tell(hex(whoAreYou));
    QTRY_VERIFY_WITH_TIMEOUT((begin += port->readAll()).endsWith(hex(itIsMe)), patience);
    QCOMPARE(askLogBlock(logNext, 64), record(5) + record(6) + record(7) + record(8));
}

void tst_UnitSimulator::answerThatAFaultDelaysComesAllTheSame()
{
    unit->setFaults({UnitFault(UnitFault::DelayAnswer).onRequest(5).value(100)});
    COMPARE_ANSWER(hex(writeOutput51) + hex(whoAreYou), hex(itIsMe) + hex(accepted));
}

void tst_UnitSimulator::manyUnitsAtOnce()
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

QTEST_GUILESS_MAIN(tst_UnitSimulator)
#include "tst_UnitSimulator.moc"
