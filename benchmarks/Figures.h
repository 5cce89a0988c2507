#pragma once

#include <QString>

#include <functional>
#include <vector>

/// One line of the table: what was measured, its reference from the same run, and the bar.
struct Figure
{
    QString what;         ///< what was measured
    QString figure;       ///< the figure with its unit
    QString reference;    ///< the reference's figure with its unit, and what it is
    double ratio = 0;     ///< the number that the bar is for, as named by ratioName
    QString ratioName;    ///< say "wire / measured"
    double bar = 0;       ///< the bar; 0 for a figure that is only reported
    bool atLeast = false; ///< the ratio has to reach the bar rather than stay within it

    bool reached() const
    {
        return bar == 0 || (atLeast ? ratio >= bar : ratio <= bar);
    }
};

/// The benchmarks of the program, by name. Each registers itself with a static Benchmark object in its own file; main()
/// runs them one after the other and prints their figures as they come.
struct Benchmark
{
    using Run = std::function<std::vector<Figure>()>;

    Benchmark(QString benchmarkName, Run benchmarkRun);

    QString name;
    Run run;

    static std::vector<Benchmark>& all();
};

/// The median of some measured values; 0 for none.
double median(std::vector<double> values);

/// Milliseconds that a call takes.
double milliseconds(const std::function<void()>& call);
