#include "link/packetText.h"
#include "link/protocol_HUBN_NX_Q.h"

#include <QRandomGenerator>
#include <QTest>

using Protocol = protocol_HUBN_NX_Q;

namespace
{

QByteArray hex(const char* text)
{
    return QByteArray::fromHex(text);
}

QByteArray answer(int code, const QByteArray& data)
{
    QByteArray frame = hex("c20601000000");
    frame[4] = static_cast<char>(data.size() + 1);
    frame[5] = static_cast<char>(code);
    frame += data;
    const int checksum = Protocol::crc16(frame);
    frame += static_cast<char>(checksum & 0xFF);
    frame += static_cast<char>(checksum >> 8);
    return Protocol::stuffBytes(frame);
}

QByteArray bootPacket(const char* unchecked)
{
    const QByteArray packet = hex(unchecked);
    const int checksum = Protocol::crc16(packet.mid(1));
    return packet + static_cast<char>(checksum & 0xFF) + static_cast<char>(checksum >> 8);
}

} // namespace

class tst_packetText : public QObject
{
    Q_OBJECT

private slots:
    void requestsAreToldInWords_data();
    void requestsAreToldInWords();
    void everyRequestIsRecognised();
    void answersAreToldInWords_data();
    void answersAreToldInWords();
    void packetsOfTheBootloaderAreToldInWords();
    void resultsOfTheBootloaderHaveAMeaning_data();
    void resultsOfTheBootloaderHaveAMeaning();
    void noBytesAreTooMuch();
    void textIsReadBack();
    void textOfAnEditorIsReadBack();
    void faultyLineIsNamed_data();
    void faultyLineIsNamed();
};

void tst_packetText::requestsAreToldInWords_data()
{
    QTest::addColumn<QByteArray>("request");
    QTest::addColumn<QString>("words");
    const auto add = [](const char* name, const char* bytes, const char* words) {
        QTest::newRow(name) << hex(bytes) << QString::fromUtf8(words);
    };
    add("set the clock", "c186010008055634122505092068f5",
        "Request: set the clock|to coordinator 1|12:34:56 25.09.2020, FRI|checksum F568, right");
    add("read the clock", "c186010001052be8", "Request: read the clock|to coordinator 1|checksum E82B, right");
    add("log, first", "c18601000106b0da",
        "Request: read a block of the log|to coordinator 1|the first block|checksum DAB0, right");
    add("log, next", "c186018001065cd6",
        "Request: read a block of the log|to coordinator 1|the next block|checksum D65C, right");
    add("log state", "c18601000206 00355a", "Request: read the state of the log|to coordinator 1|checksum 5A35, right");
    add("output, with an escape", "c1860100030107 00c002bb",
        "Request: read an output|to coordinator 1|terminal 7, output 0|checksum BBC2, right");
    add("broadcast", "c1860000030100 00e1f2", "Request: is anybody there?|to whoever is there|checksum F2E1, right");
    add("terminal", "c106010002340528 8d",
        "Request: which terminal is this, executive|to coordinator 1|terminal 5|checksum 8D28, right");
    add("wrong checksum", "c186010001052be9", "Request: read the clock|to coordinator 1|checksum E92B, WRONG");
    add("cut off", "c18601000105", "No request|too short");
    add("cut off in its data", "c1860100080556341225", "No request|incomplete");
    add("noise", "00010203", "No request|no start byte");
    add("start byte inside", "c186c10001052be8", "No request|too short");
    add("nothing", "", "No request|no bytes");
}

void tst_packetText::requestsAreToldInWords()
{
    QFETCH(QByteArray, request);
    QFETCH(QString, words);
    QCOMPARE(packettext::requestInWords(request).join(QLatin1Char('|')), words);
}

void tst_packetText::everyRequestIsRecognised()
{
    const QByteArray record = hex("0703020102");
    const QList<message> requests = {Protocol::requestSyncTime(1, hex("56341225050920")),
                                     Protocol::requestDeviceTime(1),
                                     Protocol::requestReadLog(1, true),
                                     Protocol::requestReadLog(1, false),
                                     Protocol::requestReadLogInfo(1),
                                     Protocol::requestWriteConfig(1, record),
                                     Protocol::requestWriteScript(1, record),
                                     Protocol::requestReadConfig(1, 0, 0),
                                     Protocol::requestReadScript(1, 31),
                                     Protocol::requestCheckCoordinator(8),
                                     Protocol::requestSearchCoordinator(),
                                     Protocol::requestBusyChannels(1, 0),
                                     Protocol::requestBusyChannels(1, 1),
                                     Protocol::requestBusyChannels(1, 2),
                                     Protocol::requestBusyChannels(1, 3),
                                     Protocol::requestBusyChannels(1, 4),
                                     Protocol::requestTerminalInfo(1, 0, 5),
                                     Protocol::requestTerminalInfo(1, 1, 5),
                                     Protocol::requestTerminalInfo(1, 2, 5),
                                     Protocol::requestTerminalInfo(1, 3, 5),
                                     Protocol::requestTerminalInfo(1, 4, 5),
                                     Protocol::requestSwitchToBoot(1)};
    for (const message& request : requests) {
        QByteArray frame;
        QCOMPARE(Protocol::cutFrame(request.request(), Protocol::requestStart, frame), PacketOk);
        QCOMPARE(Protocol::requestType(frame), request.requestType());
        const QStringList words = packettext::requestInWords(request.request());
        QVERIFY(words.last().endsWith(QLatin1String("right")));
        QVERIFY(!words.first().contains(QLatin1String("not known")));
        QCOMPARE(words.first(), QStringLiteral("Request: ") + protocol_HUBN_NX_Q::requestName(request.requestType()));
    }
    for (const int unknown : {-1, 0, 23, 1000}) {
        QCOMPARE(protocol_HUBN_NX_Q::requestName(unknown), QStringLiteral("not known"));
    }
    const QByteArray bytes = Protocol::requestBusyChannels(1, 9).request();
    QCOMPARE(packettext::requestInWords(bytes).constFirst(), QStringLiteral("No request"));
    QCOMPARE(Protocol::requestType(hex("c186010001992be8")), 0);
    QCOMPARE(Protocol::requestType(QByteArray()), 0);
}

void tst_packetText::answersAreToldInWords_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QByteArray>("request");
    QTest::addColumn<QString>("words");
    const QByteArray clock = Protocol::requestDeviceTime(1).request();
    const auto add = [](const char* name, const QByteArray& bytes, const QByteArray& request, const char* words) {
        // The checksum, whose value says nothing to a reader, is told by its verdict here.
        QTest::newRow(name) << bytes << request << QString::fromUtf8(words);
    };
    add("time", answer(0, hex("56341225050920")), clock,
        "Answer to: read the clock|from coordinator 1|accepted|12:34:56 25.09.2020, FRI|right");
    add("no clock", answer(3, {}), clock, "Answer to: read the clock|from coordinator 1|refused, code 3|right");
    add("log state", answer(0, hex("ff7f0280")), Protocol::requestReadLogInfo(1).request(),
        "Answer to: read the state of the log|from coordinator 1|accepted|capacity 32767, counter 2|right");
    add("coordinator", answer(0, hex("c14f0206")), Protocol::requestCheckCoordinator(1).request(),
        "Answer to: is the coordinator there?|from coordinator 1|accepted|serial number 20417, version 6.02|right");
    add("addresses", answer(0, hex("1180")), Protocol::requestBusyChannels(1, 2).request(),
        "Answer to: addresses in use, executive terminals|from coordinator 1|accepted|in use: 1, 5, 16|right");
    add("no addresses", answer(0, hex("0000")), Protocol::requestBusyChannels(1, 1).request(),
        "Answer to: addresses in use, sensors|from coordinator 1|accepted|in use: none|right");
    add("events", answer(0, QByteArray(32, '\1')), Protocol::requestReadLog(1, true).request(),
        "Answer to: read a block of the log|from coordinator 1|accepted|events: 2, data, 32 bytes: 01 01 01 01 01 01 "
        "01 01 01 01 01 01 01 01 01 01 01 01 01 01 01 01 01 01 01 01 01 01 01 01 01 01|right");
    add("to nothing known", answer(0, hex("c100")), {},
        "Answer|from coordinator 1|accepted|data, 2 bytes: c1 00|right");
    add("wrong checksum", hex("c206010001 00ffff"), clock,
        "Answer to: read the clock|from coordinator 1|accepted|"
        "--:--:-- --.--.----|WRONG");
    add("none", {}, clock, "No answer");
    add("cut off", hex("c2060100"), clock, "No answer that can be read|too short");
    add("noise", hex("ffff"), clock, "No answer that can be read|no start byte");
}

void tst_packetText::answersAreToldInWords()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QByteArray, request);
    QFETCH(QString, words);
    QStringList lines = packettext::answerInWords(bytes, request);
    if (lines.last().startsWith(QLatin1String("checksum"))) {
        lines.last() = lines.last().section(QLatin1Char(' '), -1);
    }
    QCOMPARE(lines.join(QLatin1Char('|')), words);
}

void tst_packetText::packetsOfTheBootloaderAreToldInWords()
{
    QByteArray packet = bootPacket("fa05010203");
    const QStringList request = packettext::requestInWords(packet);
    QCOMPARE(request.size(), 4);
    QCOMPARE(request.mid(0, 3), QStringList({QStringLiteral("Request to the bootloader"), QStringLiteral("code 01"),
                                             QStringLiteral("data, 2 bytes: 02 03")}));
    QVERIFY(request.last().endsWith(QLatin1String("right")));
    QCOMPARE(packettext::answerInWords(hex("00") + packet, packet).constFirst(),
             QStringLiteral("Answer of the bootloader"));
    packet[3] = 7;
    QVERIFY(packettext::requestInWords(packet).constLast().endsWith(QLatin1String("WRONG")));
    QCOMPARE(packettext::requestInWords(hex("fa0901")).constLast(), QStringLiteral("incomplete"));
    QCOMPARE(packettext::requestInWords(hex("fa")).constLast(), QStringLiteral("incomplete"));
    QCOMPARE(packettext::requestInWords(hex("fa0201")).constLast(), QStringLiteral("a length that can't be"));
    QCOMPARE(packettext::answerInWords(hex("0102"), packet).constLast(), QStringLiteral("no start byte"));
}

void tst_packetText::resultsOfTheBootloaderHaveAMeaning_data()
{
    QTest::addColumn<QByteArray>("packet");
    QTest::addColumn<QString>("words");
    QTest::newRow("accepted") << bootPacket("fa0300") << QStringLiteral("code 00, accepted");
    QTest::newRow("write error") << bootPacket("fa0301") << QStringLiteral("code 01, write error");
    QTest::newRow("accepted too") << bootPacket("fa0302") << QStringLiteral("code 02, accepted");
    QTest::newRow("first without a meaning") << bootPacket("fa0303") << QStringLiteral("code 03, not known");
    QTest::newRow("last without a meaning") << bootPacket("fa03ff") << QStringLiteral("code ff, not known");
}

void tst_packetText::resultsOfTheBootloaderHaveAMeaning()
{
    QFETCH(QByteArray, packet);
    QFETCH(QString, words);
    QCOMPARE(packettext::answerInWords(packet, hex("fa")).value(1), words);
    // In a request the same byte is a command.
    QCOMPARE(packettext::requestInWords(packet).value(1), words.section(QLatin1Char(','), 0, 0));
}

void tst_packetText::noBytesAreTooMuch()
{
    QRandomGenerator dice(1);
    const QByteArray starts = hex("c1c2fac006868001050607");
    for (int round = 0; round < 20000; ++round) {
        QByteArray bytes;
        QByteArray request;
        for (QByteArray* const array : {&bytes, &request}) {
            const int size = dice.bounded(24);
            for (int i = 0; i < size; ++i) {
                array->append(dice.bounded(2) == 0 ? starts.at(dice.bounded(starts.size()))
                                                   : static_cast<char>(dice.bounded(256)));
            }
        }
        QVERIFY(!packettext::requestInWords(request).isEmpty());
        QVERIFY(!packettext::answerInWords(bytes, request).isEmpty());
        // A sound frame of any body.
        QVERIFY(!packettext::answerInWords(answer(0, bytes), Protocol::requestReadLogInfo(1).request()).isEmpty());
        QVERIFY(!packettext::answerInWords(answer(0, bytes), Protocol::requestCheckCoordinator(1).request()).isEmpty());
        QVERIFY(!packettext::answerInWords(answer(0, bytes), Protocol::requestReadLog(1, true).request()).isEmpty());
        QVERIFY(!packettext::requestInWords(Protocol::requestWriteConfig(1, bytes).request()).isEmpty());
        QVERIFY(!packettext::requestInWords(Protocol::requestWriteScript(1, bytes).request()).isEmpty());
        QVERIFY(!packettext::requestInWords(Protocol::requestSyncTime(1, bytes).request()).isEmpty());
    }
}

void tst_packetText::textIsReadBack()
{
    QList<Packet> packets;
    QRandomGenerator dice(2);
    for (int i = 0; i < 200; ++i) {
        Packet packet;
        packet.time = QDateTime(QDate(2026, 3, 9), QTime(7, 5, 4, 12)).addMSecs(i * 137LL);
        packet.direction = i % 2 == 0 ? Packet::Request : Packet::Answer;
        const int size = dice.bounded(80);
        for (int byte = 0; byte < size; ++byte) {
            packet.bytes.append(static_cast<char>(dice.bounded(256)));
        }
        packets.append(packet);
    }
    packets[7].bytes.clear();
    const QString text = packettext::fromPackets(packets);
    QVERIFY(text.contains(QStringLiteral("\n2026-03-09 07:05:04.012  request  ")));
    QVERIFY(text.contains(QStringLiteral("\n2026-03-09 07:05:04.971  answer   -\n")));
    const std::optional<QList<Packet>> read = packettext::toPackets(text);
    QVERIFY(read.has_value());
    QCOMPARE(read->size(), packets.size());
    for (int i = 0; i < packets.size(); ++i) {
        QCOMPARE(read->at(i).time, packets.at(i).time);
        QCOMPARE(read->at(i).direction, packets.at(i).direction);
        QCOMPARE(read->at(i).bytes, packets.at(i).bytes);
    }
    QVERIFY(packettext::toPackets(QString())->isEmpty());
}

void tst_packetText::textOfAnEditorIsReadBack()
{
    const auto read =
        packettext::toPackets(QStringLiteral("# by hand\r\n\r\n  2026-03-09 07:05:04.012 request c1 86  \r\n"
                                             "# and more\r\n2026-03-09 07:05:05.000\tanswer\t-"));
    QVERIFY(read.has_value());
    QCOMPARE(read->size(), 2);
    QCOMPARE(read->first().bytes, hex("c186"));
    QCOMPARE(read->last().direction, Packet::Answer);
    QVERIFY(read->last().bytes.isEmpty());
}

void tst_packetText::faultyLineIsNamed_data()
{
    QTest::addColumn<QString>("line");
    QTest::newRow("no time") << QStringLiteral("request c1");
    QTest::newRow("no such day") << QStringLiteral("2026-02-30 07:05:04.012 request c1");
    QTest::newRow("no direction") << QStringLiteral("2026-03-09 07:05:04.012 c1");
    QTest::newRow("no bytes") << QStringLiteral("2026-03-09 07:05:04.012 request");
    QTest::newRow("half a byte") << QStringLiteral("2026-03-09 07:05:04.012 request c1 8");
    QTest::newRow("no number") << QStringLiteral("2026-03-09 07:05:04.012 request c1 zz");
}

void tst_packetText::faultyLineIsNamed()
{
    QFETCH(QString, line);
    int faulty = 0;
    const QString good = QStringLiteral("2026-03-09 07:05:04.012 request c1\n");
    QVERIFY(!packettext::toPackets(good + QLatin1Char('\n') + line + QLatin1Char('\n') + good, &faulty).has_value());
    QCOMPARE(faulty, 3);
    QVERIFY(!packettext::toPackets(line).has_value());
}

QTEST_GUILESS_MAIN(tst_packetText)

#include "tst_packetText.moc"
