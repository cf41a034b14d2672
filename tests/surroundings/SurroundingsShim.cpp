// Preloaded before a program under test to simulate another system. ORV_SURROUNDINGS lists the differences,
// separated by commas:
//   network-locks   flock as on a network file system: an exclusive lock needs a descriptor open for
//                   writing, a shared lock one open for reading
//   no-locks        a file system without locks
//   no-copy-range   no copying inside the kernel
//   no-links        no hard links
//   no-noreplace    no rename that refuses an existing target
//   no-fallocate    no reservation of space
//   clock-back      the system clock jumps back by an hour, 100 ms after the start
// The signatures are those of the C library.
#include <cerrno>
#include <cstdlib>
#include <cstring>

#include <dlfcn.h>
#include <fcntl.h>
#include <stdio.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <time.h>
#include <unistd.h>

namespace {

/// The function of the C library.
template <class Function>
Function* next(Function*, const char* name)
{
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

#define ORV_NEXT(function)                                                                                   \
    static auto* const sNext = next(&function, #function);                                                   \
    static_cast<void>(sNext)

bool isNamed(const char* difference)
{
    const char* names = std::getenv("ORV_SURROUNDINGS");
    const std::size_t size = std::strlen(difference);
    for (const char* at = names; at != nullptr; at = std::strchr(at, ',')) {
        at += *at == ',' ? 1 : 0;
        if (std::strncmp(at, difference, size) == 0 && (at[size] == '\0' || at[size] == ','))
            return true;
    }
    return false;
}

#define ORV_DIFFERENT(difference)                                                                            \
    [] {                                                                                                     \
        static const bool sIsNamed = isNamed(difference);                                                    \
        return sIsNamed;                                                                                     \
    }()

int refuse(int reason)
{
    errno = reason;
    return -1;
}

/// Whether a network file system would grant this lock, given how the descriptor was opened.
bool mayLockOverNetwork(int file, int operation)
{
    struct stat status = {};
    if (fstat(file, &status) != 0 || !S_ISREG(status.st_mode))
        return true;
    const int access = fcntl(file, F_GETFL) & O_ACCMODE;
    if ((operation & LOCK_EX) != 0)
        return access != O_RDONLY;
    return (operation & LOCK_SH) == 0 || access != O_WRONLY;
}

/// How many seconds the system clock is behind now.
time_t lag()
{
    static auto* const sClock = next(&clock_gettime, "clock_gettime");
    static const timespec sStart = [] {
        timespec now = {};
        sClock(CLOCK_MONOTONIC, &now);
        return now;
    }();
    timespec now = {};
    sClock(CLOCK_MONOTONIC, &now);
    const long long passed = (now.tv_sec - sStart.tv_sec) * 1000LL + (now.tv_nsec - sStart.tv_nsec) / 1000000;
    return ORV_DIFFERENT("clock-back") && passed >= 100 ? 3600 : 0;
}

} // namespace

extern "C" {

int flock(int file, int operation) noexcept
{
    ORV_NEXT(flock);
    if (ORV_DIFFERENT("no-locks"))
        return refuse(ENOLCK);
    if (ORV_DIFFERENT("network-locks") && !mayLockOverNetwork(file, operation))
        return refuse(EBADF);
    return sNext(file, operation);
}

ssize_t copy_file_range(int from, off64_t* fromOffset, int to, off64_t* toOffset, size_t size, unsigned flags)
{
    ORV_NEXT(copy_file_range);
    return ORV_DIFFERENT("no-copy-range") ? refuse(EOPNOTSUPP)
                                          : sNext(from, fromOffset, to, toOffset, size, flags);
}

int link(const char* from, const char* to) noexcept
{
    ORV_NEXT(link);
    return ORV_DIFFERENT("no-links") ? refuse(EPERM) : sNext(from, to);
}

int linkat(int fromFolder, const char* from, int toFolder, const char* to, int flags) noexcept
{
    ORV_NEXT(linkat);
    return ORV_DIFFERENT("no-links") ? refuse(EPERM) : sNext(fromFolder, from, toFolder, to, flags);
}

int renameat2(int fromFolder, const char* from, int toFolder, const char* to, unsigned flags) noexcept
{
    ORV_NEXT(renameat2);
    return flags != 0 && ORV_DIFFERENT("no-noreplace") ? refuse(EINVAL)
                                                       : sNext(fromFolder, from, toFolder, to, flags);
}

/// Unlike the other functions, this one returns the error number.
int posix_fallocate(int file, off_t offset, off_t size)
{
    ORV_NEXT(posix_fallocate);
    return ORV_DIFFERENT("no-fallocate") ? EOPNOTSUPP : sNext(file, offset, size);
}

int posix_fallocate64(int file, off64_t offset, off64_t size)
{
    ORV_NEXT(posix_fallocate64);
    return ORV_DIFFERENT("no-fallocate") ? EOPNOTSUPP : sNext(file, offset, size);
}

int fallocate(int file, int mode, off_t offset, off_t size)
{
    ORV_NEXT(fallocate);
    return ORV_DIFFERENT("no-fallocate") ? refuse(EOPNOTSUPP) : sNext(file, mode, offset, size);
}

int fallocate64(int file, int mode, off64_t offset, off64_t size)
{
    ORV_NEXT(fallocate64);
    return ORV_DIFFERENT("no-fallocate") ? refuse(EOPNOTSUPP) : sNext(file, mode, offset, size);
}

int clock_gettime(clockid_t clock, struct timespec* time) noexcept
{
    ORV_NEXT(clock_gettime);
    const int result = sNext(clock, time);
    if (result == 0 && clock == CLOCK_REALTIME)
        time->tv_sec -= lag();
    return result;
}

int gettimeofday(struct timeval* time, void* zone) noexcept
{
    ORV_NEXT(gettimeofday);
    const int result = sNext(time, zone);
    if (result == 0)
        time->tv_sec -= lag();
    return result;
}

time_t time(time_t* result) noexcept
{
    ORV_NEXT(time);
    const time_t now = sNext(nullptr) - lag();
    if (result != nullptr)
        *result = now;
    return now;
}

} // extern "C"
