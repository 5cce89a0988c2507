#include "UnitCommandTest.h"
#include "link/protocol_HUBN_NX_Q.h"
#include "model/RelayInfo.h"
#include "support/RandomUnit.h"
#include "support/rounds.h"

#include <QJsonArray>
#include <QJsonObject>

/// Writing a file into a unit.
class tst_writeCommand : public UnitCommandTest
{
    Q_OBJECT

private slots:
    void init();

    void theUnitHoldsWhatTheFileHolds();
    void eachRefusedStepIsNamed();
    void verifyNamesExactlyTheRecordThatWasSwallowed();
    void verifyTellsADifferenceAsDiffDoes_data();
    void verifyTellsADifferenceAsDiffDoes();
    void verifyTellsThatAllIsTheSame();
    void theBackupHoldsWhatTheUnitHeldBefore();
    void withoutAWholeBackupNothingIsWritten();
    void anExistingBackupStaysAndNothingIsWritten();
    void aFileThatIsntWholeIsntWritten_data();
    void aFileThatIsntWholeIsntWritten();
    void withIncompleteTheRightLinesOfItAre();
    void theBackupNeedsAFileOfItsOwn();
    void aBackupThatAFileCantHoldIsNone();
    void anOutputThatTheUnitDoesntTellIsntJudged();
    void aMissingFileIsBadInput();
    void asJson();
    void readThenWriteThenDiffIsEmptyForRandomUnits();

private:
    QString fileOfAnotherUnit();
};

void tst_writeCommand::init()
{
    makeUnit();
}

/// A file with scripts and outputs that the unit doesn't have.
QString tst_writeCommand::fileOfAnotherUnit()
{
    const QString file = path(QStringLiteral("other.cfg"));
    const UnitState own = unit->state();
    UnitState other = own;
    std::rotate(other.scripts.begin(), other.scripts.begin() + 1, other.scripts.end());
    unit->setState(other);
    run({QStringLiteral("read"), file});
    unit->setState(own);
    unit->clearRequests();
    return file;
}

void tst_writeCommand::theUnitHoldsWhatTheFileHolds()
{
    const QString file = fileOfAnotherUnit();
    const ToolRun tool = run({QStringLiteral("write"), file});
    QCOMPARE(tool.exitCode, ExitCode::Done);
    QVERIFY2(tool.results.endsWith(QStringLiteral(" outputs and 32 scripts written\n")), qUtf8Printable(tool.results));
    RelayInfo model;
    model.loadFromFile(file);
    const QByteArrayList scripts = model.makeScriptRecords();
    for (int number = 0; number < UnitState::scriptCount; ++number) {
        QCOMPARE(char(number) + unit->state().scripts.at(size_t(number)), scripts.at(number));
    }
}

void tst_writeCommand::eachRefusedStepIsNamed()
{
    const QString file = fileOfAnotherUnit();
    unit->setFaults({UnitFault(UnitFault::Refuse).value(2).onRequest(protocol_HUBN_NX_Q::Write_Script).from(5).times(4),
                     UnitFault(UnitFault::Refuse).onRequest(protocol_HUBN_NX_Q::Write_Config).times(4)});
    const ToolRun tool = run({QStringLiteral("write"), file});
    QCOMPARE(tool.exitCode, ExitCode::WithErrors);
    const QStringList lines = tool.results.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    QCOMPARE(lines.size(), 3);
    QVERIFY2(lines.at(0).startsWith(QStringLiteral("output 1 '")), qUtf8Printable(lines.at(0)));
    QVERIFY2(lines.at(0).endsWith(QStringLiteral("' of the head unit: refused with code 1")),
             qUtf8Printable(lines.at(0)));
    QVERIFY2(lines.at(1).startsWith(QStringLiteral("script 5 '")), qUtf8Printable(lines.at(1)));
    QVERIFY2(lines.at(1).endsWith(QStringLiteral("': refused with code 2")), qUtf8Printable(lines.at(1)));
    QVERIFY2(lines.at(2).endsWith(QStringLiteral("2 of them failed")), qUtf8Printable(lines.at(2)));
}

void tst_writeCommand::verifyNamesExactlyTheRecordThatWasSwallowed()
{
    const QString file = fileOfAnotherUnit();
    // Not stored, and acknowledged.
    unit->setFaults(
        {UnitFault(UnitFault::Refuse).value(0).onRequest(protocol_HUBN_NX_Q::Write_Script).from(7).times(1)});
    const ToolRun tool = run({QStringLiteral("write"), file, QStringLiteral("--verify"), QStringLiteral("--json")});
    QCOMPARE(tool.exitCode, ExitCode::WithErrors);
    const QJsonObject object = tool.json().object();
    QVERIFY(object.value(QStringLiteral("errors")).toArray().isEmpty());
    const QJsonArray differences = object.value(QStringLiteral("differences")).toArray();
    QVERIFY(!differences.isEmpty());
    for (const QJsonValue& difference : differences) {
        QCOMPARE(difference.toObject().value(QStringLiteral("where")).toString(), QStringLiteral("script 7"));
    }
}

void tst_writeCommand::verifyTellsADifferenceAsDiffDoes_data()
{
    QTest::addColumn<int>("request");
    QTest::addColumn<int>("nth");
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QByteArray>("changed");
    QTest::addColumn<QString>("told");
    QTest::newRow("script") << int(protocol_HUBN_NX_Q::Write_Script) << 3 << QByteArray("Script[2].Duration=24")
                            << QByteArray("Script[2].Duration=19")
                            << "script 3 'Horn': duration 5 minutes -> 10 minutes";
    QTest::newRow("output") << int(protocol_HUBN_NX_Q::Write_Config) << 4
                            << QByteArray("ExecutiveTerminal[0].Output[3].StartState=0")
                            << QByteArray("ExecutiveTerminal[0].Output[3].StartState=1")
                            << "head unit 'HUBN-NX-Q', output 4: start state ON -> OFF";
}

void tst_writeCommand::verifyTellsADifferenceAsDiffDoes()
{
    QFETCH(int, request);
    QFETCH(int, nth);
    QFETCH(QByteArray, line);
    QFETCH(QByteArray, changed);
    QFETCH(QString, told);
    const QString file = path(QStringLiteral("a.cfg"));
    run({QStringLiteral("read"), file});
    QByteArray text = content(QStringLiteral("a.cfg"));
    QVERIFY(text.contains(line));
    text.replace(line, changed).replace("Script[2].Name=Script", "Script[2].Name=Horn");
    write(QStringLiteral("a.cfg"), text);
    unit->setFaults({UnitFault(UnitFault::Refuse).value(0).onRequest(request).from(nth).times(1)});
    const ToolRun tool = run({QStringLiteral("write"), file, QStringLiteral("--verify")});
    QCOMPARE(tool.exitCode, ExitCode::WithErrors);
    const QStringList lines = tool.results.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    QCOMPARE(lines.size(), 2);
    QCOMPARE(lines.at(0), told);
    QVERIFY2(lines.at(1).endsWith(QStringLiteral("written, 1 of them differ")), qUtf8Printable(lines.at(1)));
    unit->setFaults({});
    const ToolRun difference = run({QStringLiteral("diff"), file, QStringLiteral("unit")});
    QCOMPARE(difference.results, told + QLatin1Char('\n'));
}

void tst_writeCommand::verifyTellsThatAllIsTheSame()
{
    const ToolRun tool = run({QStringLiteral("write"), fileOfAnotherUnit(), QStringLiteral("--verify")});
    QCOMPARE(tool.exitCode, ExitCode::Done);
    QVERIFY2(tool.results.contains(QStringLiteral("read back the same")), qUtf8Printable(tool.results));
}

void tst_writeCommand::theBackupHoldsWhatTheUnitHeldBefore()
{
    const QString file = fileOfAnotherUnit();
    run({QStringLiteral("read"), path(QStringLiteral("before.cfg"))});
    const ToolRun tool =
        run({QStringLiteral("write"), file, QStringLiteral("--backup"), path(QStringLiteral("old.cfg"))});
    QCOMPARE(tool.exitCode, ExitCode::Done);
    QCOMPARE(content(QStringLiteral("old.cfg")), content(QStringLiteral("before.cfg")));
    run({QStringLiteral("read"), path(QStringLiteral("after.cfg"))});
    QVERIFY(content(QStringLiteral("after.cfg")) != content(QStringLiteral("before.cfg")));
}

void tst_writeCommand::withoutAWholeBackupNothingIsWritten()
{
    const QString file = fileOfAnotherUnit();
    unit->setFaults({UnitFault(UnitFault::Refuse).onRequest(protocol_HUBN_NX_Q::Read_Script).from(3).times(4)});
    const ToolRun tool =
        run({QStringLiteral("write"), file, QStringLiteral("--backup"), path(QStringLiteral("old.cfg"))});
    QCOMPARE(tool.exitCode, ExitCode::Refused);
    QVERIFY(tool.errors.contains(QStringLiteral("script 3: ")));
    QCOMPARE(unit->requestCount(protocol_HUBN_NX_Q::Write_Config), 0);
    QCOMPARE(unit->requestCount(protocol_HUBN_NX_Q::Write_Script), 0);
    QVERIFY(!files().contains(QStringLiteral("old.cfg")));
}

void tst_writeCommand::anExistingBackupStaysAndNothingIsWritten()
{
    const QString file = fileOfAnotherUnit();
    write(QStringLiteral("old.cfg"), "mine");
    const ToolRun tool =
        run({QStringLiteral("write"), file, QStringLiteral("--backup"), path(QStringLiteral("old.cfg"))});
    QCOMPARE(tool.exitCode, ExitCode::Refused);
    QCOMPARE(content(QStringLiteral("old.cfg")), QByteArray("mine"));
    QCOMPARE(unit->requestCount(), 0);
}

void tst_writeCommand::aFileThatIsntWholeIsntWritten_data()
{
    QTest::addColumn<int>("kind");
    QTest::newRow("a wrong line") << 0;
    QTest::newRow("empty") << 1;
    QTest::newRow("cut off") << 2;
    QTest::newRow("lines that end by a line feed alone") << 3;
    QTest::newRow("a NUL in the middle") << 4;
}

void tst_writeCommand::aFileThatIsntWholeIsntWritten()
{
    QFETCH(int, kind);
    fileOfAnotherUnit();
    QByteArray text = content(QStringLiteral("other.cfg"));
    const QList<QByteArray> texts{text + "Script[0].Mode=loud\r\n", QByteArray(), text.left(text.size() / 2),
                                  QByteArray(text).replace("\r\n", "\n"), text.insert(text.size() / 2, '\0')};
    write(QStringLiteral("wrong.cfg"), texts.at(kind));
    const ToolRun tool = run({QStringLiteral("write"), path(QStringLiteral("wrong.cfg"))});
    QCOMPARE(tool.exitCode, ExitCode::BadInput);
    QVERIFY2(tool.errors.contains(QStringLiteral("nothing is written")), qUtf8Printable(tool.errors));
    QCOMPARE(unit->requestCount(), 0);
}

void tst_writeCommand::withIncompleteTheRightLinesOfItAre()
{
    write(QStringLiteral("wrong.cfg"), "[Scripts]\r\nScript[0].Mode=loud\r\n");
    const ToolRun tool =
        run({QStringLiteral("write"), path(QStringLiteral("wrong.cfg")), QStringLiteral("--incomplete")});
    QCOMPARE(tool.exitCode, ExitCode::Done);
    QCOMPARE(unit->requestCount(protocol_HUBN_NX_Q::Write_Script), 32);
}

void tst_writeCommand::theBackupNeedsAFileOfItsOwn()
{
    const QString file = fileOfAnotherUnit();
    const QByteArray before = content(QStringLiteral("other.cfg"));
    for (const QString& backup : {file, QString()}) {
        const ToolRun tool =
            run({QStringLiteral("write"), file, QStringLiteral("--backup"), backup, QStringLiteral("--force")});
        QCOMPARE(tool.exitCode, ExitCode::BadInput);
        QVERIFY(tool.errors.contains(QStringLiteral("a file of its own")));
    }
    QCOMPARE(content(QStringLiteral("other.cfg")), before);
    QCOMPARE(unit->requestCount(), 0);
}

void tst_writeCommand::aBackupThatAFileCantHoldIsNone()
{
    const QString file = fileOfAnotherUnit();
    unit->change([](UnitState& state) { state.scripts.at(2)[13] = 0x12; }); // December
    const ToolRun tool =
        run({QStringLiteral("write"), file, QStringLiteral("--backup"), path(QStringLiteral("old.cfg"))});
    QCOMPARE(tool.exitCode, ExitCode::Refused);
    QVERIFY2(tool.errors.contains(QStringLiteral("script 3 ")), qUtf8Printable(tool.errors));
    QCOMPARE(unit->requestCount(protocol_HUBN_NX_Q::Write_Script), 0);
    QVERIFY(!files().contains(QStringLiteral("old.cfg")));
}

void tst_writeCommand::anOutputThatTheUnitDoesntTellIsntJudged()
{
    // A terminal with four outputs, of which a reading asks for two.
    unit->change([](UnitState& state) { state.terminals = {UnitTerminal::make(5, 2, 1, 0x41, 0x20, 16)}; });
    const QString file = path(QStringLiteral("a.cfg"));
    const ToolRun read = run({QStringLiteral("read"), file});
    QCOMPARE(read.exitCode, ExitCode::Done);
    QVERIFY2(
        read.errors.contains(QStringLiteral("not told by the unit, so in the file as if nobody had set it: output 3 of "
                                            "terminal 5, output 4 of terminal 5")),
        qUtf8Printable(read.errors));
    const ToolRun tool = run({QStringLiteral("write"), file, QStringLiteral("--verify")});
    QVERIFY2(tool.exitCode == ExitCode::Done, qUtf8Printable(tool.results + tool.errors));
    QVERIFY(tool.errors.contains(QStringLiteral("so not verified: output 3 ")));
    const ToolRun difference = run({QStringLiteral("diff"), file, QStringLiteral("unit")});
    QVERIFY2(difference.exitCode == ExitCode::Done, qUtf8Printable(difference.results + difference.errors));
    QVERIFY(difference.errors.contains(QStringLiteral("so not compared: output 3 ")));
}

void tst_writeCommand::aMissingFileIsBadInput()
{
    const ToolRun tool = run({QStringLiteral("write"), path(QStringLiteral("none.cfg"))});
    QCOMPARE(tool.exitCode, ExitCode::BadInput);
    QVERIFY(tool.errors.contains(QStringLiteral("none.cfg")));
    QCOMPARE(unit->requestCount(), 0);
}

void tst_writeCommand::asJson()
{
    const ToolRun tool = run({QStringLiteral("write"), fileOfAnotherUnit(), QStringLiteral("--json")});
    const QJsonObject object = tool.json().object();
    QVERIFY(object.value(QStringLiteral("records")).toInt() > 40);
    QVERIFY(object.value(QStringLiteral("errors")).toArray().isEmpty());
    QVERIFY(!object.contains(QStringLiteral("differences")));
}

void tst_writeCommand::readThenWriteThenDiffIsEmptyForRandomUnits()
{
    constexpr int units = rounds(200);
    RandomUnit random(7, RandomUnit::OfFiles);
    const QString file = path(QStringLiteral("a.cfg"));
    for (int count = 0; count < units; ++count) {
        const UnitState state = random.draw();
        unit->setState(state);
        const ToolRun read = run({QStringLiteral("read"), file, QStringLiteral("--force")});
        QVERIFY2(read.exitCode == ExitCode::Done, qUtf8Printable(read.errors));
        // Other scripts and outputs, so that all has to be written.
        unit->change([&random](UnitState& changed) {
            const UnitState other = random.draw();
            changed.scripts = other.scripts;
            for (std::size_t address = 0; address < changed.outputs.size(); ++address) {
                for (QByteArray& output : changed.outputs.at(address)) {
                    output = UnitState::emptyOutput();
                }
            }
        });
        const ToolRun written = run({QStringLiteral("write"), file});
        QVERIFY2(written.exitCode == ExitCode::Done, qUtf8Printable(written.results + written.errors));
        const ToolRun difference = run({QStringLiteral("diff"), file, QStringLiteral("unit")});
        QVERIFY2(difference.exitCode == ExitCode::Done, qUtf8Printable(difference.results + difference.errors));
        QVERIFY(difference.results.isEmpty());
        QCOMPARE(unit->state().scripts, state.scripts);
    }
}

QTEST_GUILESS_MAIN(tst_writeCommand)
#include "tst_writeCommand.moc"
