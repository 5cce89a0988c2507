// What one exchange costs apart from the wire: the time between two requests of a reading through worker and form, less
// that of the same bytes in a loop of write, poll and read on a pseudo-terminal of the same kind.

#include "benchmarks/Figures.h"
#include "benchmarks/Units.h"
#include "link/FormChoiceCoordinator.h"
#include "link/protocol_HUBN_NX_Q.h"
#include "simulator/UnitSimulator.h"

#include <QEventLoop>
#include <QFile>

#include <chrono>

#include <fcntl.h>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

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

/// Sends each request and waits for as many bytes as its answer has. Returns false if the line broke.
bool pollLoop(const QString& portName, const QVector<UnitRequest>& pattern)
{
    const int line =
        open(QFile::encodeName(portName.startsWith(QLatin1Char('/')) ? portName : QStringLiteral("/dev/") + portName)
                 .constData(),
             O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (line < 0) {
        return false;
    }
    termios settings = {};
    tcgetattr(line, &settings);
    cfmakeraw(&settings);
    cfsetspeed(&settings, B57600);
    tcsetattr(line, TCSANOW, &settings);

    bool good = true;
    for (const UnitRequest& request : pattern) {
        good = good && write(line, request.frame.constData(), size_t(request.frame.size())) > 0;
        for (qint64 left = request.answer.size(); good && left > 0;) {
            pollfd wait = {line, POLLIN, 0};
            char buffer[512];
            good = poll(&wait, 1, 1000) == 1;
            const auto got = good ? read(line, buffer, sizeof buffer) : -1;
            good = got > 0;
            left -= got;
        }
    }
    close(line);
    return good;
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
    const bool good = pollLoop(second.portName(), pattern);
    const double loop = median(intervals(second.requests()));
    const double more = median(program) - loop;
    return {{QStringLiteral("one exchange without a wire, worker and form"),
             QStringLiteral("%1 ms").arg(median(program), 0, 'f', 3),
             good ? QStringLiteral("%1 ms, a bare poll loop on such a port").arg(loop, 0, 'f', 3)
                  : QStringLiteral("the poll loop failed"),
             good ? more : 1e9, QStringLiteral("ms more"), 0.15, false}};
}

const Benchmark exchangeBenchmark(QStringLiteral("exchange"), run);

} // namespace
