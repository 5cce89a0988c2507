#pragma once

/// How a command ended, as the shell sees it.
enum class ExitCode
{
    Done = 0,         ///< all is as asked; of a comparison: equal
    WithErrors = 1,   ///< done, but something is missing, wrong or was refused; of a comparison: different
    NothingFound = 2, ///< no port, or no coordinator
    Refused = 3,      ///< nothing was done: the file exists, the port can't be used
    BadInput = 4,     ///< a command line, a file or a packet that makes no sense
    Interrupted = 5,  ///< by Ctrl+C or the system's request to end
};
