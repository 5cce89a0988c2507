#include "link/endProcess.h"

#include <cstdio>
#include <cstdlib>

#ifdef HUBN_COVERAGE
extern "C" {
#include <gcov.h>
}
#endif

void endProcess(int exitCode)
{
    std::fflush(nullptr);
#ifdef HUBN_COVERAGE
    __gcov_dump(); // exit() would have done it
#endif
    std::_Exit(exitCode);
}
