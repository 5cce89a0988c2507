#include "link/FormWaiting.h"
#include "texts/texts.h"
#include "ui/window/WindowTest.h"
#include "widgets/Look.h"

#include <QCheckBox>
#include <QDockWidget>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QScreen>
#include <QSignalSpy>
#include <QStyle>
#include <QTabWidget>
#include <QTableWidget>
#include <QTextEdit>
#include <QWindow>

/// The window alone, without any port: what it looks like at start, and how it passes on what the form reports.
class tst_MainWindow : public WindowTest
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void titleAndSizeAtStart();
    void styleAndFontAreTheApplications();
    void menusStandInOrder();
    void actionsCarryTheirCaptions_data();
    void actionsCarryTheirCaptions();
    void synchronisingIsCheckedFromTheStart();
    void tabsAtStart();
    void docksCanBeMovedOnly();
    void docksHaveTheirWidthsAtStart();
    void titlesOfTheFirstTab();
    void theCoordinatorFormIsShownFirstAndByItsAction();
    void theCoordinatorFormStaysAboveItsWindow();
    void formsThatWereMinimisedComeUpWhenTheyAreShown_data();
    void formsThatWereMinimisedComeUpWhenTheyAreShown();
    void formsThatBlockTheWindowOfferNoMinimising();

    void lampAndLabelsFollowThePort();
    void deviceTimeIsShownAndGatesTheSynchronising();
    void enablingTouchesFiveActionsOnly();

    void resultsReachTheLabel();
    void theDefaultSettingsSpeakAsOneOperation();

    void packetsReachTheLogger();
    void theStopButtonKeepsPacketsOut();
};

void tst_MainWindow::init()
{
    begin();
}

void tst_MainWindow::cleanup()
{
    window.reset();
}

void tst_MainWindow::titleAndSizeAtStart()
{
    QCOMPARE(window->windowTitle(), QStringLiteral("Configuration Manager HUBN-NX-Q (v.2.1) βeta"));
    QVERIFY(!window->windowIcon().isNull());
    QCOMPARE(window->size(), QSize(1023, 806));
    // The window manager's frame may move it a little.
    const QPoint centre = QGuiApplication::primaryScreen()->availableGeometry().center();
    QVERIFY((window->geometry().center() - centre).manhattanLength() < 20);
}

void tst_MainWindow::styleAndFontAreTheApplications()
{
    QCOMPARE(QApplication::style()->objectName(), QStringLiteral("fusion"));
    QCOMPARE(QApplication::font().family(), QStringLiteral("MS Shell Dlg 2"));
    QCOMPARE(QApplication::font().pointSize(), 8);
}

void tst_MainWindow::menusStandInOrder()
{
    // The menu of the mode "binding" goes with the first turn of the event loop.
    QTRY_COMPARE(window->menuBar()->actions().size(), 3);
    const auto entries = [](const QMenu* menu) {
        QStringList names;
        const auto allEntries = menu->actions();
        for (const QAction* entry : allEntries) {
            names.append(entry->isSeparator() ? QStringLiteral("-") : entry->objectName());
        }
        return names.join(QLatin1Char(' '));
    };
    const QList<QAction*> menus = window->menuBar()->actions();
    QCOMPARE(menus.at(0)->menu()->objectName(), QStringLiteral("menuSetting"));
    QCOMPARE(menus.at(0)->menu()->title(), QStringLiteral("Device"));
    QCOMPARE(entries(menus.at(0)->menu()), QStringLiteral("actionSelectCoordinator actionFirmware actionSyncTime"));
    QCOMPARE(menus.at(1)->menu()->objectName(), QStringLiteral("menu"));
    QCOMPARE(menus.at(1)->menu()->title(), QStringLiteral("Configuration"));
    QCOMPARE(entries(menus.at(1)->menu()),
             QStringLiteral("actionRead actionWrite - actionLoad actionSave - actionFactorySetting - -"));
    QCOMPARE(menus.at(2)->menu()->objectName(), QStringLiteral("menu_2"));
    QCOMPARE(menus.at(2)->menu()->title(), QStringLiteral("Log events"));
    QCOMPARE(entries(menus.at(2)->menu()), QStringLiteral("actionReadLog - actionLoadLog actionSaveLog"));
}

void tst_MainWindow::actionsCarryTheirCaptions_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("actionSelectCoordinator") << "Coordinator selection";
    QTest::newRow("actionRead") << "Load from device";
    QTest::newRow("actionWrite") << "Save to device";
    QTest::newRow("actionLoad") << "Load from file";
    QTest::newRow("actionSave") << "Save to file";
    QTest::newRow("actionFactorySetting") << "Default settings";
    QTest::newRow("actionFirmware") << "Load Firmware";
    QTest::newRow("actionSyncTime") << "Device time synchronization";
    QTest::newRow("actionReadLog") << "Load log event from device";
    QTest::newRow("actionLoadLog") << "Load from file";
    QTest::newRow("actionSaveLog") << "Save to file";
}

void tst_MainWindow::actionsCarryTheirCaptions()
{
    QFETCH(const QString, text);
    QVERIFY(action(QTest::currentDataTag()) != nullptr);
    QCOMPARE(action(QTest::currentDataTag())->text(), text);
    QVERIFY(action(QTest::currentDataTag())->isEnabled());
}

void tst_MainWindow::synchronisingIsCheckedFromTheStart()
{
    QVERIFY(action("actionSyncTime")->isCheckable());
    QVERIFY(action("actionSyncTime")->isChecked());
}

void tst_MainWindow::tabsAtStart()
{
    const QTabWidget* const tabs = get<QTabWidget>("tabWidget");
    QCOMPARE(tabs->count(), 3);
    QCOMPARE(tabs->currentIndex(), 0);
    QCOMPARE(tabs->widget(0)->objectName(), QStringLiteral("tabSettingRelay"));
    QCOMPARE(tabs->widget(1)->objectName(), QStringLiteral("tabLogEvents"));
    QCOMPARE(tabs->widget(2)->objectName(), QStringLiteral("tabLogger"));
    QCOMPARE(tabs->tabText(0), QStringLiteral("Parameters of output"));
    QCOMPARE(tabs->tabText(1), QStringLiteral("Log events"));
    QCOMPARE(tabs->tabText(2), QString());
}

void tst_MainWindow::docksCanBeMovedOnly()
{
    const QString style = QStringLiteral("QDockWidget::title { text-align: center; background: rgb(220,220,220); "
                                         "padding-top: 5px; padding-bottom: 5px;}");
    for (const char* name : {"dockTree", "dockScript"}) {
        const QDockWidget* const dock = get<QDockWidget>(name);
        QVERIFY(dock != nullptr);
        QCOMPARE(dock->features(), QDockWidget::DockWidgetMovable);
        QCOMPARE(dock->allowedAreas(), Qt::AllDockWidgetAreas);
        QVERIFY(dock->isVisible());
    }
    QCOMPARE(get<QDockWidget>("dockTree")->styleSheet(), style);
    QCOMPARE(get<QDockWidget>("dockTree")->windowTitle(), QStringLiteral("List of executive outputs"));
    QCOMPARE(window->dockWidgetArea(get<QDockWidget>("dockTree")), Qt::LeftDockWidgetArea);
    QCOMPARE(window->dockWidgetArea(get<QDockWidget>("dockScript")), Qt::RightDockWidgetArea);
}

/// Once: what the user makes of the widths afterwards stays.
void tst_MainWindow::docksHaveTheirWidthsAtStart()
{
    auto* const tree = get<QDockWidget>("dockTree");
    auto* const editor = get<QDockWidget>("dockScript");
    QTRY_COMPARE(tree->width(), 266);
    QCOMPARE(editor->width(), 415);
    window->resizeDocks({tree, editor}, {300, 430}, Qt::Horizontal);
    QTRY_COMPARE(tree->width(), 300);
    window->resize(window->width() + 100, window->height());
    QTRY_COMPARE(window->centralWidget()->width() + tree->width() + editor->width() +
                     2 * window->style()->pixelMetric(QStyle::PM_DockWidgetSeparatorExtent),
                 window->width());
    QCOMPARE(tree->width(), 300);
    QCOMPARE(editor->width(), 430);
}

void tst_MainWindow::titlesOfTheFirstTab()
{
    const QLabel* const title = get<QLabel>("labelTitleParamRelay");
    QVERIFY(title->font().bold());
    QCOMPARE(
        title->styleSheet(),
        QStringLiteral("text-align: center; background: rgb(220,220,220); padding-top: 5px; padding-bottom: 5px;"));
    QCOMPARE(get<QLabel>("labelTitleAllScript")->text(), QStringLiteral("Available scripts"));
    QCOMPARE(get<QLabel>("labelTitleComment")->text(), QStringLiteral("Comment"));
}

void tst_MainWindow::theCoordinatorFormIsShownFirstAndByItsAction()
{
    QVERIFY(form()->isVisible());
    form()->close();
    QVERIFY(!form()->isVisible());
    action("actionSelectCoordinator")->trigger();
    QVERIFY(form()->isVisible());
}

void tst_MainWindow::theCoordinatorFormStaysAboveItsWindow()
{
    QTRY_VERIFY(form()->isVisible());
    QCOMPARE(form()->windowHandle()->transientParent(), window->windowHandle());
}

void tst_MainWindow::formsThatWereMinimisedComeUpWhenTheyAreShown_data()
{
    QTest::addColumn<QString>("form");
    for (const char* name : {"FormChoiceCoordinator", "FormWaiting", "FormAddingTerminal"}) {
        QTest::newRow(name) << QString::fromLatin1(name);
    }
}

void tst_MainWindow::formsThatWereMinimisedComeUpWhenTheyAreShown()
{
    QFETCH(const QString, form);
    auto* const widget = window->findChild<QWidget*>(form);
    QVERIFY(widget != nullptr);
    widget->show();
    widget->setWindowState(Qt::WindowMinimized);
    widget->hide();
    QVERIFY(widget->isMinimized());
    widget->show();
    QVERIFY(!widget->isMinimized());
    QVERIFY(QTest::qWaitForWindowExposed(widget));
}

void tst_MainWindow::formsThatBlockTheWindowOfferNoMinimising()
{
    const QWidget* const blockingForms[] = {form(), window->findChild<FormWaiting*>()};
    for (const QWidget* blocking : blockingForms) {
        const Qt::WindowFlags flags = blocking->windowFlags();
        QVERIFY((flags & Qt::WindowMinMaxButtonsHint) == 0);
        // On X11 the title alone would mean all buttons.
        QVERIFY(flags.testFlag(Qt::WindowCloseButtonHint) || flags.testFlag(Qt::CustomizeWindowHint));
    }
}

void tst_MainWindow::lampAndLabelsFollowThePort()
{
    emit form()->sig_sendStatusSelectPortOnForm(1, QStringLiteral("COM7"), QStringLiteral("57600"), 3,
                                                QStringLiteral("4711"), QStringLiteral("2.05"));
    QCOMPARE(get<QLabel>("labelIconPort")->pixmap(Qt::ReturnByValue).toImage(),
             QPixmap(QStringLiteral(":/icons/icons/green.png")).toImage());
    QCOMPARE(get<QLabel>("labelPortName")->text(), QStringLiteral("<b>COM7</b>"));
    QCOMPARE(get<QLabel>("labelCoordinator")->text(), QStringLiteral("Coordinator <b>3</b>"));
}

void tst_MainWindow::deviceTimeIsShownAndGatesTheSynchronising()
{
    emit form()->sig_sendDeviceTimeOnForm(QStringLiteral("Not supported"), false);
    QCOMPARE(get<QLabel>("labelDeviceTime")->text(), QStringLiteral("Not supported"));
    QVERIFY(!action("actionSyncTime")->isEnabled());
    QVERIFY(action("actionSyncTime")->isChecked());
    emit form()->sig_sendDeviceTimeOnForm(QStringLiteral("12:00:00 01.02.2026, SUN"), true);
    QVERIFY(action("actionSyncTime")->isEnabled());
}

void tst_MainWindow::enablingTouchesFiveActionsOnly()
{
    const QStringList gated{QStringLiteral("actionRead"), QStringLiteral("actionWrite"),
                            QStringLiteral("actionFirmware"), QStringLiteral("actionFactorySetting"),
                            QStringLiteral("actionReadLog")};
    const auto check = [&](bool enabled) {
        emit form()->sig_sendEnableOperationOnForm(enabled);
        for (const char* name : {"actionSelectCoordinator", "actionRead", "actionWrite", "actionLoad", "actionSave",
                                 "actionFactorySetting", "actionFirmware", "actionSyncTime", "actionReadLog",
                                 "actionLoadLog", "actionSaveLog"}) {
            QCOMPARE(action(name)->isEnabled(), enabled || !gated.contains(QLatin1String(name)));
        }
    };
    check(false);
    check(true);
}

void tst_MainWindow::resultsReachTheLabel()
{
    QCOMPARE(result(), QString());
    emit form()->sig_sendResultOperation(texts::resultReadStarted());
    QCOMPARE(result(), texts::resultReadStarted());
}

void tst_MainWindow::theDefaultSettingsSpeakAsOneOperation()
{
    emit form()->sig_sendResultOperation(texts::resultDefaultsStarted());
    emit form()->sig_sendResultOperation(texts::resultWriteStarted());
    QCOMPARE(result(), texts::resultDefaultsStarted());
    emit form()->sig_sendResultOperation(texts::resultWriteOutputsOk() + QLatin1Char('\n') +
                                         texts::resultWriteScriptsOk());
    QCOMPARE(result(), texts::resultDefaultsOk());
}

void tst_MainWindow::packetsReachTheLogger()
{
    const QDateTime time(QDate(2026, 3, 9), QTime(7, 5, 4, 12));
    emit form()->sig_sendRequestOnForm(time, QByteArrayLiteral("\x01\xAB"), true);
    emit form()->sig_sendAnswerOnForm(time.addMSecs(5), QByteArrayLiteral("\x02"), true);
    const QTableWidget* const table = get<QTableWidget>("tableLogger");
    QCOMPARE(table->rowCount(), 1);
    QCOMPARE(table->item(0, 0)->text(), QStringLiteral("09/03/26 07:05:04:012"));
    QCOMPARE(table->item(0, 1)->text(), QStringLiteral("01 ab "));
    QCOMPARE(table->item(0, 2)->text(), QStringLiteral("09/03/26 07:05:04:017"));
    QCOMPARE(table->item(0, 3)->text(), QStringLiteral("02 "));
    get<QPushButton>("pushButtonClearLog")->click();
    QCOMPARE(table->rowCount(), 1);
    QVERIFY(table->item(0, 0) == nullptr);
}

void tst_MainWindow::theStopButtonKeepsPacketsOut()
{
    const QTableWidget* const table = get<QTableWidget>("tableLogger");
    auto* const stop = get<QPushButton>("pushButtonStopLog");
    QVERIFY(!stop->isChecked());
    QCOMPARE(stop->text(), QStringLiteral("Stop"));
    stop->click();
    QCOMPARE(stop->text(), QStringLiteral("Start"));
    emit form()->sig_sendRequestOnForm(QDateTime::currentDateTime(), "1", false);
    QCOMPARE(table->rowCount(), 0);
    stop->click();
    QCOMPARE(stop->text(), QStringLiteral("Stop"));
    const auto* const periodic = get<QCheckBox>("checkBoxPeriodicRequest");
    QVERIFY(periodic->isChecked());
    QCOMPARE(periodic->text(), QStringLiteral("Отображать периодические запросы"));
}

QTEST_MAIN(tst_MainWindow)
#include "tst_MainWindow.moc"
