#pragma once

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>

#include <sys/stat.h>

/// The tools that the file services share: handles, locks and questions about paths. They throw nothing. A
/// path with a NUL byte counts as a missing file (ENOENT), because the system would silently use only the
/// part before the NUL. All functions may be called from any thread. Those that fail leave the reason in
/// `errno`.
namespace host {

/// Owns an open file, or no file (-1).
class FileHandle
{
public:
    FileHandle() = default;
    explicit FileHandle(int descriptor) : mDescriptor(descriptor) {}
    ~FileHandle() { reset(); }
    FileHandle(FileHandle&& other) noexcept : mDescriptor(other.release()) {}
    FileHandle& operator=(FileHandle&& other) noexcept;

    int get() const { return mDescriptor; }
    explicit operator bool() const { return mDescriptor >= 0; }
    /// Hands the descriptor over to the caller, who must close it.
    int release();
    /// Closes the file; keeps `errno`.
    void reset();

private:
    int mDescriptor = -1;
};

using Deadline = std::chrono::steady_clock::time_point;

/// How long to wait for a lock.
constexpr std::chrono::milliseconds kLockWait{5000};

/// Whether the system can use the path: it has no NUL byte.
bool isUsable(const std::string& path);
/// The status of the file at `path`; empty if there is none. Follows links.
std::optional<struct stat> fileStatus(const std::string& path);
/// The same, but for the link itself.
std::optional<struct stat> linkStatus(const std::string& path);
/// Whether anything has this name, even a link that leads nowhere.
bool nameIsTaken(const std::string& path);
/// Whether the file may be written.
/// Deliberate: the write permissions also count for the superuser, who could write to a protected file.
/// Kept by: FileUtilsTest.canWriteAnExistingFileThatIsNotReadOnly
bool mayWrite(const std::string& path, const struct stat& status);

/// Opens a file. Never waits, as a FIFO would make us; the file is closed on exec.
FileHandle openFile(const std::string& path, int flags, mode_t mode = 0);
/// Opens a regular file for reading. Refuses anything else.
FileHandle openRegularFile(const std::string& path);
/// Opens an existing file only to lock it: for reading and writing if the permissions allow both, otherwise
/// for one of them.
FileHandle openForLock(const std::string& path, int extraFlags = 0);

/// The descriptors of this process.
struct DescriptorUse
{
    std::size_t open = 0;  ///< at least so many are open
    std::size_t limit = 0; ///< the process may open no more
};
DescriptorUse descriptorUse();

/// The result of an attempt to lock a file.
enum class Lock
{
    Held,    ///< we have the lock
    Unknown, ///< the file system has no locks; its files are used without
    Busy,    ///< somebody else has the lock; `errno` is EWOULDBLOCK
    Failed   ///< another error, in `errno`
};

/// Tries once to get a lock with `flock`: LOCK_SH or LOCK_EX.
Lock tryLock(int descriptor, int lock);
/// Tries to get such a lock until `deadline`.
Lock waitForLock(int descriptor, int lock, Deadline deadline);
/// Whether the file may be used after this result.
inline bool mayUse(Lock lock)
{
    return lock == Lock::Held || lock == Lock::Unknown;
}
/// Whether `path` still leads to the open file. Follows links.
bool namesFile(const std::string& path, int descriptor);

/// Copies the whole content from one open file to the other.
bool copyContent(int from, int to);
/// Syncs the folder of `path`. Succeeds on file systems that cannot sync folders.
bool syncFolderOf(const std::string& path);

} // namespace host
