#include "LinkRecorder.h"
#include "simulator/UnitSimulator.h"
#include "support/Eventually.h"
#include "support/UnitRecords.h"
#include "texts/texts.h"

#include <QtTest>

namespace
{

using Protocol = protocol_HUBN_NX_Q;

/// A unit with terminals in three classes, outputs and scripts that can be told apart, and a log of `events` records.
UnitState fullUnit(int events = 9)
{
    UnitState state;
    state.terminals = {UnitTerminal::make(3, 2, 1, 2, 3, 8), UnitTerminal::make(31, 2, 1, 2, 4, 7),
                       UnitTerminal::make(1, 0, 2, 2, 2), UnitTerminal::make(124, 4, 3, 3, 3),
                       UnitTerminal::make(125, 4, 3, 3, 3)};
    for (int address = 0; address < UnitState::addressCount; ++address) {
        for (int output = 0; output < UnitState::outputsPerAddress; ++output) {
            // With bytes that have to be stuffed.
            state.outputs.at(size_t(address)).at(size_t(output)) = byte(0xC0 + output % 3) + byte(address);
        }
    }
    for (int number = 0; number < UnitState::scriptCount; ++number) {
        state.scripts.at(size_t(number)) = QByteArray(UnitState::scriptLength, char(0xB0 + number));
    }
    for (int event = 0; event < events; ++event) {
        state.log.append(QByteArray(LogRing::recordSize, char(event)));
    }
    return state;
}

QString success(const QString& first, const QString& second)
{
    return QStringLiteral("result ") + first + QLatin1Char('\n') + second;
}

QString readWell()
{
    return success(texts::resultReadOutputsOk(), texts::resultReadScriptsOk());
}

/// A unit, the link that has found it, and the links of the automatic chain that the main window makes.
struct Line
{
    explicit Line(const UnitState& state, const QVector<UnitFault>& faults = {}) : unit(state)
    {
        unit.setFaults(faults);
        recorder.names.append(unit.portName());
        recorder.link.updatePortList();
    }

    /// The search for terminals is over, and nothing else is going on but the watch.
    bool isReady() const
    {
        return recorder.has(QStringLiteral("terminals"));
    }

    /// The last text of the status line.
    QString result() const
    {
        return recorder.events.filter(QStringLiteral("result")).value(resultCount() - 1);
    }
    int resultCount() const
    {
        return recorder.count(QStringLiteral("result"));
    }

    bool isConnected() const
    {
        return recorder.state() == StateCoordinatorConnected;
    }

    /// How often a request went out from now on is counted from 0.
    void beginAnew()
    {
        recorder.take();
        unit.clearRequests();
    }

    /// Reads outputs and scripts, with the faults counted from there on, until the result is the wanted one. A busy
    /// machine may lose an attempt more than the faults do, or tell late of a port that is gone: a few such runs say
    /// nothing.
    bool reads(const QString& wanted, const QVector<UnitFault>& faults = {})
    {
        for (int run = 0; run < 5; ++run) {
            if (!eventually([this] { return isConnected(); })) {
                return false;
            }
            beginAnew();
            unit.setFaults(faults);
            recorder.link.readConfiguration();
            if (!eventually([this] { return recorder.has(QStringLiteral("scripts")); })) {
                return false;
            }
            if (result() == wanted) {
                return true;
            }
        }
        return false;
    }

    UnitSimulator unit;
    LinkRecorder recorder;
};

} // namespace

/// The operations over a real worker, with the simulated unit at the other end and every kind of trouble in between.
class tst_DeviceOperations : public QObject
{
    Q_OBJECT

private slots:
    void searchFindsTheTerminalsOfTheUnit();
    void searchReadsAgainWhatDiffersBetweenTwoReadings_data();
    void searchReadsAgainWhatDiffersBetweenTwoReadings();
    void searchOfADeafUnitEndsEmpty();
    void readsWhatTheUnitKeeps();
    void writesWhatTheUnitThenKeeps();
    void readsTheLogBlockByBlock_data();
    void readsTheLogBlockByBlock();
    void leavesAnUnchangedLogAlone();
    void setsTheClock();

    void troubleOnTheWireCostsNoStep_data();
    void troubleOnTheWireCostsNoStep();
    void aStepThatFailsFourTimesIsCounted_data();
    void aStepThatFailsFourTimesIsCounted();
    void aLogThatCanNotBeReadSaysSo_data();
    void aLogThatCanNotBeReadSaysSo();
    void aRecordThatWasCutIsCounted();

    void aPortThatVanishesWhileReading_data();
    void aPortThatVanishesWhileReading();
    void aPortThatVanishesWhileWriting_data();
    void aPortThatVanishesWhileWriting();
    void aPortThatVanishesWhileSearching_data();
    void aPortThatVanishesWhileSearching();
    void aPortThatVanishesWhileReadingTheLog_data();
    void aPortThatVanishesWhileReadingTheLog();
    void aPortThatVanishesWhileTheClockIsSet();
    void aReadingWithoutAnyAnswerRunsToItsEnd();
};

void tst_DeviceOperations::searchFindsTheTerminalsOfTheUnit()
{
    const Line line(fullUnit());
    EVENTUALLY(line.isReady());
    const auto& terminals = line.unit.state().terminals;
    // In order of class, then address; the last one has an address that doesn't count.
    QCOMPARE(line.recorder.terminals, QByteArrayList({terminals.at(2).infoRecord, terminals.at(0).infoRecord,
                                                      terminals.at(1).infoRecord, terminals.at(3).infoRecord}));
    QCOMPARE(line.recorder.busyMaximum, 4 + 103);
    QCOMPARE(line.recorder.busySteps, 5);
    QVERIFY(line.recorder.isBusy);
    for (int type = Protocol::Busy_Channel_System; type <= Protocol::Busy_Channel_Analog; ++type) {
        QCOMPARE(line.unit.requestCount(type), 2);
    }
    QCOMPARE(line.unit.requestCount(Protocol::Terminal_Execute_Info), 4);
}

void tst_DeviceOperations::searchReadsAgainWhatDiffersBetweenTwoReadings_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<int>("changed");
    QTest::addColumn<int>("readings");
    QTest::newRow("first reading of a busy list") << int(Protocol::Busy_Channel_Sensor) << 1 << 3;
    QTest::newRow("second reading of a busy list") << int(Protocol::Busy_Channel_Sensor) << 2 << 4;
    QTest::newRow("first reading of the first busy list") << int(Protocol::Busy_Channel_System) << 1 << 3;
    QTest::newRow("first reading of a terminal") << int(Protocol::Terminal_Execute_Info) << 1 << 5;
    QTest::newRow("second reading of a terminal") << int(Protocol::Terminal_Execute_Info) << 2 << 6;
}

void tst_DeviceOperations::searchReadsAgainWhatDiffersBetweenTwoReadings()
{
    QFETCH(int, type);
    QFETCH(int, changed);
    const Line line(fullUnit(), {UnitFault(UnitFault::ChangeAnswer).onRequest(type).from(changed).times(1)});
    EVENTUALLY(line.isReady());
    QTEST(line.unit.requestCount(type), "readings");
    QCOMPARE(line.recorder.terminals.size(), 4);
    QVERIFY(line.recorder.terminals.contains(line.unit.state().terminals.at(0).infoRecord));
}

void tst_DeviceOperations::searchOfADeafUnitEndsEmpty()
{
    // It answers the search for itself, and the first class, but no other.
    QVector<UnitFault> faults;
    for (int type = Protocol::Busy_Channel_Sensor; type <= Protocol::Busy_Channel_Analog; ++type) {
        faults.append(UnitFault(UnitFault::Refuse).onRequest(type));
    }
    UnitState state = fullUnit();
    state.terminals.remove(2);
    const Line line(state, faults);
    EVENTUALLY(line.isReady());
    QVERIFY(line.recorder.terminals.isEmpty());
    // Four attempts; there is nothing to confirm in no data.
    QCOMPARE(line.unit.requestCount(Protocol::Busy_Channel_Sensor), 4);
}

void tst_DeviceOperations::readsWhatTheUnitKeeps()
{
    Line line(fullUnit());
    EVENTUALLY(line.isReady());
    line.recorder.link.readConfiguration();
    QCOMPARE(line.recorder.busyMaximum, 102);
    EVENTUALLY(line.result() == readWell());
    QCOMPARE(line.recorder.outputs, outputsOf(line.unit.state()));
    QCOMPARE(line.recorder.scripts, scriptsOf(line.unit.state()));
    QCOMPARE(line.recorder.busySteps, 102);
    // Whoever takes the scripts hides it.
    QVERIFY(line.recorder.isBusy);
    QCOMPARE(line.unit.requestCount(Protocol::Read_Config), 70);
    QCOMPARE(line.unit.requestCount(Protocol::Read_Script), 32);
}

void tst_DeviceOperations::writesWhatTheUnitThenKeeps()
{
    Line line{UnitState()};
    EVENTUALLY(line.isReady());
    const UnitState wanted = fullUnit();
    line.recorder.link.writeConfiguration(outputsOf(wanted), scriptsOf(wanted));
    QVERIFY(line.recorder.isBusy);
    EVENTUALLY(line.result() == success(texts::resultWriteOutputsOk(), texts::resultWriteScriptsOk()));
    QVERIFY(!line.recorder.isBusy);
    QCOMPARE(outputsOf(line.unit.state()), outputsOf(wanted));
    QCOMPARE(scriptsOf(line.unit.state()), scriptsOf(wanted));
}

void tst_DeviceOperations::readsTheLogBlockByBlock_data()
{
    QTest::addColumn<int>("events");
    QTest::addColumn<int>("requests");
    QTest::newRow("empty") << 0 << 1;
    QTest::newRow("one") << 1 << 1;
    QTest::newRow("a block less one") << 3 << 1;
    QTest::newRow("exactly a block") << 4 << 2;
    QTest::newRow("more than two blocks") << 9 << 3;
    QTest::newRow("wrapped round") << 45 << 11;
}

void tst_DeviceOperations::readsTheLogBlockByBlock()
{
    QFETCH(int, events);
    UnitState state;
    state.log = LogRing(40);
    for (int event = 0; event < events; ++event) {
        state.log.append(QByteArray(LogRing::recordSize, char(event)));
    }
    Line line(state);
    EVENTUALLY(line.isReady());
    line.recorder.link.readLog();
    EVENTUALLY(line.recorder.has(QStringLiteral("result ") + texts::resultLogOk()));
    QTEST(line.unit.requestCount(Protocol::Read_Log), "requests");
    QByteArrayList kept = line.unit.state().log.records();
    QByteArrayList read = line.recorder.logRecords;
    std::sort(kept.begin(), kept.end());
    std::sort(read.begin(), read.end());
    QCOMPARE(read, kept);
    QCOMPARE(line.recorder.events.filter(QRegularExpression(QStringLiteral("^log \\d+ 1$"))).size(), 1);
    QCOMPARE(line.recorder.busyMaximum, qMin(events, 40) / 4);
    QVERIFY(line.recorder.isBusy);
}

void tst_DeviceOperations::leavesAnUnchangedLogAlone()
{
    Line line(fullUnit());
    EVENTUALLY(line.isReady());
    line.recorder.link.readLog();
    EVENTUALLY(line.recorder.has(QStringLiteral("result ") + texts::resultLogOk()));
    line.beginAnew();
    line.recorder.link.readLog();
    EVENTUALLY(line.recorder.has(QStringLiteral("log not necessary")));
    QCOMPARE(line.result(), QStringLiteral("result Log of events of device has not changed"));
    QCOMPARE(line.unit.requestCount(Protocol::Read_Log), 0);
    QVERIFY(!line.recorder.isBusy);

    line.unit.change([](UnitState& state) { state.log.append(QByteArray(LogRing::recordSize, 'x')); });
    line.beginAnew();
    line.recorder.link.readLog();
    EVENTUALLY(line.recorder.has(QStringLiteral("result ") + texts::resultLogOk()));
    QCOMPARE(line.unit.requestCount(Protocol::Read_Log), 3);
}

void tst_DeviceOperations::setsTheClock()
{
    UnitState state;
    state.clockOffset = 86400 * 500;
    Line line(state);
    EVENTUALLY(line.isReady());
    line.recorder.link.setDeviceTime();
    EVENTUALLY(line.unit.requestCount(Protocol::Sync_Time) == 1);
    EVENTUALLY(qAbs(line.unit.state().clockOffset) <= 2);
    // The user hears of it by the watch alone.
    QCOMPARE(line.resultCount(), 0);
}

void tst_DeviceOperations::troubleOnTheWireCostsNoStep_data()
{
    QTest::addColumn<QVector<UnitFault>>("faults");
    QTest::addColumn<int>("resends");
    using Fault = UnitFault;
    const int output = Protocol::Read_Config;
    const int script = Protocol::Read_Script;
    // Without the reserved bytes, which behind a frame would be taken for more of it.
    const QByteArray noise = QByteArray::fromHex("00ff3055aa06");
    QTest::newRow("noise before frames") << QVector<Fault>{Fault(Fault::NoiseBefore).onRequest(output),
                                                           Fault(Fault::NoiseBefore).onRequest(script)}
                                         << 0;
    QTest::newRow("an answer start in the noise before")
        << QVector<Fault>{Fault(Fault::NoiseBefore).onRequest(output).bytes(QByteArray::fromHex("c20601c2"))} << 0;
    QTest::newRow("noise behind frames") << QVector<Fault>{Fault(Fault::NoiseAfter).onRequest(output).bytes(noise),
                                                           Fault(Fault::NoiseAfter).onRequest(script).bytes(noise)}
                                         << 0;
    // A burst may cost an attempt, if it comes just when the line is cleared for the next request; three never cost a
    // step.
    QTest::newRow("noise between frames")
        << QVector<Fault>{Fault(Fault::NoiseLater).onRequest(output).from(5).times(3).value(3).bytes(noise)} << 0;
    QTest::newRow("an answer in pieces")
        << QVector<Fault>{Fault(Fault::SplitAnswer).onRequest(output).amount(4).value(10)} << 0;
    QTest::newRow("pieces with gaps below the limit")
        << QVector<Fault>{Fault(Fault::SplitAnswer).onRequest(script).times(3).amount(3).value(60)} << 0;
    QTest::newRow("a late answer") << QVector<Fault>{Fault(Fault::DelayAnswer).onRequest(output).times(3).value(60)}
                                   << 0;
    QTest::newRow("an answer lost three times")
        << QVector<Fault>{Fault(Fault::LoseAnswer).onRequest(output).from(5).times(3)} << 3;
    QTest::newRow("a request lost") << QVector<Fault>{Fault(Fault::LoseRequest).onRequest(script).from(2).times(1)}
                                    << 1;
    QTest::newRow("three wrong checksums")
        << QVector<Fault>{Fault(Fault::BadChecksum).onRequest(script).from(9).times(3)} << 3;
    QTest::newRow("three refusals") << QVector<Fault>{Fault(Fault::Refuse).onRequest(output).from(20).times(3)} << 3;
}

void tst_DeviceOperations::troubleOnTheWireCostsNoStep()
{
    QFETCH(QVector<UnitFault>, faults);
    QFETCH(int, resends);
    Line line(fullUnit());
    EVENTUALLY(line.isReady());
    QVERIFY2(line.reads(readWell(), faults), qPrintable(line.result()));
    QCOMPARE(line.recorder.outputs, outputsOf(line.unit.state()));
    QCOMPARE(line.recorder.scripts, scriptsOf(line.unit.state()));
    const int steps = line.unit.requestCount(Protocol::Read_Config) + line.unit.requestCount(Protocol::Read_Script);
    // A busy machine may lose an answer more, never one less.
    QVERIFY2(steps >= 102 + resends, qPrintable(QString::number(steps)));
    QVERIFY2(steps <= 102 + resends + 10, qPrintable(QString::number(steps)));
}

void tst_DeviceOperations::aStepThatFailsFourTimesIsCounted_data()
{
    QTest::addColumn<UnitFault>("fault");
    using Fault = UnitFault;
    QTest::newRow("silence") << Fault(Fault::LoseAnswer);
    QTest::newRow("wrong checksums") << Fault(Fault::BadChecksum);
    QTest::newRow("refusals") << Fault(Fault::Refuse).value(2);
    QTest::newRow("refusals with a negative code") << Fault(Fault::Refuse).value(0x80);
    QTest::newRow("pieces with gaps above the limit") << Fault(Fault::SplitAnswer).amount(2).value(700);
}

void tst_DeviceOperations::aStepThatFailsFourTimesIsCounted()
{
    QFETCH(UnitFault, fault);
    Line line(fullUnit());
    EVENTUALLY(line.isReady());
    const bool isCounted =
        line.reads(QStringLiteral("result Reading configuration of outputs WAS COMPLETED WITH ERROR (Number of error = "
                                  "1)\nReading scripts of work of executive terminals SUCCESSFUL COMPLETE"),
                   {fault.onRequest(Protocol::Read_Config).from(11).times(4)});
    QVERIFY2(isCounted, qPrintable(line.result()));
    QByteArrayList expected = outputsOf(line.unit.state());
    expected.removeAt(10);
    QCOMPARE(line.recorder.outputs, expected);
    // Not exactly, since the late pieces may spoil an answer more.
    QVERIFY(line.unit.requestCount(Protocol::Read_Config) >= 73);
}

void tst_DeviceOperations::aLogThatCanNotBeReadSaysSo_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<int>("from");
    QTest::addColumn<int>("records");
    QTest::newRow("its counter") << int(Protocol::Read_Info_Log) << 1 << 0;
    QTest::newRow("its first block") << int(Protocol::Read_Log) << 1 << 0;
    QTest::newRow("its second block") << int(Protocol::Read_Log) << 2 << 4;
}

void tst_DeviceOperations::aLogThatCanNotBeReadSaysSo()
{
    QFETCH(int, type);
    QFETCH(int, from);
    Line line(fullUnit());
    EVENTUALLY(line.isReady());
    line.unit.setFaults({UnitFault(UnitFault::Refuse).onRequest(type).from(from)});
    line.recorder.link.readLog();
    EVENTUALLY(line.recorder.has(QStringLiteral("log 0 1")));
    QCOMPARE(line.result(), QStringLiteral("result ERROR reading log of events"));
    QTEST(line.recorder.logRecords.size(), "records");
    QCOMPARE(line.unit.requestCount(type), from + 3);
}

void tst_DeviceOperations::aRecordThatWasCutIsCounted()
{
    Line line(fullUnit());
    EVENTUALLY(line.isReady());
    line.unit.setFaults(
        {UnitFault(UnitFault::ReplaceAnswer).onRequest(Protocol::Read_Log).bytes(QByteArray(70, char(0xC1)))});
    line.recorder.link.readLog();
    EVENTUALLY(line.recorder.has(QStringLiteral("log 4 1")));
    QCOMPARE(line.result(),
             QStringLiteral("result Reading log of events WAS COMPLETED WITH ERROR (Number of error = 1)"));
    QCOMPARE(line.unit.requestCount(Protocol::Read_Log), 1);
}

// A port that vanishes: each operation runs to its end, and the watch brings the port back.

void tst_DeviceOperations::aPortThatVanishesWhileReading_data()
{
    QTest::addColumn<UnitFault>("fault");
    const UnitFault unplug = UnitFault(UnitFault::Unplug).times(1).value(300);
    QTest::newRow("before an output") << UnitFault(unplug).onRequest(Protocol::Read_Config).from(20).amount(-1);
    QTest::newRow("within an output") << UnitFault(unplug).onRequest(Protocol::Read_Config).from(20).amount(3);
    QTest::newRow("before a script") << UnitFault(unplug).onRequest(Protocol::Read_Script).from(5).amount(-1);
    QTest::newRow("within the last script") << UnitFault(unplug).onRequest(Protocol::Read_Script).from(32).amount(1);
}

void tst_DeviceOperations::aPortThatVanishesWhileReading()
{
    QFETCH(UnitFault, fault);
    Line line(fullUnit());
    EVENTUALLY(line.isReady());
    line.unit.setFaults({fault});
    line.recorder.link.readConfiguration();
    EVENTUALLY(line.recorder.has(QStringLiteral("scripts")));
    const QString result = line.result();
    QVERIFY2(errorsOn(result, 0) + errorsOn(result, 1) > 0, qPrintable(result));
    QCOMPARE(line.recorder.outputs.size() + errorsOn(result, 0), 70);
    QCOMPARE(line.recorder.scripts.size() + errorsOn(result, 1), 32);

    QVERIFY2(line.reads(readWell()), qPrintable(line.result()));
    QCOMPARE(line.recorder.outputs, outputsOf(line.unit.state()));
}

void tst_DeviceOperations::aPortThatVanishesWhileWriting_data()
{
    QTest::addColumn<int>("type");
    QTest::newRow("an output") << int(Protocol::Write_Config);
    QTest::newRow("a script") << int(Protocol::Write_Script);
}

void tst_DeviceOperations::aPortThatVanishesWhileWriting()
{
    QFETCH(int, type);
    Line line{UnitState()};
    EVENTUALLY(line.isReady());
    line.unit.setFaults({UnitFault(UnitFault::Unplug).onRequest(type).from(10).times(1).value(300).amount(-1)});
    const UnitState wanted = fullUnit();
    line.recorder.link.writeConfiguration(outputsOf(wanted), scriptsOf(wanted));
    EVENTUALLY(line.resultCount() == 2);
    QVERIFY(!line.recorder.isBusy);
    const QString result = line.result();
    QVERIFY2(errorsOn(result, 0) + errorsOn(result, 1) > 0, qPrintable(result));
    QCOMPARE(errorsOn(result, 0) > 0, type == Protocol::Write_Config);

    EVENTUALLY(line.isConnected());
    line.recorder.link.writeConfiguration(outputsOf(wanted), scriptsOf(wanted));
    EVENTUALLY(line.result() == success(texts::resultWriteOutputsOk(), texts::resultWriteScriptsOk()));
    QCOMPARE(outputsOf(line.unit.state()), outputsOf(wanted));
    QCOMPARE(scriptsOf(line.unit.state()), scriptsOf(wanted));
}

void tst_DeviceOperations::aPortThatVanishesWhileSearching_data()
{
    QTest::addColumn<int>("type");
    QTest::newRow("the first busy list") << int(Protocol::Busy_Channel_System);
    QTest::newRow("the last busy list") << int(Protocol::Busy_Channel_Analog);
    QTest::newRow("a terminal") << int(Protocol::Terminal_Execute_Info);
}

void tst_DeviceOperations::aPortThatVanishesWhileSearching()
{
    QFETCH(int, type);
    Line line(fullUnit(), {UnitFault(UnitFault::Unplug).onRequest(type).from(2).times(1).value(300).amount(2)});
    EVENTUALLY(line.isReady());
    QVERIFY(line.recorder.terminals.size() < 5);
    EVENTUALLY(line.isConnected());
    // Choosing the port again repeats the search.
    line.beginAnew();
    line.recorder.link.choose(line.recorder.port());
    EVENTUALLY(line.isReady());
    QCOMPARE(line.recorder.terminals.size(), 4);
}

void tst_DeviceOperations::aPortThatVanishesWhileReadingTheLog_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<int>("from");
    QTest::newRow("its counter") << int(Protocol::Read_Info_Log) << 1;
    QTest::newRow("a block") << int(Protocol::Read_Log) << 2;
}

void tst_DeviceOperations::aPortThatVanishesWhileReadingTheLog()
{
    QFETCH(int, type);
    QFETCH(int, from);
    Line line(fullUnit());
    EVENTUALLY(line.isReady());
    line.unit.setFaults({UnitFault(UnitFault::Unplug).onRequest(type).from(from).times(1).value(300).amount(5)});
    line.recorder.link.readLog();
    EVENTUALLY(line.recorder.has(QStringLiteral("log 0 1")));
    QCOMPARE(line.result(), QStringLiteral("result ERROR reading log of events"));
    EVENTUALLY(line.isConnected());
    line.beginAnew();
    line.recorder.link.forceLogReading();
    line.recorder.link.readLog();
    EVENTUALLY(line.recorder.has(QStringLiteral("result ") + texts::resultLogOk()));
}

void tst_DeviceOperations::aPortThatVanishesWhileTheClockIsSet()
{
    UnitState state;
    state.clockOffset = 86400 * 500;
    Line line(state);
    EVENTUALLY(line.isReady());
    line.unit.setFaults({UnitFault(UnitFault::Unplug).onRequest(Protocol::Sync_Time).times(1).value(300).amount(-1)});
    line.recorder.link.setDeviceTime();
    EVENTUALLY(line.recorder.state() == StateCoordinatorLost);
    EVENTUALLY(line.isConnected());
    QCOMPARE(line.resultCount(), 0);
    line.recorder.link.setDeviceTime();
    EVENTUALLY(qAbs(line.unit.state().clockOffset) <= 2);
}

void tst_DeviceOperations::aReadingWithoutAnyAnswerRunsToItsEnd()
{
    Line line(fullUnit());
    EVENTUALLY(line.isReady());
    line.unit.unplug();
    line.recorder.link.readConfiguration();
    EVENTUALLY(line.recorder.has(QStringLiteral("scripts 0")));
    QVERIFY(line.recorder.has(QStringLiteral("outputs 0")));
    QCOMPARE(line.result(), QStringLiteral("result Reading configuration of outputs WAS COMPLETED WITH ERROR (Number "
                                           "of error = 70)\nReading scripts of work of executive terminals WAS "
                                           "COMPLETED WITH ERROR (Number of error = 32)"));
    QCOMPARE(line.recorder.busySteps, 102);
    // Four attempts at each of 102 steps.
    QCOMPARE(line.recorder.count(QStringLiteral("send 7")) + line.recorder.count(QStringLiteral("send 8")), 408);
}

QTEST_GUILESS_MAIN(tst_DeviceOperations)
#include "tst_DeviceOperations.moc"
