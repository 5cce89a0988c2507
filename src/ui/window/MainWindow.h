#pragma once

#include "eventlog/ErrorDataBase.h"
#include "eventlog/EventOfTable.h"
#include "model/GroupRelay.h"
#include "model/ScriptInfo.h"
#include "widgets/Dialogs.h"

#include <QByteArrayList>
#include <QDateTime>
#include <QMainWindow>
#include <QSharedPointer>
#include <QStringList>

#include <functional>
#include <memory>

class ConfigurationFiles;
class Device;
class FirmwareLoading;
class FormAddingTerminal;
class FormChoiceCoordinator;
class LogTab;
class PacketLogger;
class QDockWidget;
class QListWidgetItem;
class RelayInfo;
class ScriptLists;
class Setting_Script_Widget;
class SqlModel;
class StatusBar;
class Tree_Relay_Widget;

namespace Ui
{
class MainWindow;
}

/// What the window takes from outside; an empty function or a null pointer means the real thing.
struct WindowSeams
{
    std::function<QStringList()> portNames; ///< names of the serial ports
    std::function<QDateTime()> now;         ///< local date and time
    Dialogs* dialogs = nullptr;             ///< file and message dialogs; outlives the window
    QStringList manuals = {};               ///< where the manual may be, the better place first
};

/// The program's one window and its hub: it creates the model, the forms and the editors, and joins them.
///
/// Owned by main() for the life of the process; GUI thread. Actions start operations of the coordinator form; what the
/// form reports comes back here, goes into the model, and from there to the tree, the lists and the script editor. The
/// slots are the places where those meet; the work is done by the collaborators, each of which knows its own concern
/// only. Closing the window ends the process, whatever else is open.
class MainWindow : public QMainWindow
{
    Q_OBJECT

public:
    explicit MainWindow(WindowSeams windowSeams = {}, QWidget* parent = nullptr);
    ~MainWindow() override; ///< waits for the database thread; the ports end with the coordinator form
    Q_DISABLE_COPY_MOVE(MainWindow)

public slots:
    // Status bar.
    void sl_ReceiveInfoCoordinator(uchar statePort, const QString& namePort, const QString& baudrate,
                                   uchar addressCoordinator, const QString& serNum, const QString& version);
    void sl_ReceiveEnableOperation(bool enable);
    void sl_ReceiveTimeInfo(const QString& deviceTime, bool correctTime);
    void sl_ReceiveNewMessageAboutResult(const QString& mess);

    // Packet logger.
    void sl_RequestInLog(const QDateTime& dateTime, const QByteArray& request, bool periodic);
    void sl_AnswerInLog(const QDateTime& dateTime, const QByteArray& answer, bool periodic);
    void on_pushButtonStopLog_clicked(bool checked);
    void on_pushButtonClearLog_clicked();

    // Model exchange.
    void sl_ReceiveConnectTerminal(const QByteArrayList& listTerminal);
    void sl_ReceiveConfig(const QByteArrayList& config);
    void sl_ReceiveScript(const QByteArrayList& script);
    void sl_SetNewRelay(const QSharedPointer<RelayInformation>& relay, const QSharedPointer<GroupRelay>& group);
    void sl_RefreshNameDevOrOutput();
    void sl_changeTitleSettingScript(const QString& name);
    void sl_runFormForAddGroupRelay();
    void sl_DeleteDeviceFromTree(const QSharedPointer<GroupRelay>& group);
    void sl_DeleteDisconnectDeviceFromTree();
    void on_textEditComment_textChanged();

    // Script lists.
    void sl_AddScriptInActivateList();
    void sl_DeleteScriptFromActivateList();
    void on_listWidgetAllScript_currentItemChanged(QListWidgetItem* current, QListWidgetItem* previous);
    void on_listWidgetActivateScript_currentItemChanged(QListWidgetItem* current, QListWidgetItem* previous);
    void on_listWidgetAllScript_itemSelectionChanged();
    void on_listWidgetActivateScript_itemSelectionChanged();
    void sl_refreshStateAllScript();

    // Configuration files.
    void sl_SaveAllDataInFile();
    void sl_LoadAllDataFromFile();
    void sl_SetFactorySetting();

    // Firmware.
    void sl_LoadFirmWare();

    void on_tabWidget_currentChanged(int index);

    // Log. The system knows the log by these names of its window, so that whoever has the window needs nothing else.
    // Each hands on to the LogTab, which does the work and has the database report to itself.
    void sl_SettingModel(ErrorDataBase err, SqlModel* model);
    void sl_SettingTableView(SqlModel* model);
    void sl_setStatusLog(int count, bool filter);
    void sl_ReceiveDataEvents(const QByteArrayList& records, bool end);
    void sl_InsertNextPartEvents(ErrorDataBase err);
    void sl_DataIsDeleted(ErrorDataBase err);
    void sl_LoadLogFromFile();
    void sl_SaveLogInFile();
    void sl_SettingOtherModel(ErrorDataBase err, SqlModel* model, const QString& fileName);
    void sl_RestoreLogEvent();

signals:
    // To the script editor and the tree.
    void sig_changeScript(const QSharedPointer<ScriptInfo>& script);
    void sig_updateConnectList();
    void sig_changeStateRelay();

    // To the coordinator form.
    void sig_WriteConfigAndScript(const QByteArrayList& listConfig, const QByteArrayList& listScript);
    void sig_WriteRealTime();
    void sig_LoadingFirmwareCurrentPort(bool running);
    void sig_ReadLogEvents();
    void sig_HideFormWaiting();

    // What the LogTab asks of the database.
    void sig_insertDataToTable(const QList<EventOfTable>& rows);
    void sig_refreshTable();
    void sig_deleteDataFromTable();
    void sig_LoadOtherDB(const QString& fileName);
    void sig_SaveOtherDB(const QString& fileName);

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void setUpWindow();
    void offerTerminalTypes();
    void setUpScriptLists();
    void setUpDocks();
    void fitToScreen();
    void giveDocksWidths();
    void setUpLog();
    void setTexts();
    void setUpFocus();
    void setUpShortcuts();
    void setUpTabShortcuts();
    void setUpSpokenNames();
    void connectActions();
    void connectCoordinatorInfo();
    void connectEditors();
    void connectCoordinatorData();
    void connectFiles();
    void connectFirmware();
    void offerManual();

    void readConfiguration();
    void writeConfiguration();
    void readLog();
    void writeTimeIfAsked();
    void openManual();
    void showReplacedModel();
    void showNewScripts();
    void showComment(const QString& comment);
    void showColorOfEditedScript(const QString& color);

    const WindowSeams seams;
    Dialogs ownDialogs; ///< used unless the seams bring others
    Dialogs& dialogs;
    std::unique_ptr<Ui::MainWindow> ui;
    QSharedPointer<RelayInfo> relayInfo;
    Device* device;
    FormChoiceCoordinator* formChoiceCoordinator;
    std::unique_ptr<StatusBar> statusSections;
    FormAddingTerminal* formAddingTerminal = nullptr;
    std::unique_ptr<PacketLogger> packetLogger;
    ScriptLists* scriptLists = nullptr;
    QDockWidget* dockTree = nullptr;
    Tree_Relay_Widget* treeRelay = nullptr;
    QDockWidget* dockScript = nullptr;
    Setting_Script_Widget* settingScript = nullptr;
    ConfigurationFiles* configurationFiles = nullptr;
    FirmwareLoading* firmwareLoading = nullptr;
    std::unique_ptr<LogTab> logTab;
    QSharedPointer<GroupRelay> currentGroup;       ///< terminal chosen in the tree
    QSharedPointer<RelayInformation> currentRelay; ///< output chosen in the tree
    bool docksHaveWidths = false;
    bool autoReadChain = false; ///< the chain from the terminals to the log is running
};
