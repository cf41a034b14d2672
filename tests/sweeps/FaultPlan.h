#pragma once

#include <string>

#include <sys/types.h>

/// The faults that the preloaded shim makes, as its environment says:
///
/// - ORV_FAULT_ROOT   only calls on files below this folder count; needed
/// - ORV_FAULT_CALLS  kinds of call that count, separated by commas: "open,write,rename"
/// - ORV_FAULT_LOG    file to which every call that counts is appended as a line "kind path"
/// - ORV_FAULT_AT     the call that goes wrong, counted from 1
/// - ORV_FAULT_DO     "kill", "torn" (a kill in the middle of a write), "short" (half of a read or write),
///                    "late" (done after a while), "stop" (done when the stopped program is continued), or
///                    the number of an error
/// - ORV_FAULT_EVER   set: that call and every later one go wrong
namespace fault {

enum class Outcome
{
    Proceed,
    Half, ///< do half of it
    Torn, ///< do half of it, then `die`
    Fail  ///< `errno` is set
};

/// Counts a call on a path and says what becomes of it; does not return from a kill.
Outcome onPath(const char* kind, int folder, const char* path);
/// The same for two paths, of which one must count.
Outcome onPaths(const char* kind, int fromFolder, const char* from, int toFolder, const char* to);
/// The same for an open file.
Outcome onFile(const char* kind, int descriptor);
/// The same for what has no path.
Outcome onAny(const char* kind);

[[noreturn]] void die();

} // namespace fault
