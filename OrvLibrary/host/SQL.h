#pragma once

#include <string>

#include "OrvLibrary/OrvLibraryExport.h"

/// The only service that the library needs from the host's database library.
namespace SQL {

/// Single-byte database text (Windows-1252) to UTF-8. Never fails; may be called from any thread.
ORVLIBRARY_EXPORT std::string to_utf8(const std::string& text);

} // namespace SQL
