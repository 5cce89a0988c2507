#include "firmware/protocol_boot.h"
#include "link/FormChoiceCoordinator.h"
#include "model/Device.h"
#include "model/RelayInfo.h"
#include "texts/texts.h"
#include "ui/log/LogTab.h"
#include "ui/log/PacketLogger.h"
#include "ui/log/PacketTools.h"
#include "ui/scripts/ScriptLists.h"
#include "ui/scripts/Setting_Script_Widget.h"
#include "ui/tree/FormAddingTerminal.h"
#include "ui/tree/Tree_Relay_Widget.h"
#include "ui/window/ConfigurationFiles.h"
#include "ui/window/FirmwareLoading.h"
#include "ui/window/MainWindow.h"
#include "ui/window/PanelWidths.h"
#include "ui/window/StatusBar.h"
#include "ui_MainWindow.h"
#include "widgets/Look.h"
#include "widgets/ScreenRoom.h"

#include <QAction>
#include <QApplication>
#include <QDockWidget>
#include <QPalette>
#include <QScreen>
#include <QStyleFactory>

namespace
{

constexpr QSize normalSize(1023, 806);
constexpr int hiddenTab = 1;
constexpr int treeWidth = 266;
constexpr int editorWidth = 415;
constexpr int narrowTabsWidth = 285; ///< of the tabs in a narrower one

// At least, where the screen has room, and where it hasn't.
constexpr int usableTreeWidth = 200;
constexpr int leastTreeWidth = 140;
constexpr int usableEditorWidth = 240;
constexpr int leastEditorWidth = 130;
constexpr int widthForDocks = 1000; ///< of a window in which both docks and the tabs have their room

QString titleBackground()
{
    return QStringLiteral("rgb(220,220,220)");
}

/// A dock that can be moved to any side but neither closed nor floated.
QDockWidget* newDock(const QString& objectName, const QString& title, QMainWindow* window)
{
    auto* dock = new QDockWidget(title, window);
    dock->setObjectName(objectName);
    dock->setAllowedAreas(Qt::AllDockWidgetAreas);
    dock->setFeatures(QDockWidget::DockWidgetMovable);
    look::setDockTitle(dock, titleBackground());
    return dock;
}

} // namespace

MainWindow::MainWindow(WindowSeams windowSeams, QWidget* parent)
    : QMainWindow(parent), seams(std::move(windowSeams)),
      dialogs(seams.dialogs != nullptr ? *seams.dialogs : ownDialogs), ui(std::make_unique<Ui::MainWindow>()),
      relayInfo(QSharedPointer<RelayInfo>::create()),
      device(new Device([this](const QString& title, const QString& text) { dialogs.critical(nullptr, title, text); },
                        this)),
      formChoiceCoordinator(new FormChoiceCoordinator({seams.portNames, seams.now}, &protocol_boot::parseAnswer, this))
{
    ui->setupUi(this);
    setWindowTitle(texts::applicationTitle() + QStringLiteral(" (v.2.1) βeta"));
    // Qt's own way out would first ask every form that is still open to close, and stay if one refused.
    connect(qApp, &QGuiApplication::lastWindowClosed, this, [] { QCoreApplication::exit(0); });
    setUpWindow();
    setTexts();
    ui->menu_3->deleteLater();
    connectActions();
    connectCoordinatorInfo();
    connectEditors();
    connectCoordinatorData();
    connectFiles();
    connectFirmware();
    offerManual();
    setUpFocus();
    setUpShortcuts();
    setUpSpokenNames();
    showReplacedModel();
    formChoiceCoordinator->show();
}

void MainWindow::setUpWindow()
{
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    // White on the style's own blue has a contrast of 3.7 only.
    QPalette colors = QApplication::palette();
    colors.setColor(QPalette::Highlight, QColor(40, 122, 176));
    colors.setColor(QPalette::HighlightedText, Qt::white);
    QApplication::setPalette(colors);
    QApplication::setFont(look::applicationFont());
    screenRoom::keep(this);
    screenRoom::centre(this, normalSize, QGuiApplication::primaryScreen()->availableGeometry());
    offerTerminalTypes();
    packetLogger = std::make_unique<PacketLogger>(ui->tableLogger, ui->pushButtonStopLog, ui->pushButtonClearLog,
                                                  ui->checkBoxPeriodicRequest);
    auto* const packetTools = new PacketTools(this, ui->tableLogger, *packetLogger, dialogs);
    connect(packetTools, &PacketTools::newResult, this, &MainWindow::sl_ReceiveNewMessageAboutResult);
    setUpScriptLists();
    ui->tabWidget->setTabEnabled(hiddenTab, false);
    ui->tabWidget->removeTab(hiddenTab);
    ui->tabWidget->setCurrentIndex(0);
    setUpDocks();
    statusSections = std::make_unique<StatusBar>(ui->statusbar);
    fitToScreen(); // before a showing has the layout ask for more
    setUpLog();
}

void MainWindow::offerTerminalTypes()
{
    relayInfo->setCatalogue(*device);
    formAddingTerminal = new FormAddingTerminal(relayInfo, this);
    bool firstExecutive = true;
    for (int index = 0; index < device->deviceCount(); ++index) {
        const QVariantList row = device->deviceRow(index);
        if (row.at(1).value<quint8>() == ExecutiveClass) {
            formAddingTerminal->addTerminal(firstExecutive, row.at(0).toString(), row.at(5).toStringList());
            firstExecutive = false;
        }
    }
}

void MainWindow::setUpScriptLists()
{
    QFont bold = ui->labelTitleParamRelay->font();
    bold.setBold(true);
    ui->labelTitleParamRelay->setFont(bold);
    ui->labelTitleParamRelay->setStyleSheet(look::titleStyle(titleBackground()));
    scriptLists = new ScriptLists(relayInfo, ui->listWidgetAllScript, ui->listWidgetActivateScript, this);
    scriptLists->rebuildAll();
}

void MainWindow::setUpDocks()
{
    dockTree = newDock(QStringLiteral("dockTree"), texts::headingOutputs(), this);
    treeRelay = new Tree_Relay_Widget(relayInfo, dockTree);
    dockTree->setWidget(treeRelay);
    addDockWidget(Qt::LeftDockWidgetArea, dockTree);

    dockScript = newDock(QStringLiteral("dockScript"), QString(), this);
    settingScript = new Setting_Script_Widget(relayInfo, dockScript);
    // The dock's title is bold, and a font is inherited.
    QFont plain = look::applicationFont();
    plain.setWeight(QFont::Normal);
    settingScript->setFont(plain);
    dockScript->setWidget(settingScript);
    addDockWidget(Qt::RightDockWidgetArea, dockScript);
    new PanelWidths(this, {dockTree, dockScript});
}

void MainWindow::resizeEvent(QResizeEvent* event)
{
    QMainWindow::resizeEvent(event);
    fitToScreen();
    giveDocksWidths();
}

/// What can give way to the rest on a small screen.
void MainWindow::fitToScreen()
{
    constexpr int separators = 20;
    const int room = screenRoom::forContents(this).width();
    const int forDocks = room - centralWidget()->minimumSizeHint().width() - separators;
    const int tree = qBound(leastTreeWidth, forDocks - usableEditorWidth, usableTreeWidth);
    treeRelay->setLeastWidth(tree);
    settingScript->setMinimumWidth(qBound(leastEditorWidth, forDocks - tree, usableEditorWidth));
    statusSections->setRoom(room);
}

/// Widths that are asked for before the window is laid out are lost, and in a narrow window they are cut. Once they
/// were given, what the user makes of them counts.
void MainWindow::giveDocksWidths()
{
    const int room = screenRoom::forContents(this).width();
    if (docksHaveWidths || width() < qMin(widthForDocks, room)) {
        return;
    }
    docksHaveWidths = true;
    // On a screen that hasn't room for all, the tabs come first.
    const int forDocks = qMax(0, width() - narrowTabsWidth);
    const int tree = forDocks < treeWidth + editorWidth ? treeRelay->minimumSizeHint().width() : treeWidth;
    resizeDocks({dockTree, dockScript}, {tree, qMin(forDocks - tree, editorWidth)}, Qt::Horizontal);
}

void MainWindow::setUpLog()
{
    logTab = std::make_unique<LogTab>(this, ui->tableViewLogEvents, ui->labelCountRows, *device, dialogs);
    LogTab* const tab = logTab.get();
    connect(tab, &LogTab::forceReading, &formChoiceCoordinator->coordinatorLink(), &CoordinatorLink::forceLogReading);
    connect(formChoiceCoordinator, &FormChoiceCoordinator::logIncomplete, tab, &LogTab::expectMissingEvents);
    connect(tab, &LogTab::newResult, this, &MainWindow::sl_ReceiveNewMessageAboutResult);
    connect(ui->tabWidget, &QTabWidget::currentChanged, tab, &LogTab::endFinding);
    connect(tab, &LogTab::sig_ReadLogEvents, this, &MainWindow::sig_ReadLogEvents);
    connect(tab, &LogTab::sig_HideFormWaiting, this, &MainWindow::sig_HideFormWaiting);
    connect(tab, &LogTab::sig_insertDataToTable, this, &MainWindow::sig_insertDataToTable);
    connect(tab, &LogTab::sig_refreshTable, this, &MainWindow::sig_refreshTable);
    connect(tab, &LogTab::sig_deleteDataFromTable, this, &MainWindow::sig_deleteDataFromTable);
    connect(tab, &LogTab::sig_LoadOtherDB, this, &MainWindow::sig_LoadOtherDB);
    connect(tab, &LogTab::sig_SaveOtherDB, this, &MainWindow::sig_SaveOtherDB);
    // The window's own requests reach the database as the tab's do.
    const DataBase* const dataBase = tab->database();
    connect(this, &MainWindow::sig_insertDataToTable, dataBase, &DataBase::sl_insertIntoTable);
    connect(this, &MainWindow::sig_refreshTable, dataBase, &DataBase::sl_refreshModel);
    connect(this, &MainWindow::sig_deleteDataFromTable, dataBase, &DataBase::sl_deleteDataFromTable);
    connect(this, &MainWindow::sig_LoadOtherDB, dataBase, &DataBase::sl_connectOtherDataBase);
    connect(this, &MainWindow::sig_SaveOtherDB, dataBase, &DataBase::sl_SaveDataBase);
    tab->startDataBase();
}

void MainWindow::connectCoordinatorInfo()
{
    FormChoiceCoordinator* const form = formChoiceCoordinator;
    connect(form, &FormChoiceCoordinator::sig_sendRequestOnForm, this, &MainWindow::sl_RequestInLog);
    connect(form, &FormChoiceCoordinator::sig_sendAnswerOnForm, this, &MainWindow::sl_AnswerInLog);
    connect(form, &FormChoiceCoordinator::sig_sendStatusSelectPortOnForm, this, &MainWindow::sl_ReceiveInfoCoordinator);
    connect(form, &FormChoiceCoordinator::sig_sendDeviceTimeOnForm, this, &MainWindow::sl_ReceiveTimeInfo);
    connect(form, &FormChoiceCoordinator::sig_sendEnableOperationOnForm, this, &MainWindow::sl_ReceiveEnableOperation);
    connect(form, &FormChoiceCoordinator::sig_sendResultOperation, this, &MainWindow::sl_ReceiveNewMessageAboutResult);
    connect(form, &FormChoiceCoordinator::sig_ReadLogNotNeccessary, this, &MainWindow::sl_RestoreLogEvent);
}

void MainWindow::connectEditors()
{
    connect(treeRelay, &Tree_Relay_Widget::sig_newGroupRelay, this, &MainWindow::sl_runFormForAddGroupRelay);
    connect(formAddingTerminal, &FormAddingTerminal::sig_addNewGroupRelay, treeRelay,
            &Tree_Relay_Widget::sl_CreateNewGroupAndRelays);
    connect(treeRelay, &Tree_Relay_Widget::sig_deleteGroupRelay, this, &MainWindow::sl_DeleteDeviceFromTree);
    connect(treeRelay, &Tree_Relay_Widget::sig_deleteDisconnectedGroupRelays, this,
            &MainWindow::sl_DeleteDisconnectDeviceFromTree);
    connect(treeRelay, &Tree_Relay_Widget::sig_changeRelay, this, &MainWindow::sl_SetNewRelay);
    connect(this, &MainWindow::sig_changeScript, settingScript, &Setting_Script_Widget::sl_SetNewScript);
    connect(this, &MainWindow::sig_updateConnectList, settingScript, &Setting_Script_Widget::sl_UpDateConnectList);
    connect(settingScript, &Setting_Script_Widget::sig_RefreshStateScriptInList, this,
            &MainWindow::sl_refreshStateAllScript);
    connect(this, &MainWindow::sig_changeStateRelay, treeRelay, &Tree_Relay_Widget::sl_refreshCurrentNodeTree);
    connect(treeRelay, &Tree_Relay_Widget::sig_changeNameDevOrOutput, this, &MainWindow::sl_RefreshNameDevOrOutput);
    connect(settingScript, &Setting_Script_Widget::sig_changeTitle, this, &MainWindow::sl_changeTitleSettingScript);

    connect(scriptLists, &ScriptLists::scriptChosen, this, &MainWindow::sig_changeScript);
    connect(scriptLists, &ScriptLists::outputChanged, this, &MainWindow::sig_changeStateRelay);
    connect(scriptLists, &ScriptLists::renameWanted, settingScript, &Setting_Script_Widget::enterName);
    connect(scriptLists, &ScriptLists::editedColorChanged, this, &MainWindow::showColorOfEditedScript);
}

void MainWindow::connectCoordinatorData()
{
    FormChoiceCoordinator* const form = formChoiceCoordinator;
    connect(this, &MainWindow::sig_WriteConfigAndScript, form,
            &FormChoiceCoordinator::sl_PreOperationWriteConfigAndScript);
    connect(this, &MainWindow::sig_WriteRealTime, form, &FormChoiceCoordinator::sl_SendRequestSyncTime);
    connect(form, &FormChoiceCoordinator::sig_sendReadConfigOnForm, this, &MainWindow::sl_ReceiveConfig);
    connect(form, &FormChoiceCoordinator::sig_sendReadScriptOnForm, this, &MainWindow::sl_ReceiveScript);
    connect(form, &FormChoiceCoordinator::sig_sendListTerminalsOnForm, this, &MainWindow::sl_ReceiveConnectTerminal);
    connect(this, &MainWindow::sig_HideFormWaiting, form, &FormChoiceCoordinator::sl_HideFormWaiting);
    connect(this, &MainWindow::sig_ReadLogEvents, form, &FormChoiceCoordinator::sl_SendRequestBeginReadLog);
    connect(form, &FormChoiceCoordinator::sig_sendReadLogOnForm, this, &MainWindow::sl_ReceiveDataEvents);
}

void MainWindow::connectFiles()
{
    configurationFiles = new ConfigurationFiles(relayInfo, &dialogs, this);
    connect(configurationFiles, &ConfigurationFiles::result, this, &MainWindow::sl_ReceiveNewMessageAboutResult);
    connect(configurationFiles, &ConfigurationFiles::modelReplaced, this, &MainWindow::showReplacedModel);
    connect(configurationFiles, &ConfigurationFiles::commentReplaced, this, &MainWindow::showComment);
    connect(configurationFiles, &ConfigurationFiles::writeRequested, ui->actionWrite, &QAction::trigger);
}

void MainWindow::connectFirmware()
{
    firmwareLoading = new FirmwareLoading(formChoiceCoordinator, &dialogs, this);
    connect(firmwareLoading, &FirmwareLoading::runningOnCurrentPort, this, &MainWindow::sig_LoadingFirmwareCurrentPort);
    connect(this, &MainWindow::sig_LoadingFirmwareCurrentPort, formChoiceCoordinator,
            &FormChoiceCoordinator::sl_CurrentLoadingFirmwareIsRunning);
    connect(firmwareLoading, &FirmwareLoading::result, this, &MainWindow::sl_ReceiveNewMessageAboutResult);
    formChoiceCoordinator->coordinatorLink().setFirmwareRunner(
        [this](const FirmwarePort& port) { firmwareLoading->loadOnPort(port); });
}

/// F1 alone, since the menus hold what works on the unit. It works in all windows; those that keep the user away from
/// this one have it themselves. The busy form hasn't: it keeps the user away from everything.
void MainWindow::offerManual()
{
    auto* const action = new QAction(texts::manualTitle(), this);
    action->setObjectName(QStringLiteral("actionManual"));
    action->setShortcut(Qt::Key_F1);
    action->setShortcutContext(Qt::ApplicationShortcut);
    connect(action, &QAction::triggered, this, &MainWindow::openManual);
    addAction(action);
    formChoiceCoordinator->addAction(action);
    firmwareLoading->offer(action);
}

void MainWindow::setTexts()
{
    ui->menuSetting->setTitle(texts::headingDevice());
    ui->menu->setTitle(texts::headingConfiguration());
    ui->menu_2->setTitle(texts::headingLogEvents());
    ui->menu_3->setTitle(texts::bindingMenu());
    ui->action_Bind->setText(texts::bindingAction());

    ui->actionRead->setText(texts::actionRead());
    ui->actionWrite->setText(texts::actionWrite());
    ui->actionLoad->setText(texts::actionLoad());
    ui->actionSave->setText(texts::actionSave());
    ui->actionFactorySetting->setText(texts::actionFactorySetting());
    ui->actionSelectCoordinator->setText(texts::actionSelectCoordinator());
    ui->actionSyncTime->setText(texts::actionSyncTime());
    ui->actionFirmware->setText(texts::actionFirmware());
    ui->actionReadLog->setText(texts::actionReadLog());
    ui->actionLoadLog->setText(texts::actionLoadLog());
    ui->actionSaveLog->setText(texts::actionSaveLog());

    QTabWidget* const tabs = ui->tabWidget;
    tabs->setTabText(tabs->indexOf(ui->tabSettingRelay), texts::tabOutputParameters());
    tabs->setTabText(tabs->indexOf(ui->tabLogEvents), texts::tabLogEvents());
    tabs->setTabText(tabs->indexOf(ui->tabLogger), texts::tabPacketLogger());

    ui->labelTitleActivateScript->setText(texts::listActiveScriptsFor());
}

void MainWindow::connectActions()
{
    connect(ui->actionSelectCoordinator, &QAction::triggered, formChoiceCoordinator, &QWidget::show);
    connect(ui->actionRead, &QAction::triggered, this, &MainWindow::readConfiguration);
    connect(ui->actionWrite, &QAction::triggered, this, &MainWindow::writeConfiguration);
    connect(ui->actionLoad, &QAction::triggered, this, &MainWindow::sl_LoadAllDataFromFile);
    connect(ui->actionSave, &QAction::triggered, this, &MainWindow::sl_SaveAllDataInFile);
    connect(ui->actionFactorySetting, &QAction::triggered, this, &MainWindow::sl_SetFactorySetting);
    connect(ui->actionFirmware, &QAction::triggered, this, &MainWindow::sl_LoadFirmWare);
    connect(ui->actionReadLog, &QAction::triggered, this, &MainWindow::readLog);
    connect(ui->actionLoadLog, &QAction::triggered, this, &MainWindow::sl_LoadLogFromFile);
    connect(ui->actionSaveLog, &QAction::triggered, this, &MainWindow::sl_SaveLogInFile);
    connect(ui->pushButtonAddScript, &QPushButton::clicked, this, &MainWindow::sl_AddScriptInActivateList);
    connect(ui->pushButtonDeleteScript, &QPushButton::clicked, this, &MainWindow::sl_DeleteScriptFromActivateList);
}

void MainWindow::sl_ReceiveEnableOperation(bool enable)
{
    for (QAction* action :
         {ui->actionRead, ui->actionWrite, ui->actionFirmware, ui->actionFactorySetting, ui->actionReadLog}) {
        action->setEnabled(enable);
    }
}
