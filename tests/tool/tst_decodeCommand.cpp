#include "ToolRun.h"
#include "link/packetText.h"
#include "link/protocol_HUBN_NX_Q.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QRandomGenerator>
#include <QtTest>

using Protocol = protocol_HUBN_NX_Q;

namespace
{

QString s(const char* text)
{
    return QString::fromUtf8(text);
}

const char* const readClock = "c1 86 01 00 01 05 2b e8";

/// The answer of coordinator 1 that accepts a request, as on the wire.
QByteArray accepted(const QByteArray& data)
{
    QByteArray frame = QByteArray::fromHex("c20601000000");
    frame[4] = char(data.size() + 1);
    frame += data;
    const int checksum = Protocol::crc16(frame);
    frame += char(checksum & 255);
    frame += char(checksum >> 8);
    return Protocol::stuffBytes(frame);
}

QString clockAnswer()
{
    return QString::fromLatin1(accepted(QByteArray::fromHex("56341225050920")).toHex(' '));
}

QByteArray bootPacket(const QByteArray& content)
{
    QByteArray packet = "\xFA" + QByteArray(1, char(content.size() + 2)) + content;
    const int checksum = Protocol::crc16(packet.mid(1));
    packet += char(checksum & 255);
    packet += char(checksum >> 8);
    return packet;
}

ToolRun decode(const QStringList& arguments)
{
    return ToolRun(QStringList{s("decode")} + arguments);
}

ToolRun decodeInput(const QByteArray& input, const QStringList& options = {})
{
    return ToolRun(QStringList{s("decode")} + options, false, input);
}

QJsonObject packetAt(const ToolRun& run, int index)
{
    return run.json().array().at(index).toObject();
}

} // namespace

class tst_decodeCommand : public QObject
{
    Q_OBJECT

private slots:
    void aRequestIsToldInWords_data();
    void aRequestIsToldInWords();
    void anAnswerMeansWhatTheRequestInFrontOfItAsks();
    void anAnswerAloneIsToldAsFarAsItCanBe();
    void jsonHasEachPart();
    void aWrongChecksumIsToldAndEndsWithErrors();
    void bytesThatAreNoPacketAreToldAndEndWithErrors();
    void whatIsNotHexadecimalIsNamedAndBadInput_data();
    void whatIsNotHexadecimalIsNamedAndBadInput();
    void linesOfTheInputArePackets();
    void aSavedFileIsRead();
    void copiedRowsAreRead();
    void aRowOfTimeDirectionAndBytesIsRead();
    void withTheBootloaderRequestsAndAnswersTakeTurns();
    void noPacketAtAllIsBadInput();
    void whoTypesIsToldHowToEnd();
    void whatTheLoggerHandsOnIsReadBackWhole();
    void everyByteIsTold();
};

void tst_decodeCommand::aRequestIsToldInWords_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::newRow("with blanks") << QStringList(s(readClock));
    QTest::newRow("without blanks") << QStringList(s("c186010001052be8"));
    QTest::newRow("in capitals") << QStringList(s("C186 0100 0105 2BE8"));
    QTest::newRow("a word for each byte") << s(readClock).split(QLatin1Char(' '));
    QTest::newRow("blanks around") << QStringList(s("  %1 \n").arg(s(readClock)));
}

void tst_decodeCommand::aRequestIsToldInWords()
{
    QFETCH(QStringList, arguments);
    const ToolRun run = decode(arguments);
    QCOMPARE(run.exitCode, ExitCode::Done);
    QCOMPARE(run.results, s("c1 86 01 00 01 05 2b e8\n"
                            "  Request: read the clock\n"
                            "  to coordinator 1\n"
                            "  checksum E82B, right\n"));
    QCOMPARE(run.errors, QString());
}

void tst_decodeCommand::anAnswerMeansWhatTheRequestInFrontOfItAsks()
{
    const ToolRun run = decode({s(readClock), clockAnswer()});
    QCOMPARE(run.exitCode, ExitCode::Done);
    const QStringList lines = run.results.split(QLatin1Char('\n'));
    QCOMPARE(lines.at(4), QString());
    QCOMPARE(lines.at(5), clockAnswer());
    QCOMPARE(lines.mid(6, 4), QStringList({s("  Answer to: read the clock"), s("  from coordinator 1"), s("  accepted"),
                                           s("  12:34:56 25.09.2020, FRI")}));
}

void tst_decodeCommand::anAnswerAloneIsToldAsFarAsItCanBe()
{
    const ToolRun run = decode({clockAnswer(), s("--json")});
    QCOMPARE(run.exitCode, ExitCode::Done);
    const QJsonObject packet = packetAt(run, 0);
    QCOMPARE(packet.value(s("direction")).toString(), s("answer"));
    QVERIFY(!packet.contains(s("type")));
    QCOMPARE(packet.value(s("address")).toInt(), 1);
    QCOMPARE(packet.value(s("fields")).toArray().at(1).toString(), s("data, 7 bytes: 56 34 12 25 05 09 20"));
}

void tst_decodeCommand::jsonHasEachPart()
{
    const ToolRun run = decode({s(readClock), clockAnswer(), s("--json")});
    QCOMPARE(run.json().array().size(), 2);
    QCOMPARE(packetAt(run, 0),
             (QJsonObject{{s("direction"), s("request")},
                          {s("bytes"), s(readClock)},
                          {s("bootloader"), false},
                          {s("address"), 1},
                          {s("type"), s("read the clock")},
                          {s("fields"), QJsonArray()},
                          {s("checksum"), s("right")},
                          {s("words"), QJsonArray({s("Request: read the clock"), s("to coordinator 1"),
                                                   s("checksum E82B, right")})}}));
    const QJsonObject answer = packetAt(run, 1);
    QCOMPARE(answer.value(s("direction")).toString(), s("answer"));
    QCOMPARE(answer.value(s("type")).toString(), s("read the clock"));
    QCOMPARE(answer.value(s("fields")).toArray(), QJsonArray({s("accepted"), s("12:34:56 25.09.2020, FRI")}));
    QCOMPARE(answer.value(s("checksum")).toString(), s("right"));
}

void tst_decodeCommand::aWrongChecksumIsToldAndEndsWithErrors()
{
    const ToolRun run = decode({s("c186010001052be9"), s(readClock)});
    QCOMPARE(run.exitCode, ExitCode::WithErrors);
    QVERIFY(run.results.contains(s("  checksum E92B, WRONG\n")));
    QVERIFY(run.results.contains(s("  checksum E82B, right\n")));
    QCOMPARE(packetAt(decode({s("c186010001052be9"), s("--json")}), 0).value(s("checksum")).toString(), s("wrong"));
}

void tst_decodeCommand::bytesThatAreNoPacketAreToldAndEndWithErrors()
{
    const ToolRun run = decode({s("00010203040506070809")});
    QCOMPARE(run.exitCode, ExitCode::WithErrors);
    QCOMPARE(run.results, s("00 01 02 03 04 05 06 07 08 09\n  No request\n  no start byte\n"));
    QVERIFY(!packetAt(decode({s("00010203"), s("--json")}), 0).contains(s("checksum")));
}

void tst_decodeCommand::whatIsNotHexadecimalIsNamedAndBadInput_data()
{
    QTest::addColumn<QString>("packet");
    QTest::newRow("words") << s("hello");
    QTest::newRow("half a byte") << s("c1 8");
    QTest::newRow("a blank within a byte") << s("c 18 60");
    QTest::newRow("a prefix") << s("0xc1");
    QTest::newRow("two letters") << s("zz");
    QTest::newRow("a row of something else") << s("a\tb\tc\td");
}

void tst_decodeCommand::whatIsNotHexadecimalIsNamedAndBadInput()
{
    QFETCH(QString, packet);
    const ToolRun run = decode({s(readClock), packet, s("c186010001052be9")});
    QCOMPARE(run.exitCode, ExitCode::BadInput);
    QVERIFY2(run.errors.contains(s("packet 2: \"%1\"").arg(packet)), qUtf8Printable(run.errors));
    // The others are told all the same.
    QCOMPARE(run.results.count(s("checksum")), 2);
    QCOMPARE(decode({packet}).exitCode, ExitCode::BadInput);
}

void tst_decodeCommand::linesOfTheInputArePackets()
{
    const ToolRun run =
        decodeInput(QByteArray(readClock) + "\r\n\n# a comment\n" + clockAnswer().toLatin1() + "\nno\n");
    QCOMPARE(run.exitCode, ExitCode::BadInput);
    QCOMPARE(run.results.count(s("checksum")), 2);
    QVERIFY(run.results.contains(s("12:34:56")));
    QCOMPARE(run.errors.count(QLatin1Char('\n')), 1);
    QVERIFY2(run.errors.contains(s("line 5: \"no\"")), qUtf8Printable(run.errors));
}

void tst_decodeCommand::aSavedFileIsRead()
{
    const QDateTime time(QDate(2026, 11, 22), QTime(10, 11, 12, 13));
    const QByteArray request = QByteArray::fromHex(readClock);
    const QString file = packettext::fromPackets({{time, Packet::Request, request},
                                                  {time.addMSecs(5), Packet::Answer, {}},
                                                  {time.addMSecs(9), Packet::Request, request},
                                                  {time.addMSecs(19), Packet::Answer, request}});
    const ToolRun run = decodeInput(file.toUtf8());
    QCOMPARE(run.exitCode, ExitCode::WithErrors); // a request where an answer should be
    const QStringList lines = run.results.split(QLatin1Char('\n'));
    QCOMPARE(lines.at(0), s("2026-11-22 10:11:12.013  ") + s(readClock));
    QCOMPARE(lines.mid(5, 2), QStringList({s("2026-11-22 10:11:12.018  -"), s("  No answer")}));
    QVERIFY(run.results.contains(s("No answer that can be read")));

    const ToolRun json = decodeInput(file.toUtf8(), {s("--json")});
    QCOMPARE(json.json().array().size(), 4);
    QCOMPARE(packetAt(json, 0).value(s("time")).toString(), s("2026-11-22 10:11:12.013"));
    QCOMPARE(packetAt(json, 1).value(s("direction")).toString(), s("answer"));
    QVERIFY(!packetAt(json, 1).contains(s("checksum")));
}

void tst_decodeCommand::copiedRowsAreRead()
{
    const QString rows = s("Time of request\tRequest\tTime of answer\tAnswer\n"
                           "22/11/26 10:11:12:013\t%1 \t22/11/26 10:11:12:033\t%2 \n"
                           "22/11/26 10:11:11:013\t%1 \t22/11/26 10:11:12:000\t-----<No answer>-----\n"
                           "22/11/26 10:11:10:013\t%1 \t\t\n"
                           "\t\t22/11/26 10:11:09:000\t%2 \n"
                           "\t\t\t\n")
                             .arg(s(readClock), clockAnswer());
    const ToolRun run = decodeInput(rows.toUtf8(), {s("--json")});
    QCOMPARE(run.exitCode, ExitCode::Done);
    QCOMPARE(run.json().array().size(), 6);
    QCOMPARE(packetAt(run, 0).value(s("time")).toString(), s("22/11/26 10:11:12:013"));
    QCOMPARE(packetAt(run, 1).value(s("time")).toString(), s("22/11/26 10:11:12:033"));
    QCOMPARE(packetAt(run, 1).value(s("type")).toString(), s("read the clock"));
    QCOMPARE(packetAt(run, 3).value(s("words")).toArray(), QJsonArray({s("No answer")}));
    QCOMPARE(packetAt(run, 5).value(s("direction")).toString(), s("answer"));
}

void tst_decodeCommand::aRowOfTimeDirectionAndBytesIsRead()
{
    const ToolRun run = decodeInput(
        s("10:11\trequest\t%1\n10:12\tanswer\t%2\n10:13\tanswer\t-\n").arg(s(readClock), clockAnswer()).toUtf8(),
        {s("--json")});
    QCOMPARE(run.exitCode, ExitCode::Done);
    QCOMPARE(run.json().array().size(), 3);
    QCOMPARE(packetAt(run, 1).value(s("direction")).toString(), s("answer"));
    QCOMPARE(packetAt(run, 1).value(s("time")).toString(), s("10:12"));
    QCOMPARE(packetAt(run, 2).value(s("words")).toArray(), QJsonArray({s("No answer")}));
}

void tst_decodeCommand::withTheBootloaderRequestsAndAnswersTakeTurns()
{
    const QString packet = QString::fromLatin1(bootPacket(QByteArray::fromHex("0102")).toHex());
    const ToolRun run = decode({packet, packet, packet, s("--json")});
    QCOMPARE(run.exitCode, ExitCode::Done);
    QStringList directions;
    for (int i = 0; i < 3; ++i) {
        QVERIFY(packetAt(run, i).value(s("bootloader")).toBool());
        QCOMPARE(packetAt(run, i).value(s("checksum")).toString(), s("right"));
        QVERIFY(!packetAt(run, i).value(s("fields")).toArray().isEmpty());
        directions.append(packetAt(run, i).value(s("direction")).toString());
    }
    QCOMPARE(directions, QStringList({s("request"), s("answer"), s("request")}));
    const ToolRun wrong = decode({packet.left(packet.size() - 2) + s("00")});
    QCOMPARE(wrong.exitCode, ExitCode::WithErrors);
    QVERIFY(wrong.results.contains(s("WRONG")));
}

void tst_decodeCommand::noPacketAtAllIsBadInput()
{
    for (const QByteArray& input : {QByteArray(), QByteArray("\n# nothing\n")}) {
        const ToolRun run = decodeInput(input);
        QCOMPARE(run.exitCode, ExitCode::BadInput);
        QVERIFY(run.errors.contains(s("no packet is given")));
    }
}

void tst_decodeCommand::whoTypesIsToldHowToEnd()
{
    const QString note = s("reading packets from the standard input; end with Ctrl+D\n");
    QCOMPARE(ToolRun({s("decode")}, true, readClock, true).errors, note);
    QCOMPARE(ToolRun({s("decode")}, true, readClock, false).errors, QString());
    QCOMPARE(ToolRun({s("decode"), s(readClock)}, true, {}, true).errors, QString());
}

void tst_decodeCommand::whatTheLoggerHandsOnIsReadBackWhole()
{
    QRandomGenerator random(1);
    QList<Packet> packets;
    for (int i = 0; i < 300; ++i) {
        QByteArray bytes(int(random.bounded(40)), '\0');
        for (char& byte : bytes) {
            byte = char(random.bounded(256));
        }
        packets.append({QDateTime(QDate(2026, 1, 1), QTime(1, 2, 3, i)),
                        bytes.isEmpty() || i % 2 != 0 ? Packet::Answer : Packet::Request, bytes});
    }
    const ToolRun run = decodeInput(packettext::fromPackets(packets).toUtf8(), {s("--json")});
    QCOMPARE(run.json().array().size(), packets.size());
    for (int i = 0; i < packets.size(); ++i) {
        QCOMPARE(packetAt(run, i).value(s("bytes")).toString(), QString::fromLatin1(packets.at(i).bytes.toHex(' ')));
        QCOMPARE(packetAt(run, i).value(s("direction")).toString() == s("request"),
                 packets.at(i).direction == Packet::Request);
    }
}

void tst_decodeCommand::everyByteIsTold()
{
    // Whatever bytes these are, there are words for them.
    QRandomGenerator random(2);
    const QByteArray starts = QByteArray::fromHex("c1c2fac006868001050607");
    for (int round = 0; round < 2000; ++round) {
        QByteArray bytes(1 + int(random.bounded(30)), '\0');
        for (char& byte : bytes) {
            byte = random.bounded(2) == 0 ? starts.at(int(random.bounded(starts.size()))) : char(random.bounded(256));
        }
        const ToolRun run = decodeInput(bytes.toHex() + '\n' + bytes.toHex() + '\n');
        QVERIFY(run.exitCode == ExitCode::Done || run.exitCode == ExitCode::WithErrors);
        QVERIFY(run.results.count(QLatin1Char('\n')) >= 5);
    }
}

QTEST_GUILESS_MAIN(tst_decodeCommand)
#include "tst_decodeCommand.moc"
