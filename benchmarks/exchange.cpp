// What one exchange costs apart from the wire: the time between two requests of a reading through worker and form, less
// that of the same bytes in a loop of write, poll and read on a pseudo-terminal of the same kind.

#include "benchmarks/BareLoop.h"
#include "benchmarks/Figures.h"
#include "benchmarks/Units.h"
#include "link/FormChoiceCoordinator.h"
#include "link/protocol_HUBN_NX_Q.h"
#include "simulator/UnitSimulator.h"

#include <QEventLoop>

#include <chrono>

namespace
{

/// Milliseconds between each request and the one before it, for the requests of outputs and scripts.
std::vector<double> intervals(const QVector<UnitRequest>& requests)
{
    std::vector<double> result;
    for (int i = 1; i < requests.size(); ++i) {
        const auto isReading = [&](int k) {
            return requests.at(k).requestType == 7 || requests.at(k).requestType == 8;
        };
        if (isReading(i) && isReading(i - 1)) {
            result.push_back(
                std::chrono::duration<double, std::milli>(requests.at(i).received - requests.at(i - 1).received)
                    .count());
        }
    }
    return result;
}

std::vector<Figure> run()
{
    UnitSimulator unit(units::installation(0));

    // The program first: its requests are the pattern for the loop, on the port of a second unit just like it, since
    // the program's worker keeps its port to the end of the process.
    QVector<UnitRequest> pattern;
    std::vector<double> program;
    {
        FormChoiceCoordinator form({[&] { return QStringList{unit.portName()}; }, {}});
        QEventLoop end;
        QObject::connect(&form, &FormChoiceCoordinator::sig_sendListTerminalsOnForm, &end, [&] {
            unit.clearRequests();
            form.sl_PreOperationReadConfigAndScript();
        });
        int readings = 0;
        QObject::connect(&form, &FormChoiceCoordinator::sig_sendReadScriptOnForm, &end, [&] {
            if (++readings == 5) {
                end.quit();
            } else {
                form.sl_PreOperationReadConfigAndScript();
            }
        });
        end.exec();
        pattern = unit.requests();
        program = intervals(pattern);
    }

    UnitSimulator second(units::installation(0));
    const bool good = bareLoop::run(second.portName(), pattern);
    const double loop = median(intervals(second.requests()));
    const double more = median(program) - loop;
    const QString what = QStringLiteral("one exchange without a wire, worker and form");
    if (!good) {
        return {failure(what, QStringLiteral("the poll loop broke off"))};
    }
    return {{what, QStringLiteral("%1 ms").arg(median(program), 0, 'f', 3),
             QStringLiteral("%1 ms, a bare poll loop on such a port").arg(loop, 0, 'f', 3), more,
             QStringLiteral("ms more"), 0.08, Figure::Milliseconds}};
}

const Benchmark exchangeBenchmark(QStringLiteral("exchange"), run);

} // namespace
