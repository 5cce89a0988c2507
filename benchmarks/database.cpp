// The event log: decoding, and its way into the table against the import of the same rows by the sqlite3 shell.

#include "eventlog/DataBase.h"

#include "benchmarks/Figures.h"
#include "benchmarks/Units.h"
#include "eventlog/LogEvents.h"
#include "model/Device.h"

#include <QFile>
#include <QProcess>
#include <QThread>

#include <memory>
#include <utility>

namespace
{

constexpr int wholeLog = 32767;
constexpr int batch = 2000;
constexpr int runs = 7; ///< of each side: a busy machine makes single ones twice as long

/// The rows of a whole log, numbered.
QList<EventOfTable> wholeLogRows()
{
    const Device device([](const QString&, const QString&) {});
    LogEvents events;
    events.setDevices(&device);
    events.decodeEvents(units::logRecords(wholeLog));
    events.numberEvents();
    return events.takeEvents(wholeLog);
}

Figure decoding()
{
    const Device device([](const QString&, const QString&) {});
    const QByteArrayList records = units::logRecords(wholeLog);
    std::vector<double> times;
    times.reserve(5);
    double copying = 0;
    for (int i = 0; i < 5; ++i) {
        times.push_back(milliseconds([&] {
            LogEvents events;
            events.setDevices(&device);
            events.decodeEvents(records);
        }));
        copying = milliseconds([&] {
            QByteArray copy;
            for (const QByteArray& record : records) {
                copy.append(record.constData(), record.size());
            }
        });
    }
    const double time = median(times);
    return {QStringLiteral("decoding of 32,767 records"),
            QStringLiteral("%1 rec/s").arg(wholeLog * 1000.0 / time, 0, 'f', 0),
            QStringLiteral("%1 rec/s, copying them").arg(wholeLog * 1000.0 / copying, 0, 'f', 0),
            time,
            QStringLiteral("ms in all"),
            0,
            false};
}

/// Runs commands of the sqlite3 shell on a database file.
bool shell(const QString& path, const QStringList& commands)
{
    return QProcess::execute(QStringLiteral("sqlite3"), QStringList(path) + commands) == 0;
}

/// Times of writing the rows in batches. For the shell, "rows.db" has them all and "shell.db" has an empty table.
std::vector<double> insertingTimes(const QList<EventOfTable>& rows, bool& good)
{
    DataBase dataBase(QStringLiteral("Bench"));
    dataBase.sl_connectToDataBase();
    std::vector<double> times;
    times.reserve(runs);
    QObject::connect(&dataBase, &DataBase::sig_ResultInsertIntoTable, &dataBase,
                     [&](ErrorDataBase error) { good = good && error == ErrorDataBaseNone; });
    QList<QList<EventOfTable>> batches;
    for (int first = 0; first < rows.size(); first += batch) {
        batches.append(rows.mid(first, batch));
    }
    for (int i = 0; i < runs; ++i) {
        dataBase.sl_deleteDataFromTable();
        times.push_back(milliseconds([&] {
            for (const QList<EventOfTable>& part : std::as_const(batches)) {
                dataBase.sl_insertIntoTable(part);
            }
        }));
    }
    dataBase.sl_SaveDataBase(QStringLiteral("rows.db"));
    dataBase.sl_deleteDataFromTable();
    dataBase.sl_SaveDataBase(QStringLiteral("shell.db"));
    dataBase.sl_closeDataBase();
    return times;
}

Figure inserting()
{
    const QList<EventOfTable> rows = wholeLogRows();
    std::vector<double> own;
    bool good = true;
    // On a thread of its own, as in the program: SQLite allocates for every value of a statement, and a heap of its own
    // isn't in pieces from the decoding before.
    const std::unique_ptr<QThread> worker(QThread::create([&] { own = insertingTimes(rows, good); }));
    worker->start();
    worker->wait();

    const QString csv = QStringLiteral(".mode csv");
    good = good && shell(QStringLiteral("rows.db"),
                         {csv, QStringLiteral(".once rows.csv"), QStringLiteral("SELECT * FROM EventLogTable")});
    std::vector<double> imports;
    imports.reserve(runs);
    for (int i = 0; i < runs; ++i) {
        const QString fresh = QStringLiteral("shell%1.db").arg(i);
        good = good && QFile::copy(QStringLiteral("shell.db"), fresh);
        imports.push_back(milliseconds([&] {
            good = good && shell(fresh, {csv, QStringLiteral(".import rows.csv EventLogTable")});
        }));
    }
    return {QStringLiteral("32,767 rows into the database"),
            QStringLiteral("%1 ms").arg(median(own), 0, 'f', 0),
            QStringLiteral("%1 ms, .import of the sqlite3 shell").arg(median(imports), 0, 'f', 0),
            good ? median(own) / median(imports) : 1e9,
            QStringLiteral("times"),
            1.3,
            false};
}

const Benchmark databaseBenchmark(QStringLiteral("database"), [] {
    return std::vector<Figure>{decoding(), inserting()};
});

} // namespace
