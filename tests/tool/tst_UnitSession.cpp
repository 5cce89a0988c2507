#include "simulator/UnitSimulator.h"
#include "support/Eventually.h"
#include "tool/Console.h"
#include "tool/UnitSession.h"

#include <QBuffer>
#include <QCommandLineParser>
#include <QLoggingCategory>
#include <QSerialPort>
#include <QtTest>

/// The unit of a command among several ports.
class tst_UnitSession : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void whoUsesAPortLeavesTheOthersToOtherPrograms();
    void aSilentPortThatIsUsedIsKept();

private:
    QCommandLineParser commandLine;
};

void tst_UnitSession::initTestCase()
{
    QLoggingCategory::setFilterRules(QStringLiteral("default.debug=false"));
    commandLine.addOptions(
        {{QStringLiteral("port"), {}, QStringLiteral("name")}, {QStringLiteral("simulated-unit"), {}}});
    QVERIFY(commandLine.parse({QStringLiteral("hubn-tool")}));
}

void tst_UnitSession::whoUsesAPortLeavesTheOthersToOtherPrograms()
{
    const UnitSimulator one;
    const UnitSimulator two;
    QBuffer told;
    QVERIFY(told.open(QIODevice::WriteOnly));
    Console console(told, told, false);
    CoordinatorSeams seams;
    seams.portNames = [&] { return QStringList{one.portName(), two.portName()}; };
    UnitSession session(commandLine, console, seams);
    QCOMPARE(session.open(), ExitCode::Done);
    const QString used = session.port().name();
    QSerialPort other(used == one.portName() ? two.portName() : one.portName());
    EVENTUALLY(other.isOpen() || other.open(QIODevice::ReadWrite));
    QCOMPARE(session.port().info().state, StateCoordinatorConnected);
    QSerialPort same(used);
    QVERIFY(!same.open(QIODevice::ReadWrite));
}

void tst_UnitSession::aSilentPortThatIsUsedIsKept()
{
    UnitSimulator unit;
    unit.setFaults({UnitFault(UnitFault::LoseRequest)});
    QBuffer told;
    QVERIFY(told.open(QIODevice::WriteOnly));
    Console console(told, told, false);
    QCommandLineParser named;
    named.addOptions({{QStringLiteral("port"), {}, QStringLiteral("name")}, {QStringLiteral("simulated-unit"), {}}});
    QVERIFY(named.parse({QStringLiteral("hubn-tool"), QStringLiteral("--port"), unit.portName()}));
    UnitSession session(named, console);
    QCOMPARE(session.open(true), ExitCode::Done);
    QCOMPARE(session.port().name(), unit.portName());
    unit.setFaults({});
    // Who was stopped would ask nothing.
    const int asked = unit.requestCount();
    session.port().open();
    EVENTUALLY(unit.requestCount() > asked);
}

QTEST_GUILESS_MAIN(tst_UnitSession)
#include "tst_UnitSession.moc"
