#include "simulator/PseudoTerminal.h"

#include <QMutex>
#include <QSet>
#include <QSocketNotifier>
#include <QVector>

#include <algorithm>
#include <array>
#include <cerrno>

#include <fcntl.h>
#include <stdlib.h> // NOLINT(modernize-deprecated-headers): posix_openpt and its kin are not in <cstdlib>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

namespace
{
struct Rate
{
    speed_t code;
    int bitsPerSecond;
};

constexpr std::array<Rate, 12> rates{{{B300, 300},
                                      {B600, 600},
                                      {B1200, 1200},
                                      {B2400, 2400},
                                      {B4800, 4800},
                                      {B9600, 9600},
                                      {B19200, 19200},
                                      {B38400, 38400},
                                      {B57600, 57600},
                                      {B115200, 115200},
                                      {B230400, 230400},
                                      {B460800, 460800}}};

/// The path of the near end; empty if there is none.
QByteArray nearEndOf(int farEnd)
{
    std::array<char, 128> path{};
    return ptsname_r(farEnd, path.data(), path.size()) == 0 ? QByteArray(path.data()) : QByteArray();
}

/// The far end of a pair whose name this process has not had before; below 0 if there is none. The system would give
/// the name of a pair that has just gone to the next one at once, and who is still letting go of the former, down to
/// the lock file of its port, would keep the new one from being opened.
int openNewName()
{
    static QMutex mutex;
    static QSet<QByteArray> formerNames;
    constexpr int pairsAtOnce = 500; // there are more descriptors than that; beyond it any name will do
    const QMutexLocker locker(&mutex);
    QVector<int> formerPairs;
    int farEnd = posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    while (farEnd >= 0 && formerNames.contains(nearEndOf(farEnd)) && formerPairs.size() < pairsAtOnce) {
        formerPairs.append(farEnd);
        farEnd = posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    }
    const int reason = errno;
    for (const int pair : std::as_const(formerPairs)) {
        ::close(pair);
    }
    errno = reason;
    if (farEnd >= 0) {
        formerNames.insert(nearEndOf(farEnd));
    }
    return farEnd;
}

} // namespace

PseudoTerminal::PseudoTerminal(QObject* parent) : QObject(parent)
{
    farEnd = openNewName();
    if (farEnd < 0) {
        fail("posix_openpt");
        return;
    }
    if (grantpt(farEnd) != 0 || unlockpt(farEnd) != 0) {
        fail("unlockpt");
        return;
    }
    nearEndPath = nearEndOf(farEnd);
    if (!openNearEnd()) {
        fail("open");
        return;
    }
    termios settings{};
    tcgetattr(nearEnd, &settings);
    cfmakeraw(&settings);
    tcsetattr(nearEnd, TCSANOW, &settings);

    pluggedIn = true;
    notifier = new QSocketNotifier(farEnd, QSocketNotifier::Read, this);
    connect(notifier, &QSocketNotifier::activated, this, &PseudoTerminal::readyRead);
}

PseudoTerminal::~PseudoTerminal()
{
    delete notifier; // before its descriptor is closed
    if (nearEnd >= 0) {
        ::close(nearEnd);
    }
    if (farEnd >= 0) {
        ::close(farEnd);
    }
}

bool PseudoTerminal::isValid() const
{
    return notifier != nullptr;
}

QString PseudoTerminal::errorString() const
{
    return error;
}

QString PseudoTerminal::portName() const
{
    return isValid() ? QString::fromLocal8Bit(nearEndPath).mid(int(qstrlen("/dev/"))) : QString();
}

QByteArray PseudoTerminal::read()
{
    QByteArray bytes;
    if (!isValid()) {
        return bytes;
    }
    std::array<char, 4096> block{};
    ssize_t count = 0;
    while ((count = ::read(farEnd, block.data(), block.size())) > 0) {
        bytes.append(block.data(), int(count));
    }
    return pluggedIn ? bytes : QByteArray();
}

bool PseudoTerminal::hasInput() const
{
    int waiting = 0;
    return isValid() && pluggedIn && ioctl(farEnd, FIONREAD, &waiting) == 0 && waiting > 0;
}

int PseudoTerminal::write(const QByteArray& bytes)
{
    if (!isValid() || !pluggedIn) {
        return 0;
    }
    int taken = 0;
    while (taken < bytes.size()) {
        const ssize_t count = ::write(farEnd, bytes.constData() + taken, size_t(bytes.size() - taken));
        if (count <= 0 && errno != EINTR) {
            break;
        }
        taken += int(std::max<ssize_t>(count, 0));
    }
    return taken;
}

int PseudoTerminal::baudRate() const
{
    termios settings{};
    if (!isValid() || tcgetattr(farEnd, &settings) != 0) {
        return 0;
    }
    const speed_t code = cfgetospeed(&settings);
    const auto* const rate =
        std::find_if(rates.begin(), rates.end(), [code](const Rate& candidate) { return candidate.code == code; });
    return rate == rates.end() ? 0 : rate->bitsPerSecond;
}

bool PseudoTerminal::isPluggedIn() const
{
    return pluggedIn;
}

/// Closing the far end would lose the name: the system hands out the next free number. A pair that is locked refuses to
/// be opened, and an attempt all the same marks the near end as failing, so that its users get EIO until a later
/// attempt succeeds. The byte wakes a reader that waits, so that it meets the error at once.
void PseudoTerminal::unplug()
{
    if (!isValid() || !pluggedIn) {
        return;
    }
    tcflush(nearEnd, TCIOFLUSH);
    setLocked(true);
    ioctl(nearEnd, TIOCNXCL); // exclusive use, as QSerialPort asks for it, would refuse the attempt too early
    const int refused = ::open(nearEndPath.constData(), O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (refused >= 0) {
        ::close(refused);
    }
    write(QByteArray(1, '\0'));
    pluggedIn = false;
    notifier->setEnabled(false);
}

bool PseudoTerminal::plugIn()
{
    if (!isValid()) {
        return false;
    }
    if (pluggedIn) {
        return true;
    }
    setLocked(false);
    ioctl(nearEnd, TIOCNXCL);
    const int previous = nearEnd;
    if (!openNearEnd()) {
        nearEnd = previous;
        return false;
    }
    ::close(previous);
    tcflush(nearEnd, TCIOFLUSH);
    read();
    pluggedIn = true;
    notifier->setEnabled(true);
    return true;
}

void PseudoTerminal::fail(const char* operation)
{
    error = QStringLiteral("%1: %2").arg(QString::fromLatin1(operation), qt_error_string(errno));
}

bool PseudoTerminal::openNearEnd()
{
    nearEnd = ::open(nearEndPath.constData(), O_RDWR | O_NOCTTY | O_CLOEXEC);
    return nearEnd >= 0;
}

void PseudoTerminal::setLocked(bool locked)
{
    const int value = locked ? 1 : 0;
    ioctl(farEnd, TIOCSPTLCK, &value);
}
