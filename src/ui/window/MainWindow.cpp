#include "ui/window/MainWindow.h"

#include "link/FormChoiceCoordinator.h"
#include "model/RelayInfo.h"
#include "model/format.h"
#include "texts/texts.h"
#include "ui/log/LogTab.h"
#include "ui/log/PacketLogger.h"
#include "ui/scripts/ScriptLists.h"
#include "ui/scripts/Setting_Script_Widget.h"
#include "ui/tree/FormAddingTerminal.h"
#include "ui/tree/Tree_Relay_Widget.h"
#include "ui/window/ConfigurationFiles.h"
#include "ui/window/FirmwareLoading.h"
#include "ui/window/Manual.h"
#include "ui/window/StatusBar.h"
#include "ui/window/resultLine.h"
#include "ui_MainWindow.h"
#include "widgets/Look.h"
#include "widgets/Spoken.h"

#include <QApplication>
#include <QDesktopServices>
#include <QDockWidget>
#include <QSignalBlocker>
#include <QUrl>

MainWindow::~MainWindow() = default;

void MainWindow::sl_ReceiveInfoCoordinator(uchar statePort, const QString& namePort, const QString& baudrate,
                                           uchar addressCoordinator, const QString& serNum, const QString& version)
{
    statusSections->showPort(statePort, namePort, baudrate, addressCoordinator, serNum, version);
}

void MainWindow::sl_ReceiveTimeInfo(const QString& deviceTime, bool correctTime)
{
    statusSections->showDeviceTime(deviceTime);
    ui->actionSyncTime->setEnabled(correctTime);
}

void MainWindow::sl_ReceiveNewMessageAboutResult(const QString& mess)
{
    const std::optional<QString> next = nextResult(mess, statusSections->result(), autoReadChain);
    if (next) {
        statusSections->showResult(*next);
    }
}

void MainWindow::sl_RequestInLog(const QDateTime& dateTime, const QByteArray& request, bool periodic)
{
    packetLogger->logRequest(dateTime, request, periodic);
}

void MainWindow::sl_AnswerInLog(const QDateTime& dateTime, const QByteArray& answer, bool periodic)
{
    packetLogger->logAnswer(dateTime, answer, periodic);
}

void MainWindow::on_pushButtonStopLog_clicked(bool checked)
{
    packetLogger->showStopped(checked);
}

void MainWindow::on_pushButtonClearLog_clicked()
{
    packetLogger->clear();
}

void MainWindow::writeTimeIfAsked()
{
    if (ui->actionSyncTime->isChecked() && ui->actionSyncTime->isEnabled()) {
        emit sig_WriteRealTime();
    }
}

void MainWindow::readConfiguration()
{
    formChoiceCoordinator->sl_PreOperationReadConfigAndScript();
    writeTimeIfAsked();
}

void MainWindow::writeConfiguration()
{
    writeTimeIfAsked();
    emit sig_WriteConfigAndScript(relayInfo->makeOutputRecords(), relayInfo->makeScriptRecords());
}

void MainWindow::sl_ReceiveConnectTerminal(const QByteArrayList& listTerminal)
{
    relayInfo->readTerminalRecords(listTerminal);
    treeRelay->fullUpdateTree(true);
    emit sig_updateConnectList();
    autoReadChain = true;
    ui->actionRead->trigger();
}

void MainWindow::sl_ReceiveConfig(const QByteArrayList& config)
{
    relayInfo->readOutputRecords(config);
    relayInfo->removeIdleGroups();
    treeRelay->fullUpdateTree(true);
}

void MainWindow::sl_ReceiveScript(const QByteArrayList& script)
{
    relayInfo->readScriptRecords(script);
    showNewScripts();
    if (autoReadChain) {
        ui->actionReadLog->trigger();
    } else {
        emit sig_HideFormWaiting();
    }
}

void MainWindow::showReplacedModel()
{
    treeRelay->fullUpdateTree(true);
    showNewScripts();
}

void MainWindow::showNewScripts()
{
    scriptLists->showNewScripts(currentRelay, settingScript->currentScript());
}

void MainWindow::sl_SetNewRelay(const QSharedPointer<RelayInformation>& relay, const QSharedPointer<GroupRelay>& group)
{
    if (relay.isNull() || group.isNull()) {
        return;
    }
    currentRelay = relay;
    currentGroup = group;
    const QList<ScriptInfoPtr> scripts = relayInfo->scripts();
    for (const ScriptInfoPtr& script : scripts) {
        script->marked = false;
    }
    scriptLists->rebuildActive(relay);
    scriptLists->selectFirstActive();
    sl_RefreshNameDevOrOutput();
    look::settleLayouts();
}

void MainWindow::sl_RefreshNameDevOrOutput()
{
    if (currentGroup.isNull() || currentRelay.isNull()) {
        return;
    }
    const QString title =
        outputTitle(currentGroup->name, currentGroup->address, currentRelay->name, currentRelay->number);
    ui->labelTitleParamRelay->setText(title);
    ui->labelTitleActivateScript->setText(texts::listActiveScriptsFor() + QLatin1Char('\n') + title);
    // No buddy of the list: a label that is one takes the "&" in a name for the mark of a key.
    spoken::call(ui->listWidgetActivateScript, spoken::name(ui->labelTitleActivateScript->text()));
}

void MainWindow::sl_changeTitleSettingScript(const QString& name)
{
    QFont font = look::applicationFont();
    font.setWeight(QFont::Bold);
    dockScript->setFont(font);
    dockScript->setWindowTitle(name);
}

void MainWindow::sl_runFormForAddGroupRelay()
{
    formAddingTerminal->show();
    formAddingTerminal->raise();
    formAddingTerminal->activateWindow();
}

void MainWindow::sl_DeleteDeviceFromTree(const QSharedPointer<GroupRelay>& group)
{
    relayInfo->removeGroup(group);
    // The model refuses to remove the head unit: then nothing has changed.
    if (!relayInfo->groups().contains(group)) {
        treeRelay->removeGoneNodes();
    }
}

void MainWindow::sl_DeleteDisconnectDeviceFromTree()
{
    relayInfo->removeDisconnectedGroups();
    treeRelay->removeGoneNodes();
}

void MainWindow::sl_AddScriptInActivateList()
{
    scriptLists->addSelected();
}

void MainWindow::sl_DeleteScriptFromActivateList()
{
    scriptLists->removeSelected();
}

void MainWindow::on_listWidgetAllScript_currentItemChanged(QListWidgetItem* current, QListWidgetItem* /*previous*/)
{
    scriptLists->allCurrentChanged(current);
}

void MainWindow::on_listWidgetActivateScript_currentItemChanged(QListWidgetItem* current, QListWidgetItem* /*previous*/)
{
    scriptLists->activeCurrentChanged(current);
}

void MainWindow::on_listWidgetAllScript_itemSelectionChanged()
{
    scriptLists->allSelectionChanged();
}

void MainWindow::on_listWidgetActivateScript_itemSelectionChanged()
{
    scriptLists->activeSelectionChanged();
}

void MainWindow::sl_refreshStateAllScript()
{
    scriptLists->refreshStates(settingScript->currentScript());
}

void MainWindow::showColorOfEditedScript(const QString& color)
{
    settingScript->setStateColor(color);
    look::setDockTitle(dockScript, color);
}

void MainWindow::on_textEditComment_textChanged()
{
    relayInfo->setComment(ui->textEditComment->toPlainText());
}

void MainWindow::showComment(const QString& comment)
{
    {
        const QSignalBlocker clearingIsNoEdit(ui->textEditComment);
        ui->textEditComment->clear();
    }
    ui->textEditComment->setPlainText(comment);
}

void MainWindow::sl_SaveAllDataInFile()
{
    configurationFiles->save();
}

void MainWindow::sl_LoadAllDataFromFile()
{
    configurationFiles->load();
}

void MainWindow::sl_SetFactorySetting()
{
    configurationFiles->setDefaults();
}

void MainWindow::readLog()
{
    writeTimeIfAsked();
    logTab->readLog();
}

void MainWindow::on_tabWidget_currentChanged(int)
{
    if (ui->tabWidget->currentWidget() == ui->tabLogEvents && ui->actionReadLog->isEnabled()) {
        logTab->readLogIfChanged();
    }
}

void MainWindow::sl_SettingModel(ErrorDataBase err, SqlModel* model)
{
    logTab->sl_SettingModel(err, model);
}

void MainWindow::sl_SettingTableView(SqlModel* model)
{
    logTab->sl_SettingTableView(model);
}

void MainWindow::sl_setStatusLog(int count, bool filter)
{
    logTab->sl_setStatusLog(count, filter);
}

void MainWindow::sl_ReceiveDataEvents(const QByteArrayList& records, bool end)
{
    logTab->sl_ReceiveDataEvents(records, end);
}

void MainWindow::sl_InsertNextPartEvents(ErrorDataBase err)
{
    logTab->sl_InsertNextPartEvents(err);
}

void MainWindow::sl_DataIsDeleted(ErrorDataBase err)
{
    logTab->sl_DataIsDeleted(err);
}

void MainWindow::sl_LoadLogFromFile()
{
    logTab->sl_LoadLogFromFile();
}

void MainWindow::sl_SaveLogInFile()
{
    logTab->sl_SaveLogInFile();
}

void MainWindow::sl_SettingOtherModel(ErrorDataBase err, SqlModel* model, const QString& fileName)
{
    logTab->sl_SettingOtherModel(err, model, fileName);
}

void MainWindow::sl_RestoreLogEvent()
{
    logTab->sl_RestoreLogEvent();
}

void MainWindow::openManual()
{
    const QStringList places =
        seams.manuals.isEmpty() ? manual::places(QCoreApplication::applicationDirPath()) : seams.manuals;
    const QString file = manual::firstOf(places);
    QWidget* const asking = QApplication::activeWindow() != nullptr ? QApplication::activeWindow() : this;
    if (file.isEmpty()) {
        dialogs.critical(asking, texts::manualTitle(), texts::manualMissing().arg(places.join(QLatin1Char('\n'))));
    } else if (!QDesktopServices::openUrl(QUrl::fromLocalFile(file))) {
        dialogs.critical(asking, texts::manualTitle(), texts::manualNotOpened().arg(file));
    }
}

void MainWindow::sl_LoadFirmWare()
{
    firmwareLoading->loadOnCurrentPort();
}
