#pragma once

#include <cstddef>

/// Asks the system for large pages in a block of memory that was just allocated and is about to be filled:
/// touching fresh memory page by page costs more than converting what goes into it. Small blocks, and systems
/// without large pages, are left as they are.
void adviseLargePages(const void* block, std::size_t size);
