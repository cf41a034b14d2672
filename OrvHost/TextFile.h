#pragma once

#include <string>

#include "OrvHost/OrvHostExport.h"
#include "OrvLibrary/host/fileString.h"

/// Reads and writes whole small files. May be used from any thread.
namespace OrvHost::TextFile {

/// @throws std::runtime_error "cannot read PATH: " and the system's message
ORVHOST_EXPORT std::string read(const fileString& path);
/// Writes a file beside the target, syncs it and renames it, so the target has either its old or its new
/// content.
/// @throws std::runtime_error "cannot write PATH: " and the system's message
ORVHOST_EXPORT void write(const fileString& path, const std::string& content);

} // namespace OrvHost::TextFile
