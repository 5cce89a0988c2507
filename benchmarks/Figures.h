#pragma once

#include <QString>

#include <functional>
#include <vector>

/// One line of the table: what was measured, its reference, from the same run if it is a time, and the bar.
struct Figure
{
    /// What the ratio has to do with the bar.
    enum Kind
    {
        Reported, ///< nothing, there is none
        AtMost,
        AtLeast,
        Milliseconds, ///< at most so many, on the machine that the bars are from
    };

    QString what;      ///< what was measured
    QString figure;    ///< the figure with its unit
    QString reference; ///< the reference's figure with its unit, and what it is
    double ratio = 0;  ///< the number that the bar is for, as named by ratioName
    QString ratioName; ///< say "wire / measured"
    double bar = 0;
    Kind kind = Reported;
    bool failed = false; ///< what was to be measured went wrong, and the ratio means nothing
    double machine = 1;  ///< how many times as long as the machine of the bars this one takes, in the same minute

    bool reached() const
    {
        if (failed) {
            return false;
        }
        switch (kind) {
        case AtMost:
            return ratio <= bar;
        case AtLeast:
            return ratio >= bar;
        case Milliseconds:
            return ratio <= bar * machine;
        case Reported:
            break;
        }
        return true;
    }
};

/// A time in milliseconds, whose bar goes with the machine.
Figure timeFigure(const QString& what, double time, const QString& reference, double bar);

/// In place of a figure that couldn't be had.
Figure failure(const QString& what, const QString& reason);

/// The benchmarks of the program, by name. Each registers itself with a static Benchmark object in its own file; main()
/// runs them one after the other, some times each, and prints the medians.
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
