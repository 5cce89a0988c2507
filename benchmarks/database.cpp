// The event log: decoding, and its way into the table beside SQLite alone.

#include "eventlog/DataBase.h"

#include "benchmarks/BareSqlite.h"
#include "benchmarks/Figures.h"
#include "benchmarks/Units.h"
#include "eventlog/LogEvents.h"
#include "model/Device.h"

namespace
{

constexpr int wholeLog = units::wholeLog;
constexpr int runs = 3; ///< of each side, in turn

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
            Figure::Reported};
}

/// Milliseconds of writing the batches, and of SQLite alone for the same statements.
struct Times
{
    std::vector<double> own;
    std::vector<double> bare;
    bool good = true;
};

Times insertingTimes(const QList<QList<EventOfTable>>& batches)
{
    Times times;
    DataBase dataBase(QStringLiteral("Bench"));
    QObject::connect(&dataBase, &DataBase::sig_ResultInsertIntoTable, &dataBase,
                     [&](ErrorDataBase error) { times.good = times.good && error == ErrorDataBaseNone; });
    for (int i = 0; i < runs; ++i) {
        dataBase.sl_connectToDataBase(); // a new file, as the other side has one
        times.own.push_back(milliseconds([&] {
            for (const QList<EventOfTable>& part : batches) {
                dataBase.sl_insertIntoTable(part);
            }
        }));
        BareSqlite bare(batches);
        times.bare.push_back(milliseconds([&] { bare.insert(); }));
        times.good = times.good && bare.isGood();
    }
    dataBase.sl_closeDataBase();
    return times;
}

Figure inserting()
{
    const QList<QList<EventOfTable>> batches = units::logBatches();
    Times times;
    BareSqlite::onThreadOfItsOwn([&] { times = insertingTimes(batches); });
    const QString what = QStringLiteral("32,767 rows into the database");
    if (!times.good) {
        return failure(what, QStringLiteral("a statement failed"));
    }
    return {what,
            QStringLiteral("%1 ms").arg(median(times.own), 0, 'f', 0),
            QStringLiteral("%1 ms, SQLite alone for the same statements").arg(median(times.bare), 0, 'f', 0),
            median(times.own) / median(times.bare),
            QStringLiteral("times"),
            1.1,
            Figure::AtMost};
}

const Benchmark databaseBenchmark(QStringLiteral("database"), [] {
    return std::vector<Figure>{decoding(), inserting()};
});

} // namespace
