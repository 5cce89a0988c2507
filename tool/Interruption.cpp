#include "tool/Interruption.h"

#include <QSocketNotifier>

#include <array>
#include <cerrno>
#include <csignal>

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

namespace
{

constexpr std::array<int, 3> endingSignals{SIGINT, SIGTERM, SIGHUP};

/// Where a signal's handler writes, and the event loop reads: little else may be done in a handler.
std::array<int, 2> pipeEnds{-1, -1};

/// That of all living ones which was first.
Interruption* outermost = nullptr;

extern "C" void noteSignal(int /*number*/)
{
    const int errorOfTheInterrupted = errno;
    const char byte = 0;
    // If the pipe is full the wish is known already.
    [[maybe_unused]] const ssize_t written = ::write(pipeEnds[1], &byte, 1);
    errno = errorOfTheInterrupted;
}

} // namespace

Interruption::Interruption(QObject* parent) : QObject(parent), outer(outermost)
{
    if (outer != nullptr) {
        connect(outer, &Interruption::requested, this, &Interruption::requested);
        return;
    }
    outermost = this;
    if (::pipe2(pipeEnds.data(), O_NONBLOCK | O_CLOEXEC) != 0) {
        return; // the signals keep their usual effect
    }
    notifier = new QSocketNotifier(pipeEnds[0], QSocketNotifier::Read, this);
    connect(notifier, &QSocketNotifier::activated, this, &Interruption::read);
    for (const int number : endingSignals) {
        struct sigaction action = {};
        action.sa_handler = noteSignal;
        // Without SA_RESTART: a question that waits for somebody's answer ends.
        sigaction(number, &action, nullptr);
    }
}

Interruption::~Interruption()
{
    if (outermost == this) {
        outermost = nullptr;
    }
    if (notifier == nullptr) {
        return;
    }
    for (const int number : endingSignals) {
        std::signal(number, SIG_DFL);
    }
    delete notifier; // before its descriptor is closed
    for (int& end : pipeEnds) {
        ::close(end);
        end = -1;
    }
}

bool Interruption::isRequested()
{
    if (outer != nullptr) {
        return outer->isRequested();
    }
    if (notifier != nullptr) {
        read();
    }
    return wasRequested;
}

bool Interruption::waitForBytes(int descriptor)
{
    // A descriptor below 0 is left out.
    std::array<pollfd, 2> waited{{{descriptor, POLLIN, 0}, {pipeEnds.front(), POLLIN, 0}}};
    while (outermost == nullptr || !outermost->isRequested()) {
        const int ready = ::poll(waited.data(), waited.size(), -1);
        if (ready > 0 && waited.front().revents != 0) {
            return true;
        }
        if (ready < 0 && errno != EINTR) {
            return true; // so that reading tells what is wrong
        }
    }
    return false;
}

void Interruption::read()
{
    std::array<char, 16> bytes{};
    if (::read(pipeEnds[0], bytes.data(), bytes.size()) > 0) {
        wasRequested = true;
        emit requested();
    }
}
