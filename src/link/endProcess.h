#pragma once

/// Ends the process at once with an exit code; what was written to standard streams goes out before.
///
/// For the end of main(), when window and application are gone. The thread of a port that the system keeps busy may
/// still run then, and in the usual end of a process it would go on among static objects that are being destroyed,
/// which now and then ends in a crash.
[[noreturn]] void endProcess(int exitCode);
