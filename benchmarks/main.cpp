#include "benchmarks/Figures.h"
#include "widgets/Look.h"
#include "widgets/scaledApplication.h"

#include <QDir>
#include <QStyleFactory>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>

namespace
{

void printLine(const QString& what, const QString& figure, const QString& reference, const QString& ratio,
               const QString& bar, const QString& verdict)
{
    std::printf("%s  %s  %s  %s  %s  %s\n", qPrintable(what.leftJustified(58)), qPrintable(figure.rightJustified(14)),
                qPrintable(reference.leftJustified(44)), qPrintable(ratio.rightJustified(28)),
                qPrintable(bar.rightJustified(8)), qPrintable(verdict));
    std::fflush(stdout);
}

void print(const Figure& figure)
{
    const QString bar = figure.bar == 0
                            ? QString()
                            : (figure.atLeast ? QStringLiteral(">= %1") : QStringLiteral("<= %1")).arg(figure.bar);
    printLine(figure.what, figure.figure, figure.reference,
              QStringLiteral("%1 %2").arg(figure.ratioName).arg(figure.ratio, 0, 'f', 3), bar,
              figure.bar == 0 ? QString() : (figure.reached() ? QStringLiteral("ok") : QStringLiteral("MISSED")));
}

} // namespace

/// Runs all benchmarks, or those whose names begin with an argument, and prints their table. Exits with 1 if a bar was
/// missed. The debug stream is silent, as it is for an engineer who starts the program from the desktop.
int main(int argc, char* argv[])
{
    const auto application = scaledApplication(argc, argv);
    // As the main window sets them: the forms are measured in the program's look.
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    QApplication::setFont(look::applicationFont());
    QStringList wanted = QCoreApplication::arguments().mid(1);

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
        const std::vector<Figure> figures = benchmark.run();
        for (const Figure& figure : figures) {
            print(figure);
            allReached = allReached && figure.reached();
        }
    }
    return allReached ? 0 : 1;
}
