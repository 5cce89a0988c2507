#include "benchmarks/BareLoop.h"

#include "simulator/UnitSimulator.h"

#include <QFile>
#include <QString>

#include <algorithm>
#include <limits>

#include <fcntl.h>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

namespace bareLoop
{

namespace
{

int openLine(const QString& portName)
{
    const QString path = portName.startsWith(QLatin1Char('/')) ? portName : QStringLiteral("/dev/") + portName;
    return open(QFile::encodeName(path).constData(), O_RDWR | O_NOCTTY | O_CLOEXEC);
}

void setRate(int line, int baudRate)
{
    termios settings = {};
    tcgetattr(line, &settings);
    cfmakeraw(&settings);
    cfsetspeed(&settings, baudRate == 115200 ? B115200 : B57600);
    tcsetattr(line, TCSANOW, &settings);
}

/// Without the escapes, which one answer has more of than another with the same fields: the coordinator's own changes
/// with its clock.
qint64 plainSize(const char* bytes, qint64 size)
{
    constexpr auto escape = char(0xC0);
    return size - std::count(bytes, bytes + size, escape);
}

bool ask(int line, const UnitRequest& request)
{
    constexpr int patience = 120; // ms, the program's
    bool good = write(line, request.frame.constData(), size_t(request.frame.size())) > 0;
    for (qint64 left = plainSize(request.answer.constData(), request.answer.size()); good && left > 0;) {
        pollfd wait = {line, POLLIN, 0};
        char buffer[512];
        good = poll(&wait, 1, patience) == 1;
        const auto got = good ? read(line, buffer, sizeof buffer) : -1;
        good = got > 0;
        left -= good ? plainSize(buffer, got) : 0;
    }
    return good;
}

/// As often as the program does: of a machine that was away for a while the unit keeps a log block back.
bool exchange(int line, const UnitRequest& request)
{
    constexpr int attempts = 4;
    bool good = false;
    for (int attempt = 0; attempt < attempts && !good; ++attempt) {
        tcflush(line, TCIFLUSH);
        good = ask(line, request);
    }
    return good;
}

} // namespace

bool run(const QString& portName, const QVector<UnitRequest>& pattern)
{
    const int line = openLine(portName);
    if (line < 0) {
        return false;
    }
    bool good = true;
    int baudRate = 0;
    for (const UnitRequest& request : pattern) {
        if (request.baudRate != baudRate) {
            baudRate = request.baudRate;
            setRate(line, baudRate);
        }
        good = good && exchange(line, request);
    }
    close(line);
    return good;
}

double timeOver(const UnitSimulator& unit, const QVector<UnitRequest>& pattern)
{
    bool good = false;
    const double time = milliseconds([&] { good = run(unit.portName(), pattern); });
    return good ? time : std::numeric_limits<double>::quiet_NaN();
}

} // namespace bareLoop
