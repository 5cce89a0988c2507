#pragma once

#include <sys/resource.h>

#include <QtGlobal>

/// The most memory that this process ever had in use, in KiB.
inline qint64 peakMemory()
{
    rusage usage = {};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}
