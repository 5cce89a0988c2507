#include "UnitCommandTest.h"
#include "link/protocol_HUBN_NX_Q.h"
#include "support/Eventually.h"
#include "tool/Interruption.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QProcess>
#include <QRegularExpression>

#include <csignal>

/// The tool as a process that somebody wants to end in the middle of its work.
class tst_Interruption : public UnitCommandTest
{
    Q_OBJECT

private slots:
    void init();

    void aReadingLeavesNoFileAndSaysHowFarItWas_data();
    void aReadingLeavesNoFileAndSaysHowFarItWas();
    void aReadingLeavesTheFileOfBefore();
    void aReadingAsJsonTellsHowFarItWas();
    void aReportOfAUnitLeavesNoFile();
    void aWritingSaysHowMuchIsInTheUnit();
    void aBackupIsNoneAndNothingIsWritten();
    void aVerificationSaysThatAllIsWritten();
    void aLogLeavesNoFileAndSaysHowFarItWas();
    void aQuestionForTheTime();
    void aClockSaysWhetherItWasSet_data();
    void aClockSaysWhetherItWasSet();
    void aFirmwareLoadSaysWhatTheUnitWaitsFor();
    void aSearchEndsToo();
    void aDecodingTellsWhatItHasRead_data();
    void aDecodingTellsWhatItHasRead();
    void aWishIsSharedByThoseWithin();
    void aWishAfterTheReadingLeavesNoReport_data();
    void aWishAfterTheReadingLeavesNoReport();
    void aWishBetweenTheSidesEndsAComparison();

private:
    /// Starts the tool on the unit, sends the signal once the unit has heard so many requests of a type, and waits for
    /// the end.
    void interrupt(const QStringList& arguments, int requestType, int requests, int signal = SIGINT);

    QProcess tool;
    QString results;
    QString errors;
};

void tst_Interruption::init()
{
    makeUnit();
    unit->setPace(UnitSimulator::OfTheWire);
}

void tst_Interruption::interrupt(const QStringList& arguments, int requestType, int requests, int signal)
{
    unit->clearRequests();
    tool.start(QStringLiteral(TOOL_PROGRAM), arguments + QStringList{QStringLiteral("--port"), unit->portName()});
    QVERIFY(tool.waitForStarted());
    QVERIFY(eventually([&] { return unit->requestCount(requestType) >= requests; }));
    QCOMPARE(::kill(pid_t(tool.processId()), signal), 0);
    QVERIFY(tool.state() == QProcess::NotRunning || tool.waitForFinished());
    results = QString::fromUtf8(tool.readAllStandardOutput());
    errors = QString::fromUtf8(tool.readAllStandardError());
    QVERIFY2(tool.exitStatus() == QProcess::NormalExit, qUtf8Printable(errors));
    QVERIFY2(tool.exitCode() == int(ExitCode::Interrupted), qUtf8Printable(errors));
}

void tst_Interruption::aReadingLeavesNoFileAndSaysHowFarItWas_data()
{
    QTest::addColumn<int>("signal");
    QTest::newRow("Ctrl+C") << SIGINT;
    QTest::newRow("end of the session") << SIGTERM;
    QTest::newRow("terminal closed") << SIGHUP;
}

void tst_Interruption::aReadingLeavesNoFileAndSaysHowFarItWas()
{
    QFETCH(int, signal);
    interrupt({QStringLiteral("read"), path(QStringLiteral("a.cfg"))}, protocol_HUBN_NX_Q::Read_Config, 10, signal);
    QVERIFY2(errors.contains(QStringLiteral("interrupted after ")) &&
                 errors.contains(QStringLiteral("a.cfg was not written")),
             qUtf8Printable(errors));
    QVERIFY(files().isEmpty());
}

void tst_Interruption::aReadingLeavesTheFileOfBefore()
{
    write(QStringLiteral("a.cfg"), "mine");
    interrupt({QStringLiteral("read"), path(QStringLiteral("a.cfg")), QStringLiteral("--force")},
              protocol_HUBN_NX_Q::Read_Script, 1);
    QCOMPARE(content(QStringLiteral("a.cfg")), QByteArray("mine"));
    QCOMPARE(files(), QStringList{QStringLiteral("a.cfg")});
}

void tst_Interruption::aReadingAsJsonTellsHowFarItWas()
{
    interrupt({QStringLiteral("read"), path(QStringLiteral("a.cfg")), QStringLiteral("--json")},
              protocol_HUBN_NX_Q::Read_Config, 10);
    const QJsonObject object = QJsonDocument::fromJson(results.toUtf8()).object();
    QVERIFY2(object.value(QStringLiteral("error"))
                 .toString()
                 .startsWith(
                     QStringLiteral("interrupted after %1 steps").arg(object.value(QStringLiteral("steps")).toInt())),
             qUtf8Printable(results));
    QVERIFY(object.value(QStringLiteral("steps")).toInt() > 0);
    QCOMPARE(object.value(QStringLiteral("port")).toString(), unit->portName());
}

void tst_Interruption::aReportOfAUnitLeavesNoFile()
{
    interrupt(
        {QStringLiteral("report"), QStringLiteral("unit"), QStringLiteral("-o"), path(QStringLiteral("site.html"))},
        protocol_HUBN_NX_Q::Read_Config, 10);
    QVERIFY2(errors.contains(QStringLiteral("interrupted while the unit was being read")), qUtf8Printable(errors));
    QVERIFY(files().isEmpty());
}

void tst_Interruption::aWritingSaysHowMuchIsInTheUnit()
{
    QCOMPARE(run({QStringLiteral("read"), path(QStringLiteral("a.cfg"))}).exitCode, ExitCode::Done);
    interrupt({QStringLiteral("write"), path(QStringLiteral("a.cfg"))}, protocol_HUBN_NX_Q::Write_Config, 5);
    static const QRegularExpression told(QStringLiteral("interrupted: (\\d+) of (\\d+) records were written"));
    const QRegularExpressionMatch match = told.match(errors);
    QVERIFY2(match.hasMatch(), qUtf8Printable(errors));
    const int written =
        unit->requestCount(protocol_HUBN_NX_Q::Write_Config) + unit->requestCount(protocol_HUBN_NX_Q::Write_Script);
    QVERIFY2(match.captured(1).toInt() == written, qUtf8Printable(errors));
    QVERIFY(written < match.captured(2).toInt());
}

void tst_Interruption::aBackupIsNoneAndNothingIsWritten()
{
    QCOMPARE(run({QStringLiteral("read"), path(QStringLiteral("a.cfg"))}).exitCode, ExitCode::Done);
    write(QStringLiteral("old.cfg"), "mine");
    interrupt({QStringLiteral("write"), path(QStringLiteral("a.cfg")), QStringLiteral("--backup"),
               path(QStringLiteral("old.cfg")), QStringLiteral("--force")},
              protocol_HUBN_NX_Q::Read_Config, 10);
    QVERIFY2(errors.contains(QStringLiteral("interrupted; nothing was written")), qUtf8Printable(errors));
    QCOMPARE(unit->requestCount(protocol_HUBN_NX_Q::Write_Config), 0);
    QCOMPARE(unit->requestCount(protocol_HUBN_NX_Q::Write_Script), 0);
    QCOMPARE(content(QStringLiteral("old.cfg")), QByteArray("mine"));
    QCOMPARE(files(), QStringList({QStringLiteral("a.cfg"), QStringLiteral("old.cfg")}));
}

void tst_Interruption::aVerificationSaysThatAllIsWritten()
{
    QCOMPARE(run({QStringLiteral("read"), path(QStringLiteral("a.cfg"))}).exitCode, ExitCode::Done);
    interrupt({QStringLiteral("write"), path(QStringLiteral("a.cfg")), QStringLiteral("--verify")},
              protocol_HUBN_NX_Q::Read_Config, 10);
    QVERIFY2(errors.contains(QStringLiteral("interrupted before it was verified")), qUtf8Printable(errors));
    QVERIFY2(results.endsWith(QStringLiteral(" outputs and 32 scripts written\n")), qUtf8Printable(results));
    QCOMPARE(unit->requestCount(protocol_HUBN_NX_Q::Write_Script), 32);
}

void tst_Interruption::aLogLeavesNoFileAndSaysHowFarItWas()
{
    constexpr int manyEvents = 4000;
    unit->setState(demoInstallation(1, manyEvents, QDateTime(QDate(2026, 3, 12), QTime(14, 5))));
    write(QStringLiteral("log.csv"), "mine");
    interrupt({QStringLiteral("log"), path(QStringLiteral("log.csv")), QStringLiteral("--force")},
              protocol_HUBN_NX_Q::Read_Log, 5);
    static const QRegularExpression told(
        QStringLiteral("interrupted after (\\d+) blocks; .*log\\.csv was not written"));
    const QRegularExpressionMatch match = told.match(errors);
    QVERIFY2(match.hasMatch(), qUtf8Printable(errors));
    QVERIFY2(match.captured(1).toInt() == unit->requestCount(protocol_HUBN_NX_Q::Read_Log), qUtf8Printable(errors));
    QCOMPARE(content(QStringLiteral("log.csv")), QByteArray("mine"));
    QCOMPARE(files(), QStringList{QStringLiteral("log.csv")});
}

void tst_Interruption::aQuestionForTheTime()
{
    unit->setFaults({UnitFault(UnitFault::LoseRequest).onRequest(protocol_HUBN_NX_Q::Read_Time)});
    interrupt({QStringLiteral("time")}, protocol_HUBN_NX_Q::Read_Time, 1);
    QVERIFY2(errors.endsWith(QStringLiteral(": interrupted\n")), qUtf8Printable(errors));
    QVERIFY(results.isEmpty());
}

void tst_Interruption::aClockSaysWhetherItWasSet_data()
{
    QTest::addColumn<int>("lostRequest");
    QTest::addColumn<QString>("told");
    QTest::newRow("set") << int(protocol_HUBN_NX_Q::Read_Time) << "interrupted; the clock was set";
    QTest::newRow("not set") << int(protocol_HUBN_NX_Q::Sync_Time)
                             << "interrupted; the unit has not said that it took the time";
}

void tst_Interruption::aClockSaysWhetherItWasSet()
{
    QFETCH(int, lostRequest);
    QFETCH(QString, told);
    unit->setFaults({UnitFault(UnitFault::LoseRequest).onRequest(lostRequest)});
    interrupt({QStringLiteral("time"), QStringLiteral("--set")}, lostRequest, 1);
    QVERIFY2(errors.contains(told), qUtf8Printable(errors));
    QVERIFY(results.isEmpty());
}

void tst_Interruption::aFirmwareLoadSaysWhatTheUnitWaitsFor()
{
    write(QStringLiteral("new.crypt"), QByteArray(100000, 'f'));
    tool.start(QStringLiteral(TOOL_PROGRAM), {QStringLiteral("firmware"), path(QStringLiteral("new.crypt")),
                                              QStringLiteral("--yes"), QStringLiteral("--port"), unit->portName()});
    QVERIFY(tool.waitForStarted());
    QVERIFY(eventually([&] { return unit->bootRequestCount(5) >= 5; }));
    QCOMPARE(::kill(pid_t(tool.processId()), SIGINT), 0);
    QVERIFY(tool.state() == QProcess::NotRunning || tool.waitForFinished());
    errors = QString::fromUtf8(tool.readAllStandardError());
    QCOMPARE(tool.exitCode(), int(ExitCode::Interrupted));
    QVERIFY2(errors.contains(QStringLiteral("load again")), qUtf8Printable(errors));
}

void tst_Interruption::aSearchEndsToo()
{
    unit->setFaults({UnitFault(UnitFault::LoseRequest)});
    interrupt({QStringLiteral("read"), path(QStringLiteral("a.cfg"))}, 0, 1);
    QVERIFY2(errors.contains(QStringLiteral("interrupted; nothing was done")), qUtf8Printable(errors));
}

void tst_Interruption::aDecodingTellsWhatItHasRead_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::newRow("lines") << QStringList();
    QTest::newRow("a document") << QStringList{QStringLiteral("--json")};
}

void tst_Interruption::aDecodingTellsWhatItHasRead()
{
    QFETCH(QStringList, options);
    tool.start(QStringLiteral(TOOL_PROGRAM), QStringList{QStringLiteral("decode")} + options);
    QVERIFY(tool.waitForStarted());
    // What is told of the wrong line says that the right one has been read, and half a one is to come.
    tool.write("c1 86 01 00 01 05 2b e8\nwrong\nc1 86");
    errors.clear();
    QVERIFY(eventually([&] {
        errors += QString::fromUtf8(tool.readAllStandardError());
        return errors.contains(QStringLiteral("line 2: "));
    }));
    QCOMPARE(::kill(pid_t(tool.processId()), SIGINT), 0);
    QVERIFY(tool.state() == QProcess::NotRunning || tool.waitForFinished());
    errors += QString::fromUtf8(tool.readAllStandardError());
    const QByteArray told = tool.readAllStandardOutput();
    QCOMPARE(tool.exitStatus(), QProcess::NormalExit);
    QVERIFY2(tool.exitCode() == int(ExitCode::Interrupted), qUtf8Printable(errors));
    QVERIFY2(errors.contains(QStringLiteral("interrupted after 1 packet\n")), qUtf8Printable(errors));
    QVERIFY2(!errors.contains(QStringLiteral("line 3")), qUtf8Printable(errors));
    if (options.isEmpty()) {
        QVERIFY2(told.endsWith("checksum E82B, right\n"), told.constData());
    } else {
        QCOMPARE(QJsonDocument::fromJson(told).array().size(), 1);
    }
}

void tst_Interruption::aWishIsSharedByThoseWithin()
{
    Interruption outer;
    QVERIFY(!outer.isRequested());
    {
        Interruption inner;
        QSignalSpy told(&inner, &Interruption::requested);
        QCOMPARE(std::raise(SIGINT), 0);
        QTRY_COMPARE(told.size(), 1);
        QVERIFY(inner.isRequested());
    }
    QVERIFY(outer.isRequested());
    QVERIFY(Interruption().isRequested());
    QCOMPARE(std::raise(SIGINT), 0); // or that would be the end
}

void tst_Interruption::aWishAfterTheReadingLeavesNoReport_data()
{
    QTest::addColumn<QString>("document");
    QTest::newRow("for a browser") << "site.html";
    QTest::newRow("to the standard output") << QString();
}

void tst_Interruption::aWishAfterTheReadingLeavesNoReport()
{
    QFETCH(QString, document);
    QCOMPARE(run({QStringLiteral("read"), path(QStringLiteral("a.cfg"))}).exitCode, ExitCode::Done);
    QStringList line{QStringLiteral("report"), path(QStringLiteral("a.cfg"))};
    if (!document.isEmpty()) {
        line += {QStringLiteral("-o"), path(document)};
    }
    const Interruption before;
    QCOMPARE(std::raise(SIGTERM), 0);
    const ToolRun report(line);
    QCOMPARE(report.exitCode, ExitCode::Interrupted);
    QVERIFY2(report.errors.contains(QStringLiteral(" was not written\n")), qUtf8Printable(report.errors));
    QVERIFY(report.results.isEmpty());
    QCOMPARE(files(), QStringList{QStringLiteral("a.cfg")});
}

void tst_Interruption::aWishBetweenTheSidesEndsAComparison()
{
    QCOMPARE(run({QStringLiteral("read"), path(QStringLiteral("a.cfg"))}).exitCode, ExitCode::Done);
    unit->clearRequests();
    const Interruption before;
    QCOMPARE(std::raise(SIGINT), 0);
    const ToolRun withUnit = run({QStringLiteral("diff"), path(QStringLiteral("a.cfg")), QStringLiteral("unit")});
    QCOMPARE(withUnit.exitCode, ExitCode::Interrupted);
    QCOMPARE(unit->requestCount(), 0);
    const ToolRun ofFiles({QStringLiteral("diff"), path(QStringLiteral("a.cfg")), path(QStringLiteral("a.cfg"))});
    QCOMPARE(ofFiles.exitCode, ExitCode::Interrupted);
    QVERIFY2(ofFiles.errors.contains(QStringLiteral("nothing was compared")), qUtf8Printable(ofFiles.errors));
}

QTEST_GUILESS_MAIN(tst_Interruption)
#include "tst_Interruption.moc"
