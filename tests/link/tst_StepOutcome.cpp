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
    void namesFailedSteps_data();
    void namesFailedSteps();
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

void tst_StepOutcome::namesFailedSteps_data()
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
    QTest::newRow("a type that nobody has") << 99 << QStringLiteral("Error UNKNOWN COMMAND");
}

void tst_StepOutcome::namesFailedSteps()
{
    QFETCH(int, type);
    QTEST(QString::fromLatin1(step::failureLabel(type)), "label");
}

QTEST_GUILESS_MAIN(tst_StepOutcome)
#include "tst_StepOutcome.moc"
