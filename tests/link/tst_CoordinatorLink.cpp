#include "FormRecorder.h"
#include "link/protocol_HUBN_NX_Q.h"
#include "simulator/PseudoTerminal.h"
#include "simulator/UnitSimulator.h"
#include "support/Eventually.h"
#include "support/threadedTestMain.h"

#include <QSemaphore>
#include <QSerialPort>
#include <QtTest>

#include <array>
#include <memory>

namespace
{

using Protocol = protocol_HUBN_NX_Q;

UnitState unitAt(quint8 address, int baudrate = 57600)
{
    UnitState state;
    state.address = address;
    state.baudRates = {baudrate};
    return state;
}

QString connectedText()
{
    return QStringLiteral("Coordinator connected");
}

QString silentText()
{
    return QStringLiteral("Coordinator not found\nPort disabled");
}

/// What a bare pseudo-terminal was asked: the rate of the line at each arrival of a broadcast.
class DeafLine : public QObject
{
public:
    DeafLine()
    {
        connect(&line, &PseudoTerminal::readyRead, this, [this] {
            received += line.read();
            const QByteArray broadcast = Protocol::requestSearchCoordinator().request();
            while (received.startsWith(broadcast)) {
                received.remove(0, broadcast.size());
                rates.append(line.baudRate());
            }
        });
    }

    PseudoTerminal line;
    QByteArray received;
    QVector<int> rates;
};

} // namespace

/// The coordinator form with its real workers, and units at the other end: the search and the choice.
class tst_CoordinatorLink : public QObject
{
    Q_OBJECT

private slots:
    void findsAUnitByItself();
    void findsAUnitAt9600AndStaysThere();
    void findsAUnitAtAddressEight();
    void doesNotFindAUnitAtAddressNine();
    void ofTwoUnitsTheFirstToAnswerIsChosen();
    void sweepsASilentPortFiveTimes();
    void stopsSweepingOnceAPortIsChosen();
    void aUnitThatWakesUpLaterIsFoundByALaterSweep();

    void aPortThatIsNotThereIsNotFound();
    void aReadingOnAPortWithoutACoordinatorRunsToItsEnd();
    void aPortInUseCanNotBeOpened();
    void endingTheFormClosesItsPorts();
    void theEndDoesNotWaitForAStuckPort();
    void aPortThatIsPluggedInLaterIsFoundOnConnect();
    void aPortThatVanishesDuringTheSearch_data();
    void aPortThatVanishesDuringTheSearch();
    void noiseDoesNotDisturbTheSearch_data();
    void noiseDoesNotDisturbTheSearch();

    void formsCanGoWhileTheirWorkersRun();
};

void tst_CoordinatorLink::findsAUnitByItself()
{
    const UnitSimulator unit(unitAt(3));
    const FormRecorder recorder({unit.portName()});
    EVENTUALLY(recorder.state() == connectedText());
    QCOMPARE(recorder.info(), QStringList({QStringLiteral("57600"), QStringLiteral("Coordinator 3"),
                                           QStringLiteral("4711"), QStringLiteral("6.02")}));
    QVERIFY(recorder.check()->isChecked());
    QVERIFY(recorder.has(QStringLiteral("enable 1")));
    QVERIFY(recorder.busy()->isVisible());
    QCOMPARE(int(recorder.form.currentAddress()), 3);
    EVENTUALLY(recorder.has(QStringLiteral("terminals 0")));
    QVERIFY(unit.requestCount(Protocol::Search_Broadcast) == 1);
}

void tst_CoordinatorLink::findsAUnitAt9600AndStaysThere()
{
    const UnitSimulator unit(unitAt(1, 9600));
    FormRecorder recorder({unit.portName()});
    EVENTUALLY(recorder.has(QStringLiteral("terminals 0")));
    recorder.form.sl_SendRequestReadScript(31);
    EVENTUALLY(recorder.has(QStringLiteral("scripts 1")));
    // The watch, too.
    EVENTUALLY(recorder.has(QStringLiteral("time 1")));
    QCOMPARE(recorder.text(0, 1), QStringLiteral("9600"));
    QCOMPARE(recorder.form.currentBaudrate(), 9600);
    const QVector<UnitRequest> requests = unit.requests();
    int heard = 0;
    for (const UnitRequest& request : requests) {
        heard += int(request.heard);
        QCOMPARE(request.baudRate, request.heard ? 9600 : 57600);
    }
    // Only the first broadcast went out at the wrong rate.
    QCOMPARE(heard, requests.size() - 1);
}

void tst_CoordinatorLink::findsAUnitAtAddressEight()
{
    const UnitSimulator unit(unitAt(8));
    const FormRecorder recorder({unit.portName()});
    EVENTUALLY(recorder.state() == connectedText());
    QCOMPARE(recorder.text(0, 2), QStringLiteral("Coordinator 8"));
}

void tst_CoordinatorLink::doesNotFindAUnitAtAddressNine()
{
    const UnitSimulator unit(unitAt(9));
    // A silent line beside it, whose second sweep tells when the unit's would have come.
    const DeafLine deaf;
    const FormRecorder recorder({unit.portName(), deaf.line.portName()});
    EVENTUALLY(recorder.state() == silentText());
    QCOMPARE(unit.requestCount(Protocol::Search_Address), 8);
    const int sweeps = deaf.rates.size() / 2;
    EVENTUALLY(deaf.rates.size() >= 2 * (sweeps + 2));
    QCOMPARE(unit.requestCount(Protocol::Search_Broadcast), 1);
    QCOMPARE(recorder.connectButton()->text(), QStringLiteral("Connect"));
}

void tst_CoordinatorLink::ofTwoUnitsTheFirstToAnswerIsChosen()
{
    const UnitSimulator quick(unitAt(2));
    UnitSimulator slow(unitAt(5));
    slow.setFaults({UnitFault(UnitFault::DelayAnswer).value(80)});
    const FormRecorder recorder({slow.portName(), quick.portName()});
    EVENTUALLY(recorder.state(0) == connectedText() && recorder.state(1) == connectedText());
    QCOMPARE(int(recorder.form.currentAddress()), 2);
    QCOMPARE(recorder.table()->currentRow(), 1);
    QCOMPARE(recorder.text(0, 2), QStringLiteral("Coordinator 5"));
    QVERIFY(recorder.check(0)->isChecked());
    QCOMPARE(recorder.count(QStringLiteral("enable")), 1);
    EVENTUALLY(recorder.has(QStringLiteral("terminals 0")));
    QCOMPARE(slow.requestCount(Protocol::Busy_Channel_System), 0);
}

void tst_CoordinatorLink::sweepsASilentPortFiveTimes()
{
    const DeafLine deaf;
    FormRecorder recorder({deaf.line.portName()});
    EVENTUALLY(deaf.rates.size() == 10);
    EVENTUALLY(recorder.state() == silentText());
    // A sweep comes a second after the last; the port list is looked at every second as well.
    int looks = 0;
    const auto counting =
        connect(&recorder.form, &FormChoiceCoordinator::sig_initTransmitter, &recorder.form, [&recorder, &looks] {
            ++looks;
            recorder.names.append(QStringLiteral("no-such-port-%1").arg(looks));
        });
    recorder.names.append(QStringLiteral("no-such-port"));
    EVENTUALLY(looks == 3);
    disconnect(counting);
    const QVector<int> rates{57600, 9600, 57600, 9600, 57600, 9600, 57600, 9600, 57600, 9600};
    QCOMPARE(deaf.rates, rates);
    QCOMPARE(recorder.connectButton()->text(), QStringLiteral("Connect"));
    // By hand it can be swept again, which brings no further sweeps.
    recorder.connectButton()->click();
    EVENTUALLY(deaf.rates.size() == 12);
}

void tst_CoordinatorLink::stopsSweepingOnceAPortIsChosen()
{
    const DeafLine deaf;
    const UnitSimulator unit;
    FormRecorder recorder({deaf.line.portName()});
    EVENTUALLY(recorder.state() == silentText());
    recorder.names.append(unit.portName());
    EVENTUALLY(recorder.table()->rowCount() == 2 && recorder.state(1) == connectedText());
    EVENTUALLY(recorder.state(0) == silentText());
    const int sweeps = deaf.rates.size();
    // Three ticks of the watch are three seconds.
    EVENTUALLY(recorder.count(QStringLiteral("time 1")) >= 3);
    QCOMPARE(deaf.rates.size(), sweeps);
}

void tst_CoordinatorLink::aUnitThatWakesUpLaterIsFoundByALaterSweep()
{
    UnitSimulator unit;
    unit.setFaults({UnitFault(UnitFault::LoseRequest).times(1)});
    const FormRecorder recorder({unit.portName()});
    EVENTUALLY(recorder.state() == silentText());
    EVENTUALLY(recorder.state() == connectedText());
    QCOMPARE(unit.requestCount(Protocol::Search_Broadcast), 3);
    QCOMPARE(int(recorder.form.currentAddress()), 1);
}

void tst_CoordinatorLink::aPortThatIsNotThereIsNotFound()
{
    const FormRecorder recorder({QStringLiteral("no-such-port")});
    EVENTUALLY(recorder.state() == QStringLiteral("Port not found"));
    EVENTUALLY(recorder.connectButton()->text() == QStringLiteral("Connect"));
    QCOMPARE(recorder.connectButton()->styleSheet(), QStringLiteral("background-color: green"));
    QVERIFY(!recorder.firmwareButton()->isHidden());
    QVERIFY(recorder.showsControls());
}

void tst_CoordinatorLink::aReadingOnAPortWithoutACoordinatorRunsToItsEnd()
{
    FormRecorder recorder({QStringLiteral("no-such-port")});
    EVENTUALLY(recorder.connectButton()->text() == QStringLiteral("Connect"));
    recorder.table()->setCurrentCell(0, 0);
    recorder.select()->click();
    QVERIFY(recorder.has(QStringLiteral("enable 0")));
    recorder.form.sl_PreOperationReadConfigAndScript();
    QVERIFY(recorder.busy()->isVisible());
    // So whoever waits for the scripts can take the busy form away.
    EVENTUALLY(recorder.has(QStringLiteral("scripts 0")));
    QVERIFY(recorder.events.constLast().contains(QStringLiteral("= 70)")));
    QVERIFY(recorder.events.constLast().contains(QStringLiteral("= 32)")));
}

void tst_CoordinatorLink::aPortInUseCanNotBeOpened()
{
    const DeafLine deaf;
    QSerialPort other(deaf.line.portName());
    QVERIFY(other.open(QIODevice::ReadWrite));
    const FormRecorder recorder({deaf.line.portName()});
    EVENTUALLY(recorder.state() == QStringLiteral("Error opening the port\nPort disabled"));
    EVENTUALLY(recorder.connectButton()->text() == QStringLiteral("Connect"));
    other.close();
    // The cause stays in view until the user tries again.
    QCOMPARE(recorder.state(), QStringLiteral("Error opening the port\nPort disabled"));
    recorder.connectButton()->click();
    EVENTUALLY(recorder.state() == QStringLiteral("Search of coordinator..."));
    QVERIFY(!recorder.showsControls());
}

void tst_CoordinatorLink::endingTheFormClosesItsPorts()
{
    const UnitSimulator idle;
    const DeafLine searching;
    {
        const FormRecorder recorder({idle.portName(), searching.line.portName()});
        EVENTUALLY(recorder.state(0) == connectedText());
    }
    for (const QString& name : {idle.portName(), searching.line.portName()}) {
        QSerialPort other(name);
        QVERIFY2(other.open(QIODevice::ReadWrite), qPrintable(other.errorString()));
    }
}

void tst_CoordinatorLink::theEndDoesNotWaitForAStuckPort()
{
    const UnitSimulator unit;
    const UnitSimulator stuckUnit;
    // Kept by the worker's thread too, which goes on.
    const auto isStuck = std::make_shared<QSemaphore>();
    const auto letGo = std::make_shared<QSemaphore>();
    {
        FormRecorder recorder({unit.portName(), stuckUnit.portName()});
        EVENTUALLY(recorder.state(0) == connectedText() && recorder.state(1) == connectedText());
        QMetaObject::invokeMethod(recorder.transmitters.at(1), [isStuck, letGo] {
            isStuck->release();
            letGo->acquire();
        });
        isStuck->acquire();
    }
    // The other port was closed all the same.
    QSerialPort other(unit.portName());
    QVERIFY(other.open(QIODevice::ReadWrite));
    letGo->release();
}

void tst_CoordinatorLink::aPortThatIsPluggedInLaterIsFoundOnConnect()
{
    UnitSimulator unit;
    unit.unplug();
    const FormRecorder recorder({unit.portName()});
    EVENTUALLY(recorder.connectButton()->text() == QStringLiteral("Connect"));
    QVERIFY(unit.plugIn());
    recorder.connectButton()->click();
    EVENTUALLY(recorder.state() == connectedText());
}

void tst_CoordinatorLink::aPortThatVanishesDuringTheSearch_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<bool>("comesBackByItself");
    QTest::newRow("at the broadcast") << int(Protocol::Search_Broadcast) << true;
    // A search that gets no further than the addresses isn't repeated by itself.
    QTest::newRow("at an address") << int(Protocol::Search_Address) << false;
}

void tst_CoordinatorLink::aPortThatVanishesDuringTheSearch()
{
    QFETCH(int, type);
    QFETCH(bool, comesBackByItself);
    UnitSimulator unit;
    unit.setFaults({UnitFault(UnitFault::Unplug).onRequest(type).times(1).amount(-1)});
    const FormRecorder recorder({unit.portName()});
    EVENTUALLY(!unit.isPluggedIn());
    EVENTUALLY(recorder.state() == silentText());
    QCOMPARE(recorder.connectButton()->text(), QStringLiteral("Connect"));
    QVERIFY(unit.plugIn());
    if (!comesBackByItself) {
        recorder.connectButton()->click();
    }
    EVENTUALLY(recorder.state() == connectedText());
    QCOMPARE(int(recorder.form.currentAddress()), 1);
}

void tst_CoordinatorLink::noiseDoesNotDisturbTheSearch_data()
{
    QTest::addColumn<int>("kind");
    QTest::newRow("before the answer to the broadcast") << int(UnitFault::NoiseBefore);
    QTest::newRow("after it") << int(UnitFault::NoiseAfter);
    QTest::newRow("instead of it") << int(UnitFault::DamageAnswer);
}

void tst_CoordinatorLink::noiseDoesNotDisturbTheSearch()
{
    QFETCH(int, kind);
    UnitSimulator unit(unitAt(4));
    unit.setFaults({UnitFault(UnitFault::Kind(kind)).onRequest(Protocol::Search_Broadcast)});
    const FormRecorder recorder({unit.portName()});
    EVENTUALLY(recorder.state() == connectedText());
    QCOMPARE(recorder.text(0, 2), QStringLiteral("Coordinator 4"));
}

void tst_CoordinatorLink::formsCanGoWhileTheirWorkersRun()
{
    const UnitSimulator unit;
    // All kept to the end: a worker that is left behind might meet its port's name again.
    std::array<DeafLine, 20> lines;
    for (int i = 0; i < int(lines.size()); ++i) {
        const FormRecorder recorder({lines.at(i).line.portName(), QStringLiteral("no-such-port")});
        // Each time at another moment of the search.
        EVENTUALLY(recorder.sent.size() >= i % 3);
    }
    const FormRecorder recorder({unit.portName()});
    EVENTUALLY(recorder.state() == connectedText());
}

HUBN_THREADED_TEST_MAIN(tst_CoordinatorLink)
#include "tst_CoordinatorLink.moc"
