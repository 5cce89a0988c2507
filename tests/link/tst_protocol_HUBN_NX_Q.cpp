#include "link/protocol_HUBN_NX_Q.h"
#include "support/AnswerFrames.h"
#include "texts/texts.h"

#include <QRandomGenerator>
#include <QtTest>

using frames::hex;
using P = protocol_HUBN_NX_Q;

namespace
{

message parsed(const QByteArray& received)
{
    message mess;
    mess.setRawAnswer(received);
    return P::parseAnswer(mess);
}

/// The parser's rules once more, written without regard to speed, as a second opinion on random bytes.
message parsedPlainly(const QByteArray& received)
{
    message mess;
    mess.setRawAnswer(received);
    const auto status = [&mess](int value) {
        mess.setParseStatus(value);
        return mess;
    };
    if (received.isEmpty()) {
        return status(2);
    }
    const int start = received.lastIndexOf('\xC2');
    if (start < 0) {
        return status(4);
    }
    QByteArray f = received.mid(start);
    if (f.size() < 2) {
        return status(3);
    }
    for (int i = 1; i < f.size(); ++i) {
        if (f.at(i) == '\xC1' || f.at(i) == '\xC2') {
            return status(1);
        }
        if (f.at(i) == '\xC0') {
            if (i == f.size() - 1 || static_cast<signed char>(f.at(i + 1)) > 2) {
                return status(1);
            }
            f[i] = char(quint8(f.at(i + 1)) - 0x40);
            f.remove(i + 1, 1);
        }
    }
    if (f.size() < 8) {
        return status(3);
    }
    if (f.at(1) != '\x06' && f.at(1) != '\x86') {
        return status(5);
    }
    const int length = static_cast<signed char>(f.at(4));
    if (!(length + 6 < f.size())) {
        return status(6);
    }
    if (length <= 0) {
        return status(7);
    }
    if (frames::withChecksum(f.left(5 + length)) != f.left(7 + length)) {
        return status(8);
    }
    const int code = static_cast<signed char>(f.at(5));
    mess.setAnswerCode(code > 11 ? 14 : code);
    mess.setPayload(f.mid(6, length - 1));
    return status(0);
}

} // namespace

class tst_protocol_HUBN_NX_Q : public QObject
{
    Q_OBJECT

private slots:
    void checksum_data();
    void checksum();
    void checksumOfARange();
    void stuffing_data();
    void stuffing();
    void sweepOfBaudRates();
    void requests_data();
    void requests();
    void logRequestsDifferInTheFlagAndTheChecksum();
    void readingAndSettingTheTimeShareTheirCommand();
    void logInformationAndLogBlocksShareTheirCommand();
    void watchAndSearchDifferInTheTypeAlone();
    void readingOutputZeroOfNobodyIsTheBroadcast();
    void configReadingCarriesTerminalAndOutput();
    void scriptReadingCarriesItsNumber();
    void stuffedDataKeepTheLength();
    void unknownClassHasNoType_data();
    void unknownClassHasNoType();
    void parsing_data();
    void parsing();
    void answerCodes_data();
    void answerCodes();
    void failedParseLeavesCodeAndPayload();
    void parseLeavesTheReceivedBytes();
    void longestAnswer();
    void cutAtEveryByte();
    void randomAnswersComeBack();
    void randomBytesMatchThePlainRules();
    void failedStepsHaveALabel_data();
    void failedStepsHaveALabel();
    void everyTypeHasAName();
};

void tst_protocol_HUBN_NX_Q::checksum_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<int>("expected");
    QTest::newRow("check value of the digits") << QByteArray("123456789") << 0x6F91;
    QTest::newRow("empty is -1, not 0xFFFF") << QByteArray() << -1;
    const QByteArray timeRequest = hex("C18601000105");
    const int steps[] = {0xD802, 0xC2F4, 0xA0E0, 0xE7AE, 0x5D1A, 0xE82B};
    for (int i = 0; i < timeRequest.size(); ++i) {
        QTest::addRow("reading of the time, %d bytes", i + 1) << timeRequest.left(i + 1) << steps[i];
    }
    QTest::newRow("reading of an output") << hex("C186010003010700") << 0xBBC2;
    QTest::newRow("an answer") << hex("C206010005 00C1000201") << 0x0338;
}

void tst_protocol_HUBN_NX_Q::checksum()
{
    QFETCH(const QByteArray, bytes);
    QTEST(P::crc16(bytes), "expected");
}

void tst_protocol_HUBN_NX_Q::checksumOfARange()
{
    const QByteArray bytes("xx123456789yy");
    QVERIFY(P::checkCrc(bytes, 2, 11, 0x6F91));
    QVERIFY(!P::checkCrc(bytes, 2, 11, 0x6F90));
    QVERIFY(!P::checkCrc(bytes, 1, 11, 0x6F91));
    QVERIFY(!P::checkCrc(bytes, 2, 12, 0x6F91));
    // An empty range.
    QVERIFY(P::checkCrc(bytes, 2, 2, 0xFFFF));
    QVERIFY(P::checkCrc(bytes, 5, 2, 0xFFFF));
    QVERIFY(!P::checkCrc(bytes, 2, 2, 0x6F91));
    QVERIFY(!P::checkCrc(bytes, 5, 2, 0));
}

void tst_protocol_HUBN_NX_Q::stuffing_data()
{
    QTest::addColumn<QByteArray>("frame");
    QTest::addColumn<QByteArray>("expected");
    QTest::newRow("nothing") << QByteArray() << QByteArray();
    QTest::newRow("a single reserved byte stays") << hex("C0") << hex("C0");
    QTest::newRow("first byte stays, second is escaped") << hex("C1C1") << hex("C1C001");
    QTest::newRow("each reserved byte") << hex("00C0C1C2") << hex("00C000C001C002");
    QTest::newRow("neighbours of the reserved bytes") << hex("00BFC3000102") << hex("00BFC3000102");
    QTest::newRow("in the checksum") << hex("C186010003010700C2BB") << hex("C186010003010700C002BB");
}

void tst_protocol_HUBN_NX_Q::stuffing()
{
    QFETCH(const QByteArray, frame);
    QTEST(P::stuffBytes(frame), "expected");
}

void tst_protocol_HUBN_NX_Q::sweepOfBaudRates()
{
    QCOMPARE(P::nextBaudrate(0), 57600);
    QCOMPARE(P::nextBaudrate(57600), 9600);
    QCOMPARE(P::nextBaudrate(9600), 0);
    QCOMPARE(P::nextBaudrate(1200), 57600);
    QCOMPARE(P::nextBaudrate(-1), 57600);
}

void tst_protocol_HUBN_NX_Q::requests_data()
{
    QTest::addColumn<message>("request");
    QTest::addColumn<int>("type");
    QTest::addColumn<QByteArray>("wire");
    QTest::addColumn<int>("priority");
    QTest::addColumn<bool>("repeatCheck");

    const auto row = [](const char* name, const message& request, int type, const char* wire, int priority = 100) {
        QTest::newRow(name) << request << type << hex(wire) << priority << (type >= 12 && type <= 21);
    };
    row("set the time", P::requestSyncTime(1, hex("56341225050920")), 1, "C1860100080556341225050920 68F5");
    row("read the time", P::requestDeviceTime(1), 2, "C18601000105 2BE8", 50);
    row("first log block", P::requestReadLog(1, true), 3, "C18601000106 B0DA");
    row("next log block", P::requestReadLog(1, false), 3, "C18601800106 5CD6");
    row("log information", P::requestReadLogInfo(1), 4, "C1860100020600 355A");
    row("read an output", P::requestReadConfig(1, 0, 0), 7, "C186010003010000 CAF6");
    row("read an output, stuffed", P::requestReadConfig(1, 7, 0), 7, "C186010003010700C002BB");
    row("read a script", P::requestReadScript(1, 0), 8, "C1860100020200 553D");
    row("ask one address", P::requestCheckCoordinator(1), 9, "C10601000161 5C47", 50);
    row("ask all addresses", P::requestSearchCoordinator(), 10, "C186000003010000 E1F2", 50);
    row("channels in use, system", P::requestBusyChannels(1, 0), 12, "C1060100047F15FFFF 092A");
    row("channels in use, sensor", P::requestBusyChannels(1, 1), 13, "C10601000315FFFF 9B66");
    row("channels in use, execute", P::requestBusyChannels(1, 2), 14, "C10601000335FFFF A065");
    row("channels in use, interface", P::requestBusyChannels(1, 3), 15, "C10601000355FFFF ED60");
    row("channels in use, analog", P::requestBusyChannels(1, 4), 16, "C10601000395FFFF 776A");
    row("terminal, system", P::requestTerminalInfo(1, 0, 5), 17, "C1060100037F1405 4845");
    row("terminal, sensor", P::requestTerminalInfo(1, 1, 5), 18, "C1060100021405 1BAE");
    row("terminal, execute", P::requestTerminalInfo(1, 2, 5), 19, "C1060100023405 288D");
    row("terminal, interface", P::requestTerminalInfo(1, 3, 5), 20, "C1060100025405 7DE8");
    row("terminal, analog", P::requestTerminalInfo(1, 4, 5), 21, "C1060100029405 D722");
    row("enter the bootloader", P::requestSwitchToBoot(1), 22, "C1060100016F 22AE");

    QTest::newRow("write an output") << P::requestWriteConfig(3, hex("0102030405")) << 5
                                     << frames::frame(0xC1, 0x86, 3, hex("010102030405")) << 100 << false;
    QTest::newRow("write a script") << P::requestWriteScript(3, hex("0A0B")) << 6
                                    << frames::frame(0xC1, 0x86, 3, hex("020A0B")) << 100 << false;
    QTest::newRow("stuffed address") << P::requestDeviceTime(0xC1) << 2 << frames::frame(0xC1, 0x86, 0xC1, hex("05"))
                                     << 50 << false;
}

void tst_protocol_HUBN_NX_Q::requests()
{
    QFETCH(const message, request);
    QFETCH(const QByteArray, wire);
    QCOMPARE(request.request().toHex(), wire.toHex());
    QTEST(request.requestType(), "type");
    QTEST(int(request.priority()), "priority");
    QTEST(request.repeatCheck(), "repeatCheck");
    QCOMPARE(request.bootType(), 0);
    QCOMPARE(request.baudrate(), 57600);
    QCOMPARE(int(request.attempts()), 3);
    QCOMPARE(request.parseStatus(), 9);
    QVERIFY(request.repeatPayload().isEmpty());
}

void tst_protocol_HUBN_NX_Q::logRequestsDifferInTheFlagAndTheChecksum()
{
    const QByteArray first = P::requestReadLog(1, true).request();
    const QByteArray next = P::requestReadLog(1, false).request();
    QCOMPARE(quint8(first.at(3)), quint8(0x00));
    QCOMPARE(quint8(next.at(3)), quint8(0x80));
    QCOMPARE(first.mid(4, 2), next.mid(4, 2));
    QVERIFY(first.right(2) != next.right(2));
}

void tst_protocol_HUBN_NX_Q::readingAndSettingTheTimeShareTheirCommand()
{
    const QByteArray data = QByteArray::fromHex("01020304050607");
    const QByteArray read = P::requestDeviceTime(1).request();
    const QByteArray set = P::requestSyncTime(1, data).request();
    QCOMPARE(set.left(4), read.left(4)); // start, flags and address
    QCOMPARE(int(read.at(4)), 1);
    QCOMPARE(int(set.at(4)), 1 + data.size());
    QCOMPARE(set.at(5), read.at(5));
    QCOMPARE(set.mid(6, data.size()), data);
}

void tst_protocol_HUBN_NX_Q::logInformationAndLogBlocksShareTheirCommand()
{
    const QByteArray information = P::requestReadLogInfo(1).request();
    const QByteArray block = P::requestReadLog(1, true).request();
    QCOMPARE(block.left(4), information.left(4));
    QCOMPARE(int(information.at(4)), 2);
    QCOMPARE(int(block.at(4)), 1);
    QCOMPARE(block.at(5), information.at(5));
    QCOMPARE(int(information.at(6)), 0);
}

void tst_protocol_HUBN_NX_Q::watchAndSearchDifferInTheTypeAlone()
{
    const message search = P::requestCheckCoordinator(8);
    message watch = search;
    watch.setRequestType(P::Check_Coordinator);
    QCOMPARE(watch.request(), search.request());
    QVERIFY(watch != search);
}

void tst_protocol_HUBN_NX_Q::readingOutputZeroOfNobodyIsTheBroadcast()
{
    QCOMPARE(P::requestReadConfig(0, 0, 0).request(), P::requestSearchCoordinator().request());
}

void tst_protocol_HUBN_NX_Q::configReadingCarriesTerminalAndOutput()
{
    const message request = P::requestReadConfig(1, 7, 2);
    QCOMPARE(int(request.address()), 7);
    QCOMPARE(int(request.number()), 2);
}

void tst_protocol_HUBN_NX_Q::scriptReadingCarriesItsNumber()
{
    const message request = P::requestReadScript(1, 31);
    QCOMPARE(int(request.address()), 0);
    QCOMPARE(int(request.number()), 31);
    QCOMPARE(int(P::requestCheckCoordinator(9).address()), 0);
}

void tst_protocol_HUBN_NX_Q::stuffedDataKeepTheLength()
{
    for (const message& request : {P::requestWriteConfig(1, hex("C0C1C2")), P::requestWriteScript(1, hex("C0C1C2"))}) {
        QCOMPARE(int(request.request().at(4)), 4);
        QCOMPARE(request.request().mid(6, 6), hex("C000C001C002"));
    }
}

void tst_protocol_HUBN_NX_Q::unknownClassHasNoType_data()
{
    QTest::addColumn<message>("request");
    QTest::addColumn<QByteArray>("beforeChecksum");
    QTest::newRow("channels in use, 5") << P::requestBusyChannels(1, 5) << hex("C106010003FFFF");
    QTest::newRow("channels in use, 255") << P::requestBusyChannels(1, 255) << hex("C106010003FFFF");
    QTest::newRow("terminal, 5") << P::requestTerminalInfo(1, 5, 9) << hex("C10601000209");
    QTest::newRow("terminal, 255") << P::requestTerminalInfo(1, 255, 9) << hex("C10601000209");
}

void tst_protocol_HUBN_NX_Q::unknownClassHasNoType()
{
    QFETCH(const message, request);
    QFETCH(const QByteArray, beforeChecksum);
    QCOMPARE(request.requestType(), 0);
    QCOMPARE(request.bootType(), 0);
    QCOMPARE(request.request(), frames::stuffed(frames::withChecksum(beforeChecksum)));
}

void tst_protocol_HUBN_NX_Q::parsing_data()
{
    QTest::addColumn<QByteArray>("received");
    QTest::addColumn<int>("status");
    QTest::addColumn<QByteArray>("payload");

    const QByteArray good = frames::answer(0, hex("0102030405"));
    const auto bad = [](const char* name, const QByteArray& received, int status) {
        QTest::newRow(name) << received << status << QByteArray();
    };
    const auto valid = [](const char* name, const QByteArray& received, const QByteArray& payload) {
        QTest::newRow(name) << received << 0 << payload;
    };

    valid("an answer with an escape", hex("C206010005 00C001000201 3803"), hex("C1000201"));
    valid("noise before the frame", "noise" + good, hex("0102030405"));
    valid("noise with a start byte", hex("00C2FF06") + good, hex("0102030405"));
    valid("bytes after the checksum", good + hex("00112233"), hex("0102030405"));
    valid("the second of two frames counts", good + frames::answer(0, "second"), "second");
    valid("the shortest answer", frames::answer(0), {});
    valid("wrong address", frames::answer(0, "x", 77), "x");
    valid("marked kind", frames::answer(0, "x", 1, 0x86), "x");
    valid("reserved bytes everywhere", frames::answer(0, hex("C0C1C2C2C1C0"), 0xC2), hex("C0C1C2C2C1C0"));

    bad("nothing received", {}, PacketEmpty);
    bad("no start byte", hex("C106010001"), PacketNoStart);
    bad("a lone start byte", hex("C2"), PacketTooShort);
    bad("a lone start byte at the end of a frame", good + hex("C2"), PacketTooShort);
    bad("a first fragment", good.left(7), PacketTooShort);
    bad("too short after unstuffing", hex("C206 C000C001C002 00"), PacketTooShort);
    bad("start of a request inside", hex("C2060100 05C1 0000000000"), PacketBadByte);
    bad("ends in an escape", good + hex("C0"), PacketBadByte);
    bad("escape code 3", hex("C2060100 05C003 0000000000"), PacketBadByte);
    bad("escape code 0x7F", hex("C2060100 05C07F 0000000000"), PacketBadByte);
    bad("bad byte wins over too short", hex("C2C1"), PacketBadByte);
    bad("kind 5", frames::frame(0xC2, 0x05, 1, hex("0001")), PacketBadKind);
    bad("kind 0x87", frames::frame(0xC2, 0x87, 1, hex("0001")), PacketBadKind);
    bad("cut off in its data", good.left(good.size() - 3), PacketIncomplete);
    bad("cut off in its checksum", good.left(good.size() - 1), PacketIncomplete);
    bad("cut off after an escape", frames::answer(0, hex("010203C1")).left(10), PacketBadByte);
    bad("length longer than the frame", frames::frame(0xC2, 0x06, 1, hex("000102"), 4), PacketIncomplete);
    bad("length 0", frames::frame(0xC2, 0x06, 1, hex("00"), 0), PacketBadLength);
    bad("length 0x80", frames::frame(0xC2, 0x06, 1, hex("00"), 0x80), PacketBadLength);
    bad("length 0xFF", frames::frame(0xC2, 0x06, 1, hex("00"), 0xFF), PacketBadLength);
    bad("length 0x80 in too short a frame", frames::frame(0xC2, 0x06, 1, {}, 0x80), PacketTooShort);
    bad("damaged data", QByteArray(good).replace(7, 1, "\x7F"), PacketBadCrc);
    bad("damaged low byte", QByteArray(good).replace(11, 1, QByteArray(1, char(good.at(11) ^ 1))), PacketBadCrc);
    bad("damaged high byte", QByteArray(good).replace(12, 1, QByteArray(1, char(good.at(12) ^ 1))), PacketBadCrc);
    bad("the later frame counts even if it is bad", good + good.left(9), PacketIncomplete);

    // Escape codes that are negative as signed bytes pass, and the parse goes on with the value they give.
    const QByteArray strange = frames::withChecksum(hex("C206010003 00BF40"));
    QVERIFY(!strange.mid(8).contains('\xC0') && !strange.mid(8).contains('\xC1') && !strange.mid(8).contains('\xC2'));
    valid("escape codes 0xFF and 0x80", hex("C206010003 00C0FFC080") + strange.mid(8), hex("BF40"));
}

void tst_protocol_HUBN_NX_Q::parsing()
{
    QFETCH(const QByteArray, received);
    const message mess = parsed(received);
    QTEST(mess.parseStatus(), "status");
    QTEST(mess.payload(), "payload");
    QCOMPARE(mess.answerCode(), mess.isValid() ? 0 : 14);
}

void tst_protocol_HUBN_NX_Q::answerCodes_data()
{
    QTest::addColumn<int>("received");
    QTest::addColumn<int>("stored");
    for (const int code : {0, 1, 2, 3, 5, 10, 11}) {
        QTest::addRow("%d is kept", code) << code << code;
    }
    QTest::newRow("12 is no usable code") << 12 << 14;
    QTest::newRow("13 is no usable code") << 13 << 14;
    QTest::newRow("0x7F is no usable code") << 0x7F << 14;
    QTest::newRow("0x80 is negative") << 0x80 << -128;
    QTest::newRow("0xFF is negative") << 0xFF << -1;
}

void tst_protocol_HUBN_NX_Q::answerCodes()
{
    QFETCH(const int, received);
    const message mess = parsed(frames::answer(quint8(received), "x"));
    QCOMPARE(mess.parseStatus(), 0);
    QTEST(mess.answerCode(), "stored");
}

void tst_protocol_HUBN_NX_Q::failedParseLeavesCodeAndPayload()
{
    message mess;
    mess.setAnswerCode(3);
    mess.setPayload("old");
    mess.setRawAnswer(hex("C2"));
    mess = P::parseAnswer(mess);
    QCOMPARE(mess.parseStatus(), int(PacketTooShort));
    QCOMPARE(mess.answerCode(), 3);
    QCOMPARE(mess.payload(), QByteArray("old"));
}

void tst_protocol_HUBN_NX_Q::parseLeavesTheReceivedBytes()
{
    const QByteArray received = "noise" + frames::answer(0, hex("C0C1C2")) + "rest";
    QCOMPARE(parsed(received).rawAnswer(), received);
}

void tst_protocol_HUBN_NX_Q::longestAnswer()
{
    const QByteArray payload(126, '\xC1');
    QCOMPARE(parsed(frames::answer(0, payload)).payload(), payload);
    QCOMPARE(parsed(frames::answer(0, payload + '\xC1')).parseStatus(), int(PacketBadLength));
}

void tst_protocol_HUBN_NX_Q::cutAtEveryByte()
{
    const QByteArray whole = frames::answer(0, hex("00C0C1C2 0102030405"));
    for (int size = 0; size < whole.size(); ++size) {
        const message mess = parsed(whole.left(size));
        QVERIFY2(!mess.isValid(), QByteArray::number(size).constData());
        QCOMPARE(mess.parseStatus(), parsedPlainly(whole.left(size)).parseStatus());
    }
    QVERIFY(parsed(whole).isValid());
}

void tst_protocol_HUBN_NX_Q::randomAnswersComeBack()
{
    QRandomGenerator random(20200925);
    for (int i = 0; i < 5000; ++i) {
        QByteArray payload(random.bounded(127), '\0');
        for (char& byte : payload) {
            byte = char(random.bounded(4) == 0 ? 0xC0 + random.bounded(3) : random.bounded(256));
        }
        const auto code = quint8(random.bounded(12));
        const message mess = parsed("\x01\xC2\xC0" + frames::answer(code, payload, quint8(random.bounded(256))));
        QCOMPARE(mess.parseStatus(), 0);
        QCOMPARE(mess.answerCode(), int(code));
        QCOMPARE(mess.payload(), payload);
    }
}

void tst_protocol_HUBN_NX_Q::randomBytesMatchThePlainRules()
{
    constexpr int seed = 57600;
    QRandomGenerator random(seed);
    int seen[PacketNotParsed + 1] = {};
    for (int i = 0; i < 200000; ++i) {
        // Damaged answers reach deeper into the rules than plain noise.
        QByteArray received = frames::answer(quint8(random.bounded(256)), QByteArray(random.bounded(12), '\x10'));
        const int damages = random.bounded(4);
        for (int damage = 0; damage < damages; ++damage) {
            const int at = random.bounded(received.size());
            const quint8 values[] = {0xC0, 0xC1, 0xC2, 0x00, 0x80, quint8(random.bounded(256))};
            switch (random.bounded(4)) {
            case 0:
                received.truncate(at + 1);
                break;
            case 1:
                received.insert(at, char(values[random.bounded(6)]));
                break;
            default:
                received[at] = char(values[random.bounded(6)]);
            }
        }
        const message mess = parsed(received);
        const message expected = parsedPlainly(received);
        QVERIFY2(mess == expected, received.toHex().constData());
        ++seen[mess.parseStatus()];
    }
    for (const int status : {0, 1, 3, 4, 5, 6, 7, 8}) {
        QVERIFY2(seen[status] > 100, QByteArray::number(status).constData());
    }
}

void tst_protocol_HUBN_NX_Q::failedStepsHaveALabel_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QString>("label");
    const QStringList labels{
        QStringLiteral("Error Read LOG!"),
        QStringLiteral("Error Read Info about LOG!"),
        QStringLiteral("Error Write CONFIGURATION!"),
        QStringLiteral("Error Write SCRIPT!"),
        QStringLiteral("Error Read CONFIGURATION!"),
        QStringLiteral("Error Read SCRIPT!"),
        QStringLiteral("Error UNKNOWN COMMAND"),
        QStringLiteral("Error UNKNOWN COMMAND"),
        QStringLiteral("Error UNKNOWN COMMAND"),
        QStringLiteral("Error Busy_Channel_System!"),
        QStringLiteral("Error Busy_Channel_Sensor!"),
        QStringLiteral("Error Busy_Channel_Execute!"),
        QStringLiteral("Error Busy_Channel_Interface!"),
        QStringLiteral("Error Busy_Channel_Analog!"),
        QStringLiteral("Error Terminal_System_Info!"),
        QStringLiteral("Error Terminal_Sensor_Info!"),
        QStringLiteral("Error Terminal_Execute_Info!"),
        QStringLiteral("Error Terminal_Interface_Info!"),
        QStringLiteral("Error Terminal_Analog_Info!"),
        QStringLiteral("Error UNKNOWN COMMAND"),
    };
    for (int i = 0; i < labels.size(); ++i) {
        QTest::addRow("type %d", i + 3) << i + 3 << labels.at(i);
    }
    for (const int type : {-1, 0, 1, 2, 23, 99, 255}) {
        QTest::addRow("type %d", type) << type << QStringLiteral("Error UNKNOWN COMMAND");
    }
}

void tst_protocol_HUBN_NX_Q::failedStepsHaveALabel()
{
    QFETCH(int, type);
    QTEST(QString::fromLatin1(P::failureLabel(type)), "label");
}

void tst_protocol_HUBN_NX_Q::everyTypeHasAName()
{
    for (int type = P::Sync_Time; type <= P::Switch_To_Boot; ++type) {
        QVERIFY2(P::requestName(type) != texts::packetUnknownRequest(), QByteArray::number(type).constData());
    }
    QCOMPARE(P::requestName(P::Sync_Time), texts::packetSyncTime());
    QCOMPARE(P::requestName(P::Check_Coordinator), texts::packetSearchAddress());
    QCOMPARE(P::requestName(P::Switch_To_Boot), texts::packetSwitchToBoot());
    for (const int type : {-1, 0, P::Switch_To_Boot + 1, 255}) {
        QCOMPARE(P::requestName(type), texts::packetUnknownRequest());
    }
}

QTEST_GUILESS_MAIN(tst_protocol_HUBN_NX_Q)
#include "tst_protocol_HUBN_NX_Q.moc"
