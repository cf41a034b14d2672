#pragma once

#include <string>

#include "OrvLibrary/OrvLibraryExport.h"
#include "OrvLibrary/host/fileString.h"

namespace SHA1 {

/// The SHA-1 of a file's content as 40 lower-case hexadecimal digits. Empty if it is not a readable regular
/// file. The file is read in pieces. May be called from any thread.
ORVLIBRARY_EXPORT std::string fileContentsToSHA1Hex(const fileString& path);

} // namespace SHA1
