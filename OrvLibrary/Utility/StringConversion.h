#pragma once

#include <string>

#include "OrvLibrary/OrvLibraryExport.h"

/// Converts between UTF-8 and the single-byte texts of library databases. The functions never fail and may be
/// called from any thread.
namespace Library {

/// UTF-8 to single bytes. U+0080 to U+00FF become the byte with that value. Other characters of two bytes
/// become the low eight bits of their number. Longer characters and invalid bytes are dropped.
ORVLIBRARY_EXPORT std::string toWindows1252(const std::string& utf8);
/// Single-byte database text to UTF-8, with the conversion of the host's database library.
ORVLIBRARY_EXPORT std::string toUTF8(const std::string& text);

} // namespace Library
