#pragma once

#include <QByteArray>
#include <QFile>

/// The most memory that this program ever had in use, in KiB; 0 if the system doesn't tell. Not what getrusage() says:
/// that begins with what the process that started it had.
inline qint64 peakMemory()
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly)) {
        return 0;
    }
    const QByteArray text = status.readAll();
    const QByteArray name = "VmHWM:";
    const int begin = text.indexOf(name) + name.size();
    return text.mid(begin, text.indexOf("kB", begin) - begin).trimmed().toLongLong();
}
