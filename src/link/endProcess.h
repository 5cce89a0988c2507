#pragma once

/// Ends the process at once with an exit code; what was written to standard streams goes out before.
///
/// For the end of main(), when window and application are gone. The ports' threads are never stopped, and in the usual
/// end of a process they would go on among static objects that are being destroyed, which now and then ends in a crash.
[[noreturn]] void endProcess(int exitCode);
