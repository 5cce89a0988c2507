#include "texts/texts.h"
#include "ui/window/resultLine.h"

#include <QtTest>

namespace
{

QString twoLines(const QString& first, const QString& second)
{
    return first + QLatin1Char('\n') + second;
}

QString counted(const QString& text, int errors)
{
    return text + texts::resultErrorCount() + QString::number(errors) + QLatin1Char(')');
}

} // namespace

class tst_resultLine : public QObject
{
    Q_OBJECT

private slots:
    void decides_data();
    void decides();
    void theEndOfTheChainIsSwallowedOnce();
};

void tst_resultLine::decides_data()
{
    QTest::addColumn<QString>("message");
    QTest::addColumn<QString>("shown");
    QTest::addColumn<bool>("chain");
    QTest::addColumn<QString>("expected"); // null: the line stays
    QTest::addColumn<bool>("chainAfter");

    const QString defaults = texts::resultDefaultsStarted();
    const QString written = twoLines(texts::resultWriteOutputsOk(), texts::resultWriteScriptsOk());
    const QString outputsFailed =
        twoLines(counted(texts::resultWriteOutputsErrors(), 3), texts::resultWriteScriptsOk());
    const QString scriptsFailed =
        twoLines(texts::resultWriteOutputsOk(), counted(texts::resultWriteScriptsErrors(), 1));
    const QString bothFailed =
        twoLines(counted(texts::resultWriteOutputsErrors(), 70), counted(texts::resultWriteScriptsErrors(), 32));
    const QString logFailed = texts::resultLogError();
    const QString logCounted = counted(texts::resultLogErrors(), 2);
    const QString logRead = texts::resultLogOk();

    QTest::newRow("any other text is shown") << "anything"
                                             << "before" << false << "anything" << false;
    QTest::newRow("an empty text empties the line") << ""
                                                    << "before" << false << "" << false;

    QTest::newRow("the start of writing is not told while default settings are loaded")
        << texts::resultWriteStarted() << defaults << false << QString() << false;
    QTest::newRow("the start of writing is told otherwise")
        << texts::resultWriteStarted() << "before" << false << texts::resultWriteStarted() << false;
    QTest::newRow("default settings written whole")
        << written << defaults << false << texts::resultDefaultsOk() << false;
    QTest::newRow("a writing of the user is told as it is") << written << "before" << false << written << false;
    QTest::newRow("one of the two successes alone is no success of the default settings")
        << texts::resultWriteOutputsOk() << defaults << false << texts::resultWriteOutputsOk() << false;
    QTest::newRow("default settings with failed outputs")
        << outputsFailed << defaults << false << texts::resultDefaultsError() << false;
    QTest::newRow("default settings with failed scripts")
        << scriptsFailed << defaults << false << texts::resultDefaultsError() << false;
    QTest::newRow("default settings with both failed")
        << bothFailed << defaults << false << texts::resultDefaultsError() << false;
    QTest::newRow("a failed writing of the user is told as it is")
        << outputsFailed << "before" << false << outputsFailed << false;

    QTest::newRow("chain: log not read") << logFailed << "scripts" << true << QString() << false;
    QTest::newRow("chain: log read with errors") << logCounted << "scripts" << true << QString() << false;
    QTest::newRow("chain: log read") << logRead << "scripts" << true << QString() << false;
    QTest::newRow("chain: the start of the log reading is shown and the chain goes on")
        << texts::resultLogStarted() << "scripts" << true << texts::resultLogStarted() << true;
    QTest::newRow("chain: an unchanged log is shown and doesn't end it")
        << texts::resultLogUnchanged() << "scripts" << true << texts::resultLogUnchanged() << true;
    QTest::newRow("by hand: log not read") << logFailed << "before" << false << logFailed << false;
    QTest::newRow("by hand: log read with errors") << logCounted << "before" << false << logCounted << false;
    QTest::newRow("by hand: log read") << logRead << "before" << false << logRead << false;

    QTest::newRow("letter case of the message doesn't matter")
        << written.toUpper() << defaults << false << texts::resultDefaultsOk() << false;
    QTest::newRow("letter case of the line doesn't matter")
        << texts::resultWriteStarted().toLower() << defaults.toUpper() << false << QString() << false;
    QTest::newRow("letter case of the log's end doesn't matter")
        << logRead.toLower() << "scripts" << true << QString() << false;
    QTest::newRow("texts are searched for, not compared")
        << QStringLiteral("> ") + written + QStringLiteral(" <")
        << QStringLiteral("> ") + defaults + QStringLiteral(" <") << false << texts::resultDefaultsOk() << false;
}

void tst_resultLine::decides()
{
    QFETCH(const QString, message);
    QFETCH(const QString, shown);
    QFETCH(bool, chain);
    QFETCH(const QString, expected);
    QFETCH(const bool, chainAfter);

    const std::optional<QString> next = nextResult(message, shown, chain);
    QCOMPARE(next.has_value(), !expected.isNull());
    QCOMPARE(next.value_or(QString()), expected);
    QCOMPARE(chain, chainAfter);
}

void tst_resultLine::theEndOfTheChainIsSwallowedOnce()
{
    bool chain = true;
    QVERIFY(!nextResult(texts::resultLogOk(), QString(), chain));
    QCOMPARE(nextResult(texts::resultLogOk(), QString(), chain).value_or(QString()), texts::resultLogOk());
}

QTEST_GUILESS_MAIN(tst_resultLine)
#include "tst_resultLine.moc"
