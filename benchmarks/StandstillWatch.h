#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

#include <algorithm>

/// Notes the longest time between two turns of the event loop of the thread that creates it.
class StandstillWatch : public QObject
{
public:
    StandstillWatch()
    {
        timer.setTimerType(Qt::PreciseTimer);
        timer.setInterval(1);
        connect(&timer, &QTimer::timeout, this, [this] {
            longest = std::max(longest, double(clock.nsecsElapsed()) / 1e6 - 1);
            clock.restart();
        });
        clock.start();
        timer.start();
    }

    double longest = 0; ///< milliseconds

private:
    QTimer timer;
    QElapsedTimer clock;
};
