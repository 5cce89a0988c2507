#include "FormRecorder.h"
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

    void showsEachState_data();
    void showsEachState();
    void hiddenControlsStayHiddenWhenTheTableIsLaidOutAgain();
    void showsTheBaudrateOfThePort();

    void theFirstCoordinatorIsChosenByItself();
    void theRowOfTheFirstCoordinatorIsMarkedBeforeAnythingIsTold();
    void aBoxThatIsSetWithoutAClickCounts();
    void disconnectingClearsTheRow();
    void connectingSearchesAgain();
    void theWatchReportsThreeStatuses();

    void selectingARowWithoutACoordinatorDisablesOperations();
    void selectingWithNothingChosenKeepsTheCurrentPort();
    void closingWithoutAPortDisablesOperations();
    void closingWithAPortSaysNothing();
    void closingTheMainWindowEndsTheApplication_data();
    void closingTheMainWindowEndsTheApplication();
    void hidingOrClosingTheFormsDoesNotEndTheApplication();

    void theWholeChainInOrder();
    void writingHidesTheBusyForm();
    void readingTheLogWithoutAPortGivesTheViewBack();

    void theOtherNamesReachTheLink();
    void ticksOfAPortsTimerReachThePort();

    void theFirmwareButtonRunsALoadOnItsPort();
};

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

void tst_FormChoiceCoordinator::theRowOfTheFirstCoordinatorIsMarkedBeforeAnythingIsTold()
{
    FormRecorder recorder({portA});
    QTableWidget* const table = recorder.table();
    table->setCurrentCell(0, 0, QItemSelectionModel::NoUpdate); // as the focus does when the form is shown
    recorder.form.sl_receiveAnswer(recorder.transmitters.at(0), answers::good(CoordinatorSearch::begin()));
    bool isMarked = false;
    connect(&recorder.form, &FormChoiceCoordinator::sig_sendEnableOperationOnForm, table,
            [&isMarked, table] { isMarked = table->item(0, 2)->isSelected() && table->currentColumn() == 2; });
    recorder.form.sl_receiveAnswer(recorder.transmitters.at(0), searchAnswer(1));
    QVERIFY(isMarked);
}

void tst_FormChoiceCoordinator::aBoxThatIsSetWithoutAClickCounts()
{
    FormRecorder recorder({portA});
    Transmitter* const port = recorder.transmitters.at(0);
    recorder.form.sl_receiveAnswer(port, answers::good(CoordinatorSearch::begin()));
    recorder.form.sl_receiveAnswer(port, searchAnswer(1));
    recorder.check(0)->setChecked(false);
    recorder.form.sl_setStatePort(port, StateOpenError);
    QCOMPARE(recorder.state(0), statePortTraits(StateOpenError).text());
}

// Connect and disconnect.

void tst_FormChoiceCoordinator::disconnectingClearsTheRow()
{
    FormRecorder recorder({portA});
    recorder.find();
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

// Watch.

void tst_FormChoiceCoordinator::theWatchReportsThreeStatuses()
{
    FormRecorder recorder({portA});
    recorder.find();
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

// Choice.

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
    recorder.find();
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
    recorder.find();
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
    recorder.find();
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
    constexpr int stillThere = 7;
    // An end that follows from the closing comes with the next turn of the event loop; this one later.
    QTimer turns;
    int count = 0;
    connect(&turns, &QTimer::timeout, &form, [&count] {
        if (++count == 10) {
            QCoreApplication::exit(stillThere);
        }
    });
    QTimer::singleShot(0, &form, [&form, &turns] {
        form.close();
        form.sl_HideFormWaiting();
        turns.start(0);
    });
    QCOMPARE(QApplication::exec(), stillThere);
}

// Operations. What they do in detail is tested with each of them.

void tst_FormChoiceCoordinator::theWholeChainInOrder()
{
    FormRecorder recorder({portA});
    connect(&recorder.form, &FormChoiceCoordinator::sig_sendListTerminalsOnForm, &recorder.form,
            &FormChoiceCoordinator::sl_PreOperationReadConfigAndScript);
    connect(&recorder.form, &FormChoiceCoordinator::sig_sendReadScriptOnForm, &recorder.form,
            &FormChoiceCoordinator::sl_SendRequestBeginReadLog);
    recorder.find();
    recorder.sent = {recorder.sent.last()};
    recorder.take();
    recorder.answerAll();
    const QStringList events = recorder.take();
    QCOMPARE(stepsOf(events), stepsOfTheChain());
    QCOMPARE(events.filter(QStringLiteral("result")), resultsOfTheChain());
    // Until the events are in the table.
    QVERIFY(recorder.busy()->isVisible());
    QCOMPARE(recorder.busy()->findChild<QLabel*>()->text(), texts::busyAddingLog());
    recorder.form.sl_HideFormWaiting();
    QVERIFY(!recorder.busy()->isVisible());
}

void tst_FormChoiceCoordinator::writingHidesTheBusyForm()
{
    FormRecorder recorder({portA});
    recorder.find();
    recorder.sent.clear();
    recorder.take();
    recorder.form.sl_PreOperationWriteConfigAndScript({"a", "b"}, {"c"});
    QVERIFY(recorder.busy()->isVisible());
    QCOMPARE(recorder.bar()->maximum(), 3);
    recorder.answerAll();
    QVERIFY(!recorder.busy()->isVisible());
    QCOMPARE(recorder.bar()->value(), 3);
    QCOMPARE(recorder.take(),
             QStringList({QStringLiteral("send 5 at 57600"), QStringLiteral("result ") + texts::resultWriteStarted(),
                          QStringLiteral("send 5 at 57600"), QStringLiteral("send 6 at 57600"),
                          QStringLiteral("result ") + texts::resultWriteOutputsOk() + QLatin1Char('\n') +
                              texts::resultWriteScriptsOk()}));
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

void tst_FormChoiceCoordinator::theOtherNamesReachTheLink()
{
    CoordinatorSeams seams;
    seams.now = [] { return QDateTime(QDate(2020, 9, 25), QTime(12, 34, 56)); };
    FormRecorder recorder({portA}, seams);
    recorder.find();
    Transmitter* const port = recorder.transmitters.at(0);
    recorder.take();
    recorder.form.sl_SendRequestSyncTime();
    QCOMPARE(recorder.sent.last().request.request(), QByteArray::fromHex("c186010008055634122505092068f5"));
    recorder.form.sl_SendRequestReadConfig(3, 1);
    QCOMPARE(recorder.sent.last().request.request(), Protocol::requestReadConfig(1, 3, 1).request());
    recorder.form.sl_SendRequestReadScript(7);
    QCOMPARE(recorder.sent.last().request.request(), Protocol::requestReadScript(1, 7).request());
    message boot;
    boot.setRequest("boot");
    boot.setBootType(3);
    recorder.form.sl_SendRequestOnCurrentPort(boot);
    QCOMPARE(recorder.sent.last().request, boot);
    QCOMPARE(recorder.sent.last().receiver, port);
    recorder.take();
    recorder.form.sl_receiveAnswer(port, answers::good(boot));
    recorder.form.sl_receiveAnswer(
        port, answers::good(Protocol::requestDeviceTime(1), QByteArray::fromHex("56341225050920")));
    QCOMPARE(recorder.take(),
             QStringList({QStringLiteral("firmware 0 3"), QStringLiteral("time 1 12:34:56 25.09.2020, FRI")}));

    QSignalSpy requests(&recorder.form, &FormChoiceCoordinator::sig_sendRequestOnForm);
    QSignalSpy answersSeen(&recorder.form, &FormChoiceCoordinator::sig_sendAnswerOnForm);
    const QDateTime time = seams.now();
    emit port->sig_SendRequestInForm(time, "request", true);
    emit port->sig_SendAnswerInForm(time, "answer", false);
    EVENTUALLY(requests.contains(QVariantList({time, QByteArray("request"), true})));
    EVENTUALLY(answersSeen.contains(QVariantList({time, QByteArray("answer"), false})));
}

void tst_FormChoiceCoordinator::ticksOfAPortsTimerReachThePort()
{
    FormRecorder recorder({portA});
    const auto tick = [&recorder](void (FormChoiceCoordinator::*slot)()) {
        recorder.take();
        const auto* const link = recorder.form.findChild<CoordinatorLink*>();
        // Any child of the port stands for its timers.
        QObject timer(link->ports().constFirst());
        connect(&timer, &QObject::objectNameChanged, &recorder.form, slot);
        timer.setObjectName(QStringLiteral("ticked"));
        return recorder.take();
    };
    QCOMPARE(tick(&FormChoiceCoordinator::sl_tryFirstConnectCoordinator), QStringList(QStringLiteral("open ") + portA));
    recorder.find();
    QCOMPARE(tick(&FormChoiceCoordinator::sl_periodicCheckCoordinator),
             QStringList({QStringLiteral("send 11 at 57600"), QStringLiteral("send 2 at 57600")}));
    QCOMPARE(tick(&FormChoiceCoordinator::sl_tryFirstConnectCoordinator), QStringList());
}

void tst_FormChoiceCoordinator::theFirmwareButtonRunsALoadOnItsPort()
{
    FormRecorder recorder({portA, portB});
    recorder.find(1, 4, 9600);
    recorder.connectButton(1)->click();
    recorder.take();
    int runs = 0;
    recorder.form.coordinatorLink().setFirmwareRunner([&](const FirmwarePort& port) {
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

HUBN_THREADED_TEST_MAIN(tst_FormChoiceCoordinator)
#include "tst_FormChoiceCoordinator.moc"
