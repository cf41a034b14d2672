#pragma once

#include <string>

namespace Library {

/// How the log shows a thread's handle: as a pointer, or "{Not-any-thread}" for none.
std::string threadText(const void* handle);

} // namespace Library
