#include "simulator/DemoInstallation.h"
#include "support/Eventually.h"
#include "support/WindowOverUnit.h"
#include "support/threadedTestMain.h"

#include <QLabel>
#include <QTableView>
#include <QtTest>

namespace
{

const UnitState& unitUnderTest()
{
    static const UnitState state = demoInstallation(5, 30, QDateTime(QDate(2026, 3, 9), QTime(12, 0)));
    return state;
}

QString counted(const QString& text, int errors)
{
    return errors == 0 ? QString() : text + texts::resultErrorCount() + QString::number(errors) + QLatin1Char(')');
}

QString readResult(int outputErrors, int scriptErrors)
{
    return (outputErrors == 0 ? texts::resultReadOutputsOk()
                              : counted(texts::resultReadOutputsErrors(), outputErrors)) +
           QLatin1Char('\n') +
           (scriptErrors == 0 ? texts::resultReadScriptsOk() : counted(texts::resultReadScriptsErrors(), scriptErrors));
}

QString writeResult(int outputErrors, int scriptErrors)
{
    return (outputErrors == 0 ? texts::resultWriteOutputsOk()
                              : counted(texts::resultWriteOutputsErrors(), outputErrors)) +
           QLatin1Char('\n') +
           (scriptErrors == 0 ? texts::resultWriteScriptsOk()
                              : counted(texts::resultWriteScriptsErrors(), scriptErrors));
}

/// Makes the unit well-behaved again: everything has to work as if nothing had been.
bool worksAfterwards(WindowOverUnit& over)
{
    over.unit.setFaults({});
    over.unit.plugIn();
    return eventually([&] { return over.isConnected(); }, 20000) && over.read() && over.result() == readResult(0, 0);
}

} // namespace

/// What goes wrong on the link, at each step of the automatic chain and of a writing: each ends in the text that is
/// named for it, takes the busy form away, and leaves a program that works.
class tst_faults : public QObject
{
    Q_OBJECT

private slots:
    void aStepThatFailsOnceIsRepeated_data();
    void aStepThatFailsOnceIsRepeated();
    void aStepThatFailsForGoodIsTold_data();
    void aStepThatFailsForGoodIsTold();
    void aWritingCountsItsFailedSteps();
    void aPortThatVanishesEndsTheChainAndComesBack_data();
    void aPortThatVanishesEndsTheChainAndComesBack();
    void aPortThatVanishesWhileWritingComesBack();
    void noiseAndPiecesDoNoHarm_data();
    void noiseAndPiecesDoNoHarm();
    void answersThatDifferAreReadUntilTwoAgree();
    void aSilentUnitIsNotFound();
    void aUnitOfTheSlowRateIsFound();
    void withoutAnyPortTheWindowLives();
};

void tst_faults::aStepThatFailsOnceIsRepeated_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<int>("type");

    struct Named
    {
        UnitFault::Kind kind;
        const char* name;
    };
    for (const Named& fault :
         {Named{UnitFault::LoseRequest, "lost request"}, Named{UnitFault::LoseAnswer, "lost answer"},
          Named{UnitFault::BadChecksum, "bad checksum"}, Named{UnitFault::Refuse, "refusal"}}) {
        for (const int type : {12, 14, 16, 18, 19, 7, 8, 4, 3, 1, 2}) {
            QTest::addRow("%s to request %d", fault.name, type) << int(fault.kind) << type;
        }
    }
}

void tst_faults::aStepThatFailsOnceIsRepeated()
{
    QFETCH(const int, kind);
    QFETCH(const int, type);
    UnitFault fault(static_cast<UnitFault::Kind>(kind));
    fault.onRequest(type).times(1);
    WindowOverUnit over(unitUnderTest(), {fault});
    QVERIFY(over.waitForChain());
    QCOMPARE(over.result(), readResult(0, 0));
    QCOMPARE(over.told.last(), texts::resultLogOk());
    QTRY_VERIFY(over.get<QTableView>("tableViewLogEvents")->model() != nullptr);
}

void tst_faults::aStepThatFailsForGoodIsTold_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<int>("from");
    QTest::addColumn<int>("times");
    QTest::addColumn<int>("outputErrors");
    QTest::addColumn<int>("scriptErrors");
    QTest::addColumn<QString>("log");

    const QString read = texts::resultLogOk();
    const QString failed = texts::resultLogError();
    QTest::newRow("one output") << 7 << 3 << 4 << 1 << 0 << read;
    QTest::newRow("all outputs") << 7 << 1 << -1 << 70 << 0 << read;
    QTest::newRow("one script") << 8 << 32 << 4 << 0 << 1 << read;
    QTest::newRow("all scripts") << 8 << 1 << -1 << 0 << 32 << read;
    QTest::newRow("log information") << 4 << 1 << 4 << 0 << 0 << failed;
    QTest::newRow("first block of the log") << 3 << 1 << 4 << 0 << 0 << failed;
    QTest::newRow("a later block of the log") << 3 << 3 << 4 << 0 << 0 << failed;
    QTest::newRow("the time can't be set") << 1 << 1 << -1 << 0 << 0 << read;
    QTest::newRow("busy list of a class") << 13 << 1 << -1 << 0 << 0 << read;
    QTest::newRow("information about terminals") << 19 << 1 << -1 << 0 << 0 << read;
}

void tst_faults::aStepThatFailsForGoodIsTold()
{
    QFETCH(const int, type);
    QFETCH(const int, from);
    QFETCH(const int, times);
    QFETCH(const int, outputErrors);
    QFETCH(const int, scriptErrors);
    QFETCH(const QString, log);
    UnitFault fault(UnitFault::Refuse);
    fault.onRequest(type).from(from);
    if (times > 0) {
        fault.times(times);
    }
    WindowOverUnit over(unitUnderTest(), {fault});
    QVERIFY(over.waitForChain());
    QCOMPARE(over.result(), readResult(outputErrors, scriptErrors));
    QCOMPARE(over.told.last(), log);
    QVERIFY(!over.isBusy());
    QVERIFY(worksAfterwards(over));
}

void tst_faults::aWritingCountsItsFailedSteps()
{
    WindowOverUnit over(unitUnderTest());
    QVERIFY(over.waitForChain());
    over.unit.setFaults({UnitFault(UnitFault::Refuse).onRequest(5).from(2).times(8),
                         UnitFault(UnitFault::Refuse).onRequest(6).from(1).times(4)});
    QVERIFY(over.write());
    QCOMPARE(over.result(), writeResult(2, 1));
    over.unit.setFaults({});
    QVERIFY(over.write());
    QCOMPARE(over.result(), writeResult(0, 0));
}

void tst_faults::aPortThatVanishesEndsTheChainAndComesBack_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<int>("from");
    QTest::newRow("in the search for terminals") << 14 << 1;
    QTest::newRow("while terminals are asked") << 19 << 2;
    QTest::newRow("at the first output") << 7 << 1;
    QTest::newRow("in the middle of the outputs") << 7 << 35;
    QTest::newRow("in the middle of the scripts") << 8 << 16;
    QTest::newRow("at the log information") << 4 << 1;
    QTest::newRow("in the middle of the log") << 3 << 4;
}

void tst_faults::aPortThatVanishesEndsTheChainAndComesBack()
{
    QFETCH(const int, type);
    QFETCH(const int, from);
    UnitFault fault(UnitFault::Unplug);
    fault.onRequest(type).from(from).times(1).value(0).amount(3);
    WindowOverUnit over(unitUnderTest(), {fault});
    QVERIFY(over.waitForChain());
    QVERIFY(!over.unit.isPluggedIn());
    QVERIFY(over.window->isVisible());
    QVERIFY(worksAfterwards(over));
}

void tst_faults::aPortThatVanishesWhileWritingComesBack()
{
    WindowOverUnit over(unitUnderTest());
    QVERIFY(over.waitForChain());
    over.unit.setFaults({UnitFault(UnitFault::Unplug).onRequest(6).from(10).times(1).value(0).amount(2)});
    QVERIFY(over.write());
    QVERIFY(over.result().contains(texts::resultWriteScriptsErrors()));
    QVERIFY(worksAfterwards(over));
}

void tst_faults::noiseAndPiecesDoNoHarm_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<int>("value");
    QTest::newRow("noise before every answer") << int(UnitFault::NoiseBefore) << -1;
    QTest::newRow("noise behind every answer") << int(UnitFault::NoiseAfter) << -1;
    QTest::newRow("every answer in pieces") << int(UnitFault::SplitAnswer) << 5;
    QTest::newRow("every answer late") << int(UnitFault::DelayAnswer) << 20;
}

void tst_faults::noiseAndPiecesDoNoHarm()
{
    QFETCH(const int, kind);
    QFETCH(const int, value);
    QVector<UnitFault> faults;
    // Not in the search: there the third byte of all that came is taken for the coordinator's address.
    for (const int type : {12, 13, 14, 15, 16, 17, 18, 19, 20, 21, 7, 8, 4, 3}) {
        UnitFault fault(static_cast<UnitFault::Kind>(kind));
        fault.onRequest(type);
        if (value > 0) {
            fault.value(value);
        } else {
            // Bytes that begin no frame: noise that looks like a start would cost a repetition.
            fault.bytes(QByteArrayLiteral("\x11\x22\x33"));
        }
        faults.append(fault);
    }
    WindowOverUnit over(unitUnderTest(), faults);
    QVERIFY(over.waitForChain());
    QCOMPARE(over.result(), readResult(0, 0));
    QCOMPARE(over.told.last(), texts::resultLogOk());
}

void tst_faults::answersThatDifferAreReadUntilTwoAgree()
{
    WindowOverUnit calm(unitUnderTest());
    QVERIFY(calm.waitForChain());
    WindowOverUnit restless(unitUnderTest(), {UnitFault(UnitFault::ChangeAnswer).onRequest(14).times(3)});
    QVERIFY(restless.waitForChain());
    QCOMPARE(restless.unit.requestCount(14), 5);
    QCOMPARE(restless.unit.requestCount(19), calm.unit.requestCount(19));
}

void tst_faults::aSilentUnitIsNotFound()
{
    WindowOverUnit over(unitUnderTest(), {UnitFault(UnitFault::LoseRequest)});
    QTRY_VERIFY_WITH_TIMEOUT(over.unit.requestCount(10) >= 4, 20000);
    QCOMPARE(over.label("labelCoordinator")->text(), QStringLiteral("<b>Coordinator not connected</b>"));
    QVERIFY(!over.isBusy());
    // It answers the next sweep, which begins by itself.
    over.unit.setFaults({});
    QVERIFY(over.waitForChain());
    QCOMPARE(over.result(), readResult(0, 0));
}

void tst_faults::aUnitOfTheSlowRateIsFound()
{
    UnitState slow = unitUnderTest();
    slow.baudRates = {9600};
    slow.address = 8;
    WindowOverUnit over(slow);
    QVERIFY(over.waitForChain());
    QCOMPARE(over.label("labelBaudrate")->text(), QStringLiteral("<b>9600</b>"));
    QCOMPARE(over.label("labelCoordinator")->text(), QStringLiteral("Coordinator <b>8</b>"));
    QCOMPARE(over.result(), readResult(0, 0));
}

void tst_faults::withoutAnyPortTheWindowLives()
{
    WindowSeams seams;
    seams.portNames = [] { return QStringList(); };
    MainWindow window(seams);
    window.show();
    window.findChild<FormChoiceCoordinator*>()->close();
    for (const char* name : {"actionRead", "actionWrite", "actionFirmware", "actionFactorySetting", "actionReadLog"}) {
        QVERIFY(!window.findChild<QAction*>(QLatin1String(name))->isEnabled());
    }
    QVERIFY(window.findChild<QAction*>(QStringLiteral("actionLoad"))->isEnabled());
    QVERIFY(!window.findChild<FormWaiting*>()->isVisible());
}

HUBN_THREADED_TEST_MAIN(tst_faults)
#include "tst_faults.moc"
