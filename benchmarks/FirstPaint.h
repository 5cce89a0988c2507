#pragma once

#include <QApplication>
#include <QEvent>
#include <QTimer>
#include <QWidget>

#include <chrono>
#include <cstdio>

/// Ends the process once a window has been painted for the first time, and prints the milliseconds that have passed
/// since the moment in the first argument, a steady clock's count of nanoseconds that the parent process took before it
/// started this one.
class FirstPaint : public QObject
{
public:
    explicit FirstPaint(QWidget* paintedWindow) : QObject(paintedWindow), window(paintedWindow)
    {
        window->installEventFilter(this);
    }

    static qint64 now()
    {
        return std::chrono::steady_clock::now().time_since_epoch().count();
    }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (watched == window && event->type() == QEvent::Paint) {
            window->removeEventFilter(this);
            // After the paint event itself, which this filter sees before the window does.
            QTimer::singleShot(0, window, [] {
                const qint64 started = QCoreApplication::arguments().value(1).toLongLong();
                std::printf("%f\n", double(now() - started) / 1e6);
                std::fflush(stdout);
                QCoreApplication::quit();
            });
        }
        return QObject::eventFilter(watched, event);
    }

private:
    QWidget* window;
};
