#include "UnitCommandTest.h"
#include "link/protocol_HUBN_NX_Q.h"

namespace
{

using Protocol = protocol_HUBN_NX_Q;

/// The cable is pulled when a request comes for the nth time, and stays so.
UnitFault pulled(int request, int nth)
{
    return UnitFault(UnitFault::Unplug).onRequest(request).from(nth).times(1).value(0).amount(-1);
}

/// From the nth of these requests on the unit hears them no more.
UnitFault silent(int request, int nth)
{
    return UnitFault(UnitFault::LoseRequest).onRequest(request).from(nth);
}

} // namespace

/// A unit that is lost in the middle of each command: its port goes, or it falls silent.
class tst_LostUnit : public UnitCommandTest
{
    Q_OBJECT

private slots:
    void init();

    void aReadingWritesNoFile_data();
    void aReadingWritesNoFile();
    void ofManyFailedStepsTheFirstAreTold();
    void aConfirmedReadingEndsToo();
    void aPartialReadingKeepsTheRest();
    void neitherAComparisonNorAReportIsMade_data();
    void neitherAComparisonNorAReportIsMade();
    void aWritingNamesWhatTheUnitDidNotTake_data();
    void aWritingNamesWhatTheUnitDidNotTake();
    void withoutABackupNothingIsWritten_data();
    void withoutABackupNothingIsWritten();
    void aVerificationNamesWhatCouldNotBeReadBack_data();
    void aVerificationNamesWhatCouldNotBeReadBack();
    void aLogKeepsWhatCame_data();
    void aLogKeepsWhatCame();
    void aLogOfWhichNothingCameIsNone_data();
    void aLogOfWhichNothingCameIsNone();
    void aClockIsNotTold_data();
    void aClockIsNotTold();
    void aClockIsNotSet_data();
    void aClockIsNotSet();
    void firmwareIsToBeLoadedAgain_data();
    void firmwareIsToBeLoadedAgain();

private:
    /// A row for each way to lose the unit, with the reason that is told.
    static void addWays(int request, int nth);
    void lose();
    QString readFile();
};

void tst_LostUnit::init()
{
    makeUnit();
}

void tst_LostUnit::addWays(int request, int nth)
{
    QTest::addColumn<UnitFault>("fault");
    QTest::addColumn<QString>("reason");
    QTest::newRow("port lost") << pulled(request, nth) << "the port failed";
    QTest::newRow("unit silent") << silent(request, nth) << "no answer";
}

void tst_LostUnit::lose()
{
    QFETCH(UnitFault, fault);
    unit->setFaults({fault});
}

/// A file with what the unit holds.
QString tst_LostUnit::readFile()
{
    const QString file = path(QStringLiteral("a.cfg"));
    run({QStringLiteral("read"), file});
    unit->clearRequests();
    return file;
}

void tst_LostUnit::aReadingWritesNoFile_data()
{
    addWays(Protocol::Read_Script, 30);
}

void tst_LostUnit::aReadingWritesNoFile()
{
    QFETCH(QString, reason);
    lose();
    write(QStringLiteral("a.cfg"), "mine");
    const ToolRun tool = run({QStringLiteral("read"), path(QStringLiteral("a.cfg")), QStringLiteral("--force")});
    QCOMPARE(tool.exitCode, ExitCode::WithErrors);
    QVERIFY2(!tool.errors.contains(QStringLiteral("script 29: ")), qUtf8Printable(tool.errors));
    for (const QString& script : {QStringLiteral("30"), QStringLiteral("31"), QStringLiteral("32")}) {
        QVERIFY2(tool.errors.contains(QStringLiteral("script %1: %2\n").arg(script, reason)),
                 qUtf8Printable(tool.errors));
    }
    QVERIFY(tool.errors.contains(QStringLiteral("a.cfg was not written")));
    QVERIFY(tool.results.isEmpty());
    QCOMPARE(content(QStringLiteral("a.cfg")), QByteArray("mine"));
    QCOMPARE(files(), QStringList{QStringLiteral("a.cfg")});
}

void tst_LostUnit::ofManyFailedStepsTheFirstAreTold()
{
    unit->setFaults({pulled(Protocol::Read_Config, 1)});
    const ToolRun tool = run({QStringLiteral("read"), path(QStringLiteral("a.cfg"))});
    QCOMPARE(tool.exitCode, ExitCode::WithErrors);
    QVERIFY2(tool.errors.contains(QStringLiteral("output 1 of the head unit: the port failed\n")),
             qUtf8Printable(tool.errors));
    QVERIFY2(tool.errors.contains(QStringLiteral(": 92 more steps failed\n")), qUtf8Printable(tool.errors));
    QVERIFY(tool.errors.count(QLatin1Char('\n')) < 15);
    QVERIFY(files().isEmpty());
}

void tst_LostUnit::aConfirmedReadingEndsToo()
{
    unit->setFaults({pulled(Protocol::Read_Config, 100)});
    const ToolRun tool = run({QStringLiteral("read"), path(QStringLiteral("a.cfg")), QStringLiteral("--confirm")});
    QCOMPARE(tool.exitCode, ExitCode::WithErrors);
    QVERIFY2(tool.errors.contains(QStringLiteral(": the port failed\n")), qUtf8Printable(tool.errors));
    QVERIFY(files().isEmpty());
}

void tst_LostUnit::aPartialReadingKeepsTheRest()
{
    unit->setFaults({pulled(Protocol::Read_Script, 30)});
    const ToolRun tool = run({QStringLiteral("read"), path(QStringLiteral("a.cfg")), QStringLiteral("--partial")});
    QCOMPARE(tool.exitCode, ExitCode::WithErrors);
    QVERIFY2(tool.results.contains(QStringLiteral(" 29 scripts")), qUtf8Printable(tool.results));
    QCOMPARE(files(), QStringList{QStringLiteral("a.cfg")});
}

void tst_LostUnit::neitherAComparisonNorAReportIsMade_data()
{
    addWays(Protocol::Read_Script, 30);
}

void tst_LostUnit::neitherAComparisonNorAReportIsMade()
{
    QFETCH(QString, reason);
    const QString file = readFile();
    for (const QStringList& line : {QStringList{QStringLiteral("diff"), file, QStringLiteral("unit")},
                                    QStringList{QStringLiteral("report"), QStringLiteral("unit"), QStringLiteral("-o"),
                                                path(QStringLiteral("site.html"))}}) {
        QVERIFY(unit->plugIn());
        lose();
        const ToolRun tool = run(line);
        QCOMPARE(tool.exitCode, ExitCode::Refused);
        QVERIFY2(tool.errors.contains(QStringLiteral("script 30: ") + reason), qUtf8Printable(tool.errors));
        QVERIFY2(tool.errors.contains(QStringLiteral("could not be read whole")), qUtf8Printable(tool.errors));
        QVERIFY(tool.results.isEmpty());
    }
    QCOMPARE(files(), QStringList{QStringLiteral("a.cfg")});
}

void tst_LostUnit::aWritingNamesWhatTheUnitDidNotTake_data()
{
    addWays(Protocol::Write_Script, 31);
}

void tst_LostUnit::aWritingNamesWhatTheUnitDidNotTake()
{
    QFETCH(QString, reason);
    const QString file = readFile();
    lose();
    const ToolRun tool = run({QStringLiteral("write"), file});
    QCOMPARE(tool.exitCode, ExitCode::WithErrors);
    const QStringList lines = tool.results.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    QCOMPARE(lines.size(), 3);
    QVERIFY2(lines.at(0).startsWith(QStringLiteral("script 31 ")) &&
                 lines.at(0).endsWith(QStringLiteral(": ") + reason),
             qUtf8Printable(lines.at(0)));
    QVERIFY2(lines.at(1).startsWith(QStringLiteral("script 32 ")) &&
                 lines.at(1).endsWith(QStringLiteral(": ") + reason),
             qUtf8Printable(lines.at(1)));
    QVERIFY2(lines.at(2).endsWith(QStringLiteral("2 of them failed")), qUtf8Printable(lines.at(2)));
}

void tst_LostUnit::withoutABackupNothingIsWritten_data()
{
    addWays(Protocol::Read_Script, 30);
}

void tst_LostUnit::withoutABackupNothingIsWritten()
{
    QFETCH(QString, reason);
    const QString file = readFile();
    write(QStringLiteral("old.cfg"), "mine");
    lose();
    const ToolRun tool = run({QStringLiteral("write"), file, QStringLiteral("--backup"),
                              path(QStringLiteral("old.cfg")), QStringLiteral("--force")});
    QCOMPARE(tool.exitCode, ExitCode::Refused);
    QVERIFY2(tool.errors.contains(QStringLiteral("script 30: ") + reason), qUtf8Printable(tool.errors));
    QVERIFY(tool.errors.contains(QStringLiteral("without a whole backup nothing is written")));
    QCOMPARE(unit->requestCount(Protocol::Write_Config) + unit->requestCount(Protocol::Write_Script), 0);
    QCOMPARE(content(QStringLiteral("old.cfg")), QByteArray("mine"));
    QCOMPARE(files(), QStringList({QStringLiteral("a.cfg"), QStringLiteral("old.cfg")}));
}

void tst_LostUnit::aVerificationNamesWhatCouldNotBeReadBack_data()
{
    addWays(Protocol::Read_Script, 31);
}

void tst_LostUnit::aVerificationNamesWhatCouldNotBeReadBack()
{
    QFETCH(QString, reason);
    const QString file = readFile();
    lose();
    const ToolRun tool = run({QStringLiteral("write"), file, QStringLiteral("--verify")});
    QCOMPARE(tool.exitCode, ExitCode::WithErrors);
    QVERIFY2(tool.errors.contains(QStringLiteral("script 31: ") + reason), qUtf8Printable(tool.errors));
    const QStringList lines = tool.results.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    QCOMPARE(lines.size(), 3);
    QVERIFY2(lines.at(0).startsWith(QStringLiteral("script 31 ")) &&
                 lines.at(0).endsWith(QStringLiteral("could not be read back")),
             qUtf8Printable(lines.at(0)));
    QVERIFY2(lines.at(2).endsWith(QStringLiteral("2 of them differ")), qUtf8Printable(lines.at(2)));
}

void tst_LostUnit::aLogKeepsWhatCame_data()
{
    addWays(Protocol::Read_Log, 4);
}

void tst_LostUnit::aLogKeepsWhatCame()
{
    QFETCH(QString, reason);
    lose();
    const ToolRun tool = run({QStringLiteral("log"), path(QStringLiteral("log.json"))});
    QCOMPARE(tool.exitCode, ExitCode::WithErrors);
    QVERIFY2(tool.errors.contains(QStringLiteral("the reading ended early: ") + reason), qUtf8Printable(tool.errors));
    QVERIFY2(tool.results.contains(QStringLiteral("announced 20 events, 12 came")), qUtf8Printable(tool.results));
    QVERIFY(QJsonDocument::fromJson(content(QStringLiteral("log.json"))).isArray());
}

void tst_LostUnit::aLogOfWhichNothingCameIsNone_data()
{
    addWays(Protocol::Read_Log, 1);
}

void tst_LostUnit::aLogOfWhichNothingCameIsNone()
{
    QFETCH(QString, reason);
    write(QStringLiteral("log.csv"), "mine");
    lose();
    const ToolRun tool = run({QStringLiteral("log"), path(QStringLiteral("log.csv")), QStringLiteral("--force")});
    QCOMPARE(tool.exitCode, ExitCode::WithErrors);
    QVERIFY2(tool.errors.contains(QStringLiteral("the reading ended early: ") + reason), qUtf8Printable(tool.errors));
    QVERIFY2(tool.errors.contains(QStringLiteral("log.csv was not written")), qUtf8Printable(tool.errors));
    QCOMPARE(content(QStringLiteral("log.csv")), QByteArray("mine"));
    QCOMPARE(files(), QStringList{QStringLiteral("log.csv")});
}

void tst_LostUnit::aClockIsNotTold_data()
{
    addWays(Protocol::Read_Time, 1);
}

void tst_LostUnit::aClockIsNotTold()
{
    QFETCH(QString, reason);
    lose();
    const ToolRun tool = run({QStringLiteral("time")});
    QCOMPARE(tool.exitCode, ExitCode::WithErrors);
    QVERIFY2(tool.errors.contains(QStringLiteral("the unit doesn't tell its time: ") + reason),
             qUtf8Printable(tool.errors));
    QVERIFY(tool.results.isEmpty());
}

void tst_LostUnit::aClockIsNotSet_data()
{
    addWays(Protocol::Sync_Time, 1);
}

void tst_LostUnit::aClockIsNotSet()
{
    lose();
    const ToolRun tool = run({QStringLiteral("time"), QStringLiteral("--set")});
    QCOMPARE(tool.exitCode, ExitCode::WithErrors);
    QVERIFY2(tool.errors.contains(QStringLiteral("the unit did not take the time")), qUtf8Printable(tool.errors));
    QVERIFY(tool.results.isEmpty());
}

void tst_LostUnit::firmwareIsToBeLoadedAgain_data()
{
    constexpr int fullBlock = 5;
    QTest::addColumn<UnitFault>("fault");
    QTest::addColumn<QString>("reason");
    QTest::newRow("port lost") << UnitFault(UnitFault::Unplug).onBoot(fullBlock).from(3).times(1).value(0).amount(-1)
                               << "the port failed";
    QTest::newRow("unit silent") << UnitFault(UnitFault::LoseRequest).onBoot(fullBlock).from(3)
                                 << "the unit does not answer";
}

void tst_LostUnit::firmwareIsToBeLoadedAgain()
{
    QFETCH(QString, reason);
    write(QStringLiteral("new.crypt"), QByteArray(2000, 'f'));
    lose();
    const ToolRun tool = run({QStringLiteral("firmware"), path(QStringLiteral("new.crypt")), QStringLiteral("--yes")});
    QCOMPARE(tool.exitCode, ExitCode::WithErrors);
    QVERIFY2(tool.errors.contains(reason + QStringLiteral("; begin again")), qUtf8Printable(tool.errors));
    QVERIFY(tool.results.isEmpty());
    QVERIFY(!unit->state().firmwareComplete);
}

QTEST_GUILESS_MAIN(tst_LostUnit)
#include "tst_LostUnit.moc"
