#include "LinkRecorder.h"
#include "support/Eventually.h"

#include <QSignalSpy>
#include <QtTest>

#include <memory>

using Protocol = protocol_HUBN_NX_Q;

/// All ports of a link: their list, the choice of the current one, and a firmware load on one of them.
class tst_LinkPorts : public QObject
{
    Q_OBJECT

private slots:
    void withoutPortsThereIsNothingToChoose();
    void knowsItsStatesByName();
    void aNewPortIsOpened();
    void aPortThatComesBackIsTheSame();
    void aPortThatAppearsLaterIsFoundByTheTimer();
    void aPortIsFoundByItsWorker();

    void theFirstCoordinatorIsChosenByItself();
    void theSecondCoordinatorIsOnlyKnown();
    void choosingAPortWithoutACoordinatorDisablesOperations();
    void choosingNothingKeepsTheCurrentPort();
    void closingKeepsThePortCurrent();
    void theStatusTellsOfTheWatch();
    void theStatusOfAnotherPortIsNotTold();
    void onceAPortIsCurrentNoSearchIsRepeated();
    void onlyTheCurrentPortIsShown();

    void firmwareAnswersGoToTheLoader_data();
    void firmwareAnswersGoToTheLoader();
    void firmwareRequestsGoOutAsTheyAre();
    void aLoadRunsOnItsPort();
    void withoutALoaderNothingIsLoaded();
    void theWatchRestsOnThePortThatIsLoading();
    void anAutomaticSearchWaitsForTheLoadOfItsPort();
    void noPortIsChosenOverARunningLoad();
    void noPortIsChosenOverTheFileDialogOfALoad();
};

// The list.

void tst_LinkPorts::withoutPortsThereIsNothingToChoose()
{
    LinkRecorder recorder;
    recorder.link.choose(nullptr);
    QVERIFY(recorder.link.ports().isEmpty());
    QVERIFY(recorder.link.currentPort() == nullptr);
    QCOMPARE(int(recorder.link.currentAddress()), 255);
    QCOMPARE(recorder.link.currentBaudrate(), 1200);
    QVERIFY(!recorder.isBusy);
    QCOMPARE(recorder.take(), QStringList());
}

void tst_LinkPorts::knowsItsStatesByName()
{
    const CoordinatorLink link;
    QVERIFY(QMetaType::type("StatePort") != QMetaType::UnknownType);
}

void tst_LinkPorts::aNewPortIsOpened()
{
    const LinkRecorder recorder({portA, portB});
    QCOMPARE(recorder.events, QStringList({QStringLiteral("init ") + portA, QStringLiteral("init ") + portB}));
    QCOMPARE(recorder.link.ports().size(), 2);
    QCOMPARE(recorder.port(0)->name(), portA);
    QCOMPARE(recorder.port(1)->name(), portB);
    QCOMPARE(recorder.state(), StateConnecting);
    QCOMPARE(recorder.identityOf(), QStringLiteral("- - - -"));
}

void tst_LinkPorts::aPortThatComesBackIsTheSame()
{
    LinkRecorder recorder({portA});
    recorder.names.clear();
    recorder.link.updatePortList();
    QCOMPARE(recorder.link.ports().size(), 1);
    recorder.names = QStringList({portB, portA});
    recorder.link.updatePortList();
    QCOMPARE(recorder.link.ports().size(), 2);
    QCOMPARE(recorder.port(0)->name(), portA);
    QCOMPARE(recorder.port(1)->name(), portB);
}

void tst_LinkPorts::aPortThatAppearsLaterIsFoundByTheTimer()
{
    LinkRecorder recorder;
    recorder.names.append(portA);
    EVENTUALLY(recorder.link.ports().size() == 1);
    QCOMPARE(recorder.events.first(), QStringLiteral("init ") + portA);
}

void tst_LinkPorts::aPortIsFoundByItsWorker()
{
    const LinkRecorder recorder({portA, portB});
    QCOMPARE(recorder.link.portOf(recorder.port(1)->worker()), recorder.port(1));
    QVERIFY(recorder.link.portOf(std::make_unique<Transmitter>().get()) == nullptr);
    QVERIFY(recorder.link.portOf(nullptr) == nullptr);
}

// The current port.

void tst_LinkPorts::theFirstCoordinatorIsChosenByItself()
{
    LinkRecorder recorder({portA, portB});
    const QSignalSpy chosen(&recorder.link, &CoordinatorLink::chosen);
    Port* const port = recorder.port(1);
    port->setLineBaudrate(57600);
    port->takeAnswer(answers::good(CoordinatorSearch::begin()));
    recorder.take();
    port->takeAnswer(searchAnswer(1));
    // The second status comes with the state; the port isn't watched before that.
    const QString status = QStringLiteral("status 2 ") + portB + QStringLiteral(" 57600 1 4711 6.02");
    QCOMPARE(recorder.take(),
             QStringList({QStringLiteral("send 12 at 57600"), QStringLiteral("enable 1"), status, status}));
    QCOMPARE(chosen.size(), 1);
    QCOMPARE(chosen.first().first().value<Port*>(), port);
    QCOMPARE(recorder.state(1), StateCoordinatorConnected);
    QVERIFY(recorder.info(1).watched);
    QVERIFY(recorder.isBusy);
    QCOMPARE(recorder.busyText, QStringLiteral("Search for connected terminals is in progress..."));
    QCOMPARE(recorder.busySteps, 0);
    QCOMPARE(recorder.busyMaximum, 1);
    QCOMPARE(recorder.link.currentPort(), port);
    QCOMPARE(int(recorder.link.currentAddress()), 1);
    QCOMPARE(recorder.link.currentBaudrate(), 57600);
}

void tst_LinkPorts::theSecondCoordinatorIsOnlyKnown()
{
    LinkRecorder recorder({portA, portB});
    letFind(recorder.port(0), 1);
    recorder.take();
    letFind(recorder.port(1), 5);
    QCOMPARE(recorder.take(), QStringList({QStringLiteral("send 10 at 57600"), QStringLiteral("send 9 at 57600")}));
    QCOMPARE(int(recorder.port(1)->address()), 5);
    QCOMPARE(recorder.state(1), StateCoordinatorConnected);
    QVERIFY(recorder.info(1).watched);
    QCOMPARE(int(recorder.link.currentAddress()), 1);
}

void tst_LinkPorts::choosingAPortWithoutACoordinatorDisablesOperations()
{
    LinkRecorder recorder({portA});
    recorder.take();
    recorder.link.choose(recorder.port());
    QCOMPARE(recorder.take(), QStringList({QStringLiteral("enable 0"),
                                           QStringLiteral("status 2 ") + portA + QStringLiteral(" - - - -")}));
    QVERIFY(!recorder.isBusy);
    QCOMPARE(int(recorder.link.currentAddress()), 255);
    // The port is the current one: a coordinator that is found on it now isn't chosen.
    letFind(recorder.port());
    QVERIFY(!recorder.has(QStringLiteral("enable")));
    QVERIFY(!recorder.isBusy);
    QCOMPARE(int(recorder.port()->address()), 1);
    // Until the port is chosen again.
    recorder.link.choose(recorder.port());
    QVERIFY(recorder.has(QStringLiteral("enable 1")));
    QCOMPARE(int(recorder.link.currentAddress()), 1);
}

void tst_LinkPorts::choosingNothingKeepsTheCurrentPort()
{
    LinkRecorder recorder({portA});
    letFind(recorder.port());
    recorder.isBusy = false;
    recorder.take();
    recorder.link.choose(nullptr);
    QCOMPARE(recorder.take(), QStringList());
    QCOMPARE(int(recorder.link.currentAddress()), 1);
    // It is busy as after any choice, and then no more, since no search was started.
    QVERIFY(recorder.isBusy);
    EVENTUALLY(!recorder.isBusy);
}

void tst_LinkPorts::closingKeepsThePortCurrent()
{
    LinkRecorder recorder({portA});
    letFind(recorder.port());
    recorder.port()->close();
    recorder.take();
    recorder.port()->setState(StatePortDisabled);
    QCOMPARE(recorder.take(), QStringList(QStringLiteral("status 2 ") + portA + QStringLiteral(" - - - -")));
    QCOMPARE(int(recorder.link.currentAddress()), 1);
    recorder.link.readScript(0);
    QCOMPARE(recorder.sent.last().port, recorder.port());
}

void tst_LinkPorts::theStatusTellsOfTheWatch()
{
    LinkRecorder recorder({portA});
    letFind(recorder.port());
    const QString rest = QLatin1Char(' ') + portA + QStringLiteral(" - 1 4711 6.02");
    recorder.take();
    recorder.port()->takeAnswer(answers::good(CoordinatorSearch::check(1, 57600), identity));
    QCOMPARE(recorder.take(), QStringList(QStringLiteral("status 1") + rest));
    recorder.port()->takeAnswer(answers::timedOut(CoordinatorSearch::check(1, 57600)));
    QCOMPARE(recorder.take(), QStringList(QStringLiteral("status 0") + rest));
    recorder.port()->setWatched(false);
    QCOMPARE(recorder.take(), QStringList(QStringLiteral("status 2") + rest));
    recorder.port()->takeAnswer(answers::good(CoordinatorSearch::check(1, 57600), identity));
    QCOMPARE(recorder.take(), QStringList(QStringLiteral("status 2") + rest));
}

void tst_LinkPorts::theStatusOfAnotherPortIsNotTold()
{
    LinkRecorder recorder({portA, portB});
    letFind(recorder.port(0));
    letFind(recorder.port(1));
    recorder.take();
    recorder.port(1)->setWatched(false);
    QVERIFY(!recorder.info(1).watched);
    QCOMPARE(recorder.take(), QStringList());
}

void tst_LinkPorts::onceAPortIsCurrentNoSearchIsRepeated()
{
    LinkRecorder recorder({portA});
    letFind(recorder.port(0));
    // Nor on a port that comes later.
    recorder.names.append(portB);
    recorder.link.updatePortList();
    for (Port* const port : recorder.link.ports()) {
        recorder.take();
        port->repeatSearch();
        QCOMPARE(recorder.take(), QStringList());
    }
}

void tst_LinkPorts::onlyTheCurrentPortIsShown()
{
    LinkRecorder recorder({portA, portB});
    letFind(recorder.port(0));
    letFind(recorder.port(1));
    QVector<QByteArray> requests;
    QVector<QByteArray> answersSeen;
    connect(&recorder.link, &CoordinatorLink::requestShown, this,
            [&requests](const QDateTime&, const QByteArray& bytes, bool) { requests.append(bytes); });
    connect(&recorder.link, &CoordinatorLink::answerShown, this,
            [&answersSeen](const QDateTime&, const QByteArray& bytes, bool) { answersSeen.append(bytes); });
    // The workers live on other threads, so what they emit arrives by the event loop. Their own work is silent here,
    // since the ports don't exist and nothing is ever written.
    const auto bothReport = [&recorder] {
        for (int index = 0; index < 2; ++index) {
            emit recorder.port(index)->worker()->sig_SendRequestInForm(QDateTime(), QByteArray(1, char('a' + index)),
                                                                       false);
        }
        emit recorder.port(0)->worker()->sig_SendAnswerInForm(QDateTime(), "A", true);
    };
    bothReport();
    EVENTUALLY(requests == QVector<QByteArray>({"a"}));
    EVENTUALLY(answersSeen.contains("A"));

    recorder.link.choose(recorder.port(1));
    requests.clear();
    answersSeen.clear();
    bothReport();
    EVENTUALLY(requests == QVector<QByteArray>({"b"}));
    QVERIFY(!answersSeen.contains("A"));
}

// Firmware.

void tst_LinkPorts::firmwareAnswersGoToTheLoader_data()
{
    QTest::addColumn<message>("answer");
    QTest::addColumn<int>("port");
    QTest::addColumn<bool>("running");
    QTest::addColumn<bool>("passed");
    message boot;
    boot.setRequest("boot");
    boot.setBootType(5);
    const message enter = Protocol::requestSwitchToBoot(1);
    QTest::newRow("boot answer of the current port") << answers::timedOut(boot) << 0 << false << true;
    QTest::newRow("enter-boot answer of the current port") << answers::timedOut(enter) << 0 << false << true;
    QTest::newRow("boot answer of another port") << answers::good(boot) << 1 << false << false;
    QTest::newRow("boot answer of another port that is loading") << answers::good(boot) << 1 << true << true;
    QTest::newRow("enter-boot answer of a port that is loading") << answers::timedOut(enter) << 1 << true << true;
    QTest::newRow("device answer of a port that is loading")
        << answers::timedOut(Protocol::requestReadConfig(1, 0, 0)) << 1 << true << false;
}

void tst_LinkPorts::firmwareAnswersGoToTheLoader()
{
    QFETCH(message, answer);
    QFETCH(int, port);
    QFETCH(bool, running);
    LinkRecorder recorder({portA, portB});
    letFind(recorder.port(0));
    recorder.link.setFirmwareRunner([&](const FirmwarePort& load) {
        load.setRunning(running);
        recorder.take();
        recorder.port(port)->takeAnswer(answer);
        load.setRunning(false);
    });
    recorder.link.loadFirmware(*recorder.port(1));
    QTEST(recorder.has(QStringLiteral("firmware %1 %2").arg(answer.requestType()).arg(answer.bootType())), "passed");
    // No resend in any case: that is the loader's.
    QVERIFY(!recorder.has(QStringLiteral("send")));
}

void tst_LinkPorts::firmwareRequestsGoOutAsTheyAre()
{
    LinkRecorder recorder({portA});
    letFind(recorder.port(), 1, 9600);
    recorder.take();
    message boot;
    boot.setRequest("boot");
    boot.setBootType(3);
    boot.setBaudrate(57600);
    recorder.link.send(boot);
    QCOMPARE(recorder.sent.last().request, boot);
    QCOMPARE(recorder.sent.last().request.baudrate(), 57600);
    QCOMPARE(recorder.sent.last().port, recorder.port());
}

void tst_LinkPorts::aLoadRunsOnItsPort()
{
    LinkRecorder recorder({portA, portB});
    letFind(recorder.port(1), 4, 9600);
    recorder.port(1)->close();
    recorder.take();
    int runs = 0;
    recorder.link.setFirmwareRunner([&](const FirmwarePort& load) {
        ++runs;
        // A closed port has no address any more, but keeps the rate at which the unit was found.
        QCOMPARE(int(load.address), 255);
        QCOMPARE(load.baudrate, 9600);
        message request = Protocol::requestSwitchToBoot(0);
        request.setBaudrate(load.baudrate);
        load.send(request);
    });
    recorder.link.loadFirmware(*recorder.port(1));
    QCOMPARE(runs, 1);
    QCOMPARE(recorder.take(), QStringList(QStringLiteral("send 22 at 9600")));
    QCOMPARE(recorder.sent.last().port, recorder.port(1));
}

void tst_LinkPorts::withoutALoaderNothingIsLoaded()
{
    LinkRecorder recorder({portA});
    recorder.take();
    recorder.link.loadFirmware(*recorder.port());
    QCOMPARE(recorder.take(), QStringList());
}

void tst_LinkPorts::theWatchRestsOnThePortThatIsLoading()
{
    LinkRecorder recorder({portA, portB});
    letFind(recorder.port(0));
    letFind(recorder.port(1));
    const auto questions = [&recorder] {
        recorder.take();
        recorder.port(0)->checkCoordinator();
        return recorder.take().size();
    };
    recorder.link.setFirmwareRunner([&](const FirmwarePort& load) {
        load.setRunning(true);
        QCOMPARE(questions(), 0);
        load.setRunning(false);
    });
    recorder.link.loadFirmware(*recorder.port(0));
    QCOMPARE(questions(), 2);
    recorder.link.setFirmwareRunning(true);
    QCOMPARE(questions(), 0);
    // Whichever port is current by then.
    recorder.link.choose(recorder.port(1));
    recorder.link.setFirmwareRunning(false);
    QCOMPARE(questions(), 2);
}

void tst_LinkPorts::anAutomaticSearchWaitsForTheLoadOfItsPort()
{
    LinkRecorder recorder({portA, portB});
    // The ports don't exist, so each search of them, once begun, runs into silence; the next is due a second later.
    const auto isClosed = [&recorder](int index) {
        return recorder.state(index) == StateNotFound && !recorder.info(index).connected;
    };
    const auto searchIn = [&recorder, &isClosed](int index) {
        EVENTUALLY(isClosed(index));
        recorder.port(index)->setState(StateSearching);
        EVENTUALLY(recorder.state(index) == StateCoordinatorNotFound);
    };
    searchIn(0);
    recorder.take();
    recorder.link.setFirmwareRunner([&](const FirmwarePort&) {
        // Two such seconds pass on the other port.
        for (int second = 1; second <= 2; ++second) {
            searchIn(1);
            EVENTUALLY(recorder.count(QStringLiteral("open ") + portB) == second);
        }
        QVERIFY(!recorder.has(QStringLiteral("open ") + portA));
    });
    recorder.link.loadFirmware(*recorder.port(0));
    QVERIFY(!recorder.has(QStringLiteral("open ") + portA));
    EVENTUALLY(recorder.has(QStringLiteral("open ") + portA));
}

void tst_LinkPorts::noPortIsChosenOverARunningLoad()
{
    LinkRecorder recorder({portA, portB});
    recorder.port(0)->close();
    recorder.link.setFirmwareRunner([&](const FirmwarePort& load) {
        load.setRunning(true);
        recorder.take();
        letFind(recorder.port(1));
        QVERIFY(!recorder.has(QStringLiteral("enable")));
        QVERIFY(!recorder.isBusy);
        load.setRunning(false);
    });
    recorder.link.loadFirmware(*recorder.port(0));
    QVERIFY(!recorder.has(QStringLiteral("enable")));
    // The watch has it chosen.
    recorder.port(1)->takeAnswer(answers::good(CoordinatorSearch::check(1, 57600), identity));
    QVERIFY(recorder.has(QStringLiteral("enable 1")));
    QCOMPARE(int(recorder.link.currentAddress()), 1);
}

void tst_LinkPorts::noPortIsChosenOverTheFileDialogOfALoad()
{
    LinkRecorder recorder({portA, portB});
    recorder.port(0)->close();
    recorder.link.setFirmwareRunner([&](const FirmwarePort&) {
        recorder.take();
        letFind(recorder.port(1));
        QCOMPARE(recorder.state(1), StateCoordinatorConnected);
        QVERIFY(!recorder.has(QStringLiteral("enable")));
        QVERIFY(!recorder.isBusy);
        // And then the user cancels.
    });
    recorder.link.loadFirmware(*recorder.port(0));
    QVERIFY(!recorder.has(QStringLiteral("enable")));
    recorder.port(1)->takeAnswer(answers::good(CoordinatorSearch::check(1, 57600), identity));
    QVERIFY(recorder.has(QStringLiteral("enable 1")));
}

QTEST_GUILESS_MAIN(tst_LinkPorts)
#include "tst_LinkPorts.moc"
