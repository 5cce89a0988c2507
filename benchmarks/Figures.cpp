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
