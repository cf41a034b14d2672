#pragma once

#include <map>
#include <string>

#include "OrvHost/OrvHostExport.h"
#include "OrvLibrary/host/fileString.h"

/// Reads and changes "catalog_hash.txt" for a host. It has one line "name:hash" for each file;
/// docs/formats/catalog_hash.md describes it. The functions may be called from any thread, but not while an
/// update runs on the folder.
namespace OrvHost::HashFile {

/// The hash of each file name, read in the way of the library: a blank line ends the file, and lines without
/// exactly two texts are ignored (a colon at either end of a line separates nothing). Empty if the file
/// cannot be read.
ORVHOST_EXPORT std::map<std::string, std::string> read(const fileString& folder);
/// The same, for callers for whom an unreadable file is not an empty one.
/// @throws std::runtime_error if the file exists and cannot be read
ORVHOST_EXPORT std::map<std::string, std::string> readOrThrow(const fileString& folder);
/// Removes all lines of a name; other lines stay.
/// @return false if there is no such line, or if the file cannot be written; it is then unchanged
ORVHOST_EXPORT bool remove(const fileString& folder, const std::string& name);

/// Sets the hash of a name. The line replaces all former lines of the name; other lines stay. Lines after a
/// blank line are removed, because nobody reads them.
/// @throws std::runtime_error with the path and the system's message; the file is then unchanged
ORVHOST_EXPORT void set(const fileString& folder, const std::string& name, const std::string& hash);

} // namespace OrvHost::HashFile
