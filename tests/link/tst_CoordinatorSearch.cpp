#include "Answers.h"
#include "link/CoordinatorSearch.h"
#include "link/protocol_HUBN_NX_Q.h"

#include <QtTest>

using Verdict = CoordinatorSearch::Verdict;
using Step = CoordinatorSearch::Step;

class tst_CoordinatorSearch : public QObject
{
    Q_OBJECT

private slots:
    void beginsWithABroadcastAt57600();
    void goesOnAt9600AfterSilence();
    void isOverAfterSilenceAtBothRates();
    void takesAnyByteForALivingRate_data();
    void takesAnyByteForALivingRate();
    void triesTheAddressesFromOneToEight();
    void endsNamelessAfterAddressEight_data();
    void endsNamelessAfterAddressEight();
    void findsACoordinatorAtAddressEight();
    void readsWhoAnswered_data();
    void readsWhoAnswered();
    void takesTheAddressFromTheThirdByteReceived();
    void checksWithASearchOfAnotherType();
};

void tst_CoordinatorSearch::beginsWithABroadcastAt57600()
{
    const message request = CoordinatorSearch::begin();
    QCOMPARE(request.request(), protocol_HUBN_NX_Q::requestSearchCoordinator().request());
    QCOMPARE(request.requestType(), int(protocol_HUBN_NX_Q::Search_Broadcast));
    QCOMPARE(request.baudrate(), 57600);
}

void tst_CoordinatorSearch::goesOnAt9600AfterSilence()
{
    const Step step = CoordinatorSearch::next(answers::timedOut(CoordinatorSearch::begin()));
    QVERIFY(step.verdict == Verdict::Going);
    QCOMPARE(step.request.requestType(), int(protocol_HUBN_NX_Q::Search_Broadcast));
    QCOMPARE(step.request.baudrate(), 9600);
    // A fresh request, not the one that failed.
    QVERIFY(!step.request.timedOut());
}

void tst_CoordinatorSearch::isOverAfterSilenceAtBothRates()
{
    message request = CoordinatorSearch::begin();
    request.setBaudrate(9600);
    QVERIFY(CoordinatorSearch::next(answers::timedOut(request)).verdict == Verdict::Silent);
    QVERIFY(CoordinatorSearch::next(answers::portFailed(request)).verdict == Verdict::Silent);
}

void tst_CoordinatorSearch::takesAnyByteForALivingRate_data()
{
    QTest::addColumn<message>("answer");
    message at9600 = CoordinatorSearch::begin();
    at9600.setBaudrate(9600);
    QTest::newRow("good at 57600") << answers::good(CoordinatorSearch::begin());
    QTest::newRow("good at 9600") << answers::good(at9600);
    QTest::newRow("damaged") << answers::damaged(CoordinatorSearch::begin());
    QTest::newRow("refused at 9600") << answers::refused(at9600, 2);
}

void tst_CoordinatorSearch::takesAnyByteForALivingRate()
{
    QFETCH(message, answer);
    const Step step = CoordinatorSearch::next(answer);
    QVERIFY(step.verdict == Verdict::Going);
    QCOMPARE(step.request.request(), protocol_HUBN_NX_Q::requestCheckCoordinator(1).request());
    QCOMPARE(step.request.requestType(), int(protocol_HUBN_NX_Q::Search_Address));
    QCOMPARE(int(step.request.address()), 1);
    QCOMPARE(step.request.baudrate(), answer.baudrate());
}

void tst_CoordinatorSearch::triesTheAddressesFromOneToEight()
{
    message broadcast = CoordinatorSearch::begin();
    broadcast.setBaudrate(9600);
    Step step = CoordinatorSearch::next(answers::good(broadcast));
    for (quint8 address = 1; address <= 8; ++address) {
        QVERIFY(step.verdict == Verdict::Going);
        QCOMPARE(step.request.request(), protocol_HUBN_NX_Q::requestCheckCoordinator(address).request());
        QCOMPARE(int(step.request.address()), int(address));
        QCOMPARE(step.request.baudrate(), 9600);
        QCOMPARE(int(step.request.attempts()), 3);
        step = CoordinatorSearch::next(answers::timedOut(step.request));
    }
    QVERIFY(step.verdict == Verdict::Nameless);
}

void tst_CoordinatorSearch::endsNamelessAfterAddressEight_data()
{
    QTest::addColumn<message>("answer");
    message request = protocol_HUBN_NX_Q::requestCheckCoordinator(8);
    request.setAddress(8);
    QTest::newRow("silence") << answers::timedOut(request);
    QTest::newRow("port failed") << answers::portFailed(request);
    QTest::newRow("refused") << answers::refused(request, 1);
    QTest::newRow("damaged") << answers::damaged(request);
}

void tst_CoordinatorSearch::endsNamelessAfterAddressEight()
{
    QFETCH(message, answer);
    QVERIFY(CoordinatorSearch::next(answer).verdict == Verdict::Nameless);
}

void tst_CoordinatorSearch::findsACoordinatorAtAddressEight()
{
    message request = protocol_HUBN_NX_Q::requestCheckCoordinator(8);
    request.setAddress(8);
    const Step step = CoordinatorSearch::next(answers::good(request, QByteArray::fromHex("67120206"), 8));
    QVERIFY(step.verdict == Verdict::Found);
    QCOMPARE(int(step.coordinator.address), 8);
    QCOMPARE(int(step.coordinator.serial), 4711);
    QCOMPARE(step.coordinator.versionText(), QStringLiteral("6.02"));
}

void tst_CoordinatorSearch::readsWhoAnswered_data()
{
    QTest::addColumn<QByteArray>("payload");
    QTest::addColumn<int>("serial");
    QTest::addColumn<QString>("version");
    QTest::newRow("whole") << QByteArray::fromHex("ffff0a0c") << 65535 << QStringLiteral("12.10");
    QTest::newRow("longer than needed") << QByteArray::fromHex("010063ff0505") << 1 << QStringLiteral("255.99");
    QTest::newRow("large minor part") << QByteArray::fromHex("0100ff01") << 1 << QStringLiteral("1.255");
    QTest::newRow("half a version") << QByteArray::fromHex("341205") << 0x1234 << QStringLiteral("0.00");
    QTest::newRow("serial number only") << QByteArray::fromHex("3412") << 0x1234 << QStringLiteral("0.00");
    QTest::newRow("half a serial number") << QByteArray::fromHex("34") << 0 << QStringLiteral("0.00");
    QTest::newRow("nothing") << QByteArray() << 0 << QStringLiteral("0.00");
}

void tst_CoordinatorSearch::readsWhoAnswered()
{
    QFETCH(QByteArray, payload);
    const message answer = answers::good(protocol_HUBN_NX_Q::requestCheckCoordinator(5), payload, 5);
    const CoordinatorInfo info = CoordinatorInfo::fromAnswer(answer);
    QCOMPARE(int(info.address), 5);
    QTEST(int(info.serial), "serial");
    QTEST(info.versionText(), "version");
}

void tst_CoordinatorSearch::takesTheAddressFromTheThirdByteReceived()
{
    message answer = answers::good(protocol_HUBN_NX_Q::requestCheckCoordinator(5), {}, 5);
    answer.setRawAnswer(QByteArray::fromHex("010203") + answer.rawAnswer());
    QCOMPARE(int(CoordinatorInfo::fromAnswer(answer).address), 3);
}

void tst_CoordinatorSearch::checksWithASearchOfAnotherType()
{
    const message check = CoordinatorSearch::check(7, 9600);
    QCOMPARE(check.request(), protocol_HUBN_NX_Q::requestCheckCoordinator(7).request());
    QCOMPARE(check.requestType(), int(protocol_HUBN_NX_Q::Check_Coordinator));
    QCOMPARE(check.baudrate(), 9600);
    QCOMPARE(int(check.priority()), 50);
    QVERIFY(CoordinatorSearch::isPresent(answers::good(check)));
    QVERIFY(!CoordinatorSearch::isPresent(answers::timedOut(check)));
    QVERIFY(!CoordinatorSearch::isPresent(answers::refused(check, 4)));
}

QTEST_GUILESS_MAIN(tst_CoordinatorSearch)
#include "tst_CoordinatorSearch.moc"
