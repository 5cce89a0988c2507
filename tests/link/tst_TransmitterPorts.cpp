#include "link/TransmitterBench.h"
#include "support/DebugLines.h"

#include <QtTest>

using P = protocol_HUBN_NX_Q;

/// Opening, checking and closing the port, its states, and the rates that requests ask for.
class tst_TransmitterPorts : public QObject
{
    Q_OBJECT

private slots:
    void makesItsRecordsKnownToQueuedSignals();
    void opensItsPort();
    void missingPortIsReportedTwice();
    void checkOpensAnewUnderTheSameName();
    void checkTakesAnotherName();
    void checkLeavesTheQueueAndTheRequestInFlight();
    void closeReportsTheStateAlsoIfClosed();
    void ignoresWhatIsMeantForOthers();
    void portErrors_data();
    void portErrors();
    void missingPortIsReportedOnce();

    void firstRequestChangesTheRate();
    void reportsEachChangeOfTheRateOnce();

    void diagnosticLines();
};

void tst_TransmitterPorts::makesItsRecordsKnownToQueuedSignals()
{
    // The first test of all: nothing else may have registered them before.
    QCOMPARE(QMetaType::type("message"), int(QMetaType::UnknownType));
    const Transmitter worker;
    QVERIFY(QMetaType::type("message") != QMetaType::UnknownType);
    QVERIFY(QMetaType::type("StatePort") != QMetaType::UnknownType);
}

void tst_TransmitterPorts::opensItsPort()
{
    const DebugLines debug;
    Bench bench;
    bench.worker.sl_initialization(&bench.worker, bench.line.portName());
    QCOMPARE(bench.states, (QList<int>{StateConnecting, StateSearching}));
    QVERIFY(bench.port()->isOpen());
    QCOMPARE(bench.port()->baudRate(), 1200);
    QCOMPARE(bench.line.baudRate(), 1200);
    QCOMPARE(bench.port()->dataBits(), QSerialPort::Data8);
    QCOMPARE(bench.port()->parity(), QSerialPort::NoParity);
    QCOMPARE(bench.port()->stopBits(), QSerialPort::OneStop);
    QCOMPARE(bench.port()->flowControl(), QSerialPort::NoFlowControl);
    QCOMPARE(debug.lines().size(), 1);
    QVERIFY(debug.lines().constFirst().endsWith(QStringLiteral("): CREATE AND OPEN!")));
}

void tst_TransmitterPorts::missingPortIsReportedTwice()
{
    const DebugLines debug;
    Bench bench;
    bench.worker.sl_initialization(&bench.worker, QStringLiteral("pts/nowhere"));
    QCOMPARE(bench.states, (QList<int>{StateConnecting, StateNotFound, StateNotFound}));
    QVERIFY(!bench.port()->isOpen());
    QCOMPARE(debug.lines().size(), 1);
    QVERIFY(debug.lines().constFirst().endsWith(QStringLiteral("): PORT NOT FOUND!")));
}

void tst_TransmitterPorts::checkOpensAnewUnderTheSameName()
{
    Bench bench;
    bench.open();
    bench.send(request("a"));
    QTRY_COMPARE_WITH_TIMEOUT(bench.line.baudRate(), 57600, ends);
    bench.worker.sl_CheckPort(&bench.worker, {});
    QCOMPARE(bench.states, (QList<int>{StateConnecting, StateSearching}));
    QCOMPARE(bench.line.baudRate(), 1200);
    QCOMPARE(bench.port()->portName(), bench.line.portName());
}

void tst_TransmitterPorts::checkTakesAnotherName()
{
    const PseudoTerminal other;
    Bench bench;
    bench.open();
    bench.worker.sl_CheckPort(&bench.worker, other.portName());
    QCOMPARE(bench.states, (QList<int>{StateConnecting, StateSearching}));
    QCOMPARE(bench.port()->portName(), other.portName());
}

void tst_TransmitterPorts::checkLeavesTheQueueAndTheRequestInFlight()
{
    Bench bench;
    bench.open();
    bench.send(request("a"));
    bench.send(request("b"));
    bench.worker.sl_CheckPort(&bench.worker, {});
    QVERIFY(bench.answers.isEmpty());
    QTRY_COMPARE_WITH_TIMEOUT(bench.answeredRequests(), (QByteArrayList{"a", "b"}), ends);
    QVERIFY(bench.answers.at(1).timedOut() && !bench.answers.at(1).portFailed());
}

void tst_TransmitterPorts::closeReportsTheStateAlsoIfClosed()
{
    Bench bench;
    bench.open();
    bench.worker.sl_ClosePort(&bench.worker);
    QVERIFY(!bench.port()->isOpen());
    bench.worker.sl_ClosePort(&bench.worker);
    QCOMPARE(bench.states, (QList<int>{StatePortDisabled, StatePortDisabled}));
}

void tst_TransmitterPorts::ignoresWhatIsMeantForOthers()
{
    Transmitter other;
    Bench bench;
    bench.worker.sl_initialization(&other, bench.line.portName());
    QVERIFY(bench.port() == nullptr);
    bench.open();
    bench.worker.sl_CheckPort(&other, {});
    bench.worker.sl_ClosePort(nullptr);
    bench.worker.sl_AddRequestInQueue(&other, request("a"));
    QVERIFY(bench.states.isEmpty());
    QVERIFY(bench.shownRequests.isEmpty());
    QVERIFY(bench.port()->isOpen());
}

void tst_TransmitterPorts::portErrors_data()
{
    QTest::addColumn<QSerialPort::SerialPortError>("error");
    QTest::addColumn<QList<int>>("states");
    QTest::addColumn<QString>("line");

    const QString notFound = QStringLiteral("): PORT NOT FOUND!");
    const QString openError = QStringLiteral("): ERROR OPEN!");
    const QString readWrite = QStringLiteral("): ERROR WRITE / READ !");
    QTest::newRow("device not found") << QSerialPort::DeviceNotFoundError << QList<int>{3} << notFound;
    QTest::newRow("resource") << QSerialPort::ResourceError << QList<int>{3} << notFound;
    QTest::newRow("permission") << QSerialPort::PermissionError << QList<int>{2} << openError;
    QTest::newRow("open") << QSerialPort::OpenError << QList<int>{2} << openError;
    QTest::newRow("unknown") << QSerialPort::UnknownError << QList<int>{2} << openError;
    QTest::newRow("write") << QSerialPort::WriteError << QList<int>{} << readWrite;
    QTest::newRow("read") << QSerialPort::ReadError << QList<int>{} << readWrite;
    QTest::newRow("none") << QSerialPort::NoError << QList<int>{} << QString();
    QTest::newRow("parity") << QSerialPort::ParityError << QList<int>{} << QString();
    QTest::newRow("framing") << QSerialPort::FramingError << QList<int>{} << QString();
    QTest::newRow("break") << QSerialPort::BreakConditionError << QList<int>{} << QString();
    QTest::newRow("timeout") << QSerialPort::TimeoutError << QList<int>{} << QString();
    QTest::newRow("not open") << QSerialPort::NotOpenError << QList<int>{} << QString();
    QTest::newRow("unsupported") << QSerialPort::UnsupportedOperationError << QList<int>{} << QString();
}

void tst_TransmitterPorts::portErrors()
{
    QFETCH(const QSerialPort::SerialPortError, error);
    QFETCH(const QList<int>, states);
    QFETCH(const QString, line);
    Bench bench;
    bench.open();
    const DebugLines debug;
    bench.worker.sl_onPortError(error);
    QCOMPARE(bench.states, states);
    QCOMPARE(debug.lines().size(), line.isEmpty() ? 0 : 1);
    QVERIFY(debug.lines().join(QString()).endsWith(line));
    QVERIFY(bench.answers.isEmpty());
}

void tst_TransmitterPorts::missingPortIsReportedOnce()
{
    Bench bench;
    bench.open();
    const DebugLines debug;
    bench.worker.sl_onPortError(QSerialPort::ResourceError);
    bench.worker.sl_onPortError(QSerialPort::DeviceNotFoundError);
    bench.worker.sl_onPortError(QSerialPort::ResourceError);
    QCOMPARE(bench.states, QList<int>{StateNotFound});
    QCOMPARE(debug.lines().size(), 1);
    bench.worker.sl_onPortError(QSerialPort::OpenError);
    bench.worker.sl_onPortError(QSerialPort::OpenError);
    bench.worker.sl_onPortError(QSerialPort::ResourceError);
    QCOMPARE(bench.states, (QList<int>{3, 2, 2, 3}));
}

void tst_TransmitterPorts::firstRequestChangesTheRate()
{
    Bench bench;
    bench.open();
    QCOMPARE(bench.line.baudRate(), 1200);
    bench.send(P::requestReadLogInfo(1));
    QCOMPARE(bench.baudrates, QList<int>{57600});
    QCOMPARE(bench.line.baudRate(), 57600);
    QTRY_COMPARE_WITH_TIMEOUT(bench.answers.size(), 1, ends);
    // A port opened anew is back at its opening rate.
    bench.worker.sl_CheckPort(&bench.worker, {});
    bench.send(P::requestReadLogInfo(1));
    QCOMPARE(bench.baudrates, (QList<int>{57600, 57600}));
}

void tst_TransmitterPorts::reportsEachChangeOfTheRateOnce()
{
    Bench bench;
    bench.open();
    message slow = request("slow");
    slow.setBaudrate(9600);
    message slowToo = request("slow too");
    slowToo.setBaudrate(9600);
    QList<int> rates;
    bench.onReceived = [&](const QByteArray&) { rates.append(bench.line.baudRate()); };
    bench.send(request("fast"));
    QTRY_COMPARE_WITH_TIMEOUT(bench.answers.size(), 1, ends);
    bench.send(slow);
    QTRY_COMPARE_WITH_TIMEOUT(bench.answers.size(), 2, ends);
    bench.send(slowToo);
    QTRY_COMPARE_WITH_TIMEOUT(bench.answers.size(), 3, ends);
    QCOMPARE(bench.baudrates, (QList<int>{57600, 9600}));
    QCOMPARE(rates, (QList<int>{57600, 9600, 9600}));
}

void tst_TransmitterPorts::diagnosticLines()
{
    const DebugLines debug;
    Bench bench;
    bench.open();
    bench.onReceived = [&](const QByteArray&) { bench.line.write(frames::answer(0)); };
    bench.send(P::requestDeviceTime(1));
    QTRY_COMPARE_WITH_TIMEOUT(bench.answers.size(), 1, ends);
    bench.onReceived = nullptr;
    bench.worker.sl_onPortError(QSerialPort::WriteError);
    bench.worker.sl_onPortError(QSerialPort::OpenError);
    bench.worker.sl_onPortError(QSerialPort::ResourceError);

    const QString address = QStringLiteral("0x") + QString::number(quintptr(&bench.worker), 16);
    const QString head = QStringLiteral(R"(^"[0-2]\d:[0-5]\d:[0-5]\d:\d{3}"  :  Transmitter\(%1\)  :  "%2" \( %3 )")
                             .arg(address, bench.line.portName());
    const QList<QPair<int, QString>> expected = {
        {1200, QStringLiteral("): CREATE AND OPEN!")},
        {57600, QStringLiteral("): request:  \"c186010001052be8\"")},
        {57600, QStringLiteral("): answer(by signal):  \"%1\"").arg(QString::fromLatin1(frames::answer(0).toHex()))},
        {57600, QStringLiteral("): ERROR WRITE / READ !")},
        {57600, QStringLiteral("): ERROR OPEN!")},
        {57600, QStringLiteral("): PORT NOT FOUND!")},
    };
    QCOMPARE(debug.lines().size(), expected.size());
    for (int i = 0; i < expected.size(); ++i) {
        const QRegularExpression pattern(head.arg(expected.at(i).first) +
                                         QRegularExpression::escape(expected.at(i).second) + QLatin1Char('$'));
        QVERIFY2(pattern.match(debug.lines().at(i)).hasMatch(), qPrintable(debug.lines().at(i)));
    }
}

QTEST_GUILESS_MAIN(tst_TransmitterPorts)
#include "tst_TransmitterPorts.moc"
