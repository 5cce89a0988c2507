#include "UnitCommandTest.h"
#include "link/protocol_HUBN_NX_Q.h"
#include "support/OrdinaryUser.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QSerialPort>
#include <QSqlDatabase>
#include <QSqlQuery>

#include <sys/stat.h>

/// Ports, clock, log and firmware.
class tst_unitCommands : public UnitCommandTest
{
    Q_OBJECT

private slots:
    void init();

    void portsTellsWhatIsFound();
    void portsTellsOfAPortThatIsNone();
    void portsTellsWhoHoldsAPort();
    void aPortThatMayNotBeOpenedIsToldWithWhatToDo();
    void portsAsJson();
    void theSimulatedUnitNeedsNoPort();
    void whatIsNoSerialPortIsntWaitedFor();

    void theClockIsComparedWithThisPc_data();
    void theClockIsComparedWithThisPc();
    void settingTheClockEndsTheDifference();
    void aUnitWithoutAClockSaysSo();
    void aClockThatIsntTakenIsAnError();

    void namesWithPercentSignsAreTold();
    void theLogIsKeptInEachForm();
    void aSuffixThatIsNoFormIsBadInput();
    void anExistingLogStays();
    void aLostBlockIsTold();
    void aLogThatEndsEarlyKeepsWhatCame();
    void anEmptyLogIsALog();

    void firmwareIsLoaded();
    void withoutYesFirmwareIsRefusedWhereNobodyCanBeAsked();
    void aFileThatIsNoFirmwareIsBadInput();
    void aFailedLoadCanBeBegunAgain();

private:
    static QByteArray image();
};

void tst_unitCommands::init()
{
    makeUnit();
}

QByteArray tst_unitCommands::image()
{
    QByteArray bytes;
    for (int position = 0; position < 1000; ++position) {
        bytes.append(char(position * 7));
    }
    return bytes;
}

// Ports.

void tst_unitCommands::portsTellsWhatIsFound()
{
    const ToolRun tool = run({QStringLiteral("ports")});
    QCOMPARE(tool.exitCode, ExitCode::Done);
    QCOMPARE(tool.results,
             unit->portName() +
                 QStringLiteral(": Coordinator connected, address 1, 57600 baud, serial number 20417, version 6.02\n"));
}

void tst_unitCommands::portsTellsOfAPortThatIsNone()
{
    const ToolRun tool({QStringLiteral("ports"), QStringLiteral("--port"), QStringLiteral("no-such-port")});
    QCOMPARE(tool.exitCode, ExitCode::NothingFound);
    QVERIFY2(tool.results.startsWith(QStringLiteral("no-such-port: ")), qUtf8Printable(tool.results));
}

void tst_unitCommands::portsTellsWhoHoldsAPort()
{
    QSerialPort holder(unit->portName());
    QVERIFY(holder.open(QIODevice::ReadWrite));
    const ToolRun lines = run({QStringLiteral("ports")});
    QCOMPARE(lines.exitCode, ExitCode::NothingFound);
    QVERIFY2(lines.results.startsWith(unit->portName() + QStringLiteral(": Error opening the port, Port disabled. ")),
             qUtf8Printable(lines.results));
    QVERIFY2(lines.results.contains(QStringLiteral(" is held by tst_unit")), qUtf8Printable(lines.results));
    const QJsonObject object = run({QStringLiteral("ports"), QStringLiteral("--json")}).json().array().at(0).toObject();
    QCOMPARE(object.value(QStringLiteral("state")).toString(), QStringLiteral("Error opening the port, Port disabled"));
    QVERIFY(object.value(QStringLiteral("trouble")).toString().contains(QStringLiteral(" is held by tst_unit")));
    QVERIFY(object.value(QStringLiteral("whatToDo")).toString().startsWith(QStringLiteral("End tst_unit")));
}

void tst_unitCommands::aPortThatMayNotBeOpenedIsToldWithWhatToDo()
{
    const QByteArray device = "/dev/" + unit->portName().toLatin1();
    if (::geteuid() != 0) {
        QSKIP("only root can make a port that may not be opened", );
    }
    QCOMPARE(::chmod(device.constData(), S_IRUSR | S_IWUSR), 0);
    const OrdinaryUser user;
    QVERIFY(user.isOrdinary);
    const ToolRun tool = run({QStringLiteral("time")});
    QCOMPARE(tool.exitCode, ExitCode::Refused);
    QVERIFY2(tool.errors.contains(QStringLiteral("nobody has no right to open ")), qUtf8Printable(tool.errors));
}

void tst_unitCommands::portsAsJson()
{
    const QJsonArray list = run({QStringLiteral("ports"), QStringLiteral("--json")}).json().array();
    QCOMPARE(list.size(), 1);
    QCOMPARE(list.at(0).toObject().value(QStringLiteral("port")).toString(), unit->portName());
    QCOMPARE(list.at(0).toObject().value(QStringLiteral("baudRate")).toInt(), 57600);
}

void tst_unitCommands::theSimulatedUnitNeedsNoPort()
{
    const ToolRun tool({QStringLiteral("ports"), QStringLiteral("--simulated-unit")});
    QCOMPARE(tool.exitCode, ExitCode::Done);
    QVERIFY(tool.results.contains(QStringLiteral("serial number 20417")));
}

void tst_unitCommands::whatIsNoSerialPortIsntWaitedFor()
{
    write(QStringLiteral("plain"), "no port");
    const ToolRun tool({QStringLiteral("time"), QStringLiteral("--port"), path(QStringLiteral("plain"))});
    QCOMPARE(tool.exitCode, ExitCode::Refused);
    QVERIFY2(tool.errors.contains(QStringLiteral("plain: ")), qUtf8Printable(tool.errors));
    QCOMPARE(content(QStringLiteral("plain")), QByteArray("no port"));
}

// The clock.

void tst_unitCommands::theClockIsComparedWithThisPc_data()
{
    QTest::addColumn<int>("offset");
    QTest::addColumn<QString>("minutes");
    QTest::addColumn<QString>("side");
    QTest::newRow("ahead") << 3 * 3600 + 120 << ", 3 h 2 min "
                           << " s ahead of this PC";
    QTest::newRow("behind") << -150 << ", 2 min "
                            << " s behind this PC";
    QTest::newRow("days") << -2 * 86400 - 30 << ", 2 days 0 h 0 min "
                          << " s behind this PC";
}

void tst_unitCommands::theClockIsComparedWithThisPc()
{
    QFETCH(int, offset);
    QFETCH(QString, minutes);
    QFETCH(QString, side);
    // Whole seconds are compared, so either neighbour may come out.
    unit->change([offset](UnitState& state) { state.clockOffset = offset + (offset > 0 ? 10 : -10); });
    const ToolRun tool = run({QStringLiteral("time")});
    QCOMPARE(tool.exitCode, ExitCode::Done);
    QVERIFY2(tool.results.contains(minutes) && tool.results.contains(side), qUtf8Printable(tool.results));
}

void tst_unitCommands::settingTheClockEndsTheDifference()
{
    unit->change([](UnitState& state) { state.clockOffset = 86400; });
    const ToolRun tool = run({QStringLiteral("time"), QStringLiteral("--set"), QStringLiteral("--json")});
    QCOMPARE(tool.exitCode, ExitCode::Done);
    QVERIFY(qAbs(tool.json().object().value(QStringLiteral("secondsAhead")).toInt()) <= 2);
    QCOMPARE(unit->requestCount(protocol_HUBN_NX_Q::Sync_Time), 1);
}

void tst_unitCommands::aUnitWithoutAClockSaysSo()
{
    unit->change([](UnitState& state) { state.timeRefusal = 3; });
    const ToolRun tool = run({QStringLiteral("time")});
    QCOMPARE(tool.exitCode, ExitCode::WithErrors);
    QVERIFY2(tool.errors.contains(QStringLiteral("doesn't tell its time: refused with code 3")),
             qUtf8Printable(tool.errors));
    QVERIFY(tool.results.isEmpty());
}

void tst_unitCommands::aClockThatIsntTakenIsAnError()
{
    unit->setFaults({UnitFault(UnitFault::Refuse).onRequest(protocol_HUBN_NX_Q::Sync_Time)});
    const ToolRun tool = run({QStringLiteral("time"), QStringLiteral("--set")});
    QCOMPARE(tool.exitCode, ExitCode::WithErrors);
    QVERIFY(tool.errors.contains(QStringLiteral("did not take the time")));
}

// The log.

void tst_unitCommands::namesWithPercentSignsAreTold()
{
    const ToolRun tool = run({QStringLiteral("log"), path(QStringLiteral("100%1.csv"))});
    QVERIFY2(tool.results.contains(QStringLiteral("100%1.csv: the unit announced 20 events, 20 came; ")),
             qUtf8Printable(tool.results));
}

void tst_unitCommands::theLogIsKeptInEachForm()
{
    for (const QString& suffix : {QStringLiteral("db"), QStringLiteral("csv"), QStringLiteral("json")}) {
        const QString name = QStringLiteral("log.") + suffix;
        const ToolRun tool = run({QStringLiteral("log"), path(name)});
        QVERIFY2(tool.exitCode == ExitCode::Done, qUtf8Printable(tool.errors));
        QVERIFY2(tool.results.contains(QStringLiteral("the unit announced 20 events, 20 came; ")),
                 qUtf8Printable(tool.results));
    }
    QCOMPARE(files(), QStringList({QStringLiteral("log.csv"), QStringLiteral("log.db"), QStringLiteral("log.json")}));

    const QJsonArray events = QJsonDocument::fromJson(content(QStringLiteral("log.json"))).array();
    QVERIFY(events.size() >= 20);
    const QList<QByteArray> lines = content(QStringLiteral("log.csv")).split('\n');
    QCOMPARE(lines.size(), events.size() + 2); // the headings, and nothing behind the last line end
    QVERIFY(lines.constFirst().startsWith("\xEF\xBB\xBF"
                                          "Date,Time,"));
    QVERIFY(lines.at(1).startsWith(events.at(0).toObject().value(QStringLiteral("Date")).toString().toUtf8() + ','));
    {
        QSqlDatabase database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("saved"));
        database.setDatabaseName(path(QStringLiteral("log.db")));
        QVERIFY(database.open());
        const QStringList tables = database.tables();
        QCOMPARE(tables.size(), 1);
        QSqlQuery query(QStringLiteral("SELECT COUNT(*) FROM ") + tables.constFirst(), database);
        QVERIFY(query.next());
        QCOMPARE(query.value(0).toInt(), events.size());
    }
    QSqlDatabase::removeDatabase(QStringLiteral("saved"));
}

void tst_unitCommands::aSuffixThatIsNoFormIsBadInput()
{
    const ToolRun tool = run({QStringLiteral("log"), path(QStringLiteral("log.txt"))});
    QCOMPARE(tool.exitCode, ExitCode::BadInput);
    QCOMPARE(unit->requestCount(), 0);
}

void tst_unitCommands::anExistingLogStays()
{
    write(QStringLiteral("log.csv"), "mine");
    QCOMPARE(run({QStringLiteral("log"), path(QStringLiteral("log.csv"))}).exitCode, ExitCode::Refused);
    QCOMPARE(content(QStringLiteral("log.csv")), QByteArray("mine"));
}

void tst_unitCommands::aLostBlockIsTold()
{
    unit->change([](UnitState& state) { state.repeatsLostLogBlock = false; });
    unit->setFaults({UnitFault(UnitFault::BadChecksum).onRequest(protocol_HUBN_NX_Q::Read_Log).from(2).times(1)});
    const ToolRun tool = run({QStringLiteral("log"), path(QStringLiteral("log.csv"))});
    QCOMPARE(tool.exitCode, ExitCode::WithErrors);
    QVERIFY2(tool.results.contains(QStringLiteral("announced 20 events, 16 came")), qUtf8Printable(tool.results));
    QVERIFY(tool.errors.contains(QStringLiteral("4 events are missing")));
}

void tst_unitCommands::aLogThatEndsEarlyKeepsWhatCame()
{
    unit->setFaults({UnitFault(UnitFault::Refuse).onRequest(protocol_HUBN_NX_Q::Read_Log).from(3)});
    const ToolRun tool = run({QStringLiteral("log"), path(QStringLiteral("log.csv"))});
    QCOMPARE(tool.exitCode, ExitCode::WithErrors);
    QVERIFY2(tool.errors.contains(QStringLiteral("ended early: refused with code 1")), qUtf8Printable(tool.errors));
    QVERIFY(tool.results.contains(QStringLiteral("8 came")));
    QCOMPARE(files(), QStringList{QStringLiteral("log.csv")});
}

void tst_unitCommands::anEmptyLogIsALog()
{
    unit->change([](UnitState& state) { state.log = LogRing(); });
    const ToolRun tool = run({QStringLiteral("log"), path(QStringLiteral("log.json"))});
    QVERIFY2(tool.exitCode == ExitCode::Done, qUtf8Printable(tool.errors));
    QVERIFY2(tool.results.contains(QStringLiteral("announced 0 events, 0 came; 0 rows")), qUtf8Printable(tool.results));
    QVERIFY(QJsonDocument::fromJson(content(QStringLiteral("log.json"))).isArray());
}

// Firmware.

void tst_unitCommands::firmwareIsLoaded()
{
    write(QStringLiteral("new.crypt"), image());
    const ToolRun tool = run({QStringLiteral("firmware"), path(QStringLiteral("new.crypt")), QStringLiteral("--yes")});
    QVERIFY2(tool.exitCode == ExitCode::Done, qUtf8Printable(tool.errors));
    QVERIFY(tool.results.endsWith(QStringLiteral("new.crypt: loaded, 1000 bytes\n")));
    QCOMPARE(unit->state().firmware, image());
}

void tst_unitCommands::withoutYesFirmwareIsRefusedWhereNobodyCanBeAsked()
{
    write(QStringLiteral("new.crypt"), image());
    const ToolRun tool = run({QStringLiteral("firmware"), path(QStringLiteral("new.crypt"))});
    QCOMPARE(tool.exitCode, ExitCode::Refused);
    QVERIFY(tool.errors.contains(QStringLiteral("--yes")));
    QCOMPARE(unit->requestCount(protocol_HUBN_NX_Q::Switch_To_Boot), 0);
}

void tst_unitCommands::aFileThatIsNoFirmwareIsBadInput()
{
    write(QStringLiteral("new.crypt"), "ab");
    for (const QString& name : {QStringLiteral("new.crypt"), QStringLiteral("none.crypt")}) {
        const ToolRun tool = run({QStringLiteral("firmware"), path(name), QStringLiteral("--yes")});
        QCOMPARE(tool.exitCode, ExitCode::BadInput);
        QVERIFY(tool.errors.contains(name));
    }
    QCOMPARE(unit->requestCount(), 0);
}

void tst_unitCommands::aFailedLoadCanBeBegunAgain()
{
    write(QStringLiteral("new.crypt"), image());
    unit->setFaults({UnitFault(UnitFault::Refuse).value(1).onBoot(5).from(3).times(4)});
    const QStringList line{QStringLiteral("firmware"), path(QStringLiteral("new.crypt")), QStringLiteral("--yes")};
    const ToolRun failed = run(line);
    QCOMPARE(failed.exitCode, ExitCode::WithErrors);
    QVERIFY2(failed.errors.contains(QStringLiteral("begin again")), qUtf8Printable(failed.errors));
    unit->setFaults({});
    // The unit waits in its bootloader, which answers no search.
    QVERIFY(unit->state().inBootloader);
    const ToolRun again = run(line);
    QVERIFY2(again.exitCode == ExitCode::Done, qUtf8Printable(again.errors));
    QVERIFY(again.errors.contains(QStringLiteral("maybe the unit is in its bootloader")));
    QCOMPARE(unit->state().firmware, image());
}

QTEST_GUILESS_MAIN(tst_unitCommands)
#include "tst_unitCommands.moc"
