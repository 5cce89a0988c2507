#include "Answers.h"
#include "FormRecorder.h"
#include "link/CoordinatorSearch.h"
#include "link/protocol_HUBN_NX_Q.h"
#include "support/DebugLines.h"
#include "support/Eventually.h"
#include "support/threadedTestMain.h"
#include "texts/texts.h"

#include <QHeaderView>
#include <QLabel>
#include <QScreen>
#include <QScrollBar>
#include <QtTest>

#include <memory>

namespace
{

using Protocol = protocol_HUBN_NX_Q;

// Names of no ports: what the workers report of them waits for an event loop.
const QString portA = QStringLiteral("no-such-port-a");
const QString portB = QStringLiteral("no-such-port-b");

// Serial number 4711, version 6.02.
const QByteArray identity = QByteArray::fromHex("67120206");

message searchAnswer(quint8 address, int baudrate = 57600)
{
    message request = Protocol::requestCheckCoordinator(address);
    request.setAddress(address);
    request.setBaudrate(baudrate);
    return answers::good(request, identity, address);
}

QByteArray blocksOf(int records)
{
    return QByteArray(16 * records, 'e');
}

} // namespace

class tst_FormChoiceCoordinator : public QObject
{
    Q_OBJECT

private slots:
    void isAModalWindowInTheMiddleOfTheScreen();
    void tableIsLaidOut();
    void rowsAreHighEnoughForTwoLines();
    void tableIsAsWideAsItsColumns();
    void textsOfTheButtonsAreNotCut();

    void withoutPortsTheTableIsEmptyAndSelectOnlyHidesTheForm();
    void aNewPortGetsARowAndIsOpened();
    void aPortThatComesBackKeepsItsRow();
    void aPortThatAppearsLaterIsFoundByTheTimer();

    void showsEachState_data();
    void showsEachState();
    void aWatchedPortOnlyCountsAsLost_data();
    void aWatchedPortOnlyCountsAsLost();
    void aWatchedPortThatWasClosedIsDisabled();
    void keepsTheCauseInViewAfterClosing_data();
    void keepsTheCauseInViewAfterClosing();
    void hiddenControlsStayHiddenWhenTheTableIsLaidOutAgain();
    void showsTheBaudrateOfThePort();

    void sweepsTheRates();
    void searchesAtTheRateAtWhichBytesCame();
    void aSilentPortIsDisconnected();
    void aNamelessPortIsDisconnected();
    void theFirstCoordinatorIsChosenByItself();
    void theSecondCoordinatorOnlyFillsItsRow();

    void disconnectingClearsTheRow();
    void connectingSearchesAgain();
    void aCheckThatComesAfterDisconnectingSaysNothing();
    void disconnectingKeepsThePortSelected();

    void theWatchReportsThreeStatuses();
    void switchingTheWatchOfAnotherPortOffSaysNothing();
    void aLostCoordinatorKeepsItsRowAndComesBack();
    void theWatchTakesOverWhatHasChanged();
    void theWatchKeepsAskingTheAddressThatWasFound();

    void selectingARowWithoutACoordinatorDisablesOperations();
    void selectingWithNothingChosenKeepsTheCurrentPort();
    void onlyTheCurrentPortIsLogged();
    void closingWithoutAPortDisablesOperations();
    void closingWithAPortSaysNothing();
    void closingTheMainWindowEndsTheApplication_data();
    void closingTheMainWindowEndsTheApplication();
    void hidingOrClosingTheFormsDoesNotEndTheApplication();

    void answersOfOtherPortsAreDropped();
    void unknownTypesAreDroppedAfterTheirAttempts();
    void aFailedStepIsSentFourTimes();
    void aRefusedStepIsSentFourTimes();
    void resendsKeepTheRateOfTheRow();

    void theTimeOfTheUnitIsShown();
    void theTimeOfOtherPortsIsNotShown();
    void theLastTimeStaysInViewAfterDisconnecting();
    void settingTheTimeSendsSevenBytes();
    void settingTheTimeIsResentOnlyIfNothingCame_data();
    void settingTheTimeIsResentOnlyIfNothingCame();
    void withoutAPortNoTimeIsSet();

    void theWholeChainInOrder();
    void writingHidesTheBusyForm();
    void readingWithoutAPortIsNoDeadEnd();
    void writingNothingIsNoDeadEnd();
    void aRunningOperationIsNotHiddenByOneBefore();
    void readingTheLogWithoutAPortGivesTheViewBack();
    void anUnchangedLogHidesTheBusyForm();
    void aForcedLogReadingReads();

    void firmwareAnswersGoToTheLoader_data();
    void firmwareAnswersGoToTheLoader();
    void firmwareRequestsGoOutAsTheyAre();
    void theFirmwareButtonRunsALoadOnItsPort();
    void theFirmwareButtonWithoutALoaderDoesNothing();
    void anAutomaticSearchWaitsForTheLoadOfItsPort();
    void noPortIsChosenOverARunningLoad();
    void noPortIsChosenOverTheFileDialogOfALoad();

private:
    /// Answers the search of a row, so that its coordinator is found at this address.
    static void find(FormRecorder& recorder, int row = 0, quint8 address = 1, int baudrate = 57600);
    /// Answers everything that the current port was asked since the last call, with data that suit.
    static void answerAll(FormRecorder& recorder);
};

void tst_FormChoiceCoordinator::find(FormRecorder& recorder, int row, quint8 address, int baudrate)
{
    Transmitter* const transmitter = recorder.transmitters.at(row);
    message broadcast = CoordinatorSearch::begin();
    broadcast.setBaudrate(baudrate);
    recorder.form.sl_setStatePort(transmitter, StateSearching);
    recorder.form.sl_receiveAnswer(transmitter, answers::good(broadcast));
    recorder.form.sl_receiveAnswer(transmitter, searchAnswer(address, baudrate));
}

void tst_FormChoiceCoordinator::answerAll(FormRecorder& recorder)
{
    while (!recorder.sent.isEmpty()) {
        const FormRecorder::Sent sent = recorder.sent.takeFirst();
        QByteArray payload;
        switch (sent.request.requestType()) {
        case Protocol::Read_Info_Log:
            payload = QByteArray::fromHex("e8030500");
            break;
        case Protocol::Read_Log:
            payload = blocksOf(quint8(sent.request.request().at(3)) == 0 ? 4 : 1);
            break;
        case Protocol::Busy_Channel_Execute:
            payload = QByteArray::fromHex("05");
            break;
        case Protocol::Terminal_Execute_Info:
            payload = sent.request.request();
            break;
        default:
            payload = QByteArray::fromHex("00");
            break;
        }
        recorder.form.sl_receiveAnswer(sent.receiver, answers::good(sent.request, payload));
    }
}

// The form.

void tst_FormChoiceCoordinator::isAModalWindowInTheMiddleOfTheScreen()
{
    const FormRecorder recorder;
    const FormChoiceCoordinator& form = recorder.form;
    QCOMPARE(form.windowTitle(), QStringLiteral("Coordinator selection"));
    QCOMPARE(form.windowModality(), Qt::ApplicationModal);
    QCOMPARE(form.windowType(), Qt::Window);
    QVERIFY(form.windowFlags().testFlag(Qt::WindowTitleHint));
    QVERIFY(form.windowFlags().testFlag(Qt::WindowCloseButtonHint));
    QVERIFY((form.windowFlags() & Qt::WindowMinMaxButtonsHint) == 0);
    QCOMPARE(form.size(), QSize(937, 572));
    const QPoint distance = form.geometry().center() - QGuiApplication::primaryScreen()->availableGeometry().center();
    QVERIFY(distance.manhattanLength() <= 2);
    QCOMPARE(recorder.select()->text(), QStringLiteral("Select"));
    QVERIFY(!form.testAttribute(Qt::WA_QuitOnClose));
    QCOMPARE(int(form.currentAddress()), 255);
    QCOMPARE(form.currentBaudrate(), 1200);
    QVERIFY(QMetaType::type("StatePort") != QMetaType::UnknownType);
}

void tst_FormChoiceCoordinator::tableIsLaidOut()
{
    const FormRecorder recorder;
    const QTableWidget* const table = recorder.table();
    const QVector<QPair<QString, int>> columns{{QStringLiteral("Name of\nport"), 67},
                                               {QStringLiteral("Baudrate of\nport"), 69},
                                               {QStringLiteral("Name of\ncoordinator"), 104},
                                               {QStringLiteral("Serial\nnumber"), 82},
                                               {QStringLiteral("Version"), 82},
                                               {QStringLiteral("State"), 223},
                                               {QString(), 167}};
    QCOMPARE(table->columnCount(), columns.size());
    for (int column = 0; column < columns.size(); ++column) {
        QCOMPARE(table->horizontalHeaderItem(column)->text(), columns.at(column).first);
        QCOMPARE(table->columnWidth(column), columns.at(column).second);
    }
    QCOMPARE(table->horizontalHeader()->minimumHeight(), 50);
    QCOMPARE(table->horizontalHeader()->maximumHeight(), 50);
    QVERIFY(table->verticalHeader()->isHidden());
    QVERIFY(table->showGrid());
    QCOMPARE(table->selectionMode(), QAbstractItemView::SingleSelection);
    QCOMPARE(table->selectionBehavior(), QAbstractItemView::SelectRows);
    QCOMPARE(table->styleSheet(),
             QStringLiteral("selection-background-color: rgb(230,230,230); selection-color: black"));
}

void tst_FormChoiceCoordinator::rowsAreHighEnoughForTwoLines()
{
    FormRecorder recorder({portA});
    recorder.form.sl_setStatePort(recorder.transmitters.at(0), StateOpenError);
    const int twoLines = 2 * recorder.table()->fontMetrics().lineSpacing();
    QVERIFY(recorder.table()->rowHeight(0) > twoLines);
    QVERIFY(recorder.table()->rowHeight(0) > recorder.connectButton()->sizeHint().height());
}

void tst_FormChoiceCoordinator::tableIsAsWideAsItsColumns()
{
    FormRecorder recorder({portA});
    recorder.form.show();
    QCOMPARE(recorder.table()->viewport()->width(), 794);
    for (int port = 0; port < 20; ++port) {
        recorder.names.append(QString::number(port));
    }
    recorder.form.sl_updatePortList();
    QTRY_VERIFY_WITH_TIMEOUT(recorder.table()->verticalScrollBar()->isVisible(), 10000);
    QCOMPARE(recorder.table()->viewport()->width(), 794);
    QVERIFY(!recorder.table()->horizontalScrollBar()->isVisible());
}

void tst_FormChoiceCoordinator::textsOfTheButtonsAreNotCut()
{
    FormRecorder recorder({portA});
    recorder.form.show();
    recorder.form.sl_setStatePort(recorder.transmitters.at(0), StateOpenError);
    const auto isWhole = [](const QPushButton* button) {
        const QWidget* const cell = button->parentWidget();
        return button->isVisible() && button->width() > button->fontMetrics().horizontalAdvance(button->text()) &&
               cell->rect().contains(button->geometry());
    };
    QTRY_VERIFY_WITH_TIMEOUT(isWhole(recorder.firmwareButton()), 10000);
    QVERIFY(isWhole(recorder.connectButton()));
    recorder.connectButton()->click();
    recorder.form.sl_setStatePort(recorder.transmitters.at(0), StateCoordinatorLost);
    QTRY_VERIFY_WITH_TIMEOUT(isWhole(recorder.connectButton()), 10000);
}

// The list of ports.

void tst_FormChoiceCoordinator::withoutPortsTheTableIsEmptyAndSelectOnlyHidesTheForm()
{
    FormRecorder recorder;
    recorder.form.show();
    recorder.select()->click();
    QCOMPARE(recorder.table()->rowCount(), 0);
    QVERIFY(!recorder.form.isVisible());
    QVERIFY(!recorder.busy()->isVisible());
    QCOMPARE(recorder.take(), QStringList());
}

void tst_FormChoiceCoordinator::aNewPortGetsARowAndIsOpened()
{
    const FormRecorder recorder({portA, portB});
    QCOMPARE(recorder.events, QStringList({QStringLiteral("init ") + portA, QStringLiteral("init ") + portB}));
    QCOMPARE(recorder.table()->rowCount(), 2);
    QCOMPARE(recorder.text(0, 0), portA);
    QCOMPARE(recorder.text(1, 0), portB);
    QCOMPARE(recorder.state(), QStringLiteral("Connection to port..."));
    QCOMPARE(recorder.info(),
             QStringList({QStringLiteral("-"), QStringLiteral("-"), QStringLiteral("-"), QStringLiteral("-")}));
}

void tst_FormChoiceCoordinator::aPortThatComesBackKeepsItsRow()
{
    FormRecorder recorder({portA});
    recorder.names.clear();
    recorder.form.sl_updatePortList();
    QCOMPARE(recorder.table()->rowCount(), 1);
    recorder.names = QStringList({portB, portA});
    recorder.form.sl_updatePortList();
    QCOMPARE(recorder.table()->rowCount(), 2);
    QCOMPARE(recorder.text(0, 0), portA);
    QCOMPARE(recorder.text(1, 0), portB);
    QCOMPARE(recorder.transmitters.size(), 2);
}

void tst_FormChoiceCoordinator::aPortThatAppearsLaterIsFoundByTheTimer()
{
    FormRecorder recorder;
    recorder.names.append(portA);
    QTRY_COMPARE_WITH_TIMEOUT(recorder.table()->rowCount(), 1, 10000);
    QCOMPARE(recorder.events.first(), QStringLiteral("init ") + portA);
}

// States.

void tst_FormChoiceCoordinator::showsEachState_data()
{
    QTest::addColumn<int>("state");
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("autoDisconnect");
    QTest::addColumn<bool>("showControls");
    QTest::newRow("connecting") << 0 << QStringLiteral("Connection to port...") << false << false;
    QTest::newRow("setting refused") << 1 << QStringLiteral("Error opening the port\nPort disabled") << true << true;
    QTest::newRow("not opened") << 2 << QStringLiteral("Error opening the port\nPort disabled") << true << true;
    QTest::newRow("not there") << 3 << QStringLiteral("Port not found") << true << true;
    QTest::newRow("searching") << 4 << QStringLiteral("Search of coordinator...") << false << false;
    QTest::newRow("no coordinator") << 5 << QStringLiteral("Coordinator not found\nPort disabled") << true << true;
    QTest::newRow("connected") << 6 << QStringLiteral("Coordinator connected") << false << true;
    QTest::newRow("lost") << 7 << QStringLiteral("Coordinator was disabled (!)") << false << true;
    QTest::newRow("disabled") << 8 << QStringLiteral("Port disabled") << false << true;
    QTest::newRow("beyond the last") << 9 << QStringLiteral("???") << false << true;
    QTest::newRow("below the first") << -1 << QStringLiteral("???") << false << true;
}

void tst_FormChoiceCoordinator::showsEachState()
{
    QFETCH(int, state);
    QFETCH(bool, autoDisconnect);
    FormRecorder recorder({portA});
    recorder.take();
    recorder.form.sl_setStatePort(recorder.transmitters.at(0), StatePort(state));
    QTEST(recorder.state(), "text");
    QTEST(recorder.showsControls(), "showControls");
    QStringList expected;
    if (autoDisconnect) {
        expected.append(QStringLiteral("close"));
    }
    if (state == StateSearching) {
        expected.append(QStringLiteral("send 10 at 57600"));
    }
    // No status: the port isn't the current one.
    QCOMPARE(recorder.take(), expected);
    QCOMPARE(recorder.connectButton()->text(),
             autoDisconnect ? QStringLiteral("Connect") : QStringLiteral("Disconnect"));
}

void tst_FormChoiceCoordinator::aWatchedPortOnlyCountsAsLost_data()
{
    QTest::addColumn<int>("state");
    for (const int state : {0, 1, 2, 3, 4, 5, 7, 9}) {
        QTest::addRow("state %d", state) << state;
    }
}

void tst_FormChoiceCoordinator::aWatchedPortOnlyCountsAsLost()
{
    QFETCH(int, state);
    FormRecorder recorder({portA});
    find(recorder);
    QVERIFY(recorder.check()->isChecked());
    recorder.take();
    recorder.form.sl_setStatePort(recorder.transmitters.at(0), StatePort(state));
    QCOMPARE(recorder.state(), QStringLiteral("Coordinator was disabled (!)"));
    QVERIFY(recorder.showsControls());
    QCOMPARE(recorder.connectButton()->text(), QStringLiteral("Disconnect"));
    QCOMPARE(recorder.take(), QStringList(QStringLiteral("status 0 ") + portA + QStringLiteral(" - 1 4711 6.02")));
}

void tst_FormChoiceCoordinator::aWatchedPortThatWasClosedIsDisabled()
{
    FormRecorder recorder({portA});
    find(recorder);
    QVERIFY(recorder.check()->isChecked());
    recorder.form.sl_setStatePort(recorder.transmitters.at(0), StatePortDisabled);
    QCOMPARE(recorder.state(), QStringLiteral("Port disabled"));
    QVERIFY(recorder.showsControls());
}

void tst_FormChoiceCoordinator::keepsTheCauseInViewAfterClosing_data()
{
    QTest::addColumn<int>("cause");
    QTest::addColumn<QString>("text");
    QTest::newRow("setting refused") << 1 << QStringLiteral("Error opening the port\nPort disabled");
    QTest::newRow("not opened") << 2 << QStringLiteral("Error opening the port\nPort disabled");
    QTest::newRow("not there") << 3 << QStringLiteral("Port not found");
    QTest::newRow("no coordinator") << 5 << QStringLiteral("Coordinator not found\nPort disabled");
    QTest::newRow("a connection is no cause") << 6 << QStringLiteral("Port disabled");
    QTest::newRow("a loss is no cause") << 7 << QStringLiteral("Port disabled");
    QTest::newRow("a search is no cause") << 4 << QStringLiteral("Port disabled");
}

void tst_FormChoiceCoordinator::keepsTheCauseInViewAfterClosing()
{
    QFETCH(int, cause);
    FormRecorder recorder({portA});
    recorder.form.sl_setStatePort(recorder.transmitters.at(0), StatePort(cause));
    recorder.form.sl_setStatePort(recorder.transmitters.at(0), StatePortDisabled);
    QTEST(recorder.state(), "text");
    QVERIFY(recorder.showsControls());
}

void tst_FormChoiceCoordinator::hiddenControlsStayHiddenWhenTheTableIsLaidOutAgain()
{
    FormRecorder recorder({portA, portB});
    recorder.form.show();
    recorder.form.sl_setStatePort(recorder.transmitters.at(0), StateSearching);
    recorder.form.sl_setStatePort(recorder.transmitters.at(1), StatePortDisabled);
    recorder.table()->setColumnWidth(0, 80);
    recorder.form.resize(900, 500);
    recorder.table()->doItemsLayout();
    QVERIFY(!recorder.connectButton(0)->isVisible());
    QVERIFY(recorder.connectButton(1)->isVisible());
}

void tst_FormChoiceCoordinator::showsTheBaudrateOfThePort()
{
    FormRecorder recorder({portA, portB});
    recorder.form.sl_setBaudratePort(recorder.transmitters.at(1), 9600);
    QCOMPARE(recorder.text(0, 1), QStringLiteral("-"));
    QCOMPARE(recorder.text(1, 1), QStringLiteral("9600"));
}

// Search.

void tst_FormChoiceCoordinator::sweepsTheRates()
{
    FormRecorder recorder({portA});
    Transmitter* const port = recorder.transmitters.at(0);
    recorder.take();
    recorder.form.sl_setStatePort(port, StateSearching);
    QCOMPARE(recorder.sent.last().receiver, port);
    recorder.form.sl_receiveAnswer(port, answers::timedOut(recorder.sent.last().request));
    QCOMPARE(recorder.take(), QStringList({QStringLiteral("send 10 at 57600"), QStringLiteral("send 10 at 9600")}));
}

void tst_FormChoiceCoordinator::searchesAtTheRateAtWhichBytesCame()
{
    FormRecorder recorder({portA});
    Transmitter* const port = recorder.transmitters.at(0);
    recorder.form.sl_setStatePort(port, StateSearching);
    recorder.form.sl_receiveAnswer(port, answers::timedOut(recorder.sent.last().request));
    recorder.take();
    recorder.form.sl_receiveAnswer(port, answers::damaged(recorder.sent.last().request));
    recorder.form.sl_receiveAnswer(port, answers::timedOut(recorder.sent.last().request));
    recorder.form.sl_receiveAnswer(port, answers::refused(recorder.sent.last().request, 2));
    QCOMPARE(recorder.take(), QStringList({QStringLiteral("send 9 at 9600"), QStringLiteral("send 9 at 9600"),
                                           QStringLiteral("send 9 at 9600")}));
    QCOMPARE(int(recorder.sent.last().request.address()), 3);
    recorder.form.sl_receiveAnswer(port, answers::good(recorder.sent.last().request, identity, 3));
    QCOMPARE(recorder.form.currentBaudrate(), 9600);
    QCOMPARE(int(recorder.form.currentAddress()), 3);
}

void tst_FormChoiceCoordinator::aSilentPortIsDisconnected()
{
    FormRecorder recorder({portA});
    Transmitter* const port = recorder.transmitters.at(0);
    recorder.form.sl_setStatePort(port, StateSearching);
    recorder.form.sl_receiveAnswer(port, answers::timedOut(recorder.sent.last().request));
    recorder.take();
    recorder.form.sl_receiveAnswer(port, answers::timedOut(recorder.sent.last().request));
    QCOMPARE(recorder.take(), QStringList(QStringLiteral("close")));
    QCOMPARE(recorder.state(), QStringLiteral("Coordinator not found\nPort disabled"));
    QCOMPARE(recorder.connectButton()->text(), QStringLiteral("Connect"));
    QVERIFY(!recorder.firmwareButton()->isHidden());
}

void tst_FormChoiceCoordinator::aNamelessPortIsDisconnected()
{
    FormRecorder recorder({portA});
    Transmitter* const port = recorder.transmitters.at(0);
    recorder.form.sl_setStatePort(port, StateSearching);
    recorder.form.sl_receiveAnswer(port, answers::good(recorder.sent.last().request));
    for (int address = 1; address < 8; ++address) {
        recorder.form.sl_receiveAnswer(port, answers::timedOut(recorder.sent.last().request));
    }
    recorder.take();
    recorder.form.sl_receiveAnswer(port, answers::timedOut(recorder.sent.last().request));
    QCOMPARE(recorder.take(), QStringList(QStringLiteral("close")));
    QCOMPARE(recorder.state(), QStringLiteral("Coordinator not found\nPort disabled"));
}

void tst_FormChoiceCoordinator::theFirstCoordinatorIsChosenByItself()
{
    FormRecorder recorder({portA, portB});
    Transmitter* const port = recorder.transmitters.at(1);
    recorder.form.show();
    recorder.form.sl_setBaudratePort(port, 57600);
    recorder.take();
    recorder.form.sl_receiveAnswer(port, answers::good(CoordinatorSearch::begin()));
    recorder.take();
    recorder.form.sl_receiveAnswer(port, searchAnswer(1));
    // The second status comes with the state; the check box is only checked after it, so the port isn't watched yet.
    const QString status = QStringLiteral("status 2 ") + portB + QStringLiteral(" 57600 1 4711 6.02");
    QCOMPARE(recorder.take(),
             QStringList({QStringLiteral("send 12 at 57600"), QStringLiteral("enable 1"), status, status}));
    QCOMPARE(recorder.table()->currentRow(), 1);
    QCOMPARE(recorder.info(1), QStringList({QStringLiteral("57600"), QStringLiteral("Coordinator 1"),
                                            QStringLiteral("4711"), QStringLiteral("6.02")}));
    QCOMPARE(recorder.state(1), QStringLiteral("Coordinator connected"));
    QVERIFY(recorder.check(1)->isChecked());
    QVERIFY(!recorder.form.isVisible());
    QVERIFY(recorder.busy()->isVisible());
    QCOMPARE(recorder.busy()->findChild<QLabel*>()->text(),
             QStringLiteral("Search for connected terminals is in progress..."));
    QCOMPARE(recorder.bar()->minimum(), 0);
    QCOMPARE(recorder.bar()->maximum(), 1);
    QCOMPARE(int(recorder.form.currentAddress()), 1);
    QCOMPARE(recorder.form.currentBaudrate(), 57600);
}

void tst_FormChoiceCoordinator::theSecondCoordinatorOnlyFillsItsRow()
{
    FormRecorder recorder({portA, portB});
    find(recorder, 0, 1);
    recorder.take();
    find(recorder, 1, 5);
    QCOMPARE(recorder.take(), QStringList({QStringLiteral("send 10 at 57600"), QStringLiteral("send 9 at 57600")}));
    QCOMPARE(recorder.text(1, 2), QStringLiteral("Coordinator 5"));
    QCOMPARE(recorder.state(1), QStringLiteral("Coordinator connected"));
    QVERIFY(recorder.check(1)->isChecked());
    QCOMPARE(int(recorder.form.currentAddress()), 1);
}

// Connect and disconnect.

void tst_FormChoiceCoordinator::disconnectingClearsTheRow()
{
    FormRecorder recorder({portA});
    find(recorder);
    recorder.form.sl_setBaudratePort(recorder.transmitters.at(0), 57600);
    recorder.take();
    recorder.connectButton()->click();
    QCOMPARE(recorder.take(), QStringList(QStringLiteral("close")));
    QCOMPARE(recorder.connectButton()->text(), QStringLiteral("Connect"));
    QCOMPARE(recorder.connectButton()->styleSheet(), QStringLiteral("background-color: green"));
    QCOMPARE(recorder.info(),
             QStringList({QStringLiteral("-"), QStringLiteral("-"), QStringLiteral("-"), QStringLiteral("-")}));
    QVERIFY(recorder.check()->isHidden());
    QVERIFY(!recorder.check()->isChecked());
    QVERIFY(!recorder.firmwareButton()->isHidden());
    recorder.form.sl_setStatePort(recorder.transmitters.at(0), StatePortDisabled);
    QCOMPARE(recorder.state(), QStringLiteral("Port disabled"));
}

void tst_FormChoiceCoordinator::connectingSearchesAgain()
{
    FormRecorder recorder({portA});
    recorder.connectButton()->click();
    recorder.take();
    recorder.connectButton()->click();
    QCOMPARE(recorder.take(), QStringList(QStringLiteral("open ") + portA));
    QCOMPARE(recorder.connectButton()->text(), QStringLiteral("Disconnect"));
    QCOMPARE(recorder.connectButton()->styleSheet(), QStringLiteral("background-color: red"));
    QVERIFY(!recorder.check()->isHidden());
    QVERIFY(!recorder.check()->isChecked());
    QVERIFY(recorder.firmwareButton()->isHidden());
}

void tst_FormChoiceCoordinator::aCheckThatComesAfterDisconnectingSaysNothing()
{
    FormRecorder recorder({portA});
    find(recorder);
    Transmitter* const port = recorder.transmitters.at(0);
    recorder.connectButton()->click();
    recorder.form.sl_setStatePort(port, StatePortDisabled);
    recorder.take();
    recorder.form.sl_receiveAnswer(port, answers::timedOut(CoordinatorSearch::check(1, 57600)));
    recorder.form.sl_receiveAnswer(port, answers::good(CoordinatorSearch::check(1, 57600), identity));
    QCOMPARE(recorder.take(), QStringList());
    QCOMPARE(recorder.state(), QStringLiteral("Port disabled"));
    QCOMPARE(recorder.text(0, 2), QStringLiteral("-"));
}

void tst_FormChoiceCoordinator::disconnectingKeepsThePortSelected()
{
    FormRecorder recorder({portA});
    find(recorder);
    recorder.connectButton()->click();
    recorder.take();
    recorder.form.sl_setStatePort(recorder.transmitters.at(0), StatePortDisabled);
    // The main window learns of it by the status, and by nothing else.
    QCOMPARE(recorder.take(), QStringList(QStringLiteral("status 2 ") + portA + QStringLiteral(" - 255 - -")));
    QCOMPARE(int(recorder.form.currentAddress()), 1);
    recorder.form.sl_SendRequestReadScript(0);
    QCOMPARE(recorder.sent.last().receiver, recorder.transmitters.at(0));
}

// Watch.

void tst_FormChoiceCoordinator::theWatchReportsThreeStatuses()
{
    FormRecorder recorder({portA});
    find(recorder);
    Transmitter* const port = recorder.transmitters.at(0);
    const QString rest = QLatin1Char(' ') + portA + QStringLiteral(" - 1 4711 6.02");
    recorder.take();
    recorder.form.sl_receiveAnswer(port, answers::good(CoordinatorSearch::check(1, 57600), identity));
    QCOMPARE(recorder.take(), QStringList(QStringLiteral("status 1") + rest));
    recorder.form.sl_receiveAnswer(port, answers::timedOut(CoordinatorSearch::check(1, 57600)));
    QCOMPARE(recorder.take(), QStringList(QStringLiteral("status 0") + rest));
    // Switched off, it has nothing more to say, not even of what it saw last.
    recorder.check()->click();
    QVERIFY(!recorder.check()->isChecked());
    QCOMPARE(recorder.take(), QStringList(QStringLiteral("status 2") + rest));
    recorder.form.sl_receiveAnswer(port, answers::good(CoordinatorSearch::check(1, 57600), identity));
    QCOMPARE(recorder.take(), QStringList(QStringLiteral("status 2") + rest));
    // Switched on again, it waits for its first answer.
    recorder.check()->click();
    QCOMPARE(recorder.take(), QStringList());
}

void tst_FormChoiceCoordinator::switchingTheWatchOfAnotherPortOffSaysNothing()
{
    FormRecorder recorder({portA, portB});
    find(recorder, 0);
    find(recorder, 1);
    recorder.take();
    recorder.check(1)->click();
    QVERIFY(!recorder.check(1)->isChecked());
    QCOMPARE(recorder.take(), QStringList());
}

void tst_FormChoiceCoordinator::aLostCoordinatorKeepsItsRowAndComesBack()
{
    FormRecorder recorder({portA});
    find(recorder);
    Transmitter* const port = recorder.transmitters.at(0);
    for (const message& failure : {answers::timedOut(CoordinatorSearch::check(1, 57600)),
                                   answers::portFailed(CoordinatorSearch::check(1, 57600)),
                                   answers::refused(CoordinatorSearch::check(1, 57600), 3)}) {
        recorder.form.sl_receiveAnswer(port, failure);
        QCOMPARE(recorder.state(), QStringLiteral("Coordinator was disabled (!)"));
        QCOMPARE(recorder.text(0, 2), QStringLiteral("Coordinator 1"));
        recorder.form.sl_receiveAnswer(port, answers::good(CoordinatorSearch::check(1, 57600), identity));
        QCOMPARE(recorder.state(), QStringLiteral("Coordinator connected"));
    }
}

void tst_FormChoiceCoordinator::theWatchTakesOverWhatHasChanged()
{
    FormRecorder recorder({portA});
    find(recorder);
    recorder.form.sl_receiveAnswer(recorder.transmitters.at(0),
                                   answers::good(CoordinatorSearch::check(1, 57600), QByteArray::fromHex("0200010b")));
    QCOMPARE(recorder.text(0, 3), QStringLiteral("2"));
    QCOMPARE(recorder.text(0, 4), QStringLiteral("11.01"));
    // Nothing is chosen anew.
    QCOMPARE(recorder.count(QStringLiteral("enable")), 1);
}

// Choice.

void tst_FormChoiceCoordinator::theWatchKeepsAskingTheAddressThatWasFound()
{
    FormRecorder recorder({portA});
    Transmitter* const port = recorder.transmitters.at(0);
    find(recorder, 0, 4);
    // A stray byte in front of the answer moves the address out of its place.
    recorder.form.sl_receiveAnswer(port, answers::good(CoordinatorSearch::check(4, 57600), identity, 77));
    QCOMPARE(recorder.text(0, 2), QStringLiteral("Coordinator 77"));
    const auto asked = [&recorder](int type) {
        const auto isOfType = [type](const FormRecorder::Sent& sent) { return sent.request.requestType() == type; };
        recorder.sent.clear();
        const auto found = [&] { return std::find_if(recorder.sent.cbegin(), recorder.sent.cend(), isOfType); };
        return eventually([&] { return found() != recorder.sent.cend(); }) ? found()->request.request() : QByteArray();
    };
    QCOMPARE(asked(Protocol::Check_Coordinator), CoordinatorSearch::check(4, 57600).request());
    QCOMPARE(asked(Protocol::Read_Time), Protocol::requestDeviceTime(4).request());
    // The next search may find another one.
    recorder.connectButton()->click();
    find(recorder, 0, 5);
    QCOMPARE(asked(Protocol::Check_Coordinator), CoordinatorSearch::check(5, 57600).request());
}

void tst_FormChoiceCoordinator::selectingARowWithoutACoordinatorDisablesOperations()
{
    FormRecorder recorder({portA});
    recorder.form.show();
    recorder.take();
    recorder.table()->setCurrentCell(0, 0);
    recorder.select()->click();
    QCOMPARE(recorder.take(), QStringList({QStringLiteral("enable 0"),
                                           QStringLiteral("status 2 ") + portA + QStringLiteral(" - 255 - -")}));
    QVERIFY(!recorder.form.isVisible());
    QVERIFY(!recorder.busy()->isVisible());
    QCOMPARE(int(recorder.form.currentAddress()), 255);
    // The port is the current one: a coordinator that is found on it now only fills the row.
    find(recorder);
    QVERIFY(!recorder.has(QStringLiteral("enable")));
    QVERIFY(!recorder.busy()->isVisible());
    QCOMPARE(recorder.text(0, 2), QStringLiteral("Coordinator 1"));
    // Until it is selected again.
    recorder.select()->click();
    QVERIFY(recorder.has(QStringLiteral("enable 1")));
    QCOMPARE(int(recorder.form.currentAddress()), 1);
}

void tst_FormChoiceCoordinator::selectingWithNothingChosenKeepsTheCurrentPort()
{
    FormRecorder recorder({portA});
    find(recorder);
    recorder.form.sl_HideFormWaiting();
    recorder.form.show();
    recorder.table()->setCurrentItem(nullptr);
    recorder.take();
    recorder.select()->click();
    QCOMPARE(recorder.take(), QStringList());
    QVERIFY(!recorder.form.isVisible());
    QCOMPARE(int(recorder.form.currentAddress()), 1);
    // It comes up as after any choice, and goes again, since no search was started.
    QVERIFY(recorder.busy()->isVisible());
    QTRY_VERIFY_WITH_TIMEOUT(!recorder.busy()->isVisible(), 10000);
}

void tst_FormChoiceCoordinator::onlyTheCurrentPortIsLogged()
{
    FormRecorder recorder({portA, portB});
    find(recorder, 0);
    find(recorder, 1);
    QVector<QByteArray> requests;
    QVector<QByteArray> answersSeen;
    connect(&recorder.form, &FormChoiceCoordinator::sig_sendRequestOnForm, this,
            [&requests](const QDateTime&, const QByteArray& bytes, bool) { requests.append(bytes); });
    connect(&recorder.form, &FormChoiceCoordinator::sig_sendAnswerOnForm, this,
            [&answersSeen](const QDateTime&, const QByteArray& bytes, bool) { answersSeen.append(bytes); });
    // The workers live on other threads, so what they emit arrives by the event loop. Their own work is silent here,
    // since the ports don't exist and nothing is ever written.
    const auto bothReport = [&recorder] {
        for (int row = 0; row < 2; ++row) {
            emit recorder.transmitters.at(row)->sig_SendRequestInForm(QDateTime(), QByteArray(1, char('a' + row)),
                                                                      false);
        }
        emit recorder.transmitters.at(0)->sig_SendAnswerInForm(QDateTime(), "A", true);
    };
    bothReport();
    QTRY_COMPARE_WITH_TIMEOUT(requests, QVector<QByteArray>({"a"}), 10000);
    QTRY_VERIFY_WITH_TIMEOUT(answersSeen.contains("A"), 10000);

    recorder.table()->setCurrentCell(1, 0);
    recorder.select()->click();
    requests.clear();
    answersSeen.clear();
    bothReport();
    QTRY_COMPARE_WITH_TIMEOUT(requests, QVector<QByteArray>({"b"}), 10000);
    QVERIFY(!answersSeen.contains("A"));
}

void tst_FormChoiceCoordinator::closingWithoutAPortDisablesOperations()
{
    FormRecorder recorder({portA});
    recorder.form.show();
    recorder.take();
    QVERIFY(recorder.form.close());
    QVERIFY(!recorder.form.isVisible());
    QCOMPARE(recorder.take(), QStringList(QStringLiteral("enable 0")));
}

void tst_FormChoiceCoordinator::closingWithAPortSaysNothing()
{
    FormRecorder recorder({portA});
    find(recorder);
    recorder.form.show();
    recorder.take();
    QVERIFY(recorder.form.close());
    QCOMPARE(recorder.take(), QStringList());
}

void tst_FormChoiceCoordinator::closingTheMainWindowEndsTheApplication_data()
{
    QTest::addColumn<bool>("formIsOpen");
    QTest::addColumn<bool>("isBusy");
    QTest::newRow("alone") << false << false;
    QTest::newRow("with the coordinator form") << true << false;
    QTest::newRow("with the busy form") << false << true;
    QTest::newRow("with both") << true << true;
}

void tst_FormChoiceCoordinator::closingTheMainWindowEndsTheApplication()
{
    QFETCH(bool, formIsOpen);
    QFETCH(bool, isBusy);
    QWidget window;
    FormChoiceCoordinator form({[] { return QStringList(portA); }, {}}, {}, &window);
    window.show();
    form.setVisible(formIsOpen);
    if (isBusy) {
        form.sl_PreOperationReadConfigAndScript();
    }
    QCOMPARE(window.findChild<FormWaiting*>()->isVisible(), isBusy);
    QTimer::singleShot(0, &window, &QWidget::close);
    constexpr int didNotEnd = 1;
    QTimer::singleShot(10000, &window, [] { QCoreApplication::exit(didNotEnd); });
    QCOMPARE(QApplication::exec(), 0);
}

void tst_FormChoiceCoordinator::hidingOrClosingTheFormsDoesNotEndTheApplication()
{
    QWidget window;
    FormChoiceCoordinator form({[] { return QStringList(portA); }, {}}, {}, &window);
    form.show();
    form.sl_PreOperationReadConfigAndScript();
    QTimer::singleShot(0, &form, [&form] {
        form.close();
        form.sl_HideFormWaiting();
    });
    constexpr int stillThere = 7;
    QTimer::singleShot(500, &form, [] { QCoreApplication::exit(stillThere); });
    QCOMPARE(QApplication::exec(), stillThere);
}

// Steps.

void tst_FormChoiceCoordinator::answersOfOtherPortsAreDropped()
{
    FormRecorder recorder({portA, portB});
    recorder.take();
    message request = Protocol::requestReadConfig(1, 0, 0);
    recorder.form.sl_receiveAnswer(recorder.transmitters.at(0), answers::timedOut(request));
    QCOMPARE(recorder.take(), QStringList());
    find(recorder, 0);
    recorder.take();
    recorder.form.sl_receiveAnswer(recorder.transmitters.at(1), answers::good(request));
    recorder.form.sl_receiveAnswer(recorder.transmitters.at(1), answers::timedOut(request));
    request = Protocol::requestSyncTime(1, QByteArray(7, '\0'));
    recorder.form.sl_receiveAnswer(recorder.transmitters.at(1), answers::timedOut(request));
    QCOMPARE(recorder.take(), QStringList());
}

void tst_FormChoiceCoordinator::unknownTypesAreDroppedAfterTheirAttempts()
{
    FormRecorder recorder({portA});
    find(recorder);
    recorder.take();
    const DebugLines lines;
    message request = Protocol::requestReadConfig(1, 0, 0);
    request.setRequestType(77);
    recorder.form.sl_receiveAnswer(recorder.transmitters.at(0), answers::good(request));
    QCOMPARE(recorder.take(), QStringList());
    recorder.form.sl_receiveAnswer(recorder.transmitters.at(0), answers::timedOut(request));
    QCOMPARE(recorder.take(), QStringList(QStringLiteral("send 77 at 57600")));
    QCOMPARE(lines.linesWith(QStringLiteral("Error UNKNOWN COMMAND")).size(), 1);
    request.setAttempts(0);
    recorder.form.sl_receiveAnswer(recorder.transmitters.at(0), answers::timedOut(request));
    QCOMPARE(recorder.take(), QStringList());
}

void tst_FormChoiceCoordinator::aFailedStepIsSentFourTimes()
{
    FormRecorder recorder({portA});
    find(recorder);
    recorder.form.sl_PreOperationReadConfigAndScript();
    const DebugLines lines;
    recorder.take();
    for (int attempt = 0; attempt < 4; ++attempt) {
        QCOMPARE(recorder.sent.last().request.request(), Protocol::requestReadConfig(1, 0, 0).request());
        QCOMPARE(int(recorder.sent.last().request.attempts()), 3 - attempt);
        QVERIFY(!recorder.sent.last().request.timedOut());
        QCOMPARE(recorder.bar()->value(), 0);
        recorder.form.sl_receiveAnswer(recorder.transmitters.at(0), answers::timedOut(recorder.sent.last().request));
    }
    QCOMPARE(recorder.sent.last().request.request(), Protocol::requestReadConfig(1, 0, 1).request());
    QCOMPARE(recorder.bar()->value(), 1);
    const QStringList logged = lines.linesWith(QStringLiteral(" (FormChoiceCoordinator): "));
    QCOMPARE(logged.size(), 4);
    for (int attempt = 0; attempt < 4; ++attempt) {
        const QRegularExpression line(QStringLiteral("^\"\\d\\d:\\d\\d:\\d\\d:\\d\\d\\d\" +\\(FormChoiceCoordinator\\):"
                                                     " +Error Read CONFIGURATION! +\\(attempts remained = +%1 *\\)$")
                                          .arg(3 - attempt));
        QVERIFY2(line.match(logged.at(attempt)).hasMatch(), qPrintable(logged.at(attempt)));
    }
}

void tst_FormChoiceCoordinator::aRefusedStepIsSentFourTimes()
{
    FormRecorder recorder({portA});
    find(recorder);
    recorder.form.sl_PreOperationReadConfigAndScript();
    recorder.take();
    for (int attempt = 0; attempt < 4; ++attempt) {
        recorder.form.sl_receiveAnswer(recorder.transmitters.at(0),
                                       answers::refused(recorder.sent.last().request, 1, "data"));
    }
    QCOMPARE(recorder.take().count(QStringLiteral("send 7 at 57600")), 4);
    QCOMPARE(int(recorder.sent.last().request.number()), 1);
}

void tst_FormChoiceCoordinator::resendsKeepTheRateOfTheRow()
{
    FormRecorder recorder({portA});
    find(recorder, 0, 1, 9600);
    recorder.form.sl_PreOperationReadConfigAndScript();
    recorder.take();
    recorder.form.sl_receiveAnswer(recorder.transmitters.at(0), answers::timedOut(recorder.sent.last().request));
    QCOMPARE(recorder.take(), QStringList(QStringLiteral("send 7 at 9600")));
}

// Clock.

void tst_FormChoiceCoordinator::theTimeOfTheUnitIsShown()
{
    FormRecorder recorder({portA});
    find(recorder);
    Transmitter* const port = recorder.transmitters.at(0);
    recorder.take();
    const message request = Protocol::requestDeviceTime(1);
    recorder.form.sl_receiveAnswer(port, answers::good(request, QByteArray::fromHex("56341225050920")));
    recorder.form.sl_receiveAnswer(port, answers::timedOut(request));
    recorder.form.sl_receiveAnswer(port, answers::refused(request, 5, QByteArray(7, '\1')));
    // Never resent: the next tick asks again.
    QCOMPARE(recorder.take(),
             QStringList({QStringLiteral("time 1 12:34:56 25.09.2020, FRI"),
                          QStringLiteral("time 0 --:--:-- --.--.----"), QStringLiteral("time 0 Not supported")}));
}

void tst_FormChoiceCoordinator::theLastTimeStaysInViewAfterDisconnecting()
{
    FormRecorder recorder({portA});
    find(recorder);
    Transmitter* const port = recorder.transmitters.at(0);
    recorder.connectButton()->click();
    recorder.take();
    // The question was in the queue or on the wire when the port was closed.
    const message request = Protocol::requestDeviceTime(1);
    recorder.form.sl_receiveAnswer(port, answers::portFailed(request));
    recorder.form.sl_receiveAnswer(port, answers::timedOut(request));
    QCOMPARE(recorder.take(), QStringList());
}

void tst_FormChoiceCoordinator::theTimeOfOtherPortsIsNotShown()
{
    FormRecorder recorder({portA, portB});
    find(recorder, 0);
    find(recorder, 1);
    recorder.take();
    recorder.form.sl_receiveAnswer(recorder.transmitters.at(1),
                                   answers::good(Protocol::requestDeviceTime(1), QByteArray(7, '\1')));
    QCOMPARE(recorder.take(), QStringList());
}

void tst_FormChoiceCoordinator::settingTheTimeSendsSevenBytes()
{
    CoordinatorSeams seams;
    seams.now = [] { return QDateTime(QDate(2020, 9, 25), QTime(12, 34, 56)); };
    FormRecorder recorder({portA}, seams);
    find(recorder);
    recorder.take();
    recorder.form.sl_SendRequestSyncTime();
    QCOMPARE(recorder.take(), QStringList(QStringLiteral("send 1 at 57600")));
    QCOMPARE(recorder.sent.last().request.request(), QByteArray::fromHex("c186010008055634122505092068f5"));
}

void tst_FormChoiceCoordinator::settingTheTimeIsResentOnlyIfNothingCame_data()
{
    QTest::addColumn<message>("answer");
    QTest::addColumn<int>("resends");
    const message request = Protocol::requestSyncTime(1, QByteArray(7, '\0'));
    message last = answers::timedOut(request);
    last.setAttempts(0);
    QTest::newRow("accepted") << answers::good(request) << 0;
    QTest::newRow("refused") << answers::refused(request, 5) << 0;
    QTest::newRow("silence") << answers::timedOut(request) << 1;
    QTest::newRow("port failed") << answers::portFailed(request) << 1;
    QTest::newRow("damaged") << answers::damaged(request) << 1;
    QTest::newRow("the last attempt") << last << 0;
}

void tst_FormChoiceCoordinator::settingTheTimeIsResentOnlyIfNothingCame()
{
    QFETCH(message, answer);
    QFETCH(int, resends);
    FormRecorder recorder({portA});
    find(recorder);
    recorder.take();
    recorder.form.sl_receiveAnswer(recorder.transmitters.at(0), answer);
    QCOMPARE(recorder.count(QStringLiteral("send 1 at 57600")), resends);
    QCOMPARE(recorder.events.size(), resends);
}

void tst_FormChoiceCoordinator::withoutAPortNoTimeIsSet()
{
    FormRecorder recorder({portA});
    recorder.take();
    recorder.form.sl_SendRequestSyncTime();
    QCOMPARE(recorder.take(), QStringList());
}

// Operations. What they do in detail is tested with each of them.

void tst_FormChoiceCoordinator::theWholeChainInOrder()
{
    FormRecorder recorder({portA});
    connect(&recorder.form, &FormChoiceCoordinator::sig_sendListTerminalsOnForm, &recorder.form,
            &FormChoiceCoordinator::sl_PreOperationReadConfigAndScript);
    connect(&recorder.form, &FormChoiceCoordinator::sig_sendReadScriptOnForm, &recorder.form,
            &FormChoiceCoordinator::sl_SendRequestBeginReadLog);
    find(recorder);
    recorder.sent = {recorder.sent.last()};
    recorder.take();
    answerAll(recorder);
    const QStringList events = recorder.take();
    QStringList steps;
    for (const QString& event : events) {
        if (!event.startsWith(QStringLiteral("result"))) {
            if (steps.isEmpty() || steps.last() != event) {
                steps.append(event);
            }
        }
    }
    const auto send = [](int type) { return QStringLiteral("send %1 at 57600").arg(type); };
    QCOMPARE(steps,
             QStringList({send(12), send(13), send(14), send(15), send(16), send(19), QStringLiteral("terminals 2"),
                          send(7), QStringLiteral("outputs 70"), send(8), QStringLiteral("scripts 32"), send(4),
                          send(3), QStringLiteral("log 4 0"), send(3), QStringLiteral("log 1 1")}));
    QCOMPARE(events.filter(QStringLiteral("result")),
             QStringList({QStringLiteral("result ") + texts::resultReadStarted(),
                          QStringLiteral("result ") + texts::resultLogStarted(),
                          QStringLiteral("result ") + texts::resultReadOutputsOk() + QLatin1Char('\n') +
                              texts::resultReadScriptsOk(),
                          QStringLiteral("result ") + texts::resultLogOk()}));
    // Until the events are in the table.
    QVERIFY(recorder.busy()->isVisible());
    QCOMPARE(recorder.busy()->findChild<QLabel*>()->text(), texts::busyAddingLog());
    recorder.form.sl_HideFormWaiting();
    QVERIFY(!recorder.busy()->isVisible());
}

void tst_FormChoiceCoordinator::writingHidesTheBusyForm()
{
    FormRecorder recorder({portA});
    find(recorder);
    recorder.sent.clear();
    recorder.take();
    recorder.form.sl_PreOperationWriteConfigAndScript({"a", "b"}, {"c"});
    QVERIFY(recorder.busy()->isVisible());
    QCOMPARE(recorder.bar()->maximum(), 3);
    answerAll(recorder);
    QVERIFY(!recorder.busy()->isVisible());
    QCOMPARE(recorder.bar()->value(), 3);
    QCOMPARE(recorder.take(),
             QStringList({QStringLiteral("send 5 at 57600"), QStringLiteral("result ") + texts::resultWriteStarted(),
                          QStringLiteral("send 5 at 57600"), QStringLiteral("send 6 at 57600"),
                          QStringLiteral("result ") + texts::resultWriteOutputsOk() + QLatin1Char('\n') +
                              texts::resultWriteScriptsOk()}));
}

void tst_FormChoiceCoordinator::readingWithoutAPortIsNoDeadEnd()
{
    FormRecorder recorder;
    recorder.form.sl_PreOperationReadConfigAndScript();
    QVERIFY(recorder.busy()->isVisible());
    QCOMPARE(recorder.take(), QStringList(QStringLiteral("result ") + texts::resultReadStarted()));
    QTRY_VERIFY_WITH_TIMEOUT(!recorder.busy()->isVisible(), 10000);
}

void tst_FormChoiceCoordinator::writingNothingIsNoDeadEnd()
{
    FormRecorder recorder({portA});
    find(recorder);
    recorder.form.sl_PreOperationWriteConfigAndScript({}, {});
    QVERIFY(recorder.busy()->isVisible());
    QTRY_VERIFY_WITH_TIMEOUT(!recorder.busy()->isVisible(), 10000);
}

void tst_FormChoiceCoordinator::aRunningOperationIsNotHiddenByOneBefore()
{
    FormRecorder recorder({portA});
    FormRecorder other;
    // The other form's busy form goes after the same time; twice that is surely longer.
    const auto waitLonger = [&other] {
        for (int time = 0; time < 2; ++time) {
            other.form.sl_PreOperationReadConfigAndScript();
            QTRY_VERIFY_WITH_TIMEOUT(!other.busy()->isVisible(), 10000);
        }
    };
    // Shown for nothing, and then for the search that follows a choice.
    recorder.form.sl_PreOperationReadConfigAndScript();
    find(recorder);
    waitLonger();
    QVERIFY(recorder.busy()->isVisible());
    // And then for a reading.
    recorder.form.sl_PreOperationWriteConfigAndScript({}, {});
    recorder.form.sl_PreOperationReadConfigAndScript();
    waitLonger();
    QVERIFY(recorder.busy()->isVisible());
}

void tst_FormChoiceCoordinator::readingTheLogWithoutAPortGivesTheViewBack()
{
    FormRecorder recorder;
    recorder.form.sl_SendRequestBeginReadLog();
    QCOMPARE(recorder.take(), QStringList({QStringLiteral("result ") + texts::resultLogStarted(),
                                           QStringLiteral("send 4 at 1200"), QStringLiteral("log not necessary")}));
    QVERIFY(recorder.sent.last().receiver == nullptr);
    QVERIFY(!recorder.busy()->isVisible());
}

void tst_FormChoiceCoordinator::anUnchangedLogHidesTheBusyForm()
{
    FormRecorder recorder({portA});
    find(recorder);
    recorder.sent.clear();
    recorder.form.sl_SendRequestBeginReadLog();
    answerAll(recorder);
    recorder.take();
    QVERIFY(recorder.busy()->isVisible());
    recorder.form.sl_SendRequestBeginReadLog();
    answerAll(recorder);
    QCOMPARE(
        recorder.take(),
        QStringList({QStringLiteral("result ") + texts::resultLogStarted(), QStringLiteral("send 4 at 57600"),
                     QStringLiteral("result ") + texts::resultLogUnchanged(), QStringLiteral("log not necessary")}));
    QVERIFY(!recorder.busy()->isVisible());
}

void tst_FormChoiceCoordinator::aForcedLogReadingReads()
{
    FormRecorder recorder({portA});
    find(recorder);
    recorder.sent.clear();
    recorder.form.sl_SendRequestBeginReadLog();
    answerAll(recorder);
    recorder.take();
    recorder.form.forceLogReading();
    recorder.form.sl_SendRequestBeginReadLog();
    answerAll(recorder);
    QCOMPARE(recorder.count(QStringLiteral("send 3")), 2);
}

// Firmware.

void tst_FormChoiceCoordinator::firmwareAnswersGoToTheLoader_data()
{
    QTest::addColumn<message>("answer");
    QTest::addColumn<int>("row");
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

void tst_FormChoiceCoordinator::firmwareAnswersGoToTheLoader()
{
    QFETCH(message, answer);
    QFETCH(int, row);
    QFETCH(bool, running);
    FormRecorder recorder({portA, portB});
    find(recorder, 0);
    recorder.form.setFirmwareRunner([&](const FirmwarePort& port) {
        port.setRunning(running);
        recorder.take();
        recorder.form.sl_receiveAnswer(recorder.transmitters.at(row), answer);
        port.setRunning(false);
    });
    recorder.firmwareButton(1)->click();
    QTEST(recorder.has(QStringLiteral("firmware %1 %2").arg(answer.requestType()).arg(answer.bootType())), "passed");
    // No resend in any case: that is the loader's.
    QVERIFY(!recorder.has(QStringLiteral("send")));
}

void tst_FormChoiceCoordinator::firmwareRequestsGoOutAsTheyAre()
{
    FormRecorder recorder({portA});
    find(recorder, 0, 1, 9600);
    recorder.take();
    message boot;
    boot.setRequest("boot");
    boot.setBootType(3);
    boot.setBaudrate(57600);
    recorder.form.sl_SendRequestOnCurrentPort(boot);
    QCOMPARE(recorder.sent.last().request, boot);
    QCOMPARE(recorder.sent.last().request.baudrate(), 57600);
    QCOMPARE(recorder.sent.last().receiver, recorder.transmitters.at(0));
}

void tst_FormChoiceCoordinator::theFirmwareButtonRunsALoadOnItsPort()
{
    FormRecorder recorder({portA, portB});
    find(recorder, 1, 4, 9600);
    recorder.connectButton(1)->click();
    recorder.take();
    int runs = 0;
    recorder.form.setFirmwareRunner([&](const FirmwarePort& port) {
        ++runs;
        // A disconnected row has no address any more, but keeps the rate at which the unit was found.
        QCOMPARE(int(port.address), 255);
        QCOMPARE(port.baudrate, 9600);
        message request = Protocol::requestSwitchToBoot(0);
        request.setBaudrate(port.baudrate);
        port.send(request);
    });
    recorder.firmwareButton(1)->click();
    QCOMPARE(runs, 1);
    QCOMPARE(recorder.take(), QStringList(QStringLiteral("send 22 at 9600")));
    QCOMPARE(recorder.sent.last().receiver, recorder.transmitters.at(1));
}

void tst_FormChoiceCoordinator::theFirmwareButtonWithoutALoaderDoesNothing()
{
    FormRecorder recorder({portA});
    recorder.connectButton()->click();
    recorder.take();
    recorder.firmwareButton()->click();
    QCOMPARE(recorder.take(), QStringList());
}

void tst_FormChoiceCoordinator::anAutomaticSearchWaitsForTheLoadOfItsPort()
{
    FormRecorder recorder({portA});
    Transmitter* const port = recorder.transmitters.at(0);
    const auto answered = std::make_shared<int>(0);
    connect(port, &Transmitter::sig_SendAnswer, &recorder, [answered] { ++*answered; });
    recorder.form.sl_setStatePort(port, StateSearching);
    recorder.form.sl_receiveAnswer(port, answers::timedOut(recorder.sent.last().request));
    recorder.form.sl_receiveAnswer(port, answers::timedOut(recorder.sent.last().request));
    EVENTUALLY(*answered == recorder.sent.size()); // the worker answers each of them as well
    recorder.take();
    recorder.form.setFirmwareRunner([&](const FirmwarePort&) {
        QTest::qWait(1500); // the search is due a second after the last one
        QVERIFY(!recorder.has(QStringLiteral("open")));
    });
    recorder.firmwareButton()->click();
    QTRY_VERIFY(recorder.has(QStringLiteral("open ") + portA));
}

void tst_FormChoiceCoordinator::noPortIsChosenOverARunningLoad()
{
    FormRecorder recorder({portA, portB});
    recorder.connectButton(0)->click();
    recorder.form.setFirmwareRunner([&](const FirmwarePort& load) {
        load.setRunning(true);
        recorder.take();
        find(recorder, 1);
        QVERIFY(!recorder.has(QStringLiteral("enable")));
        QVERIFY(!recorder.busy()->isVisible());
        load.setRunning(false);
    });
    recorder.firmwareButton(0)->click();
    QVERIFY(!recorder.has(QStringLiteral("enable")));
    // The watch has it chosen.
    recorder.form.sl_receiveAnswer(recorder.transmitters.at(1),
                                   answers::good(CoordinatorSearch::check(1, 57600), identity));
    QVERIFY(recorder.has(QStringLiteral("enable 1")));
    QCOMPARE(int(recorder.form.currentAddress()), 1);
}

void tst_FormChoiceCoordinator::noPortIsChosenOverTheFileDialogOfALoad()
{
    FormRecorder recorder({portA, portB});
    recorder.connectButton(0)->click();
    recorder.form.setFirmwareRunner([&](const FirmwarePort&) {
        recorder.take();
        find(recorder, 1);
        QCOMPARE(recorder.state(1), statePortTraits(StateCoordinatorConnected).text);
        QVERIFY(!recorder.has(QStringLiteral("enable")));
        QVERIFY(!recorder.busy()->isVisible());
        // And then the user cancels.
    });
    recorder.firmwareButton(0)->click();
    QVERIFY(!recorder.has(QStringLiteral("enable")));
    recorder.form.sl_receiveAnswer(recorder.transmitters.at(1),
                                   answers::good(CoordinatorSearch::check(1, 57600), identity));
    QVERIFY(recorder.has(QStringLiteral("enable 1")));
}

HUBN_THREADED_TEST_MAIN(tst_FormChoiceCoordinator)
#include "tst_FormChoiceCoordinator.moc"
