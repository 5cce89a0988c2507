#include "Answers.h"
#include "link/message.h"
#include "link/protocol_HUBN_NX_Q.h"

#include <QtTest>

#include <functional>

namespace
{

using Edit = std::function<void(message&)>;

message answered()
{
    message mess;
    mess.setRequest("request");
    mess.setRequestType(12);
    mess.setRawAnswer("raw");
    mess.setPayload("payload");
    mess.setAnswerCode(0);
    mess.setParseStatus(PacketOk);
    mess.markTimedOut();
    mess.markPortFailed();
    return mess;
}

void compareCleared(const message& mess)
{
    QVERIFY(mess.rawAnswer().isEmpty());
    QVERIFY(mess.payload().isEmpty());
    QCOMPARE(mess.answerCode(), 14);
    QVERIFY(!mess.timedOut());
    QVERIFY(!mess.portFailed());
    QCOMPARE(mess.parseStatus(), 9);
    QCOMPARE(mess.request(), QByteArray("request"));
    QCOMPARE(mess.requestType(), 12);
}

} // namespace

Q_DECLARE_METATYPE(Edit)

class tst_message : public QObject
{
    Q_OBJECT

private slots:
    void startsWithItsDefaults();
    void keepsEveryField();
    void appendsReceivedBytes();
    void keepsNoMoreRoomThanAnAnswerNeeds();
    void isEmptyWithoutARequest();
    void isValidOnlyWithAGoodParse();
    void judgesAnswers_data();
    void judgesAnswers();
    void retryClearsTheAnswerAndTakesAnAttempt();
    void retryWithoutAttemptsStaysAtNone();
    void repeatKeepsThePayloadToCompareWith();
    void isConfirmedWithoutARepeatCheck();
    void isConfirmedByAnEqualPayload();
    void firstAnswerWithAPayloadIsNotConfirmed();
    void differsBy_data();
    void differsBy();
    void equalityIgnores_data();
    void equalityIgnores();
    void travelsThroughTheMetaTypeSystem();
};

void tst_message::startsWithItsDefaults()
{
    const message mess;
    QVERIFY(mess.request().isEmpty());
    QVERIFY(mess.rawAnswer().isEmpty());
    QCOMPARE(mess.bootType(), 0);
    QCOMPARE(mess.requestType(), 0);
    QCOMPARE(mess.answerCode(), 14);
    QVERIFY(mess.payload().isEmpty());
    QVERIFY(!mess.timedOut());
    QVERIFY(!mess.portFailed());
    QCOMPARE(mess.parseStatus(), int(PacketNotParsed));
    QCOMPARE(int(mess.attempts()), 3);
    QCOMPARE(int(mess.address()), 0);
    QCOMPARE(int(mess.number()), 0);
    QVERIFY(!mess.repeatCheck());
    QVERIFY(mess.repeatPayload().isEmpty());
    QCOMPARE(int(mess.priority()), 100);
    QCOMPARE(mess.baudrate(), 57600);
}

void tst_message::keepsEveryField()
{
    message mess;
    mess.setRequest("a");
    mess.setRawAnswer("b");
    mess.setBootType(5);
    mess.setRequestType(22);
    mess.setAnswerCode(-7);
    mess.setPayload("c");
    mess.markTimedOut();
    mess.markPortFailed();
    mess.setParseStatus(PacketBadCrc);
    mess.setAttempts(255);
    mess.setAddress(254);
    mess.setNumber(253);
    mess.markRepeatCheck();
    mess.setRepeatPayload("d");
    mess.setPriority(252);
    mess.setBaudrate(9600);

    const message copy = mess;
    QCOMPARE(copy.request(), QByteArray("a"));
    QCOMPARE(copy.rawAnswer(), QByteArray("b"));
    QCOMPARE(copy.bootType(), 5);
    QCOMPARE(copy.requestType(), 22);
    QCOMPARE(copy.answerCode(), -7);
    QCOMPARE(copy.payload(), QByteArray("c"));
    QVERIFY(copy.timedOut());
    QVERIFY(copy.portFailed());
    QCOMPARE(copy.parseStatus(), 8);
    QCOMPARE(int(copy.attempts()), 255);
    QCOMPARE(int(copy.address()), 254);
    QCOMPARE(int(copy.number()), 253);
    QVERIFY(copy.repeatCheck());
    QCOMPARE(copy.repeatPayload(), QByteArray("d"));
    QCOMPARE(int(copy.priority()), 252);
    QCOMPARE(copy.baudrate(), 9600);
}

void tst_message::appendsReceivedBytes()
{
    message mess;
    mess.appendRawAnswer("ab");
    mess.appendRawAnswer({});
    mess.appendRawAnswer("c");
    QCOMPARE(mess.rawAnswer(), QByteArray("abc"));
}

void tst_message::keepsNoMoreRoomThanAnAnswerNeeds()
{
    QByteArray asRead("ab");
    asRead.reserve(32768);
    message mess;
    mess.appendRawAnswer(asRead);
    QCOMPARE(mess.rawAnswer(), QByteArray("ab"));
    QVERIFY2(mess.rawAnswer().capacity() < 64, qPrintable(QString::number(mess.rawAnswer().capacity())));
}

void tst_message::isEmptyWithoutARequest()
{
    message mess;
    QVERIFY(mess.isEmpty());
    mess.setRequest(QByteArray(1, '\0'));
    QVERIFY(!mess.isEmpty());
}

void tst_message::isValidOnlyWithAGoodParse()
{
    message mess;
    for (int status = PacketOk; status <= PacketNotParsed; ++status) {
        mess.setParseStatus(status);
        QCOMPARE(mess.isValid(), status == 0);
    }
}

void tst_message::judgesAnswers_data()
{
    QTest::addColumn<message>("answer");
    QTest::addColumn<bool>("failed");
    const message request = protocol_HUBN_NX_Q::requestReadConfig(1, 0, 0);
    QTest::newRow("accepted") << answers::good(request) << false;
    QTest::newRow("never sent") << request << true;
    QTest::newRow("silence") << answers::timedOut(request) << true;
    QTest::newRow("port failed") << answers::portFailed(request) << true;
    QTest::newRow("damaged") << answers::damaged(request) << true;
    QTest::newRow("refused") << answers::refused(request, 1) << true;
    QTest::newRow("refused with a negative code") << answers::refused(request, -128) << true;
    QTest::newRow("code without a meaning") << answers::refused(request, message::noAnswerCode) << true;
    QTest::newRow("valid, but the port reported an error") << answers::portFailed(answers::good(request)) << true;
    QTest::newRow("valid, but too late") << answers::timedOut(answers::good(request)) << true;
}

void tst_message::judgesAnswers()
{
    QFETCH(message, answer);
    QTEST(answer.isErrorAnswer(), "failed");
}

void tst_message::retryClearsTheAnswerAndTakesAnAttempt()
{
    message mess = answered();
    mess.prepareRetry();
    compareCleared(mess);
    QCOMPARE(int(mess.attempts()), 2);
    QVERIFY(mess.hasAttempts());
}

void tst_message::retryWithoutAttemptsStaysAtNone()
{
    message mess = answered();
    mess.setAttempts(1);
    mess.prepareRetry();
    QCOMPARE(int(mess.attempts()), 0);
    QVERIFY(!mess.hasAttempts());
    mess.prepareRetry();
    QCOMPARE(int(mess.attempts()), 0);
}

void tst_message::repeatKeepsThePayloadToCompareWith()
{
    message mess = answered();
    mess.setAttempts(0);
    mess.prepareRepeat();
    compareCleared(mess);
    QVERIFY(mess.repeatCheck());
    QCOMPARE(mess.repeatPayload(), QByteArray("payload"));
    QCOMPARE(int(mess.attempts()), 3);
}

void tst_message::isConfirmedWithoutARepeatCheck()
{
    message mess = answered();
    QVERIFY(mess.isRepeatConfirmed());
    mess.setRepeatPayload("another");
    QVERIFY(mess.isRepeatConfirmed());
}

void tst_message::isConfirmedByAnEqualPayload()
{
    message mess = answered();
    mess.prepareRepeat();
    mess.setPayload("payload");
    QVERIFY(mess.isRepeatConfirmed());
    mess.setPayload("payloae");
    QVERIFY(!mess.isRepeatConfirmed());
    mess.setPayload("payload+");
    QVERIFY(!mess.isRepeatConfirmed());
    mess.setPayload({});
    QVERIFY(!mess.isRepeatConfirmed());
}

void tst_message::firstAnswerWithAPayloadIsNotConfirmed()
{
    message mess;
    mess.markRepeatCheck();
    QVERIFY(mess.isRepeatConfirmed());
    mess.setPayload("x");
    QVERIFY(!mess.isRepeatConfirmed());
}

void tst_message::differsBy_data()
{
    QTest::addColumn<Edit>("edit");
    QTest::newRow("request") << Edit([](message& m) { m.setRequest("other"); });
    QTest::newRow("received bytes") << Edit([](message& m) { m.appendRawAnswer("x"); });
    QTest::newRow("request type") << Edit([](message& m) { m.setRequestType(11); });
    QTest::newRow("boot type") << Edit([](message& m) { m.setBootType(1); });
    QTest::newRow("answer code") << Edit([](message& m) { m.setAnswerCode(3); });
    QTest::newRow("payload") << Edit([](message& m) { m.setPayload("x"); });
    QTest::newRow("timed out") << Edit([](message& m) { m.markTimedOut(); });
    QTest::newRow("port failed") << Edit([](message& m) { m.markPortFailed(); });
    QTest::newRow("parse status") << Edit([](message& m) { m.setParseStatus(PacketBadCrc); });
    QTest::newRow("attempts") << Edit([](message& m) { m.setAttempts(2); });
    QTest::newRow("retry") << Edit([](message& m) { m.prepareRetry(); });
}

void tst_message::differsBy()
{
    QFETCH(const Edit, edit);
    message mess;
    mess.setRequest("request");
    const message original = mess;
    QVERIFY(mess == original);
    edit(mess);
    QVERIFY(mess != original);
    QVERIFY(!(mess == original));
}

void tst_message::equalityIgnores_data()
{
    QTest::addColumn<Edit>("edit");
    QTest::newRow("address") << Edit([](message& m) { m.setAddress(9); });
    QTest::newRow("number") << Edit([](message& m) { m.setNumber(9); });
    QTest::newRow("repeat check") << Edit([](message& m) { m.markRepeatCheck(); });
    QTest::newRow("repeat payload") << Edit([](message& m) { m.setRepeatPayload("x"); });
    QTest::newRow("priority") << Edit([](message& m) { m.setPriority(50); });
    QTest::newRow("baud rate") << Edit([](message& m) { m.setBaudrate(9600); });
}

void tst_message::equalityIgnores()
{
    QFETCH(const Edit, edit);
    message mess;
    mess.setRequest("request");
    const message original = mess;
    edit(mess);
    QVERIFY(mess == original);
}

void tst_message::travelsThroughTheMetaTypeSystem()
{
    message mess = answered();
    const auto copy = QVariant::fromValue(mess).value<message>();
    QVERIFY(copy == mess);
}

QTEST_GUILESS_MAIN(tst_message)
#include "tst_message.moc"
