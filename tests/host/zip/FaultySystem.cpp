#include "tests/host/zip/FaultySystem.h"

#include <algorithm>
#include <atomic>
#include <cerrno>

#include <dlfcn.h>
#include <fcntl.h>
#include <unistd.h>

using test::FaultySystem;

namespace {

constexpr int kNone = -1;
std::atomic<int> gCall{kNone};
std::atomic<int> gReason{0};

bool isFaulty(FaultySystem::Call call)
{
    return gCall == static_cast<int>(call);
}

int fail()
{
    errno = gReason;
    return -1;
}

/// The function of the C library.
template <class Function>
Function* next(Function*, const char* name)
{
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

} // namespace

// These definitions take precedence over those of the C library.
extern "C" {

int fallocate(int file, int mode, off_t offset, off_t size)
{
    static auto* const own = next(&fallocate, "fallocate");
    return isFaulty(FaultySystem::Call::Fallocate) ? fail() : own(file, mode, offset, size);
}

ssize_t pread(int file, void* buffer, size_t size, off_t offset)
{
    static auto* const own = next(&pread, "pread");
    return own(file, buffer, isFaulty(FaultySystem::Call::Pread) ? std::min<size_t>(size, 1) : size, offset);
}

int sync_file_range(int file, off64_t offset, off64_t size, unsigned flags)
{
    static auto* const own = next(&sync_file_range, "sync_file_range");
    return isFaulty(FaultySystem::Call::SyncFileRange) ? fail() : own(file, offset, size, flags);
}

} // extern "C"

namespace test {

FaultySystem::FaultySystem(Call call, int reason)
{
    gReason = reason;
    gCall = static_cast<int>(call);
}

FaultySystem::~FaultySystem()
{
    gCall = kNone;
}

} // namespace test
