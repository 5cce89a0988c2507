#include "UnitCommandTest.h"
#include "link/protocol_HUBN_NX_Q.h"

#include <QJsonArray>
#include <QJsonObject>

namespace
{

QString error()
{
    return QStringLiteral("error");
}

} // namespace

Q_DECLARE_METATYPE(ExitCode)

/// The documents of commands that failed, or that lost something.
class tst_jsonOfFailures : public UnitCommandTest
{
    Q_OBJECT

private slots:
    void init();

    void aCommandThatDidNothingSaysWhy_data();
    void aCommandThatDidNothingSaysWhy();
    void aFailedReadingTellsItsUnitAndItsSteps();
    void aFailedBackupTellsItsSteps();
    void aDocumentOfItsOwnGetsTheError();
    void aListStaysAList();
    void whatWentWellHasNoError();
    void aDifferenceIsNoError();
    void aReadingTellsWhatTheFileDoesNotKeep();
};

void tst_jsonOfFailures::init()
{
    makeUnit();
}

void tst_jsonOfFailures::aCommandThatDidNothingSaysWhy_data()
{
    QTest::addColumn<QStringList>("line");
    QTest::addColumn<ExitCode>("exitCode");
    QTest::addColumn<QString>("said");
    const auto words = [](const char* text) { return QString::fromLatin1(text).split(QLatin1Char(' ')); };
    QTest::newRow("file exists") << words("read mine.cfg") << ExitCode::Refused << "--force overwrites it";
    QTest::newRow("no port") << words("time --port no-such-port") << ExitCode::NothingFound << "no-such-port: ";
    QTest::newRow("wrong option") << words("time --wrong") << ExitCode::BadInput << "wrong";
    QTest::newRow("too few words") << words("diff mine.cfg") << ExitCode::BadInput << "diff takes";
    QTest::newRow("no such file") << words("check none.cfg") << ExitCode::BadInput << "none.cfg";
    QTest::newRow("nothing to report") << words("report none.cfg") << ExitCode::BadInput << "none.cfg";
    QTest::newRow("not a whole file") << words("write mine.cfg") << ExitCode::BadInput << "nothing is written";
    QTest::newRow("no form of a log") << words("log log.txt") << ExitCode::BadInput << "log.txt";
    QTest::newRow("no firmware") << words("firmware none.crypt") << ExitCode::BadInput << "none.crypt";
}

void tst_jsonOfFailures::aCommandThatDidNothingSaysWhy()
{
    QFETCH(QStringList, line);
    QFETCH(ExitCode, exitCode);
    QFETCH(QString, said);
    write(QStringLiteral("mine.cfg"), "mine");
    for (QString& word : line) {
        word = word.contains(QLatin1Char('.')) ? path(word) : word;
    }
    const ToolRun tool(line + QStringList{QStringLiteral("--json")});
    QCOMPARE(tool.exitCode, exitCode);
    const QString told = tool.json().object().value(error()).toString();
    QVERIFY2(told.contains(said), qUtf8Printable(tool.results));
    // For people, too.
    QVERIFY2(tool.errors.contains(told), qUtf8Printable(tool.errors));
}

void tst_jsonOfFailures::aFailedReadingTellsItsUnitAndItsSteps()
{
    unit->setFaults({UnitFault(UnitFault::Refuse).onRequest(protocol_HUBN_NX_Q::Read_Script).from(4).times(4)});
    const ToolRun tool = run({QStringLiteral("read"), path(QStringLiteral("a.cfg")), QStringLiteral("--json")});
    QCOMPARE(tool.exitCode, ExitCode::WithErrors);
    const QJsonObject object = tool.json().object();
    QCOMPARE(object.value(QStringLiteral("port")).toString(), unit->portName());
    QCOMPARE(object.value(QStringLiteral("serialNumber")).toInt(), 20417);
    QCOMPARE(object.value(QStringLiteral("errors")).toArray(),
             QJsonArray{QStringLiteral("script 4: refused with code 1")});
    QVERIFY2(object.value(error()).toString().contains(QStringLiteral("a.cfg was not written")),
             qUtf8Printable(tool.results));
}

void tst_jsonOfFailures::aFailedBackupTellsItsSteps()
{
    run({QStringLiteral("read"), path(QStringLiteral("a.cfg"))});
    unit->setFaults({UnitFault(UnitFault::Refuse).onRequest(protocol_HUBN_NX_Q::Read_Script).from(4).times(4)});
    const ToolRun tool = run({QStringLiteral("write"), path(QStringLiteral("a.cfg")), QStringLiteral("--backup"),
                              path(QStringLiteral("old.cfg")), QStringLiteral("--json")});
    QCOMPARE(tool.exitCode, ExitCode::Refused);
    const QJsonObject object = tool.json().object();
    QVERIFY(!object.contains(QStringLiteral("backup")));
    QVERIFY(object.value(QStringLiteral("errors")).toArray().contains(QStringLiteral("script 4: refused with code 1")));
    QVERIFY(object.value(error()).toString().contains(QStringLiteral("without a whole backup nothing is written")));
}

void tst_jsonOfFailures::aDocumentOfItsOwnGetsTheError()
{
    unit->setFaults({UnitFault(UnitFault::Refuse).onRequest(protocol_HUBN_NX_Q::Read_Log).from(3)});
    const ToolRun tool = run({QStringLiteral("log"), path(QStringLiteral("log.csv")), QStringLiteral("--json")});
    QCOMPARE(tool.exitCode, ExitCode::WithErrors);
    const QJsonObject object = tool.json().object();
    QCOMPARE(object.value(QStringLiteral("received")).toInt(), 8);
    QVERIFY2(object.value(error()).toString().contains(QStringLiteral("12 events are missing")),
             qUtf8Printable(tool.results));
}

void tst_jsonOfFailures::aListStaysAList()
{
    const ToolRun tool(
        {QStringLiteral("ports"), QStringLiteral("--json"), QStringLiteral("--port"), QStringLiteral("no-such-port")});
    QCOMPARE(tool.exitCode, ExitCode::NothingFound);
    QCOMPARE(tool.json().array().size(), 1);
}

void tst_jsonOfFailures::whatWentWellHasNoError()
{
    const ToolRun tool = run({QStringLiteral("time"), QStringLiteral("--json")});
    QCOMPARE(tool.exitCode, ExitCode::Done);
    QVERIFY(!tool.json().object().isEmpty());
    QVERIFY(!tool.json().object().contains(error()));
}

void tst_jsonOfFailures::aDifferenceIsNoError()
{
    run({QStringLiteral("read"), path(QStringLiteral("a.cfg"))});
    unit->change([](UnitState& state) { state.scripts.at(3) = UnitState::emptyScript(); });
    const ToolRun tool =
        run({QStringLiteral("diff"), path(QStringLiteral("a.cfg")), QStringLiteral("unit"), QStringLiteral("--json")});
    QCOMPARE(tool.exitCode, ExitCode::WithErrors);
    QVERIFY(!tool.json().object().value(QStringLiteral("differences")).toArray().isEmpty());
    QVERIFY(!tool.json().object().contains(error()));
}

void tst_jsonOfFailures::aReadingTellsWhatTheFileDoesNotKeep()
{
    // A filter by date that begins in December, and a terminal with four outputs, of which a reading asks for two.
    unit->change([](UnitState& state) {
        state.scripts.at(2)[13] = 0x12;
        state.terminals = {UnitTerminal::make(5, 2, 1, 0x41, 0x20, 16)};
    });
    const ToolRun tool = run({QStringLiteral("read"), path(QStringLiteral("a.cfg")), QStringLiteral("--json")});
    QCOMPARE(tool.exitCode, ExitCode::WithErrors);
    const QJsonObject object = tool.json().object();
    const QJsonArray lost = object.value(QStringLiteral("notKept")).toArray();
    QCOMPARE(lost.size(), 1);
    QVERIFY2(lost.at(0).toString().contains(QStringLiteral("script 3")), qUtf8Printable(tool.results));
    QCOMPARE(object.value(QStringLiteral("notTold")).toArray(),
             QJsonArray({QStringLiteral("output 3 of terminal 5"), QStringLiteral("output 4 of terminal 5")}));
    QCOMPARE(object.value(QStringLiteral("terminals")).toInt(), 1);
    QVERIFY(object.contains(error()));
}

QTEST_GUILESS_MAIN(tst_jsonOfFailures)
#include "tst_jsonOfFailures.moc"
