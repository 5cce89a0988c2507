#pragma once

#include <QObject>

#include <chrono>
#include <functional>
#include <map>

class QSocketNotifier;

/// Does things at given moments of the steady clock, on its own thread, in order of time; things of the same moment in
/// the order in which they were added. It keeps to fractions of a millisecond, which a QTimer doesn't, because a byte
/// on a fast line takes no longer. Never early.
class Schedule : public QObject
{
public:
    using Clock = std::chrono::steady_clock;
    using Action = std::function<void()>;

    explicit Schedule(QObject* parent = nullptr);
    ~Schedule() override;

    void at(Clock::time_point moment, Action action);
    /// Forgets all that hasn't been done.
    void clear();

private:
    Q_DISABLE_COPY_MOVE(Schedule)

    void run();
    void arm();

    std::multimap<Clock::time_point, Action> actions;
    int timer = -1;
    QSocketNotifier* notifier = nullptr;
};
