#pragma once

#include <string>

#include "OrvLibrary/OrvLibraryExport.h"

/// Conversions between UTF-8 and the single-byte texts of library databases. They never fail and may be
/// called from any thread.
namespace Library {

/// UTF-8 to single bytes: U+0080 to U+00FF become the byte of that value, other characters of two bytes keep
/// the low eight bits of their number, longer ones and stray bytes vanish.
ORVLIBRARY_EXPORT std::string toWindows1252(const std::string& utf8);
/// Single-byte database text to UTF-8, by the rule of the host's database library.
ORVLIBRARY_EXPORT std::string toUTF8(const std::string& text);

} // namespace Library
