#include "benchmarks/Figures.h"

#include <QElapsedTimer>

#include <algorithm>
#include <utility>

Benchmark::Benchmark(QString benchmarkName, Run benchmarkRun)
    : name(std::move(benchmarkName)), run(std::move(benchmarkRun))
{
    all().push_back(*this);
}

std::vector<Benchmark>& Benchmark::all()
{
    static std::vector<Benchmark> benchmarks;
    return benchmarks;
}

Figure timeFigure(const QString& what, double time, const QString& reference, double bar)
{
    return {what,
            QStringLiteral("%1 ms").arg(time, 0, 'f', time < 1 ? 3 : 1),
            reference,
            time,
            QStringLiteral("ms"),
            bar,
            Figure::Milliseconds};
}

Figure failure(const QString& what, const QString& reason)
{
    Figure figure;
    figure.what = what;
    figure.figure = QStringLiteral("failed");
    figure.reference = reason;
    figure.failed = true;
    return figure;
}

double median(std::vector<double> values)
{
    if (values.empty()) {
        return 0;
    }
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

double milliseconds(const std::function<void()>& call)
{
    QElapsedTimer timer;
    timer.start();
    call();
    return double(timer.nsecsElapsed()) / 1e6;
}
