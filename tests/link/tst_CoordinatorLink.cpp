#include "LinkRecorder.h"
#include "simulator/PseudoTerminal.h"
#include "simulator/UnitSimulator.h"
#include "support/Eventually.h"

#include <QSerialPort>
#include <QtTest>

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

/// A link with its real workers, and units at the other end: the search and the choice.
class tst_CoordinatorLink : public QObject
{
    Q_OBJECT

private slots:
    void findsAUnitByItself();
    void findsAUnitAt9600AndStaysThere();
    void findsAUnitAtAddressEight();
    void doesNotFindAUnitAtAddressNine();
    void ofTwoUnitsTheFirstToAnswerIsChosen();
    void onePortIsKeptAndTheOthersAreFreed();
    void sweepsASilentPortFiveTimes();
    void stopsSweepingOnceAPortIsChosen();
    void aUnitThatWakesUpLaterIsFoundByALaterSweep();

    void aPortThatIsNotThereIsNotFound();
    void aReadingOnAPortWithoutACoordinatorRunsToItsEnd();
    void aPortInUseCanNotBeOpened();
    void aPortThatIsPluggedInLaterIsFoundOnConnect();
    void aPortThatVanishesDuringTheSearch_data();
    void aPortThatVanishesDuringTheSearch();
    void noiseDoesNotDisturbTheSearch_data();
    void noiseDoesNotDisturbTheSearch();
};

void tst_CoordinatorLink::findsAUnitByItself()
{
    const UnitSimulator unit(unitAt(3));
    const LinkRecorder recorder({unit.portName()});
    EVENTUALLY(recorder.state() == StateCoordinatorConnected);
    QCOMPARE(recorder.identityOf(), QStringLiteral("57600 3 4711 6.02"));
    QVERIFY(recorder.info().watched);
    QVERIFY(recorder.has(QStringLiteral("enable 1")));
    QVERIFY(recorder.isBusy);
    QCOMPARE(int(recorder.link.currentAddress()), 3);
    EVENTUALLY(recorder.has(QStringLiteral("terminals 0")));
    QVERIFY(unit.requestCount(Protocol::Search_Broadcast) == 1);
}

void tst_CoordinatorLink::findsAUnitAt9600AndStaysThere()
{
    const UnitSimulator unit(unitAt(1, 9600));
    LinkRecorder recorder({unit.portName()});
    EVENTUALLY(recorder.has(QStringLiteral("terminals 0")));
    recorder.link.readScript(31);
    EVENTUALLY(recorder.has(QStringLiteral("scripts 1")));
    // The watch, too.
    EVENTUALLY(recorder.has(QStringLiteral("time 1")));
    QCOMPARE(recorder.info().lineBaudrate.value_or(0), 9600);
    QCOMPARE(recorder.link.currentBaudrate(), 9600);
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
    const LinkRecorder recorder({unit.portName()});
    EVENTUALLY(recorder.state() == StateCoordinatorConnected);
    QCOMPARE(int(recorder.port(0)->address()), 8);
}

void tst_CoordinatorLink::doesNotFindAUnitAtAddressNine()
{
    const UnitSimulator unit(unitAt(9));
    // A silent line beside it, whose second sweep tells when the unit's would have come.
    const DeafLine deaf;
    const LinkRecorder recorder({unit.portName(), deaf.line.portName()});
    EVENTUALLY(recorder.state() == StateCoordinatorNotFound);
    // What a busy unit hasn't read in time is taken off the line, so it may see fewer than the eight.
    const QVector<UnitRequest> requests = unit.requests();
    for (const UnitRequest& request : requests) {
        QVERIFY(request.requestType != Protocol::Search_Address || quint8(request.frame.at(2)) <= 8);
    }
    QVERIFY(unit.requestCount(Protocol::Search_Address) > 0);
    const int sweeps = deaf.rates.size() / 2;
    EVENTUALLY(deaf.rates.size() >= 2 * (sweeps + 2));
    QCOMPARE(unit.requestCount(Protocol::Search_Broadcast), 1);
    QVERIFY(!recorder.info().connected);
}

void tst_CoordinatorLink::ofTwoUnitsTheFirstToAnswerIsChosen()
{
    const UnitSimulator quick(unitAt(2));
    UnitSimulator slow(unitAt(5));
    slow.setFaults({UnitFault(UnitFault::DelayAnswer).value(80)});
    const LinkRecorder recorder({slow.portName(), quick.portName()});
    EVENTUALLY(recorder.state(0) == StateCoordinatorConnected && recorder.state(1) == StateCoordinatorConnected);
    QCOMPARE(int(recorder.link.currentAddress()), 2);
    QCOMPARE(recorder.link.currentPort(), recorder.port(1));
    QCOMPARE(int(recorder.port(0)->address()), 5);
    QVERIFY(recorder.info(0).watched);
    QCOMPARE(recorder.count(QStringLiteral("enable")), 1);
    EVENTUALLY(recorder.has(QStringLiteral("terminals 0")));
    QCOMPARE(slow.requestCount(Protocol::Busy_Channel_System), 0);
}

void tst_CoordinatorLink::onePortIsKeptAndTheOthersAreFreed()
{
    const UnitSimulator used(unitAt(1));
    const UnitSimulator unused(unitAt(2));
    const UnitSimulator later(unitAt(3));
    const DeafLine deaf;
    LinkRecorder recorder({used.portName(), unused.portName(), deaf.line.portName()});
    recorder.link.setChoosingFirst(false);
    EVENTUALLY(recorder.state(0) == StateCoordinatorConnected && recorder.state(1) == StateCoordinatorConnected);
    recorder.link.use(*recorder.port(0));
    recorder.link.keepOnly(*recorder.port(0));
    for (const QString& name : {unused.portName(), deaf.line.portName()}) {
        QSerialPort other(name);
        EVENTUALLY(other.isOpen() || other.open(QIODevice::ReadWrite));
    }
    recorder.names.append(later.portName());
    // Two ticks of the watch are two seconds, in which the list was looked at twice.
    recorder.take();
    EVENTUALLY(recorder.count(QStringLiteral("time 1")) >= 2);
    QCOMPARE(recorder.link.ports().size(), 3);
    QCOMPARE(later.requestCount(), 0);
}

void tst_CoordinatorLink::sweepsASilentPortFiveTimes()
{
    const DeafLine deaf;
    LinkRecorder recorder({deaf.line.portName()});
    EVENTUALLY(deaf.rates.size() == 10);
    EVENTUALLY(recorder.state() == StateCoordinatorNotFound);
    // A sweep comes a second after the last; the port list is looked at every second as well.
    int looks = 0;
    const auto counting = connect(&recorder.link, &CoordinatorLink::portAdded, &recorder.link, [&recorder, &looks] {
        ++looks;
        recorder.names.append(QStringLiteral("no-such-port-%1").arg(looks));
    });
    recorder.names.append(QStringLiteral("no-such-port"));
    EVENTUALLY(looks == 3);
    disconnect(counting);
    const QVector<int> rates{57600, 9600, 57600, 9600, 57600, 9600, 57600, 9600, 57600, 9600};
    QCOMPARE(deaf.rates, rates);
    QVERIFY(!recorder.info().connected);
    // By hand it can be swept again, which brings no further sweeps.
    recorder.port()->open();
    EVENTUALLY(deaf.rates.size() == 12);
}

void tst_CoordinatorLink::stopsSweepingOnceAPortIsChosen()
{
    const DeafLine deaf;
    const UnitSimulator unit;
    LinkRecorder recorder({deaf.line.portName()});
    EVENTUALLY(recorder.state() == StateCoordinatorNotFound);
    recorder.names.append(unit.portName());
    EVENTUALLY(recorder.link.ports().size() == 2 && recorder.state(1) == StateCoordinatorConnected);
    EVENTUALLY(recorder.state(0) == StateCoordinatorNotFound);
    const int sweeps = deaf.rates.size();
    // Three ticks of the watch are three seconds.
    EVENTUALLY(recorder.count(QStringLiteral("time 1")) >= 3);
    QCOMPARE(deaf.rates.size(), sweeps);
}

void tst_CoordinatorLink::aUnitThatWakesUpLaterIsFoundByALaterSweep()
{
    UnitSimulator unit;
    unit.setFaults({UnitFault(UnitFault::LoseRequest).times(1)});
    const LinkRecorder recorder({unit.portName()});
    EVENTUALLY(recorder.state() == StateCoordinatorNotFound);
    EVENTUALLY(recorder.state() == StateCoordinatorConnected);
    QCOMPARE(unit.requestCount(Protocol::Search_Broadcast), 3);
    QCOMPARE(int(recorder.link.currentAddress()), 1);
}

void tst_CoordinatorLink::aPortThatIsNotThereIsNotFound()
{
    const LinkRecorder recorder({portA});
    EVENTUALLY(recorder.state() == StateNotFound);
    EVENTUALLY(!recorder.info().connected);
}

void tst_CoordinatorLink::aReadingOnAPortWithoutACoordinatorRunsToItsEnd()
{
    LinkRecorder recorder({portA});
    EVENTUALLY(!recorder.info().connected);
    recorder.link.choose(recorder.port(0));
    QVERIFY(recorder.has(QStringLiteral("enable 0")));
    recorder.link.readConfiguration();
    QVERIFY(recorder.isBusy);
    // So whoever waits for the scripts can end the busy state.
    EVENTUALLY(recorder.has(QStringLiteral("scripts 0")));
    QVERIFY(recorder.events.constLast().contains(QStringLiteral("= 70)")));
    QVERIFY(recorder.events.constLast().contains(QStringLiteral("= 32)")));
}

void tst_CoordinatorLink::aPortInUseCanNotBeOpened()
{
    const DeafLine deaf;
    QSerialPort other(deaf.line.portName());
    QVERIFY(other.open(QIODevice::ReadWrite));
    const LinkRecorder recorder({deaf.line.portName()});
    EVENTUALLY(recorder.state() == StateOpenError);
    EVENTUALLY(!recorder.info().connected);
    other.close();
    // The cause stays in view until the user tries again.
    QCOMPARE(recorder.state(), StateOpenError);
    recorder.port()->open();
    EVENTUALLY(recorder.state() == StateSearching);
}

void tst_CoordinatorLink::aPortThatIsPluggedInLaterIsFoundOnConnect()
{
    UnitSimulator unit;
    unit.unplug();
    const LinkRecorder recorder({unit.portName()});
    EVENTUALLY(!recorder.info().connected);
    QVERIFY(unit.plugIn());
    recorder.port()->open();
    EVENTUALLY(recorder.state() == StateCoordinatorConnected);
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
    const LinkRecorder recorder({unit.portName()});
    EVENTUALLY(!unit.isPluggedIn());
    EVENTUALLY(recorder.state() == StateCoordinatorNotFound);
    QVERIFY(!recorder.info().connected);
    QVERIFY(unit.plugIn());
    if (!comesBackByItself) {
        recorder.port()->open();
    }
    EVENTUALLY(recorder.state() == StateCoordinatorConnected);
    QCOMPARE(int(recorder.link.currentAddress()), 1);
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
    const LinkRecorder recorder({unit.portName()});
    EVENTUALLY(recorder.state() == StateCoordinatorConnected);
    QCOMPARE(int(recorder.port(0)->address()), 4);
}

QTEST_GUILESS_MAIN(tst_CoordinatorLink)
#include "tst_CoordinatorLink.moc"
