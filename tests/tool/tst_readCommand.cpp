#include "UnitCommandTest.h"
#include "link/protocol_HUBN_NX_Q.h"
#include "model/RelayInfo.h"

#include <QJsonArray>
#include <QJsonObject>

/// Reading a unit into a file.
class tst_readCommand : public UnitCommandTest
{
    Q_OBJECT

private slots:
    void init();

    void theFileHoldsWhatTheUnitHolds();
    void theUnitIsNamed();
    void anExistingFileStaysAndTheUnitIsntAsked();
    void withForceAnExistingFileIsReplaced();
    void aFailedStepIsNamedAndNoFileAppears();
    void withPartialTheFileHoldsTheRest();
    void aLostTerminalIsAFailedStepToo();
    void terminalsThatNeverAgreeEndTheSearch();
    void aLostAnswerThatARepeatMakesGoodIsNoFailure();
    void confirmedReadingNeedsTwoAnswersThatAgree();
    void confirmedReadingTellsWhatNeverAgrees();
    void whatAFileDoesntGiveBackIsTold();
    void aFileThatCantBeWrittenIsRefused();
    void asJson();
    void quietTellsTheResultAlone();
    void aPortThatIsNoneHasNothing();
    void aUnitThatKeepsSilentIsNotFound();
};

void tst_readCommand::init()
{
    makeUnit();
}

void tst_readCommand::theFileHoldsWhatTheUnitHolds()
{
    const ToolRun tool = run({QStringLiteral("read"), path(QStringLiteral("a.cfg"))});
    QCOMPARE(tool.exitCode, ExitCode::Done);
    QVERIFY2(tool.results.endsWith(QStringLiteral(
                 "a.cfg: 22 outputs of the head unit and 6 terminals, 32 scripts; 20 terminals found\n")),
             qUtf8Printable(tool.results));

    RelayInfo model;
    QCOMPARE(model.loadFromFile(path(QStringLiteral("a.cfg"))), int(RelayInfo::FileOk));
    QCOMPARE(model.errorCount(), 0);
    const UnitState state = unit->state();
    const QByteArrayList scripts = model.makeScriptRecords();
    for (int number = 0; number < UnitState::scriptCount; ++number) {
        QCOMPARE(scripts.at(number), char(number) + state.scripts.at(size_t(number)));
    }
    const QByteArrayList outputs = model.makeOutputRecords();
    for (const QByteArray& output : outputs) {
        QCOMPARE(output.mid(2), state.outputs.at(size_t(output.at(0))).at(size_t(output.at(1))));
    }
    QCOMPARE(outputs.size(), 22);
}

void tst_readCommand::theUnitIsNamed()
{
    const ToolRun tool = run({QStringLiteral("read"), path(QStringLiteral("a.cfg"))});
    QVERIFY(tool.errors.startsWith(unit->portName() +
                                   QStringLiteral(": coordinator at address 1, serial number 20417, version 6.02\n")));
}

void tst_readCommand::anExistingFileStaysAndTheUnitIsntAsked()
{
    write(QStringLiteral("a.cfg"), "mine");
    const ToolRun tool = run({QStringLiteral("read"), path(QStringLiteral("a.cfg"))});
    QCOMPARE(tool.exitCode, ExitCode::Refused);
    QVERIFY(tool.errors.contains(QStringLiteral("--force")));
    QCOMPARE(content(QStringLiteral("a.cfg")), QByteArray("mine"));
    QCOMPARE(unit->requestCount(), 0);
}

void tst_readCommand::withForceAnExistingFileIsReplaced()
{
    write(QStringLiteral("a.cfg"), "mine");
    QCOMPARE(run({QStringLiteral("read"), path(QStringLiteral("a.cfg")), QStringLiteral("--force")}).exitCode,
             ExitCode::Done);
    QVERIFY(content(QStringLiteral("a.cfg")).contains("[Scripts]"));
    QCOMPARE(files().size(), 1);
}

void tst_readCommand::aFailedStepIsNamedAndNoFileAppears()
{
    unit->setFaults({UnitFault(UnitFault::Refuse).onRequest(protocol_HUBN_NX_Q::Read_Script).from(4).times(4),
                     UnitFault(UnitFault::Refuse).onRequest(protocol_HUBN_NX_Q::Read_Config).from(12).times(4)});
    const ToolRun tool = run({QStringLiteral("read"), path(QStringLiteral("a.cfg"))});
    QCOMPARE(tool.exitCode, ExitCode::WithErrors);
    QVERIFY2(tool.errors.contains(QStringLiteral("script 4: refused with code 1\n")), qUtf8Printable(tool.errors));
    QVERIFY2(tool.errors.contains(QStringLiteral("output 2 of terminal 2: refused with code 1\n")),
             qUtf8Printable(tool.errors));
    QVERIFY(files().isEmpty());
}

void tst_readCommand::withPartialTheFileHoldsTheRest()
{
    unit->setFaults({UnitFault(UnitFault::Refuse).onRequest(protocol_HUBN_NX_Q::Read_Script).from(4).times(4)});
    const ToolRun tool = run({QStringLiteral("read"), path(QStringLiteral("a.cfg")), QStringLiteral("--partial")});
    QCOMPARE(tool.exitCode, ExitCode::WithErrors);
    QVERIFY(tool.errors.contains(QStringLiteral("script 4: ")));
    QVERIFY(tool.results.contains(QStringLiteral("31 scripts")));
    QCOMPARE(files(), QStringList{QStringLiteral("a.cfg")});
}

void tst_readCommand::aLostTerminalIsAFailedStepToo()
{
    unit->setFaults({UnitFault(UnitFault::Refuse).onRequest(protocol_HUBN_NX_Q::Busy_Channel_Execute)});
    const ToolRun tool = run({QStringLiteral("read"), path(QStringLiteral("a.cfg"))});
    QCOMPARE(tool.exitCode, ExitCode::WithErrors);
    QVERIFY2(tool.errors.contains(QStringLiteral("the search for terminals: refused")), qUtf8Printable(tool.errors));
    QVERIFY(files().isEmpty());
}

void tst_readCommand::terminalsThatNeverAgreeEndTheSearch()
{
    unit->setFaults({UnitFault(UnitFault::ChangeAnswer).onRequest(protocol_HUBN_NX_Q::Busy_Channel_Execute)});
    const ToolRun tool = run({QStringLiteral("read"), path(QStringLiteral("a.cfg"))});
    QCOMPARE(tool.exitCode, ExitCode::WithErrors);
    QVERIFY2(tool.errors.contains(QStringLiteral("the search for terminals: no two answers agree\n")),
             qUtf8Printable(tool.errors));
    QCOMPARE(unit->requestCount(protocol_HUBN_NX_Q::Busy_Channel_Execute), 20);
    QVERIFY(files().isEmpty());
}

void tst_readCommand::aLostAnswerThatARepeatMakesGoodIsNoFailure()
{
    // All attempts of the second reading of a terminal; a third and a fourth agree.
    unit->setFaults(
        {UnitFault(UnitFault::LoseRequest).onRequest(protocol_HUBN_NX_Q::Terminal_Execute_Info).from(2).times(4)});
    const ToolRun tool = run({QStringLiteral("read"), path(QStringLiteral("a.cfg"))});
    QVERIFY2(tool.exitCode == ExitCode::Done, qUtf8Printable(tool.errors));
    QVERIFY2(tool.results.contains(QStringLiteral("20 terminals")), qUtf8Printable(tool.results));
}

void tst_readCommand::confirmedReadingNeedsTwoAnswersThatAgree()
{
    // The first reading of script 1 is not what the unit holds, though its checksum is right.
    unit->setFaults({UnitFault(UnitFault::ChangeAnswer).onRequest(protocol_HUBN_NX_Q::Read_Script).times(1)});
    const ToolRun tool = run({QStringLiteral("read"), path(QStringLiteral("a.cfg")), QStringLiteral("--confirm")});
    QCOMPARE(tool.exitCode, ExitCode::Done);
    QCOMPARE(unit->requestCount(protocol_HUBN_NX_Q::Read_Script), 3 * 32);
    RelayInfo model;
    model.loadFromFile(path(QStringLiteral("a.cfg")));
    QCOMPARE(model.makeScriptRecords().constFirst(), char(0) + unit->state().scripts.front());
}

void tst_readCommand::confirmedReadingTellsWhatNeverAgrees()
{
    unit->setFaults({UnitFault(UnitFault::ChangeAnswer).onRequest(protocol_HUBN_NX_Q::Read_Script)});
    const ToolRun tool = run({QStringLiteral("read"), path(QStringLiteral("a.cfg")), QStringLiteral("--confirm")});
    QCOMPARE(tool.exitCode, ExitCode::WithErrors);
    QVERIFY2(tool.errors.contains(QStringLiteral("no two answers agree")), qUtf8Printable(tool.errors));
    QVERIFY(files().isEmpty());
}

void tst_readCommand::whatAFileDoesntGiveBackIsTold()
{
    // A filter by date that begins in December.
    unit->change([](UnitState& state) { state.scripts.at(2)[13] = 0x12; });
    const ToolRun tool = run({QStringLiteral("read"), path(QStringLiteral("a.cfg"))});
    QCOMPARE(tool.exitCode, ExitCode::WithErrors);
    QVERIFY2(tool.errors.contains(QStringLiteral("the file gives back another value: script 3 ")),
             qUtf8Printable(tool.errors));
    QCOMPARE(files(), QStringList{QStringLiteral("a.cfg")});
}

void tst_readCommand::aFileThatCantBeWrittenIsRefused()
{
    const ToolRun tool = run({QStringLiteral("read"), path(QStringLiteral("no-folder/a.cfg"))});
    QCOMPARE(tool.exitCode, ExitCode::Refused);
    QVERIFY(tool.errors.contains(QStringLiteral("can't be written")));
}

void tst_readCommand::asJson()
{
    const ToolRun tool = run({QStringLiteral("read"), path(QStringLiteral("a.cfg")), QStringLiteral("--json")});
    const QJsonObject object = tool.json().object();
    QCOMPARE(object.value(QStringLiteral("terminals")).toInt(), 20);
    QCOMPARE(object.value(QStringLiteral("scripts")).toInt(), 32);
    QCOMPARE(object.value(QStringLiteral("serialNumber")).toInt(), 20417);
    QCOMPARE(object.value(QStringLiteral("version")).toString(), QStringLiteral("6.02"));
    QVERIFY(object.value(QStringLiteral("errors")).toArray().isEmpty());
}

void tst_readCommand::quietTellsTheResultAlone()
{
    const ToolRun tool = run({QStringLiteral("read"), path(QStringLiteral("a.cfg")), QStringLiteral("--quiet")});
    QVERIFY(tool.errors.isEmpty());
    QVERIFY(!tool.results.isEmpty());
}

void tst_readCommand::aPortThatIsNoneHasNothing()
{
    const ToolRun tool({QStringLiteral("read"), path(QStringLiteral("a.cfg")), QStringLiteral("--port"),
                        QStringLiteral("no-such-port")});
    QVERIFY2(tool.exitCode == ExitCode::NothingFound || tool.exitCode == ExitCode::Refused,
             qUtf8Printable(tool.errors));
    QVERIFY(tool.errors.contains(QStringLiteral("no-such-port: ")));
    QVERIFY(files().isEmpty());
}

void tst_readCommand::aUnitThatKeepsSilentIsNotFound()
{
    unit->setFaults({UnitFault(UnitFault::LoseRequest)});
    const ToolRun tool = run({QStringLiteral("read"), path(QStringLiteral("a.cfg"))});
    QCOMPARE(tool.exitCode, ExitCode::NothingFound);
    QVERIFY2(tool.errors.contains(unit->portName() + QStringLiteral(": ")), qUtf8Printable(tool.errors));
    // At both rates, and once more.
    QCOMPARE(unit->requestCount(), 4);
}

QTEST_GUILESS_MAIN(tst_readCommand)
#include "tst_readCommand.moc"
