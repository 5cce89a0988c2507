// From the start of the process to the first paint of its window, against an empty window of the same style.

#include "benchmarks/Figures.h"
#include "benchmarks/FirstPaint.h"

#include <QCoreApplication>
#include <QProcess>

namespace
{

constexpr int runs = 5;

/// Milliseconds to the first paint of the program that stands beside this one; the median of some runs.
double firstPaint(const QString& program)
{
    std::vector<double> times;
    for (int i = 0; i < runs; ++i) {
        QProcess process;
        process.start(QCoreApplication::applicationDirPath() + QLatin1Char('/') + program,
                      {QString::number(FirstPaint::now())});
        process.waitForFinished();
        times.push_back(process.readAllStandardOutput().split('\n').value(0).toDouble());
    }
    return median(times);
}

std::vector<Figure> run()
{
    const double empty = firstPaint(QStringLiteral("bench-empty-window"));
    const double window = firstPaint(QStringLiteral("bench-main-window"));
    const QString what = QStringLiteral("process start to first paint");
    if (empty <= 0 || window <= 0) {
        return {failure(what, QStringLiteral("a window wasn't painted"))};
    }
    return {{what, QStringLiteral("%1 ms").arg(window, 0, 'f', 0),
             QStringLiteral("%1 ms, an empty QMainWindow").arg(empty, 0, 'f', 0), window / empty,
             QStringLiteral("times"), 2.5, Figure::AtMost}};
}

const Benchmark startupBenchmark(QStringLiteral("startup"), run);

} // namespace
