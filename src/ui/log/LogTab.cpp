#include "ui/log/LogTab.h"

#include "domain/debugLine.h"
#include "texts/texts.h"
#include "ui/log/LogTools.h"
#include "widgets/Dialogs.h"

#include <QFile>
#include <QLabel>
#include <QTableView>
#include <QTimer>

LogTab::LogTab(QWidget* window, QTableView* tableView, QLabel* countLabel, const Device& devices, Dialogs& fileDialogs)
    : dialogParent(window), view(tableView), tools(new LogTools(window, tableView, fileDialogs, this)),
      countRows(countLabel), dialogs(fileDialogs), dataBase(new DataBase(QStringLiteral("Log")))
{
    qRegisterMetaType<ErrorDataBase>("ErrorDataBase");
    qRegisterMetaType<QList<EventOfTable>>("QList<EventOfTable>");
    logEvents.setDevices(&devices);

    dataBase->moveToThread(&dataBaseThread);
    connect(tools, &LogTools::conditionChanged, this, &LogTab::filter);
    connect(tools, &LogTools::newResult, this, &LogTab::newResult);
}

LogTab::~LogTab()
{
    view.drop();
    dataBaseThread.quit();
    dataBaseThread.wait();
    delete dataBase;
}

void LogTab::startDataBase()
{
    connect(&dataBaseThread, &QThread::started, dataBase, &DataBase::sl_connectToDataBase);
    connect(&dataBaseThread, &QThread::finished, dataBase, &DataBase::sl_closeDataBase);

    connect(dataBase, &DataBase::sig_ResultConnectDB, this, &LogTab::sl_SettingModel);
    connect(dataBase, &DataBase::sig_ResultInsertIntoTable, this, &LogTab::sl_InsertNextPartEvents);
    connect(dataBase, &DataBase::sig_RefreshComplete, this, &LogTab::sl_setStatusLog);
    connect(this, &LogTab::sig_filterTable, dataBase, &DataBase::sl_filterModel);
    connect(dataBase, &DataBase::sig_FilterComplete, this, &LogTab::sl_setStatusFilter);
    connect(dataBase, &DataBase::sig_ResultDeleteFromTable, this, &LogTab::sl_DataIsDeleted);
    connect(dataBase, &DataBase::sig_ResultConnectOtherDB, this, &LogTab::sl_SettingOtherModel);
    connect(dataBase, &DataBase::sig_MessageForForm, this, &LogTab::newResult);

    changeModel([this] { dataBaseThread.start(); });
}

DataBase* LogTab::database() const
{
    return dataBase;
}

void LogTab::inOrder(const std::function<void()>& request)
{
    if (modelChanges > 0) {
        waitingRequests.enqueue(request);
    } else {
        request();
    }
}

void LogTab::changeModel(const std::function<void()>& request)
{
    inOrder([this, request] { beginModelChange(request); });
}

void LogTab::beginModelChange(const std::function<void()>& request)
{
    if (view.isAttached()) {
        detachLogView();
    }
    sendModelChange(request);
}

void LogTab::sendModelChange(const std::function<void()>& request)
{
    ++modelChanges;
    request();
    // This comes back from the worker behind all that the request reports, and so ends the change whatever its outcome,
    // even if there was nothing to report.
    QMetaObject::invokeMethod(
        dataBase, [this] { QMetaObject::invokeMethod(this, &LogTab::endModelChange, Qt::QueuedConnection); },
        Qt::QueuedConnection);
}

void LogTab::endModelChange()
{
    --modelChanges;
    while (modelChanges == 0 && !waitingRequests.isEmpty()) {
        waitingRequests.dequeue()();
    }
}

// ---- Reading -----------------------------------------------------------------------------------------------------

void LogTab::readLog()
{
    beginReading();
    emit forceReading();
    emit sig_ReadLogEvents();
}

void LogTab::readLogIfChanged()
{
    beginReading();
    emit sig_ReadLogEvents();
}

void LogTab::beginReading()
{
    logEvents.saveAndClearEvents();
    forgetFinding();
    detachLogView();
    eventsAreMissing = false;
    batches = 0;
}

void LogTab::expectMissingEvents()
{
    eventsAreMissing = true;
}

void LogTab::sl_ReceiveDataEvents(const QByteArrayList& data, bool end)
{
    logEvents.decodeEvents(data);
    if (end) {
        inOrder([this] { emit sig_deleteDataFromTable(); });
    }
}

void LogTab::sl_DataIsDeleted(ErrorDataBase err)
{
    debugLine(QStringLiteral(" (Waiting): all data deleted from table"));
    switch (err) {
    case ErrorDataBaseNone:
        logEvents.numberEvents();
        sl_InsertNextPartEvents(ErrorDataBaseNone);
        break;
    case ErrorDataBaseExec:
        stopWithFault(texts::databaseFaultDelete());
        break;
    default:
        stopWithFault(texts::databaseFaultWorking());
    }
}

void LogTab::sl_InsertNextPartEvents(ErrorDataBase err)
{
    switch (err) {
    case ErrorDataBaseNone:
        break;
    case ErrorDataBaseNoData:
    case ErrorDataBaseExec:
        stopWithFault(texts::databaseFaultInsert());
        return;
    default:
        stopWithFault(texts::databaseFaultWorking());
        return;
    }
    constexpr int batchSize = 2000;
    const QList<EventOfTable> rows = logEvents.takeEvents(batchSize);
    if (rows.isEmpty()) {
        endReading(batches == 0 && eventsAreMissing);
        changeModel([this] { emit sig_refreshTable(); });
    } else {
        ++batches;
        emit sig_insertDataToTable(rows);
    }
}

void LogTab::sl_RestoreLogEvent()
{
    logEvents.restoreEvents();
    changeModel([this] { emit sig_refreshTable(); });
}

void LogTab::stopWithFault(const QString& text)
{
    dialogs.critical(dialogParent, texts::databaseFault(), text);
    endReading(batches <= 1);
}

void LogTab::endReading(bool allIsLost)
{
    // The unit's counter stands where this reading found it: the next one would leave the table as it is.
    if (allIsLost) {
        emit forceReading();
    }
    emit sig_HideFormWaiting();
}

// ---- View --------------------------------------------------------------------------------------------------------

void LogTab::sl_SettingModel(ErrorDataBase err, SqlModel* model)
{
    switch (err) {
    case ErrorDataBaseNone:
        sl_SettingTableView(model);
        break;
    case ErrorDataBaseOpen:
        showDataBaseError(QStringLiteral("Ошибка открытия БД!"));
        break;
    case ErrorDataBaseCreateTable:
        showDataBaseError(QStringLiteral("Ошибка создания таблицы БД!"));
        break;
    default:
        showDataBaseError(QStringLiteral("Непредвиденная ошибка БД!"));
    }
}

void LogTab::showDataBaseError(const QString& text)
{
    dialogs.critical(dialogParent, QStringLiteral("Ошибка БД"), text);
}

void LogTab::sl_SettingTableView(SqlModel* model)
{
    view.setUp(model);
}

void LogTab::sl_setStatusLog(int count, bool /*filter*/)
{
    forgetFinding(); // all rows are there again, whoever asked for them
    allRows = count;
    countOfAll = texts::logRowCount() + QString::number(count);
    countRows->setText(countOfAll);
    view.attach();
}

void LogTab::detachLogView()
{
    view.detach();
    countRows->clear();
}

// ---- Filter ------------------------------------------------------------------------------------------------------

void LogTab::endFinding()
{
    tools->endFinding();
}

/// All rows are going to come anew, whatever was looked for.
void LogTab::forgetFinding()
{
    tools->forgetFinding();
    wantedCondition.clear();
    sentCondition.clear();
}

/// However fast the user types, one request waits at most, and asks for what was wanted last. With nothing on the way
/// the first goes out at once, so that the worker is at it while the key is painted.
void LogTab::filter(const QString& condition)
{
    wantedCondition = condition;
    if (!filterWaits && modelChanges == 0 && view.isShown()) {
        sendFilter();
    } else if (!filterWaits) {
        filterWaits = true;
        inOrder([this] { filterAfterPainting(); });
    }
}

/// The rows of the request before, if there was one, are to be seen first.
void LogTab::filterAfterPainting()
{
    QTimer::singleShot(0, this, [this] { inOrder([this] { sendFilter(); }); });
}

void LogTab::sendFilter()
{
    filterWaits = false;
    // A reading that has begun shows no table, and all rows at its end.
    if (view.isAttached() && wantedCondition != sentCondition) {
        view.freeze();
        sentCondition = wantedCondition;
        sendModelChange([this] { emit sig_filterTable(sentCondition); });
    }
}

void LogTab::sl_setStatusFilter(int count, bool filter)
{
    if (!view.isFrozen()) {
        return; // a reading has begun meanwhile
    }
    countRows->setText(filter ? texts::logRowCount() + texts::findCount().arg(count).arg(allRows) : countOfAll);
    view.thaw(!filter);
    QTimer::singleShot(0, this, [this] { view.showThawed(); });
}

// ---- Files -------------------------------------------------------------------------------------------------------

void LogTab::sl_SaveLogInFile()
{
    const QString fileName = dialogs.saveFileName(dialogParent, texts::fileSaveLog(), QStringLiteral("*.db"));
    if (!fileName.isEmpty()) {
        inOrder([this, fileName] { emit sig_SaveOtherDB(fileName); });
    }
}

void LogTab::sl_LoadLogFromFile()
{
    const QString fileName = dialogs.openFileName(dialogParent, texts::fileLoadLog(), QStringLiteral("*.db"));
    if (fileName.isEmpty()) {
        return;
    }
    emit forceReading();
    if (QFile::exists(fileName)) {
        forgetFinding();
        changeModel([this, fileName] { emit sig_LoadOtherDB(fileName); });
    } else {
        // Nothing will be loaded, and nothing reported: the table stays in view.
        inOrder([this, fileName] { emit sig_LoadOtherDB(fileName); });
    }
}

void LogTab::sl_SettingOtherModel(ErrorDataBase err, SqlModel* model, const QString& fileName)
{
    if (err == ErrorDataBaseNone) {
        sl_SettingTableView(model);
        detachLogView();
        // Not by changeModel(): it is a part of the loading, before whose end nothing else may begin.
        beginModelChange([this] { emit sig_refreshTable(); });
        emit newResult(texts::resultLogLoadOk().arg(fileName));
        return;
    }
    showDataBaseError((err == ErrorDataBaseOpen ? QStringLiteral("Ошибка открытия БД! (")
                                                : QStringLiteral("Непредвиденная ошибка БД! (")) +
                      fileName + QLatin1Char(')'));
    emit newResult(texts::resultLogLoadError() + QLatin1Char('\n') + fileName);
}
