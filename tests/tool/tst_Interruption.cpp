#include "UnitCommandTest.h"
#include "link/protocol_HUBN_NX_Q.h"
#include "support/Eventually.h"

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
    void aWritingSaysHowMuchIsInTheUnit();
    void aFirmwareLoadSaysWhatTheUnitWaitsFor();
    void aSearchEndsToo();

private:
    /// Starts the tool on the unit, sends the signal once the unit has heard so many requests of a type, and waits for
    /// the end.
    void interrupt(const QStringList& arguments, int requestType, int requests, int signal = SIGINT);

    QProcess tool;
    QString errors;
};

void tst_Interruption::init()
{
    makeUnit();
    unit->setPace(UnitSimulator::OfTheWire);
}

void tst_Interruption::interrupt(const QStringList& arguments, int requestType, int requests, int signal)
{
    tool.start(QStringLiteral(TOOL_PROGRAM), arguments + QStringList{QStringLiteral("--port"), unit->portName()});
    QVERIFY(tool.waitForStarted());
    QVERIFY(eventually([&] { return unit->requestCount(requestType) >= requests; }));
    QCOMPARE(::kill(pid_t(tool.processId()), signal), 0);
    QVERIFY(tool.state() == QProcess::NotRunning || tool.waitForFinished());
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

QTEST_GUILESS_MAIN(tst_Interruption)
#include "tst_Interruption.moc"
