#include "Answers.h"
#include "link/StepOutcome.h"
#include "link/protocol_HUBN_NX_Q.h"

#include <QtTest>

class tst_StepOutcome : public QObject
{
    Q_OBJECT

private slots:
    void judgesAnswers_data();
    void judgesAnswers();
};

void tst_StepOutcome::judgesAnswers_data()
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

void tst_StepOutcome::judgesAnswers()
{
    QFETCH(message, answer);
    QTEST(step::isErrorAnswer(answer), "failed");
}

QTEST_GUILESS_MAIN(tst_StepOutcome)
#include "tst_StepOutcome.moc"
