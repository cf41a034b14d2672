#pragma once

#include <string>

namespace Library {

/// The text form of a thread's handle in the log: a pointer, or "{Not-any-thread}" for none.
std::string threadText(const void* handle);

} // namespace Library
