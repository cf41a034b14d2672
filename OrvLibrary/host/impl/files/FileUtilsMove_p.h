#pragma once

#include <string>

namespace host {

/// Moves a regular file between devices: copied beside the target, synced, renamed, and only then removed.
/// @return false leaves the target as it was, unless nothing but the removal of the source failed
bool moveByCopy(const std::string& from, const std::string& to, bool keepSource);

} // namespace host
