#pragma once

#include <functional>

#include "OrvLibrary/host/fileString.h"

class SqliteConnection;

/// How a library of the user's own is changed: on a copy, which then takes its place by one rename. Functions
/// run for a while, on any thread, and throw std::runtime_error with a reason for people.
namespace LibraryCopy {

using Change = std::function<void(const SqliteConnection& copy)>;

/// Changes a library, or leaves it as it was. Where another program changes it meanwhile, the change is made
/// again on what that program left; so `change` may be called more than once.
void change(const fileString& database, const Change& change);
/// Writes to a file that nobody else knows. It is not synced.
void write(const fileString& copy, const Change& change);
/// A name for such a file; files of killed programs there are removed by the next one.
fileString temporaryFile();

} // namespace LibraryCopy
