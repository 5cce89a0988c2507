#include "eventlog/DataBase.h"

#include "domain/debugLine.h"
#include "eventlog/LogTable.h"
#include "texts/texts.h"

#include <QDebug>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QThread>
#include <QUuid>

namespace
{

void logProgress(const QString& text)
{
    debugLine(QLatin1String(" (Database): ") + text);
}

/// Where the name itself lies, whatever it may link to.
QString placeOf(const QString& path)
{
    const QFileInfo info(path);
    return QFileInfo(info.absolutePath()).canonicalFilePath() + QLatin1Char('/') + info.fileName();
}

} // namespace

DataBase::DataBase(const QString& baseName, QObject* parent)
    : QObject(parent), fileName(baseName + QLatin1String(".db"))
{
}

DataBase::~DataBase()
{
    delete model;
    if (database.isValid()) {
        const QString connection = database.connectionName();
        database = QSqlDatabase();
        QSqlDatabase::removeDatabase(connection);
    }
}

bool DataBase::openWorkingFile()
{
    database.setDatabaseName(fileName);
    if (!database.open()) {
        return false;
    }
    // A scratch file has no power cut to survive. Without a write-ahead log, which a loaded file may have asked for,
    // the one file is the whole database at any time, so that it can be saved by copying it.
    QSqlQuery setting(database);
    setting.exec(QStringLiteral("PRAGMA synchronous = OFF"));
    setting.exec(QStringLiteral("PRAGMA journal_mode = MEMORY"));
    // Room for the pages of the largest log, which a search would read from the file one by one with every key. It is
    // this connection's alone and not kept in the file.
    setting.exec(QStringLiteral("PRAGMA cache_size = -16384")); // KiB
    return true;
}

/// Why the table can't be shown and take the rows of a reading; empty if it can.
QString DataBase::faultOfWorkingFile() const
{
    QSqlQuery check(database);
    if (!check.exec(QLatin1String("SELECT * FROM ") + logtable::name())) {
        return check.lastError().text();
    }
    const bool takesRows = database.tables().contains(logtable::name(), Qt::CaseInsensitive); // a view gives rows only
    return takesRows && logtable::fits(database.record(logtable::name())) ? QString() : QStringLiteral("other columns");
}

void DataBase::makeModel()
{
    model = new SqlModel;
    model->setTable(logtable::name());
    const QVector<logtable::Column>& columns = logtable::columns();
    model->removeColumns(columns.size(), model->columnCount() - columns.size());
    for (int column = 0; column < columns.size(); ++column) {
        model->setHeaderData(column, Qt::Horizontal, columns.at(column).heading(), Qt::EditRole);
    }
}

void DataBase::fetchAll()
{
    while (model->canFetchMore()) {
        model->fetchMore();
    }
}

int DataBase::rowCount() const
{
    return model != nullptr ? model->rowCount() : 0;
}

void DataBase::sl_connectToDataBase()
{
    Q_ASSERT(QThread::currentThread() == thread());
    delete model;
    model = nullptr;

    QFile::remove(fileName);
    if (!database.isValid()) {
        database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"));
    }
    if (!openWorkingFile()) {
        qDebug("ERROR OPEN DATABASE AFTER CREATE");
        emit sig_ResultConnectDB(ErrorDataBaseOpen, nullptr);
        return;
    }
    QSqlQuery query(database);
    if (!query.exec(logtable::createStatement())) {
        qDebug().noquote() << QLatin1String("ERROR CREATE TABLE ") + logtable::name();
        emit sig_ResultConnectDB(ErrorDataBaseCreateTable, nullptr);
        return;
    }
    makeModel();
    model->select();
    emit sig_ResultConnectDB(ErrorDataBaseNone, model);
}

void DataBase::sl_insertIntoTable(const QList<EventOfTable>& data)
{
    Q_ASSERT(QThread::currentThread() == thread());
    logProgress(QStringLiteral("insert data in table started (size = %1)").arg(data.size()));
    if (data.isEmpty()) {
        logProgress(QStringLiteral("ERROR - size data for insert to table = 0!!"));
        emit sig_ResultInsertIntoTable(ErrorDataBaseNoData);
        return;
    }
    // exec() has the driver prepare the statement as it stands; prepare() would first search all of it for
    // placeholders, which costs more than to execute it. The type of the error tells which step has failed.
    QSqlQuery query(database);
    if (!query.exec(logtable::insertStatement(data))) {
        const QSqlError error = query.lastError();
        const bool prepared = database.isOpen() && error.type() == QSqlError::ConnectionError;
        logProgress(
            QLatin1String(prepared ? "ERROR - Insert data into table : " : "ERROR - Unable to prepare query: ") +
            error.text());
        emit sig_ResultInsertIntoTable(prepared ? ErrorDataBaseExec : ErrorDataBasePrepare);
        return;
    }
    logProgress(QStringLiteral("insert data in table successful ended (size = %1)").arg(query.numRowsAffected()));
    emit sig_ResultInsertIntoTable(ErrorDataBaseNone);
}

void DataBase::sl_deleteDataFromTable()
{
    Q_ASSERT(QThread::currentThread() == thread());
    logProgress(QStringLiteral("delete all data from table started"));
    QSqlQuery query(database);
    if (!query.prepare(QLatin1String("DELETE FROM ") + logtable::name())) {
        logProgress(QLatin1String("ERROR - Unable to prepare query: ") + query.lastError().text());
        emit sig_ResultDeleteFromTable(ErrorDataBasePrepare);
        return;
    }
    if (!query.exec()) {
        logProgress(QLatin1String("ERROR - Delete data from table : ") + query.lastError().text());
        emit sig_ResultDeleteFromTable(ErrorDataBaseExec);
        return;
    }
    logProgress(QStringLiteral("delete all data from table successful ended"));
    emit sig_ResultDeleteFromTable(ErrorDataBaseNone);
}

void DataBase::sl_closeDataBase()
{
    Q_ASSERT(QThread::currentThread() == thread());
    database.close();
    QFile::remove(fileName);
}

bool DataBase::copyIn(const QString& source) const
{
    if (!QFile::copy(source, fileName)) {
        return false;
    }
    // The copy of a write-protected log has to take the next reading all the same.
    return QFile::setPermissions(fileName, QFile::permissions(fileName) | QFile::ReadOwner | QFile::WriteOwner);
}

void DataBase::sl_connectOtherDataBase(const QString& otherFileName)
{
    Q_ASSERT(QThread::currentThread() == thread());
    if (!QFile::exists(otherFileName)) {
        qDebug().noquote() << QLatin1String("DATABASE NOT FOUND ") + otherFileName;
        return;
    }
    emit sig_MessageForForm(texts::resultLogLoadStarted() + QLatin1Char('\n') + otherFileName);
    if (QFile::exists(fileName)) {
        sl_closeDataBase();
    }
    copyIn(otherFileName);
    if (!openWorkingFile()) {
        qDebug().noquote() << QLatin1String("ERROR OPEN DATABASE ") + otherFileName;
        emit sig_ResultConnectOtherDB(ErrorDataBaseOpen, nullptr, otherFileName);
        return;
    }
    const QString fault = faultOfWorkingFile();
    if (fault.isEmpty()) {
        if (model == nullptr) {
            makeModel();
        }
        model->select();
        if (!model->filter().isEmpty()) {
            model->setFilter(QString()); // it was meant for the log before
        }
        emit sig_ResultConnectOtherDB(ErrorDataBaseNone, model, otherFileName);
        return;
    }
    qDebug().noquote() << QStringLiteral("ERROR REFRESH TABLE %1 (%2)").arg(logtable::name(), fault);
    if (QFile::exists(fileName)) {
        sl_closeDataBase();
    }
    sl_connectToDataBase();
    emit sig_MessageForForm(texts::resultLogLoadError() + QLatin1Char('\n') + otherFileName);
    emit sig_RefreshComplete(rowCount(), false);
}

bool DataBase::copyOut(const QString& target) const
{
    if (placeOf(target) == placeOf(fileName)) {
        return false;
    }
    // A disk that fills up must not cost the user the file that was there before.
    const QString whole =
        QFileInfo(target).dir().filePath(QUuid::createUuid().toString(QUuid::Id128) + QLatin1String(".db"));
    if (!QFile::copy(fileName, whole)) {
        return false;
    }
    QFile::remove(target);
    if (QFile::rename(whole, target)) {
        return true;
    }
    QFile::remove(whole);
    return false;
}

void DataBase::sl_SaveDataBase(const QString& target)
{
    Q_ASSERT(QThread::currentThread() == thread());
    if (target.isEmpty()) {
        qDebug("FILE NOT SELECTED");
        return;
    }
    emit sig_MessageForForm(texts::resultLogSaveStarted() + QLatin1Char('\n') + target);
    if (copyOut(target)) {
        emit sig_MessageForForm(texts::resultLogSaveOk().arg(target));
    } else {
        emit sig_MessageForForm(texts::resultLogSaveError() + QLatin1Char('\n') + target);
    }
}

void DataBase::sl_filterModel(const QString& request)
{
    Q_ASSERT(QThread::currentThread() == thread());
    if (model != nullptr) {
        model->setFilter(request);
        fetchAll();
    }
    emit sig_FilterComplete(rowCount(), !request.isEmpty());
}

void DataBase::sl_refreshModel()
{
    Q_ASSERT(QThread::currentThread() == thread());
    if (model != nullptr) {
        model->select();
        model->setFilter(QString());
        fetchAll();
    }
    emit sig_RefreshComplete(rowCount(), false);
}
