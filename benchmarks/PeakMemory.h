#pragma once

#include <QtGlobal>

#include <sys/resource.h>

/// The most memory that this process ever had in use, in KiB.
inline qint64 peakMemory()
{
    rusage usage = {};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}
