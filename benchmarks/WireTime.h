#pragma once

#include "benchmarks/Figures.h"
#include "simulator/UnitRequest.h"

#include <QFile>
#include <QVector>

#include <algorithm>
#include <iterator>

/// What benchmarks over the pace of the wire have in common.
namespace wire
{

constexpr int baudRate = 57600;

/// Has the system wake its processors at once, as long as it lives. How long one that sleeps takes otherwise is the
/// machine's affair, differs a lot between machines, and would hide what the program adds to each exchange, for which
/// three threads wake up. Root's to ask for; for others nothing changes.
class ProcessorsAwake
{
public:
    ProcessorsAwake()
    {
        const qint32 microseconds = 0;
        if (latency.open(QIODevice::WriteOnly | QIODevice::Unbuffered)) {
            latency.write(reinterpret_cast<const char*>(&microseconds), sizeof microseconds);
        }
    }

private:
    QFile latency{QStringLiteral("/dev/cpu_dma_latency")};
};

/// Milliseconds that the bytes of some requests and their answers take on the wire.
inline double timeOf(const QVector<UnitRequest>& requests)
{
    qint64 bytes = 0;
    for (const UnitRequest& request : requests) {
        bytes += request.frame.size() + request.answer.size();
    }
    return double(bytes) * 10 * 1000 / baudRate;
}

/// Beside the wire's own time, both in milliseconds; a run that sent nothing misses its bar.
inline Figure figure(const QString& what, double onTheWire, double measured, double bar)
{
    return {what,
            QStringLiteral("%1 ms").arg(measured, 0, 'f', 0),
            QStringLiteral("%1 ms, the wire's own time").arg(onTheWire, 0, 'f', 0),
            onTheWire / measured,
            QStringLiteral("wire / measured"),
            bar,
            true};
}

/// The middle one of several runs, each of which takes about a second: a machine that is elsewhere for some
/// milliseconds spoils a single one.
inline Figure middleOf(const std::function<Figure()>& measure)
{
    constexpr int runs = 7;
    std::vector<Figure> figures;
    std::generate_n(std::back_inserter(figures), runs, measure);
    const auto middle = figures.begin() + runs / 2;
    std::nth_element(figures.begin(), middle, figures.end(),
                     [](const Figure& left, const Figure& right) { return left.ratio < right.ratio; });
    return *middle;
}

} // namespace wire
