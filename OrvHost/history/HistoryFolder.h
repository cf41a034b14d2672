#pragma once

#include <vector>

#include "OrvLibrary/host/fileString.h"

/// How the history looks at its folders. Not for use outside of this room.
namespace OrvHost::HistoryFolder {

/// Whether the name is a file, or a link to one; false when that cannot be told.
bool isRegularFile(const fileString& file);
/// The names in a folder, with their paths; none when it cannot be read.
std::vector<fileString> namesIn(const fileString& folder);

} // namespace OrvHost::HistoryFolder
