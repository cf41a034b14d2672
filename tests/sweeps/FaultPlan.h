#pragma once

#include <string>

#include <sys/types.h>

/// The faults that the preloaded shim causes, as the environment sets them:
///
/// - ORV_FAULT_ROOT   only calls on files below this folder count; required
/// - ORV_FAULT_CALLS  the kinds of calls that count, separated by commas: "open,write,rename"
/// - ORV_FAULT_LOG    a file to which every counted call is appended as a line "kind path"
/// - ORV_FAULT_AT     the number of the disturbed call, from 1
/// - ORV_FAULT_DO     "kill", "torn" (killed in the middle of a write), "short" (half of a read or write),
///                    "late" (delayed), "stop" (the program stops and makes the call when continued), or
///                    an error number
/// - ORV_FAULT_EVER   if set, every later call is disturbed too
namespace fault {

enum class Outcome
{
    Proceed,
    Half, ///< do half of it
    Torn, ///< do half of it, then `die`
    Fail  ///< `errno` is set
};

/// Counts a call with a path and returns its outcome. Does not return from a kill.
Outcome onPath(const char* kind, int folder, const char* path);
/// Counts a call with two paths, at least one of which must count.
Outcome onPaths(const char* kind, int fromFolder, const char* from, int toFolder, const char* to);
/// Counts a call on an open file.
Outcome onFile(const char* kind, int descriptor);
/// Counts a call without a path.
Outcome onAny(const char* kind);

[[noreturn]] void die();

} // namespace fault
