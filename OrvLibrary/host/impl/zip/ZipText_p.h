#pragma once

#include <string_view>

namespace ZipUtils {

/// Whether the name needs the UTF-8 flag: it has characters beyond ASCII and is valid UTF-8.
bool needsUtf8Flag(std::string_view name);

} // namespace ZipUtils
