#include "benchmarks/Figures.h"
#include "benchmarks/MachineFactor.h"
#include "widgets/Look.h"
#include "widgets/scaledApplication.h"

#include <QDir>
#include <QStyleFactory>
#include <QTemporaryDir>

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <utility>

namespace
{

void printLine(const QString& what, const QString& figure, const QString& reference, const QString& ratio,
               const QString& bar, const QString& verdict)
{
    std::printf("%s  %s  %s  %s  %s  %s\n", qPrintable(what.leftJustified(66)), qPrintable(figure.rightJustified(14)),
                qPrintable(reference.leftJustified(44)), qPrintable(ratio.rightJustified(28)),
                qPrintable(bar.rightJustified(12)), qPrintable(verdict));
    std::fflush(stdout);
}

QString barOf(const Figure& figure)
{
    switch (figure.kind) {
    case Figure::AtMost:
        return QStringLiteral("<= %1").arg(figure.bar);
    case Figure::AtLeast:
        return QStringLiteral(">= %1").arg(figure.bar);
    case Figure::Milliseconds:
        return QStringLiteral("<= %1 x %2").arg(figure.bar).arg(figure.machine, 0, 'f', 2);
    case Figure::Reported:
        break;
    }
    return {};
}

void print(const Figure& figure)
{
    const QString verdict = figure.reached() ? QStringLiteral("ok") : QStringLiteral("MISSED");
    printLine(figure.what, figure.figure, figure.reference,
              QStringLiteral("%1 %2").arg(figure.ratioName).arg(figure.ratio, 0, 'f', 3), barOf(figure),
              figure.kind == Figure::Reported && figure.reached() ? QString() : verdict);
}

/// Of each figure one that failed, or the middle one of several runs, with the reference and the machine's factor of
/// that very run.
std::vector<Figure> middlesOf(const Benchmark& benchmark, int repetitions)
{
    std::vector<std::vector<Figure>> runsOfFigure;
    for (int i = 0; i < repetitions; ++i) {
        const double before = machineFactor();
        std::vector<Figure> figures = benchmark.run();
        const double machine = (before + machineFactor()) / 2;
        runsOfFigure.resize(std::max(runsOfFigure.size(), figures.size()));
        for (std::size_t figure = 0; figure < figures.size(); ++figure) {
            figures[figure].machine = machine;
            runsOfFigure[figure].push_back(std::move(figures[figure]));
        }
    }
    const auto measured = [](const Figure& figure) {
        return figure.kind == Figure::Milliseconds ? figure.ratio / figure.machine : figure.ratio;
    };
    std::vector<Figure> middles;
    for (std::vector<Figure>& runs : runsOfFigure) {
        const auto failed =
            std::find_if(runs.cbegin(), runs.cend(), [](const Figure& figure) { return figure.failed; });
        if (failed != runs.cend()) {
            middles.push_back(*failed);
            continue;
        }
        const auto middle = runs.begin() + std::ptrdiff_t(runs.size() / 2);
        std::nth_element(runs.begin(), middle, runs.end(),
                         [&](const Figure& a, const Figure& b) { return measured(a) < measured(b); });
        middles.push_back(*middle);
    }
    return middles;
}

} // namespace

/// Runs all benchmarks, or those whose names begin with an argument, five times or BENCH_RUNS times, and prints their
/// table of medians. Exits with 1 if a bar was missed. The debug stream is silent, as it is for an engineer who starts
/// the program from the desktop.
int main(int argc, char* argv[])
{
    const auto application = scaledApplication(argc, argv);
    // As the main window sets them: the forms are measured in the program's look.
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    QApplication::setFont(look::applicationFont());
    const QStringList wanted = QCoreApplication::arguments().mid(1);
    const int repetitions = qMax(1, qEnvironmentVariable("BENCH_RUNS", QStringLiteral("5")).toInt());

    // The benchmarks write their files where nothing else lies.
    const QTemporaryDir directory;
    if (!directory.isValid() || !QDir::setCurrent(directory.path())) {
        std::fprintf(stderr, "no temporary directory\n");
        return 1;
    }
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});

    auto& benchmarks = Benchmark::all();
    std::sort(benchmarks.begin(), benchmarks.end(),
              [](const Benchmark& a, const Benchmark& b) { return a.name < b.name; });
    printLine(QStringLiteral("what"), QStringLiteral("figure"), QStringLiteral("reference"), QStringLiteral("ratio"),
              QStringLiteral("bar"), QString());
    bool allReached = true;
    for (const Benchmark& benchmark : benchmarks) {
        const bool run = wanted.isEmpty() || std::any_of(wanted.cbegin(), wanted.cend(), [&](const QString& begin) {
                             return benchmark.name.startsWith(begin);
                         });
        if (!run) {
            continue;
        }
        const std::vector<Figure> figures = middlesOf(benchmark, repetitions);
        for (const Figure& figure : figures) {
            print(figure);
            allReached = allReached && figure.reached();
        }
    }
    return allReached ? 0 : 1;
}
