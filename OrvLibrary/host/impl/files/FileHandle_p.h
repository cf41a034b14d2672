#pragma once

#include <chrono>
#include <optional>
#include <string>

#include <sys/stat.h>

/// The tools that the file services share: handles, locks, and questions about a path that are answered
/// without an exception. A path with a NUL byte is answered as a missing file (ENOENT), since the system
/// would silently take what stands before the NUL. All functions may be called from any thread; those that
/// fail leave the reason in `errno`.
namespace host {

/// Owns an open file of the system, or none (-1).
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
    /// Gives the descriptor up to the caller.
    int release();
    /// Closes the file; keeps `errno`.
    void reset();

private:
    int mDescriptor = -1;
};

using Deadline = std::chrono::steady_clock::time_point;

/// How long a lock is waited for.
constexpr std::chrono::milliseconds kLockWait{5000};

/// Whether the system can be asked for the path at all: it has no NUL byte.
bool isUsable(const std::string& path);
/// The status of the file that `path` names, links followed; none when it names nothing.
std::optional<struct stat> fileStatus(const std::string& path);
/// The same for the link itself.
std::optional<struct stat> linkStatus(const std::string& path);
/// Whether the name is in use, be it by a link that leads nowhere.
bool nameIsTaken(const std::string& path);
/// Whether the file may be written. Deliberate: the write permissions count for the superuser as well, whom
/// the system would let write to a protected file.
/// Kept by: FileUtilsTest.canWriteAnExistingFileThatIsNotReadOnly
bool mayWrite(const std::string& path, const struct stat& status);

/// Opens without ever waiting (a FIFO would) and closes on exec.
FileHandle openFile(const std::string& path, int flags, mode_t mode = 0);
/// Opens a regular file for reading; anything else is refused.
FileHandle openRegularFile(const std::string& path);
/// Opens an existing file only to lock it: for reading and writing where the permissions allow both, else for
/// one of them.
FileHandle openForLock(const std::string& path, int extraFlags = 0);

/// How an attempt to lock a file ended.
enum class Lock
{
    Held,    ///< the lock is ours
    Unknown, ///< the file system has no locks; its files are used without them
    Busy,    ///< somebody else holds the lock; `errno` is EWOULDBLOCK
    Failed   ///< the system gave another reason, in `errno`
};

/// Tries once to take a lock of `flock`: LOCK_SH or LOCK_EX.
Lock tryLock(int descriptor, int lock);
/// Takes such a lock, and tries again until `deadline` while somebody else holds it.
Lock waitForLock(int descriptor, int lock, Deadline deadline);
/// Whether the file may be used after an attempt that ended so.
inline bool mayUse(Lock lock)
{
    return lock == Lock::Held || lock == Lock::Unknown;
}
/// Whether `path` still names the open file; links are followed.
bool namesFile(const std::string& path, int descriptor);

/// Copies everything from one open file to the other.
bool copyContent(int from, int to);
/// Syncs the folder that holds `path`. A file system that cannot sync folders is no failure.
bool syncFolderOf(const std::string& path);

} // namespace host
