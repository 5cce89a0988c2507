#include "eventlog/DataBase.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <numeric>

#include <QDebug>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSqlError>
#include <QSqlField>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QStringList>
#include <QTime>
#include <QUuid>

#include "texts/texts.h"

namespace
{

const QString& tableName()
{
    static const QString name = QStringLiteral("EventLogTable");
    return name;
}

/// Headings of the columns, in their order in the table.
const QStringList& headings()
{
    static const QStringList list = {
        texts::columnNumber(),  texts::columnSortDateTime(), texts::columnDateInDays(), texts::columnTimeInMinutes(),
        texts::columnClass(),   texts::columnVersion(),      texts::columnType(),       texts::columnCharacteristic(),
        texts::columnAddress(), texts::columnChannel(),      texts::columnCode(),       texts::columnDate(),
        texts::columnTime(),    texts::columnSignal(),       texts::columnNoise(),      texts::columnEvent(),
        texts::columnSource(),  texts::columnDetails(),
    };
    return list;
}

const QStringList& columnNames()
{
    static const QStringList list =
        QStringLiteral("NumberEvent SortDateTime DateInDays TimeInMinute Class Version Type Characteristic "
                       "AddressTerminal NumberChannel CodeEvent Date Time SignalLevel NoiseLevel Event Source "
                       "Information")
            .split(QLatin1Char(' '));
    return list;
}

void logProgress(const QString& text)
{
    qDebug().noquote() << QTime::currentTime().toString(QStringLiteral("hh:mm:ss:zzz")) +
                              QLatin1String(" (Database): ") + text;
}

/// @name The statement is half a megabyte of small pieces, so they are written straight into its characters. Each
/// function returns the place behind what it wrote.
/// @{
QChar* put(QChar* place, QLatin1String text)
{
    return std::transform(text.begin(), text.end(), place, [](char letter) { return QLatin1Char(letter); });
}

QChar* put(QChar* place, const QString& text)
{
    return std::copy(text.begin(), text.end(), place);
}

QChar* put(QChar* place, quint32 number)
{
    char digits[10];
    const std::to_chars_result end = std::to_chars(std::begin(digits), std::end(digits), number);
    return put(place, QLatin1String(std::begin(digits), end.ptr));
}

/// As the text stands: the statement knows no escaping.
QChar* putQuoted(QChar* place, const QString& text)
{
    *place++ = QLatin1Char('\'');
    place = put(place, text);
    *place++ = QLatin1Char('\'');
    return place;
}

QChar* put(QChar* place, const EventOfTable& row)
{
    const QLatin1String comma(", ");
    const quint32 numbers[] = {row.numberEvent,     row.sortDateTime,  row.dateInDays, row.timeInMinute,
                               row.classTerminal,   row.version,       row.type,       row.characteristic,
                               row.addressTerminal, row.numberChannel, row.codeEvent};
    *place++ = QLatin1Char('(');
    for (const quint32 number : numbers) {
        place = put(put(place, number), comma);
    }
    place = put(putQuoted(place, row.date), comma);
    place = put(putQuoted(place, row.time), comma);
    place = put(put(place, quint32(row.signalLevel)), comma);
    place = put(put(place, quint32(row.noiseLevel)), comma);
    place = put(putQuoted(place, row.event), comma);
    place = put(putQuoted(place, row.source), comma);
    place = putQuoted(place, row.information);
    *place++ = QLatin1Char(')');
    return place;
}
/// @}

/// No row is longer, and what is too much costs nothing.
int longestLength(const EventOfTable& row)
{
    constexpr int numbersAndSigns = 256;
    return numbersAndSigns + row.date.size() + row.time.size() + row.event.size() + row.source.size() +
           row.information.size();
}

QString insertStatement(const QList<EventOfTable>& rows)
{
    const QLatin1String head(
        "INSERT INTO EventLogTable ( NumberEvent, SortDateTime, DateInDays, TimeInMinute, Class, Version, Type, "
        "Characteristic, AddressTerminal, NumberChannel, CodeEvent, Date, Time, SignalLevel, NoiseLevel, Event, "
        "Source, Information ) VALUES ");
    const int length = std::accumulate(rows.begin(), rows.end(), head.size(),
                                       [](int sum, const EventOfTable& row) { return sum + longestLength(row); });
    QString statement(length, Qt::Uninitialized);
    QChar* place = put(statement.data(), head);
    for (int i = 0; i < rows.size(); ++i) {
        place = i > 0 ? put(place, QLatin1String(", ")) : place;
        place = put(place, rows.at(i));
    }
    statement.truncate(static_cast<int>(place - statement.constData()));
    return statement;
}

/// A further column is fine if a row can be written without it.
bool isColumnOfLog(int index, const QSqlField& column)
{
    if (index < columnNames().size()) {
        return column.name().compare(columnNames().at(index), Qt::CaseInsensitive) == 0;
    }
    return column.requiredStatus() != QSqlField::Required || !column.defaultValue().isNull();
}

bool hasColumnsOfLog(const QSqlRecord& columns)
{
    bool same = columns.count() >= columnNames().size();
    for (int index = 0; index < columns.count(); ++index) {
        same = same && isColumnOfLog(index, columns.field(index));
    }
    return same;
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
    return true;
}

/// Why the table can't be shown and take the rows of a reading; empty if it can.
QString DataBase::faultOfWorkingFile() const
{
    QSqlQuery check(database);
    if (!check.exec(QStringLiteral("SELECT * FROM EventLogTable"))) {
        return check.lastError().text();
    }
    const bool takesRows = database.tables().contains(tableName(), Qt::CaseInsensitive); // a view gives rows only
    return takesRows && hasColumnsOfLog(database.record(tableName())) ? QString() : QStringLiteral("other columns");
}

void DataBase::makeModel()
{
    model = new SqlModel;
    model->setTable(tableName());
    model->removeColumns(headings().size(), model->columnCount() - headings().size());
    for (int column = 0; column < model->columnCount(); ++column) {
        model->setHeaderData(column, Qt::Horizontal, headings().value(column), Qt::EditRole);
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
    if (!query.exec(QStringLiteral(
            "CREATE TABLE EventLogTable (NumberEvent INTEGER NULL,SortDateTime INTEGER NULL,DateInDays INTEGER NULL,"
            "TimeInMinute INTEGER NULL,Class INTEGER NULL,Version INTEGER NULL,Type INTEGER NULL,Characteristic "
            "INTEGER "
            "NULL,AddressTerminal INTEGER NULL,NumberChannel INTEGER NULL,CodeEvent INTEGER NULL,Date VARCHAR(20) NULL,"
            "Time VARCHAR(20) NULL,SignalLevel INTEGER NULL,NoiseLevel INTEGER NULL,Event TEXT NULL,Source TEXT NULL,"
            "Information TEXT NULL )"))) {
        qDebug().noquote() << QLatin1String("ERROR CREATE TABLE ") + tableName();
        emit sig_ResultConnectDB(ErrorDataBaseCreateTable, nullptr);
        return;
    }
    makeModel();
    model->select();
    emit sig_ResultConnectDB(ErrorDataBaseNone, model);
}

void DataBase::sl_insertIntoTable(const QList<EventOfTable>& data)
{
    logProgress(QStringLiteral("insert data in table started (size = %1)").arg(data.size()));
    if (data.isEmpty()) {
        logProgress(QStringLiteral("ERROR - size data for insert to table = 0!!"));
        emit sig_ResultInsertIntoTable(ErrorDataBaseNoData);
        return;
    }
    // exec() has the driver prepare the statement as it stands; prepare() would first search all of it for
    // placeholders, which costs more than to execute it. The type of the error tells which step has failed.
    QSqlQuery query(database);
    if (!query.exec(insertStatement(data))) {
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
    logProgress(QStringLiteral("delete all data from table started"));
    QSqlQuery query(database);
    if (!query.prepare(QStringLiteral("DELETE FROM EventLogTable"))) {
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
        emit sig_ResultConnectOtherDB(ErrorDataBaseNone, model, otherFileName);
        return;
    }
    qDebug().noquote() << QStringLiteral("ERROR REFRESH TABLE EventLogTable (%1)").arg(fault);
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
    if (model != nullptr) {
        model->setFilter(request);
        fetchAll();
    }
    emit sig_FilterComplete(rowCount(), !request.isEmpty());
}

void DataBase::sl_refreshModel()
{
    if (model != nullptr) {
        model->select();
        model->setFilter(QString());
        fetchAll();
    }
    emit sig_RefreshComplete(rowCount(), false);
}
