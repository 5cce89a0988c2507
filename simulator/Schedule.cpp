#include "simulator/Schedule.h"

#include <QSocketNotifier>

#include <thread>

#include <sys/timerfd.h>
#include <unistd.h>

namespace
{
/// A sleeping processor takes about that long to wake up. A line doesn't oversleep, so the rest is waited for awake.
constexpr std::chrono::microseconds wakingTime(150);
} // namespace

Schedule::Schedule(QObject* parent)
    : QObject(parent), timer(timerfd_create(CLOCK_MONOTONIC, TFD_NONBLOCK | TFD_CLOEXEC)),
      notifier(new QSocketNotifier(timer, QSocketNotifier::Read, this))
{
    connect(notifier, &QSocketNotifier::activated, this, &Schedule::run);
}

Schedule::~Schedule()
{
    delete notifier; // before its descriptor is closed
    ::close(timer);
}

void Schedule::at(Clock::time_point moment, Action action)
{
    actions.emplace(moment, std::move(action));
    arm();
}

void Schedule::clear()
{
    actions.clear();
    arm();
}

void Schedule::run()
{
    quint64 expirations = 0;
    if (::read(timer, &expirations, sizeof expirations) < 0) {
        return; // set anew in the meantime
    }
    while (!actions.empty() && actions.begin()->first <= Clock::now() + wakingTime) {
        while (Clock::now() < actions.begin()->first) {
            std::this_thread::yield();
        }
        const Action action = std::move(actions.begin()->second);
        actions.erase(actions.begin());
        action(); // may add and clear
    }
    arm();
}

/// A timer of zero would be switched off, so the past is one nanosecond after the clock's begin.
void Schedule::arm()
{
    itimerspec setting{};
    if (!actions.empty()) {
        using namespace std::chrono;
        const auto sinceBegin = (actions.begin()->first - wakingTime).time_since_epoch();
        const auto whole = duration_cast<seconds>(sinceBegin);
        setting.it_value.tv_sec = whole.count();
        setting.it_value.tv_nsec = std::max<long>(1, duration_cast<nanoseconds>(sinceBegin - whole).count());
    }
    timerfd_settime(timer, TFD_TIMER_ABSTIME, &setting, nullptr);
}
