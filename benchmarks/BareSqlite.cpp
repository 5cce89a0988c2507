#include "benchmarks/BareSqlite.h"

#include "eventlog/LogTable.h"

#include <QFile>
#include <QString>
#include <QThread>

#include <initializer_list>
#include <memory>
#include <utility>

#include <sqlite3.h>

namespace
{

constexpr const char* fileName = "bare.db";

} // namespace

void BareSqlite::onThreadOfItsOwn(const std::function<void()>& call)
{
    const std::unique_ptr<QThread> worker(QThread::create(call));
    worker->start();
    worker->wait();
}

BareSqlite::BareSqlite(const QList<QList<EventOfTable>>& batches)
{
    QFile::remove(QLatin1String(fileName));
    good = sqlite3_open(fileName, &database) == SQLITE_OK;
    for (const char* setting :
         {"PRAGMA synchronous = OFF", "PRAGMA journal_mode = MEMORY", "PRAGMA cache_size = -16384"}) {
        execute(setting);
    }
    execute(logtable::createStatement().toUtf8());
    for (const QList<EventOfTable>& batch : batches) {
        inserts.append(logtable::insertStatement(batch).toUtf8());
    }
}

BareSqlite::~BareSqlite()
{
    sqlite3_close(database);
}

void BareSqlite::insert()
{
    for (const QByteArray& statement : std::as_const(inserts)) {
        execute(statement);
    }
}

qint64 BareSqlite::fetch()
{
    const QByteArray statement = "SELECT * FROM " + logtable::name().toUtf8();
    sqlite3_stmt* rows = nullptr;
    good = good && sqlite3_prepare_v2(database, statement.constData(), statement.size(), &rows, nullptr) == SQLITE_OK;
    qint64 bytes = 0;
    int state = SQLITE_ROW;
    while (good && (state = sqlite3_step(rows)) == SQLITE_ROW) {
        for (int column = 0; column < sqlite3_column_count(rows); ++column) {
            const QString text(static_cast<const QChar*>(sqlite3_column_text16(rows, column)),
                               sqlite3_column_bytes16(rows, column) / int(sizeof(QChar)));
            bytes += text.size() * qint64(sizeof(QChar));
        }
    }
    good = good && state == SQLITE_DONE;
    sqlite3_finalize(rows);
    return bytes;
}

void BareSqlite::execute(const QByteArray& statement)
{
    sqlite3_stmt* prepared = nullptr;
    good =
        good && sqlite3_prepare_v2(database, statement.constData(), statement.size(), &prepared, nullptr) == SQLITE_OK;
    int state = SQLITE_ROW;
    while (good && state == SQLITE_ROW) {
        state = sqlite3_step(prepared);
    }
    good = good && state == SQLITE_DONE;
    sqlite3_finalize(prepared);
}
