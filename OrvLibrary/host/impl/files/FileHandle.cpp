// How it works: each function wraps one system call, repeats it after a signal, and leaves the reason of a
// failure in `errno`. Paths with a NUL byte never reach the system. Locks are those of `flock`. Waiting for
// one is polling with growing pauses, because `flock` itself has no time limit. A file system without locks
// gives `Lock::Unknown`, and the callers go on without one. `copyContent` lets the kernel copy; whatever the
// kernel leaves, for an unsupported pair of file systems everything, is copied by reading and writing.
#include "OrvLibrary/host/impl/files/FileHandle_p.h"

#include <algorithm>
#include <cerrno>
#include <thread>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <unistd.h>

#include "OrvLibrary/host/fileString.h"

namespace host {

namespace {

constexpr std::size_t kCopyPiece = 1024 * 1024;
constexpr std::chrono::milliseconds kFirstLockPause{1};
constexpr std::chrono::milliseconds kLongestLockPause{20};

bool writeAll(int descriptor, const char* data, std::size_t size)
{
    while (size > 0) {
        const ssize_t written = write(descriptor, data, size);
        if (written < 0 && errno == EINTR)
            continue;
        if (written < 0)
            return false;
        data += written;
        size -= static_cast<std::size_t>(written);
    }
    return true;
}

/// Lets the system copy as much as it can.
/// @return false for an error that copying in another way would not avoid
bool copyInKernel(int from, int to)
{
    ssize_t copied = 0;
    do {
        copied = copy_file_range(from, nullptr, to, nullptr, SIZE_MAX / 4, 0);
    } while (copied > 0 || (copied < 0 && errno == EINTR));
    return copied == 0 || errno == EXDEV || errno == EINVAL || errno == ENOSYS || errno == EOPNOTSUPP ||
           errno == EPERM;
}

bool copyByPieces(int from, int to)
{
    std::vector<char> piece(kCopyPiece);
    for (;;) {
        const ssize_t count = read(from, piece.data(), piece.size());
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            return count == 0;
        if (!writeAll(to, piece.data(), static_cast<std::size_t>(count)))
            return false;
    }
}

} // namespace

FileHandle& FileHandle::operator=(FileHandle&& other) noexcept
{
    std::swap(mDescriptor, other.mDescriptor);
    return *this;
}

int FileHandle::release()
{
    return std::exchange(mDescriptor, -1);
}

void FileHandle::reset()
{
    const int reason = errno;
    if (mDescriptor >= 0)
        close(std::exchange(mDescriptor, -1));
    errno = reason;
}

bool isUsable(const std::string& path)
{
    if (path.find('\0') == std::string::npos)
        return true;
    errno = ENOENT;
    return false;
}

std::optional<struct stat> fileStatus(const std::string& path)
{
    struct stat status = {};
    if (!isUsable(path) || stat(path.c_str(), &status) != 0)
        return std::nullopt;
    return status;
}

std::optional<struct stat> linkStatus(const std::string& path)
{
    struct stat status = {};
    if (!isUsable(path) || lstat(path.c_str(), &status) != 0)
        return std::nullopt;
    return status;
}

bool nameIsTaken(const std::string& path)
{
    return linkStatus(path).has_value();
}

bool mayWrite(const std::string& path, const struct stat& status)
{
    const mode_t bits = status.st_uid == geteuid() ? S_IWUSR : S_IWUSR | S_IWGRP | S_IWOTH;
    if ((status.st_mode & bits) == 0)
        return false;
    // If another process has just removed the file, nothing prevents writing.
    return faccessat(AT_FDCWD, path.c_str(), W_OK, AT_EACCESS) == 0 || errno == ENOENT;
}

FileHandle openFile(const std::string& path, int flags, mode_t mode)
{
    if (!isUsable(path))
        return {};
    int descriptor = -1;
    do {
        descriptor = open(path.c_str(), flags | O_NONBLOCK | O_NOCTTY | O_CLOEXEC, mode);
    } while (descriptor < 0 && errno == EINTR);
    return FileHandle(descriptor);
}

FileHandle openRegularFile(const std::string& path)
{
    FileHandle file = openFile(path, O_RDONLY);
    struct stat status = {};
    if (!file || fstat(file.get(), &status) != 0)
        return {};
    if (S_ISREG(status.st_mode))
        return file;
    errno = S_ISDIR(status.st_mode) ? EISDIR : EINVAL;
    return {};
}

FileHandle openForLock(const std::string& path, int extraFlags)
{
    // Network file systems give an exclusive lock only if the file is open for writing.
    FileHandle file = openFile(path, O_RDWR | extraFlags);
    if (!file && (errno == EACCES || errno == EPERM || errno == EROFS || errno == ETXTBSY))
        file = openFile(path, O_RDONLY | extraFlags);
    if (!file && errno == EACCES)
        file = openFile(path, O_WRONLY | extraFlags);
    return file;
}

DescriptorUse descriptorUse()
{
    rlimit limit{};
    getrlimit(RLIMIT_NOFILE, &limit);
    // The system gives each new file the lowest free number.
    const FileHandle lowest = openFile("/", O_PATH);
    return {lowest ? static_cast<std::size_t>(lowest.get()) : limit.rlim_cur, limit.rlim_cur};
}

Lock tryLock(int descriptor, int lock)
{
    int result = 0;
    do {
        result = flock(descriptor, lock | LOCK_NB);
    } while (result != 0 && errno == EINTR);
    if (result == 0)
        return Lock::Held;
    if (errno == EWOULDBLOCK)
        return Lock::Busy;
    return errno == ENOLCK || errno == EOPNOTSUPP || errno == ENOSYS ? Lock::Unknown : Lock::Failed;
}

Lock waitForLock(int descriptor, int lock, Deadline deadline)
{
    auto pause = kFirstLockPause;
    for (;;) {
        const Lock result = tryLock(descriptor, lock);
        if (result != Lock::Busy || std::chrono::steady_clock::now() >= deadline)
            return result;
        std::this_thread::sleep_for(pause);
        pause = std::min(pause * 2, kLongestLockPause);
    }
}

bool namesFile(const std::string& path, int descriptor)
{
    const auto named = fileStatus(path);
    struct stat opened = {};
    return named && fstat(descriptor, &opened) == 0 && named->st_dev == opened.st_dev &&
           named->st_ino == opened.st_ino;
}

bool copyContent(int from, int to)
{
    // Some file systems end a copy inside the system too early, so the rest is copied by pieces.
    return copyInKernel(from, to) && copyByPieces(from, to);
}

bool syncFolderOf(const std::string& path)
{
    const std::string folder = fileString(path).parentPathWithSeparator().toNativeString();
    const FileHandle handle = openFile(folder.empty() ? "." : folder, O_RDONLY | O_DIRECTORY);
    return handle && (fsync(handle.get()) == 0 || errno == EINVAL || errno == ENOTSUP);
}

} // namespace host
