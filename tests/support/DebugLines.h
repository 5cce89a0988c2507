#pragma once

#include <QMutex>
#include <QMutexLocker>
#include <QString>
#include <QStringList>

/// Collects the lines of Qt's debug stream, of all threads, for as long as it lives. One at a time.
class DebugLines
{
public:
    DebugLines()
    {
        const QMutexLocker locker(&mutex());
        instance() = this;
        previous = qInstallMessageHandler(&DebugLines::handle);
    }

    ~DebugLines()
    {
        qInstallMessageHandler(previous);
        // Another thread may be in the middle of a line.
        const QMutexLocker locker(&mutex());
        instance() = nullptr;
    }

    Q_DISABLE_COPY_MOVE(DebugLines)

    QStringList lines() const
    {
        const QMutexLocker locker(&mutex());
        QStringList copy = collected;
        copy.detach(); // while locked: other threads write on into what nobody shares any more
        return copy;
    }

    /// The lines that contain a text.
    QStringList linesWith(const QString& text) const
    {
        return lines().filter(text);
    }

    void clear()
    {
        const QMutexLocker locker(&mutex());
        collected.clear();
    }

private:
    static DebugLines*& instance()
    {
        static DebugLines* current = nullptr;
        return current;
    }

    static QMutex& mutex()
    {
        static QMutex guard;
        return guard;
    }

    static void handle(QtMsgType, const QMessageLogContext&, const QString& line)
    {
        const QMutexLocker locker(&mutex());
        if (instance() != nullptr) {
            instance()->collected.append(line);
        }
    }

    QStringList collected;
    QtMessageHandler previous = nullptr;
};
