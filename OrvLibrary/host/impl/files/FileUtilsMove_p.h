#pragma once

#include <string>

namespace host {

/// Moves a regular file to another device: copies it beside the target, syncs the copy, renames it to the
/// target, syncs the folder and then removes the source.
/// @return false on failure; the source is then there, and the target unchanged, unless only syncing the
/// folder or removing the source failed
bool moveByCopy(const std::string& from, const std::string& to, bool keepSource);

} // namespace host
