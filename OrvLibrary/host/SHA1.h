#pragma once

#include <string>

#include "OrvLibrary/OrvLibraryExport.h"
#include "OrvLibrary/host/fileString.h"

namespace SHA1 {

/// SHA-1 of a file's contents as 40 lower-case hexadecimal digits; empty for what is not a readable regular
/// file. The file is read in pieces. May be called from any thread.
ORVLIBRARY_EXPORT std::string fileContentsToSHA1Hex(const fileString& path);

} // namespace SHA1
