// A whole log in the window: how soon its rows are there, and what memory it takes above an empty window.

#include "benchmarks/BareSqlite.h"
#include "benchmarks/Figures.h"
#include "benchmarks/FirstPaint.h"
#include "benchmarks/Units.h"

#include <QCoreApplication>
#include <QProcess>

namespace
{

QString output(const QString& program, const QStringList& arguments)
{
    QProcess process;
    process.start(QCoreApplication::applicationDirPath() + QLatin1Char('/') + program, arguments);
    process.waitForFinished(180000);
    return QString::fromLatin1(process.readAllStandardOutput());
}

std::vector<Figure> run()
{
    const QStringList empty =
        output(QStringLiteral("bench-empty-window"), {QString::number(FirstPaint::now())}).split(QLatin1Char('\n'));
    const QStringList numbers = output(QStringLiteral("bench-log-window"), {}).split(QLatin1Char(' '));
    if (numbers.size() < 3) {
        return {failure(QStringLiteral("log of 32,767 records"), QStringLiteral("it came to no end"))};
    }
    const double visible = numbers.at(0).toDouble();
    const double memory = numbers.at(2).toDouble() / 1024;
    const double emptyMemory = empty.value(1).toDouble() / 1024;
    const QString what = QStringLiteral("last byte of a 32,767-record log to its rows in view");
    const QList<QList<EventOfTable>> batches = units::logBatches();
    qint64 bytes = 0;
    double bareTime = 0;
    bool good = false;
    BareSqlite::onThreadOfItsOwn([&] {
        BareSqlite bare(batches);
        bareTime = milliseconds([&] {
            bare.insert();
            bytes = bare.fetch();
        });
        good = bare.isGood();
    });
    if (!good) {
        return {failure(what, QStringLiteral("a statement of the reference failed"))};
    }
    return {{what, QStringLiteral("%1 ms").arg(visible, 0, 'f', 0),
             QStringLiteral("%1 ms, SQLite alone, inserting and fetching").arg(bareTime, 0, 'f', 0), visible / bareTime,
             QStringLiteral("times"), 2.0, Figure::AtMost},
            timeFigure(QStringLiteral("longest standstill of the event loop in a log of 32,767 records"),
                       numbers.at(1).toDouble(), QStringLiteral("a frame at 60 Hz"), 16),
            {QStringLiteral("peak memory with that log, above an empty window"),
             QStringLiteral("%1 MB").arg(memory - emptyMemory, 0, 'f', 1),
             QStringLiteral("%1 MB, the bytes of its cells").arg(double(bytes) / 1024 / 1024, 0, 'f', 1),
             memory - emptyMemory, QStringLiteral("MB"), 60, Figure::AtMost}};
}

const Benchmark logBenchmark(QStringLiteral("log"), run);

} // namespace
