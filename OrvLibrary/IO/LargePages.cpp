#include "OrvLibrary/IO/LargePages_p.h"

#include <cstdint>

#if defined(__linux__)
#include <sys/mman.h>
#endif

void adviseLargePages(const void* block, std::size_t size)
{
#if defined(__linux__)
    constexpr std::uintptr_t kPage = 2 * 1024 * 1024;
    constexpr std::size_t kWorthIt = 4 * kPage;
    if (size < kWorthIt)
        return;
    const auto begin = (reinterpret_cast<std::uintptr_t>(block) + kPage - 1) / kPage * kPage;
    const auto end = (reinterpret_cast<std::uintptr_t>(block) + size) / kPage * kPage;
    madvise(reinterpret_cast<void*>(begin), end - begin, MADV_HUGEPAGE); // a hint: it may fail
#else
    static_cast<void>(block);
    static_cast<void>(size);
#endif
}
