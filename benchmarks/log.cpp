// A whole log in the window: how soon its rows are there, and what memory it takes above an empty window.

#include "benchmarks/Figures.h"
#include "benchmarks/FirstPaint.h"

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
        return {{QStringLiteral("log of 32,767 records"), QStringLiteral("failed"), {}, 1e9, {}, 1, false}};
    }
    const double visible = numbers.at(0).toDouble();
    const double standstill = numbers.at(1).toDouble();
    const double memory = numbers.at(2).toDouble() / 1024;
    const double emptyMemory = empty.value(1).toDouble() / 1024;
    return {{QStringLiteral("last byte of a 32,767-record log to its rows in view"),
             QStringLiteral("%1 ms").arg(visible, 0, 'f', 0), QStringLiteral("none: the unit has fallen silent"),
             visible, QStringLiteral("ms"), 600, false},
            {QStringLiteral("longest standstill of the event loop meanwhile"),
             QStringLiteral("%1 ms").arg(standstill, 0, 'f', 1), QStringLiteral("the whole reading"), standstill,
             QStringLiteral("ms"), 50, false},
            {QStringLiteral("peak memory with that log"), QStringLiteral("%1 MB").arg(memory, 0, 'f', 1),
             QStringLiteral("%1 MB, an empty window").arg(emptyMemory, 0, 'f', 1), memory - emptyMemory,
             QStringLiteral("MB more"), 80, false}};
}

const Benchmark logBenchmark(QStringLiteral("log"), run);

} // namespace
