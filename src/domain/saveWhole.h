#pragma once

#include <QByteArray>
#include <QSaveFile>
#include <QString>

/// Writes a file whole or not at all: one of that name stays as it was if it can't be written. Returns what went wrong,
/// nothing if all went well.
inline QString saveWhole(const QByteArray& content, const QString& fileName)
{
    QSaveFile file(fileName);
    // Without the flush, commit() would put a small file in its place whose bytes found no room: it writes them out,
    // but doesn't look at what came of it.
    const bool written =
        file.open(QIODevice::WriteOnly) && file.write(content) == content.size() && file.flush() && file.commit();
    return written ? QString() : file.errorString();
}
