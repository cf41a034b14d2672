#pragma once

#include <string>

#include "OrvLibrary/host/fileString.h"

/// Whole small files, with the reason when that fails. May be used from any thread.
namespace TextFile {

/// @throws std::runtime_error "cannot read PATH: " + the system's text
std::string read(const fileString& path);
/// Writes beside the target, syncs and renames: the file has its old content or the new one.
/// @throws std::runtime_error "cannot write PATH: " + the system's text
void write(const fileString& path, const std::string& content);

} // namespace TextFile
