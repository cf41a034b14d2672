#pragma once

#include <chrono>
#include <functional>
#include <string>

#include "OrvHost/OrvHostExport.h"
#include "OrvLibrary/host/fileString.h"

/// Tells whether a file is a sound SQLite database, before it takes the place of one that was. The file is
/// opened read-only and immutable: nothing appears beside it, and it may lie in a folder that cannot be
/// written. Functions may be called from any thread.
namespace OrvHost::DatabaseCheck {

/// How long one file is looked at. A larger database is judged by its header alone from then on.
constexpr std::chrono::milliseconds kLimit{1000};

/// Why the file is no sound database, in words that follow its name, such as "is no database" or "is a
/// damaged database: ...". Empty when nothing is wrong with it.
/// @param isCancelled asked every 20 ms, on a thread of its own, when it is not empty; true ends the check
/// without a problem
ORVHOST_EXPORT std::string problemOf(const fileString& file, std::chrono::milliseconds limit = kLimit,
                                     const std::function<bool()>& isCancelled = {});

} // namespace OrvHost::DatabaseCheck
