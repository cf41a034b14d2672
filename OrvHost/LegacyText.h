#pragma once

#include "OrvHost/OrvHostExport.h"
#include <string>

/// For texts of the library that mix UTF-8 (translated prefixes) and Windows-1252 (names of catalogs).
namespace OrvHost::LegacyText {

/// Converts to UTF-8. Parts that are valid UTF-8 stay; every other byte counts as Windows-1252. May be called
/// from any thread.
ORVHOST_EXPORT std::string toUtf8(const std::string& text);

} // namespace OrvHost::LegacyText
