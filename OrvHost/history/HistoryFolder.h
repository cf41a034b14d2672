#pragma once

#include <vector>

#include "OrvLibrary/host/fileString.h"

/// Reads the folders of the history. Only for use in this room.
namespace OrvHost::HistoryFolder {

/// Whether there is a regular file, or a link to one; false if unknown.
bool isRegularFile(const fileString& file);
/// Whether two names lead to the same file, as hard links do; false if unknown.
bool isSameFile(const fileString& left, const fileString& right);
/// The paths of everything in a folder; empty if it cannot be read.
std::vector<fileString> namesIn(const fileString& folder);

} // namespace OrvHost::HistoryFolder
