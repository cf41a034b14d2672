#include "tests/orv-host/SizedDisk.h"

#include <atomic>

#include <dlfcn.h>
#include <sys/statvfs.h>

namespace {

std::atomic<bool> gIsSized{false};
std::uint64_t gCapacity = 0;
std::uint64_t gAvailable = 0;
std::string gAsked;

} // namespace

// This definition takes precedence over that of the C library.
extern "C" __attribute__((visibility("default"))) int statvfs(const char* path,
                                                              struct statvfs* result) noexcept
{
    static auto* const own = reinterpret_cast<decltype(&statvfs)>(dlsym(RTLD_NEXT, "statvfs"));
    const int status = own(path, result);
    if (gIsSized && status == 0) {
        gAsked = path;
        result->f_frsize = 1;
        result->f_blocks = gCapacity;
        result->f_bfree = gAvailable;
        result->f_bavail = gAvailable;
    }
    return status;
}

namespace test {

SizedDisk::SizedDisk(std::uint64_t capacity, std::uint64_t available)
{
    gCapacity = capacity;
    gAvailable = available;
    gAsked.clear();
    gIsSized = true;
}

SizedDisk::~SizedDisk()
{
    gIsSized = false;
}

std::string SizedDisk::asked()
{
    return gAsked;
}

} // namespace test
