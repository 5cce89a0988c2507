#pragma once

#include "simulator/UnitRequest.h"

#include <QFile>
#include <QVector>

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

} // namespace wire
