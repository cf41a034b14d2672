#pragma once

#include <string>

#include "OrvLibrary/OrvLibraryExport.h"

/// The one service that the library needs of the host's database library.
namespace SQL {

/// Single-byte database text (Windows-1252) to UTF-8. Never fails; may be called from any thread.
ORVLIBRARY_EXPORT std::string to_utf8(const std::string& text);

} // namespace SQL
