#pragma once

#include <map>
#include <string>

/// The map files of the catalog service: one line `"name" sha1;` for each name, in the form that nginx reads.
namespace ServiceMap {

/// Name to SHA-1 in hexadecimal.
using Map = std::map<std::string, std::string>;

/// The map of a file; empty when there is none. Lines of another form are passed over.
Map read(const std::string& path);
/// Replaces the file by one rename.
/// @param alsoWindows1252 each name that is not ASCII stands there a second time, in Windows-1252 bytes
/// @throws std::runtime_error with the path and the system's text
void write(const std::string& path, const Map& map, bool alsoWindows1252);

} // namespace ServiceMap
