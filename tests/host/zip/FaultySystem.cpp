#include "tests/host/zip/FaultySystem.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdarg>

#include <dlfcn.h>
#include <fcntl.h>
#include <unistd.h>

using test::FaultySystem;
using Call = FaultySystem::Call;

namespace {

constexpr int kNone = -1;
std::atomic<int> gCall{kNone};
std::atomic<int> gReason{0};
std::atomic<unsigned> gCount{0};
std::function<void()> gBefore;

bool isFaulty(Call call)
{
    return gCall == static_cast<int>(call);
}

int fail(int reason)
{
    errno = reason;
    return -1;
}

/// The function of the C library.
template <class Function>
Function* next(Function*, const char* name)
{
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

/// Calls a function that reads or writes, or lets it be interrupted or cut short.
template <class Function, class Buffer>
ssize_t transfer(Call call, Function* own, int file, Buffer* buffer, size_t size, off_t offset, size_t most)
{
    if (!isFaulty(call))
        return own(file, buffer, size, offset);
    if (gBefore) {
        gBefore();
        return own(file, buffer, size, offset);
    }
    if (gReason != 0)
        return fail(gReason);
    if (++gCount % 2 == 0)
        return fail(EINTR);
    return own(file, buffer, std::min(size, most), offset);
}

/// Whether all these bytes of the file are a hole.
bool isHole(int file, off64_t from, size_t size)
{
    const off_t data = lseek(file, from, SEEK_DATA);
    return data < 0 ? errno == ENXIO : data >= from + static_cast<off64_t>(size);
}

} // namespace

// These definitions take precedence over those of the C library.
extern "C" {

ssize_t copy_file_range(int from, off64_t* fromAt, int to, off64_t* toAt, size_t size, unsigned flags)
{
    static auto* const own = next(&copy_file_range, "copy_file_range");
    if (isFaulty(Call::CopyFileRange) && gReason != 0)
        return fail(gReason);
    if (!isFaulty(Call::CopyFileRange) || !isHole(from, *fromAt, size))
        return own(from, fromAt, to, toAt, size, flags);
    return ftruncate(to, *toAt + static_cast<off64_t>(size)) == 0 ? static_cast<ssize_t>(size) : -1;
}

int open(const char* path, int flags, ...)
{
    static auto* const own = next(&open, "open");
    va_list arguments;
    va_start(arguments, flags);
    const bool hasMode = (flags & O_CREAT) != 0 || (flags & O_TMPFILE) == O_TMPFILE;
    const mode_t mode = hasMode ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    return isFaulty(Call::Create) && (flags & O_EXCL) != 0 ? fail(gReason) : own(path, flags, mode);
}

int fallocate(int file, int mode, off_t offset, off_t size)
{
    static auto* const own = next(&fallocate, "fallocate");
    return isFaulty(Call::Fallocate) ? fail(gReason) : own(file, mode, offset, size);
}

ssize_t pread(int file, void* buffer, size_t size, off_t offset)
{
    static auto* const own = next(&pread, "pread");
    return transfer(Call::Pread, own, file, buffer, size, offset, 1);
}

ssize_t pwrite(int file, const void* buffer, size_t size, off_t offset)
{
    static auto* const own = next(&pwrite, "pwrite");
    return transfer(Call::Pwrite, own, file, buffer, size, offset, 100);
}

int sync_file_range(int file, off64_t offset, off64_t size, unsigned flags)
{
    static auto* const own = next(&sync_file_range, "sync_file_range");
    return isFaulty(Call::SyncFileRange) ? fail(gReason) : own(file, offset, size, flags);
}

} // extern "C"

namespace test {

FaultySystem::FaultySystem(Call call, int reason)
{
    gReason = reason;
    gCount = 0;
    gCall = static_cast<int>(call);
}

FaultySystem::FaultySystem(Call call, std::function<void()> before)
{
    gBefore = std::move(before);
    gCall = static_cast<int>(call);
}

FaultySystem::~FaultySystem()
{
    gCall = kNone;
    gBefore = nullptr;
}

} // namespace test
