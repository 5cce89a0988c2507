#include "firmware/protocol_boot.h"
#include "support/AnswerFrames.h"

#include <QRandomGenerator>
#include <QtTest>

using frames::hex;

namespace
{

QByteArray randomImage(int size)
{
    QRandomGenerator random(quint32(size) + 1);
    QByteArray image(size, '\0');
    for (char& byte : image) {
        byte = char(random.bounded(256));
    }
    return image;
}

QByteArray packet(const QByteArray& commandAndData)
{
    QByteArray checked;
    checked.append(char(commandAndData.size() + 2));
    return '\xFA' + frames::withChecksum(checked + commandAndData);
}

message parsed(const QByteArray& received)
{
    message mess;
    mess.setBootType(protocol_boot::StartLoading);
    mess.setRawAnswer(received);
    return protocol_boot::parseAnswer(mess);
}

QList<message> sequence(const QByteArray& image)
{
    protocol_boot protocol;
    protocol.setFirmware(image);
    QList<message> result;
    while (protocol.hasRequests()) {
        const int left = protocol.requestCount();
        result.append(protocol.takeNextRequest());
        if (protocol.requestCount() != left - 1) {
            return {};
        }
    }
    return result;
}

} // namespace

class tst_protocol_boot : public QObject
{
    Q_OBJECT

private slots:
    void workedPackets();
    void sequenceOfTypes_data();
    void sequenceOfTypes();
    void imageArrivesWhole_data();
    void imageArrivesWhole();
    void blockNumberWraps();
    void requestsLeaveTheDeviceTypeAlone();
    void smallImageIsRefused_data();
    void smallImageIsRefused();
    void sequenceStartsAnew();
    void withoutAnImageTheHeadIsErased();
    void nothingLeftGivesADefaultMessage();
    void parsing_data();
    void parsing();
    void failedParseLeavesCodeAndPayload();
    void randomBytesNeverPass();
};

void tst_protocol_boot::workedPackets()
{
    const QList<message> requests = sequence(hex("123456"));
    QCOMPARE(requests.at(0).request(), hex("FA0302C2F9"));
    QCOMPARE(requests.at(1).request(), hex("FA03034BE8"));
    QCOMPARE(requests.at(2).request(), hex("FA0504123491DF"));
    QCOMPARE(requests.constLast().request(), hex("FA030159CB"));
}

void tst_protocol_boot::sequenceOfTypes_data()
{
    QTest::addColumn<int>("size");
    QTest::addColumn<int>("fullBlocks");
    QTest::addColumn<int>("rest");
    QTest::newRow("the smallest image") << 3 << 0 << 1;
    QTest::newRow("a block but one byte") << 129 << 0 << 127;
    QTest::newRow("one block and an empty one") << 130 << 1 << 0;
    QTest::newRow("one block and a byte") << 131 << 1 << 1;
    QTest::newRow("two blocks and an empty one") << 258 << 2 << 0;
    QTest::newRow("all block numbers, the empty one wraps") << 32770 << 256 << 0;
    QTest::newRow("the last byte in the wrapped block") << 32771 << 256 << 1;
    QTest::newRow("a usual image") << 200000 << 1562 << 62;
}

void tst_protocol_boot::sequenceOfTypes()
{
    QFETCH(const int, size);
    QFETCH(const int, fullBlocks);
    QFETCH(const int, rest);
    const QList<message> requests = sequence(randomImage(size));
    QCOMPARE(requests.size(), fullBlocks + 5);
    for (int i = 0; i < requests.size(); ++i) {
        const int expected = i < 3 ? i + 2 : i < fullBlocks + 3 ? 5 : i == fullBlocks + 3 ? 6 : 1;
        QCOMPARE(requests.at(i).bootType(), expected);
    }
    const QByteArray last = requests.at(requests.size() - 2).request();
    QCOMPARE(int(quint8(last.at(1))), rest + 4);
    QCOMPARE(last.size(), rest + 6);
    QCOMPARE(quint8(last.at(3)), quint8(fullBlocks));
}

void tst_protocol_boot::imageArrivesWhole_data()
{
    QTest::addColumn<int>("size");
    for (const int size : {3, 4, 129, 130, 131, 132, 258, 32770, 32771, 200000, 8 * 1024 * 1024}) {
        QTest::addRow("%d bytes", size) << size;
    }
}

void tst_protocol_boot::imageArrivesWhole()
{
    QFETCH(const int, size);
    const QByteArray image = randomImage(size);
    const QList<message> requests = sequence(image);
    QByteArray arrived;
    int number = 0;
    for (const message& request : requests) {
        const QByteArray bytes = request.request();
        // Each is a good packet of its command.
        const int command = request.bootType() == 6 ? 5 : request.bootType();
        QVERIFY(bytes == packet(bytes.mid(2, bytes.size() - 4)));
        QCOMPARE(int(bytes.at(2)), command);
        if (request.bootType() == 4) {
            arrived.append(bytes.mid(3, 2));
        } else if (command == 5) {
            QCOMPARE(quint8(bytes.at(3)), quint8(number++));
            arrived.append(bytes.mid(4, bytes.size() - 6));
        } else {
            QCOMPARE(bytes.size(), 5);
        }
    }
    QVERIFY(arrived == image);
}

void tst_protocol_boot::blockNumberWraps()
{
    const QList<message> requests = sequence(randomImage(32771));
    QCOMPARE(quint8(requests.at(3).request().at(3)), quint8(0));
    QCOMPARE(quint8(requests.at(3 + 255).request().at(3)), quint8(255));
    QCOMPARE(quint8(requests.at(3 + 256).request().at(3)), quint8(0));
    QCOMPARE(requests.at(3 + 255).bootType(), 5);
    QCOMPARE(requests.at(3 + 256).bootType(), 6);
}

void tst_protocol_boot::requestsLeaveTheDeviceTypeAlone()
{
    const QList<message> requests = sequence(randomImage(300));
    for (const message& request : requests) {
        QCOMPARE(request.requestType(), 0);
        QCOMPARE(request.baudrate(), 57600);
        QCOMPARE(int(request.attempts()), 3);
        QCOMPARE(int(request.priority()), 100);
        QVERIFY(!request.repeatCheck());
    }
}

void tst_protocol_boot::smallImageIsRefused_data()
{
    QTest::addColumn<QByteArray>("image");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("one byte") << QByteArray("1");
    QTest::newRow("two bytes") << QByteArray("12");
}

void tst_protocol_boot::smallImageIsRefused()
{
    QFETCH(const QByteArray, image);
    protocol_boot protocol;
    protocol.setFirmware(image);
    QVERIFY(!protocol.hasRequests());
    // Nor is anything left of an image that was there before.
    protocol.setFirmware(randomImage(300));
    QVERIFY(protocol.hasRequests());
    protocol.setFirmware(image);
    QVERIFY(!protocol.hasRequests());
}

void tst_protocol_boot::sequenceStartsAnew()
{
    const QByteArray image = randomImage(500);
    protocol_boot protocol;
    protocol.setFirmware(image);
    const int count = protocol.requestCount();
    const message first = protocol.takeNextRequest();
    protocol.takeNextRequest();
    protocol.takeNextRequest();
    const message block = protocol.takeNextRequest();
    protocol.setFirmware(image);
    QCOMPARE(protocol.requestCount(), count);
    QVERIFY(protocol.takeNextRequest() == first);
    protocol.buildRequests();
    QCOMPARE(protocol.requestCount(), count);
    for (int i = 0; i < 3; ++i) {
        protocol.takeNextRequest();
    }
    QVERIFY(protocol.takeNextRequest() == block);
}

void tst_protocol_boot::withoutAnImageTheHeadIsErased()
{
    protocol_boot protocol;
    protocol.buildRequests();
    QCOMPARE(protocol.requestCount(), 5);
    protocol.takeNextRequest();
    protocol.takeNextRequest();
    QCOMPARE(protocol.takeNextRequest().request(), packet(hex("04FFFF")));
    QCOMPARE(protocol.takeNextRequest().request(), packet(hex("0500")));
    QCOMPARE(protocol.takeNextRequest().request(), packet(hex("01")));
}

void tst_protocol_boot::nothingLeftGivesADefaultMessage()
{
    protocol_boot protocol;
    QVERIFY(!protocol.hasRequests());
    QCOMPARE(protocol.requestCount(), 0);
    QVERIFY(protocol.takeNextRequest() == message());
}

void tst_protocol_boot::parsing_data()
{
    QTest::addColumn<QByteArray>("received");
    QTest::addColumn<int>("status");
    QTest::addColumn<int>("code");
    QTest::addColumn<QByteArray>("payload");

    const auto valid = [](const char* name, const QByteArray& received, int code, const QByteArray& payload = {}) {
        QTest::newRow(name) << received << 0 << code << payload;
    };
    const auto bad = [](const char* name, const QByteArray& received, int status) {
        QTest::newRow(name) << received << status << 14 << QByteArray();
    };
    valid("accepted", packet(hex("00")), 0);
    valid("result 2 is accepted", packet(hex("02")), 1);
    valid("result 1 is a write error", packet(hex("01")), 2);
    valid("result 3 is a refusal", packet(hex("03")), 14);
    valid("result 0xFF is a refusal", packet(hex("FF")), 14);
    valid("data", packet(hex("00FA0102")), 0, hex("FA0102"));
    valid("the longest packet", packet(hex("00") + QByteArray(252, 'x')), 0, QByteArray(252, 'x'));
    valid("noise before it", hex("00112233") + packet(hex("00")), 0);
    valid("bytes after it", packet(hex("00")) + hex("FA99"), 0);
    valid("the first of two counts", packet(hex("01")) + packet(hex("00")), 2);
    valid("start at index 254", QByteArray(254, '\0') + packet(hex("00")), 0);

    const QByteArray good = packet(hex("0001"));
    bad("nothing received", {}, PacketEmpty);
    bad("no start byte", hex("030002C2F9"), PacketNoStart);
    bad("start at index 255", QByteArray(255, '\0') + packet(hex("00")), PacketNoStart);
    bad("start beyond index 255", QByteArray(300, '\0') + packet(hex("00")), PacketNoStart);
    bad("a lone start byte", hex("FA"), PacketIncomplete);
    bad("noise that looks like a start", hex("FAF0") + good, PacketIncomplete);
    for (int size = 2; size < good.size(); ++size) {
        bad(QByteArray("cut off after " + QByteArray::number(size)).constData(), good.left(size), PacketIncomplete);
    }
    bad("length 2", hex("FA02000000"), PacketBadLength);
    bad("length 0", hex("FA00000000"), PacketBadLength);
    bad("length 2, cut off", hex("FA0200"), PacketIncomplete);
    bad("damaged result", QByteArray(good).replace(2, 1, "\x05"), PacketBadCrc);
    bad("damaged checksum", QByteArray(good).replace(good.size() - 1, 1, "\x77"), PacketBadCrc);
}

void tst_protocol_boot::parsing()
{
    QFETCH(const QByteArray, received);
    const message mess = parsed(received);
    QTEST(mess.parseStatus(), "status");
    QTEST(mess.answerCode(), "code");
    QTEST(mess.payload(), "payload");
    QCOMPARE(mess.rawAnswer(), received);
}

void tst_protocol_boot::failedParseLeavesCodeAndPayload()
{
    message mess;
    mess.setAnswerCode(1);
    mess.setPayload("old");
    mess.setRawAnswer(hex("FA"));
    mess = protocol_boot::parseAnswer(mess);
    QCOMPARE(mess.answerCode(), 1);
    QCOMPARE(mess.payload(), QByteArray("old"));
}

void tst_protocol_boot::randomBytesNeverPass()
{
    QRandomGenerator random(1);
    for (int i = 0; i < 100000; ++i) {
        // A good packet with damage of one byte never passes for it.
        QByteArray received = packet(QByteArray(1 + random.bounded(8), char(random.bounded(256))));
        const int at = random.bounded(received.size());
        received[at] = char(received.at(at) ^ (1 + random.bounded(255)));
        if (random.bounded(2) == 0) {
            received.truncate(1 + random.bounded(received.size()));
        }
        const message mess = parsed(received);
        QVERIFY2(!mess.isValid(), received.toHex().constData());
    }
}

QTEST_GUILESS_MAIN(tst_protocol_boot)
#include "tst_protocol_boot.moc"
