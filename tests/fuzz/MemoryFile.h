#pragma once

#include "fuzz/fuzz.h"

#include <QByteArray>
#include <QString>

#include <sys/mman.h>
#include <unistd.h>

/// A file in memory that has a path.
class MemoryFile
{
public:
    MemoryFile() : file(memfd_create("configuration", 0))
    {
    }

    QString path() const
    {
        return QStringLiteral("/proc/self/fd/%1").arg(file);
    }

    void fill(const QByteArray& bytes) const
    {
        const bool filled =
            ftruncate(file, 0) == 0 && pwrite(file, bytes.constData(), std::size_t(bytes.size()), 0) == bytes.size();
        fuzz::demand(filled, QStringLiteral("the file in memory"));
    }

private:
    int file;
};
