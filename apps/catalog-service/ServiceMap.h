#pragma once

#include <map>
#include <string>

/// The map files of the service on nginx: one line `"name" sha1;` for each name.
namespace ServiceMap {

/// Name to SHA-1 in hexadecimal.
using Map = std::map<std::string, std::string>;

/// The map in a file; empty if there is none. Ignores lines of another form.
Map read(const std::string& path);
/// Replaces the file with one rename.
/// @param alsoWindows1252 whether each name that is not ASCII is written a second time, in Windows-1252
/// @throws std::runtime_error with the path and the system's message
void write(const std::string& path, const Map& map, bool alsoWindows1252);

} // namespace ServiceMap
