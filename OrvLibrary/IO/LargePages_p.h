#pragma once

#include <cstddef>

/// Asks the system to use large pages for new memory that will be filled at once. Without them, the first
/// access to each small page takes more time than the conversion itself. Does nothing for small blocks, or if
/// the system has no large pages.
void adviseLargePages(const void* block, std::size_t size);
