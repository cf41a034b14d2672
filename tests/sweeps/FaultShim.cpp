// Preloaded before a program under test: replacements for the functions of the C library that open, read,
// change and connect. Each of them consults the plan first. The signatures are those of the C library.
#include <cerrno>
#include <cstdarg>
#include <cstdio>

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/sendfile.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <unistd.h>

#include "tests/sweeps/FaultPlan.h"

using fault::onFile;
using fault::onPath;
using fault::onPaths;
using fault::Outcome;

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

bool fails(Outcome outcome)
{
    return outcome == Outcome::Fail;
}

const char* kindOfOpen(int flags)
{
    return (flags & (O_WRONLY | O_RDWR | O_CREAT | O_TRUNC)) != 0 ? "open" : "openread";
}

/// Reads or writes everything, half, or half before a kill, as the plan says.
template <class Transfer>
ssize_t transfer(const char* kind, int file, std::size_t size, const Transfer& all)
{
    const Outcome outcome = onFile(kind, file);
    if (fails(outcome))
        return -1;
    if (outcome == Outcome::Proceed || size < 2)
        return all(size);
    const ssize_t done = all(size / 2);
    if (outcome == Outcome::Torn)
        fault::die();
    return done;
}

} // namespace

extern "C" {

#define ORV_OPEN(function)                                                                                   \
    int function(const char* path, int flags, ...)                                                           \
    {                                                                                                        \
        ORV_NEXT(function);                                                                                  \
        va_list arguments;                                                                                   \
        va_start(arguments, flags);                                                                          \
        const mode_t mode = (flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(arguments, mode_t) : 0;            \
        va_end(arguments);                                                                                   \
        return fails(onPath(kindOfOpen(flags), AT_FDCWD, path)) ? -1 : sNext(path, flags, mode);             \
    }
ORV_OPEN(open)
ORV_OPEN(open64)

#define ORV_OPENAT(function)                                                                                 \
    int function(int folder, const char* path, int flags, ...)                                               \
    {                                                                                                        \
        ORV_NEXT(function);                                                                                  \
        va_list arguments;                                                                                   \
        va_start(arguments, flags);                                                                          \
        const mode_t mode = (flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(arguments, mode_t) : 0;            \
        va_end(arguments);                                                                                   \
        return fails(onPath(kindOfOpen(flags), folder, path)) ? -1 : sNext(folder, path, flags, mode);       \
    }
ORV_OPENAT(openat)
ORV_OPENAT(openat64)

#define ORV_FOPEN(function)                                                                                  \
    FILE* function(const char* path, const char* mode)                                                       \
    {                                                                                                        \
        ORV_NEXT(function);                                                                                  \
        const char* const kind = mode[0] == 'r' && mode[1] != '+' ? "openread" : "open";                     \
        return fails(onPath(kind, AT_FDCWD, path)) ? nullptr : sNext(path, mode);                            \
    }
ORV_FOPEN(fopen)
ORV_FOPEN(fopen64)

ssize_t write(int file, const void* data, size_t size)
{
    ORV_NEXT(write);
    return transfer("write", file, size, [&](std::size_t part) { return sNext(file, data, part); });
}

ssize_t pwrite(int file, const void* data, size_t size, off_t offset)
{
    ORV_NEXT(pwrite);
    return transfer("write", file, size, [&](std::size_t part) { return sNext(file, data, part, offset); });
}

ssize_t pwrite64(int file, const void* data, size_t size, off64_t offset)
{
    ORV_NEXT(pwrite64);
    return transfer("write", file, size, [&](std::size_t part) { return sNext(file, data, part, offset); });
}

ssize_t writev(int file, const struct iovec* pieces, int count)
{
    ORV_NEXT(writev);
    // The size is the number of pieces, so half of two pieces is the first one.
    return transfer("write", file, static_cast<std::size_t>(count),
                    [&](std::size_t part) { return sNext(file, pieces, static_cast<int>(part)); });
}

ssize_t read(int file, void* data, size_t size)
{
    ORV_NEXT(read);
    return transfer("read", file, size, [&](std::size_t part) { return sNext(file, data, part); });
}

ssize_t pread(int file, void* data, size_t size, off_t offset)
{
    ORV_NEXT(pread);
    return transfer("read", file, size, [&](std::size_t part) { return sNext(file, data, part, offset); });
}

ssize_t pread64(int file, void* data, size_t size, off64_t offset)
{
    ORV_NEXT(pread64);
    return transfer("read", file, size, [&](std::size_t part) { return sNext(file, data, part, offset); });
}

ssize_t copy_file_range(int from, off64_t* fromOffset, int to, off64_t* toOffset, size_t size, unsigned flags)
{
    ORV_NEXT(copy_file_range);
    return fails(onFile("copy", to)) ? -1 : sNext(from, fromOffset, to, toOffset, size, flags);
}

ssize_t sendfile(int to, int from, off_t* offset, size_t size) noexcept
{
    ORV_NEXT(sendfile);
    return fails(onFile("copy", to)) ? -1 : sNext(to, from, offset, size);
}

int fsync(int file)
{
    ORV_NEXT(fsync);
    return fails(onFile("fsync", file)) ? -1 : sNext(file);
}

int fdatasync(int file)
{
    ORV_NEXT(fdatasync);
    return fails(onFile("fsync", file)) ? -1 : sNext(file);
}

int ftruncate(int file, off_t size) noexcept
{
    ORV_NEXT(ftruncate);
    return fails(onFile("truncate", file)) ? -1 : sNext(file, size);
}

int ftruncate64(int file, off64_t size) noexcept
{
    ORV_NEXT(ftruncate64);
    return fails(onFile("truncate", file)) ? -1 : sNext(file, size);
}

int truncate(const char* path, off_t size) noexcept
{
    ORV_NEXT(truncate);
    return fails(onPath("truncate", AT_FDCWD, path)) ? -1 : sNext(path, size);
}

/// Unlike the other functions, this one returns the error number.
int posix_fallocate(int file, off_t offset, off_t size)
{
    ORV_NEXT(posix_fallocate);
    return fails(onFile("truncate", file)) ? errno : sNext(file, offset, size);
}

int posix_fallocate64(int file, off64_t offset, off64_t size)
{
    ORV_NEXT(posix_fallocate64);
    return fails(onFile("truncate", file)) ? errno : sNext(file, offset, size);
}

int fallocate(int file, int mode, off_t offset, off_t size)
{
    ORV_NEXT(fallocate);
    return fails(onFile("truncate", file)) ? -1 : sNext(file, mode, offset, size);
}

int fallocate64(int file, int mode, off64_t offset, off64_t size)
{
    ORV_NEXT(fallocate64);
    return fails(onFile("truncate", file)) ? -1 : sNext(file, mode, offset, size);
}

int rename(const char* from, const char* to) noexcept
{
    ORV_NEXT(rename);
    return fails(onPaths("rename", AT_FDCWD, from, AT_FDCWD, to)) ? -1 : sNext(from, to);
}

int renameat(int fromFolder, const char* from, int toFolder, const char* to) noexcept
{
    ORV_NEXT(renameat);
    return fails(onPaths("rename", fromFolder, from, toFolder, to)) ? -1
                                                                    : sNext(fromFolder, from, toFolder, to);
}

int renameat2(int fromFolder, const char* from, int toFolder, const char* to, unsigned flags) noexcept
{
    ORV_NEXT(renameat2);
    const bool isFailure = fails(onPaths("rename", fromFolder, from, toFolder, to));
    return isFailure ? -1 : sNext(fromFolder, from, toFolder, to, flags);
}

int link(const char* from, const char* to) noexcept
{
    ORV_NEXT(link);
    return fails(onPaths("link", AT_FDCWD, from, AT_FDCWD, to)) ? -1 : sNext(from, to);
}

int linkat(int fromFolder, const char* from, int toFolder, const char* to, int flags) noexcept
{
    ORV_NEXT(linkat);
    const bool isFailure = fails(onPaths("link", fromFolder, from, toFolder, to));
    return isFailure ? -1 : sNext(fromFolder, from, toFolder, to, flags);
}

int symlink(const char* target, const char* path) noexcept
{
    ORV_NEXT(symlink);
    return fails(onPath("link", AT_FDCWD, path)) ? -1 : sNext(target, path);
}

int unlink(const char* path) noexcept
{
    ORV_NEXT(unlink);
    return fails(onPath("unlink", AT_FDCWD, path)) ? -1 : sNext(path);
}

int unlinkat(int folder, const char* path, int flags) noexcept
{
    ORV_NEXT(unlinkat);
    return fails(onPath("unlink", folder, path)) ? -1 : sNext(folder, path, flags);
}

int rmdir(const char* path) noexcept
{
    ORV_NEXT(rmdir);
    return fails(onPath("unlink", AT_FDCWD, path)) ? -1 : sNext(path);
}

int remove(const char* path) noexcept
{
    ORV_NEXT(remove);
    return fails(onPath("unlink", AT_FDCWD, path)) ? -1 : sNext(path);
}

int mkdir(const char* path, mode_t mode) noexcept
{
    ORV_NEXT(mkdir);
    return fails(onPath("mkdir", AT_FDCWD, path)) ? -1 : sNext(path, mode);
}

int mkdirat(int folder, const char* path, mode_t mode) noexcept
{
    ORV_NEXT(mkdirat);
    return fails(onPath("mkdir", folder, path)) ? -1 : sNext(folder, path, mode);
}

int chmod(const char* path, mode_t mode) noexcept
{
    ORV_NEXT(chmod);
    return fails(onPath("chmod", AT_FDCWD, path)) ? -1 : sNext(path, mode);
}

int fchmod(int file, mode_t mode) noexcept
{
    ORV_NEXT(fchmod);
    return fails(onFile("chmod", file)) ? -1 : sNext(file, mode);
}

int fchmodat(int folder, const char* path, mode_t mode, int flags) noexcept
{
    ORV_NEXT(fchmodat);
    return fails(onPath("chmod", folder, path)) ? -1 : sNext(folder, path, mode, flags);
}

int fchown(int file, uid_t owner, gid_t group) noexcept
{
    ORV_NEXT(fchown);
    return fails(onFile("chmod", file)) ? -1 : sNext(file, owner, group);
}

int futimens(int file, const struct timespec times[2]) noexcept
{
    ORV_NEXT(futimens);
    return fails(onFile("times", file)) ? -1 : sNext(file, times);
}

int utimensat(int folder, const char* path, const struct timespec times[2], int flags) noexcept
{
    ORV_NEXT(utimensat);
    return fails(onPath("times", folder, path)) ? -1 : sNext(folder, path, times, flags);
}

int flock(int file, int operation) noexcept
{
    ORV_NEXT(flock);
    return fails(onFile("flock", file)) ? -1 : sNext(file, operation);
}

/// The file is closed even if the call fails, as in the system.
int close(int file)
{
    ORV_NEXT(close);
    const Outcome outcome = onFile("close", file);
    const int reason = errno;
    const int result = sNext(file);
    if (!fails(outcome))
        return result;
    errno = reason;
    return -1;
}

void* mmap(void* address, size_t size, int protection, int flags, int file, off_t offset) noexcept
{
    ORV_NEXT(mmap);
    const bool isFailure = file >= 0 && fails(onFile("mmap", file));
    return isFailure ? MAP_FAILED : sNext(address, size, protection, flags, file, offset);
}

void* mmap64(void* address, size_t size, int protection, int flags, int file, off64_t offset) noexcept
{
    ORV_NEXT(mmap64);
    const bool isFailure = file >= 0 && fails(onFile("mmap", file));
    return isFailure ? MAP_FAILED : sNext(address, size, protection, flags, file, offset);
}

int connect(int socket, const struct sockaddr* address, socklen_t size)
{
    ORV_NEXT(connect);
    const bool isNetwork = address->sa_family == AF_INET || address->sa_family == AF_INET6;
    return isNetwork && fails(fault::onAny("connect")) ? -1 : sNext(socket, address, size);
}

ssize_t recv(int socket, void* data, size_t size, int flags)
{
    ORV_NEXT(recv);
    return fails(fault::onAny("recv")) ? -1 : sNext(socket, data, size, flags);
}

} // extern "C"
