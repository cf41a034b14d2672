#pragma once

#include <string_view>

namespace ZipUtils {

/// Whether a member's name must be marked as UTF-8: it holds more than ASCII, and is UTF-8.
bool needsUtf8Flag(std::string_view name);

} // namespace ZipUtils
