#pragma once

#include <QElapsedTimer>
#include <QEventLoop>
#include <QTimer>

/// Runs the event loop until a condition holds; false if that takes longer than the busiest machine needs.
///
/// Unlike QTRY_VERIFY it never sleeps outside the event loop, so that exchanges between threads go on at full speed.
template <typename Condition>
bool eventually(const Condition& condition, int limit = 30000)
{
    QElapsedTimer clock;
    QEventLoop loop;
    QTimer poll;
    clock.start();
    QObject::connect(&poll, &QTimer::timeout, &loop, [&] {
        if (condition() || clock.hasExpired(limit)) {
            loop.quit();
        }
    });
    if (!condition()) {
        poll.start(2);
        loop.exec();
    }
    return condition();
}

#define EVENTUALLY(condition) QVERIFY(eventually([&] { return condition; }))
