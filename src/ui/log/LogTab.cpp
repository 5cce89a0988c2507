#include "ui/log/LogTab.h"

#include "domain/debugLine.h"
#include "eventlog/LogTable.h"
#include "texts/texts.h"
#include "widgets/Dialogs.h"

#include <QAbstractItemView>
#include <QFile>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QLabel>
#include <QTableView>

namespace
{

constexpr int batchSize = 2000;
constexpr int rowHeight = 40;

} // namespace

LogTab::LogTab(const LogWidgets& widgets, const Device& devices, Dialogs& fileDialogs, QObject* parent)
    : QObject(parent), dialogParent(widgets.window), view(widgets.view), countRows(widgets.countRows),
      dialogs(fileDialogs), dataBase(new DataBase(QStringLiteral("Log")))
{
    qRegisterMetaType<ErrorDataBase>("ErrorDataBase");
    qRegisterMetaType<QList<EventOfTable>>("QList<EventOfTable>");
    logEvents.setDevices(&devices);

    dataBase->moveToThread(&dataBaseThread);
}

LogTab::~LogTab()
{
    dropModel();
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
    ++modelChanges;
    if (view->model() != nullptr) {
        detachLogView();
    }
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
    dropModel();
    modelLog = model;
    view->setModel(model);
    const QVector<logtable::Column>& columns = logtable::columns();
    for (int column = 0; column < columns.size(); ++column) {
        view->setColumnHidden(column, columns.at(column).width == logtable::hidden);
    }
    view->setStyleSheet(QStringLiteral("selection-background-color: rgb(230,230,230); selection-color: black; "
                                       "border: 1px solid rgb(187,187,187)"));
    view->setSelectionBehavior(QAbstractItemView::SelectRows);
    view->setSelectionMode(QAbstractItemView::SingleSelection);
    view->setEditTriggers(QAbstractItemView::NoEditTriggers);

    QHeaderView* header = view->horizontalHeader();
    header->setStyleSheet(QStringLiteral("QHeaderView::section { background-color : rgb(244,244,244); }"));
    header->setStretchLastSection(true);
    header->setFixedHeight(rowHeight);
    // Headings wrap, which the header takes among the flags of its alignment.
    header->setDefaultAlignment(static_cast<Qt::Alignment>(Qt::AlignCenter + Qt::TextWordWrap));
    // In bold, as the selected row would have them, the headings wrap anew and the numbers don't fit.
    header->setHighlightSections(false);
    view->verticalHeader()->setHighlightSections(false);

    view->verticalHeader()->setDefaultSectionSize(rowHeight);
    view->verticalHeader()->setFixedWidth(40);
    view->verticalHeader()->setDefaultAlignment(Qt::AlignCenter);

    view->resizeColumnsToContents();
    for (int column = 0; column < columns.size(); ++column) {
        if (columns.at(column).width > 0) {
            view->setColumnWidth(column, columns.at(column).width);
        }
    }
}

void LogTab::sl_setStatusLog(int count, bool /*filter*/)
{
    countRows->setText(texts::logRowCount() + QString::number(count));
    attachLogView();
}

void LogTab::detachLogView()
{
    const QAbstractItemModel* shown = view->model();
    if (shown != nullptr) {
        columnWidths.clear();
        columnHidden.clear();
        for (int column = 0; column < shown->columnCount(); ++column) {
            columnWidths.append(view->columnWidth(column));
            columnHidden.append(view->isColumnHidden(column));
        }
    }
    dropModel();
    countRows->clear();
    debugLine(QStringLiteral(" (MainWindow): Model is Reset"));
}

void LogTab::attachLogView()
{
    view->setModel(modelLog);
    const int columns = modelLog ? modelLog->columnCount() : 0;
    if (columnWidths.size() == columns && columnHidden.size() == columns) {
        for (int column = 0; column < columns; ++column) {
            view->setColumnWidth(column, columnWidths.at(column));
            view->setColumnHidden(column, columnHidden.at(column));
        }
    }
    debugLine(QStringLiteral(" (MainWindow): Model is Set"));
}

/// Takes the model from the view so that nothing of the GUI thread stays tied to it: the view itself keeps its former
/// selection models, and those would go on listening.
void LogTab::dropModel()
{
    if (!view) {
        return;
    }
    // Without a view on it the model has forgotten already, and may be the database's to change right now.
    const bool viewed = view->model() != nullptr;
    view->setModel(nullptr);
    const QList<QItemSelectionModel*> selections = view->findChildren<QItemSelectionModel*>();
    for (QItemSelectionModel* selection : selections) {
        if (selection != view->selectionModel()) {
            delete selection;
        }
    }
    if (viewed && modelLog) {
        modelLog->forgetViews();
    }
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
