#pragma once

#include <map>
#include <string>

#include "OrvHost/OrvHostExport.h"
#include "OrvLibrary/host/fileString.h"

/// The hash file of a catalog folder, "catalog_hash.txt", as a host sees it: one line "name:hash" for each
/// file. docs/formats/catalog_hash.md describes it. Functions may be called from any thread, but not while an
/// update runs on the same folder.
namespace OrvHost::HashFile {

/// File name to hash, read as the library reads it: a blank line ends the file, and lines that do not hold
/// exactly two texts are passed over (colons at either end of a line separate nothing). Empty when the file
/// cannot be read.
ORVHOST_EXPORT std::map<std::string, std::string> read(const fileString& folder);
/// The same, for a caller that must not take a file that cannot be read for an empty one.
/// @throws std::runtime_error when the file is there and cannot be read
ORVHOST_EXPORT std::map<std::string, std::string> readOrThrow(const fileString& folder);
/// Removes the lines of a name; all others stay as they are.
/// @return false when there is no such line, or the file cannot be written and is as it was
ORVHOST_EXPORT bool remove(const fileString& folder, const std::string& name);

/// Gives a name this hash, in the place of its former lines; all other lines stay as they are. Lines behind a
/// blank one, which nobody reads, go.
/// @throws std::runtime_error with the path and the system's text; the file is then as it was
ORVHOST_EXPORT void set(const fileString& folder, const std::string& name, const std::string& hash);

} // namespace OrvHost::HashFile
