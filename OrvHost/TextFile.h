#pragma once

#include <string>

#include "OrvHost/OrvHostExport.h"
#include "OrvLibrary/host/fileString.h"

/// Whole small files, with the reason when that fails. May be used from any thread.
namespace OrvHost::TextFile {

/// @throws std::runtime_error "cannot read PATH: " + the system's text
ORVHOST_EXPORT std::string read(const fileString& path);
/// Writes beside the target, syncs and renames: the file has its old content or the new one.
/// @throws std::runtime_error "cannot write PATH: " + the system's text
ORVHOST_EXPORT void write(const fileString& path, const std::string& content);

} // namespace OrvHost::TextFile
