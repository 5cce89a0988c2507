#include "tool/Interruption.h"

#include <QSocketNotifier>

#include <array>
#include <cerrno>
#include <csignal>

#include <fcntl.h>
#include <unistd.h>

namespace
{

constexpr std::array<int, 3> endingSignals{SIGINT, SIGTERM, SIGHUP};

/// Where a signal's handler writes, and the event loop reads: little else may be done in a handler.
std::array<int, 2> pipeEnds{-1, -1};

extern "C" void noteSignal(int /*number*/)
{
    const int errorOfTheInterrupted = errno;
    const char byte = 0;
    // If the pipe is full the wish is known already.
    [[maybe_unused]] const ssize_t written = ::write(pipeEnds[1], &byte, 1);
    errno = errorOfTheInterrupted;
}

} // namespace

Interruption::Interruption(QObject* parent) : QObject(parent)
{
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
    if (notifier != nullptr) {
        read();
    }
    return wasRequested;
}

void Interruption::read()
{
    std::array<char, 16> bytes{};
    if (::read(pipeEnds[0], bytes.data(), bytes.size()) > 0) {
        wasRequested = true;
        emit requested();
    }
}
