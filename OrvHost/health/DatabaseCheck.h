#pragma once

#include <chrono>
#include <functional>
#include <string>

#include "OrvHost/OrvHostExport.h"
#include "OrvLibrary/host/fileString.h"

/// Checks that a file is a sound SQLite database before it replaces another one. The file is opened read-only
/// and as immutable, so no file appears beside it, and its folder need not be writable. The functions may be
/// called from any thread.
namespace OrvHost::DatabaseCheck {

/// The time limit for one file. If a large database takes longer, only its header decides.
constexpr std::chrono::milliseconds kLimit{1000};

/// The problem of the file, in words that follow its name: "is no database", "is a damaged database: ..." or
/// "cannot be read: ...". Empty if it is sound.
/// @param isCancelled if not empty, called every 20 ms on another thread; true ends the check without a
/// problem
ORVHOST_EXPORT std::string problemOf(const fileString& file, std::chrono::milliseconds limit = kLimit,
                                     const std::function<bool()>& isCancelled = {});

} // namespace OrvHost::DatabaseCheck
