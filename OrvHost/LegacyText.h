#pragma once

#include "OrvHost/OrvHostExport.h"
#include <string>

/// Texts of the library that mix UTF-8 (translated prefixes) with Windows-1252 (catalog names).
namespace OrvHost::LegacyText {

/// The text as UTF-8: what is UTF-8 stays, every other byte is taken for Windows-1252. May be called from
/// any thread.
ORVHOST_EXPORT std::string toUtf8(const std::string& text);

} // namespace OrvHost::LegacyText
