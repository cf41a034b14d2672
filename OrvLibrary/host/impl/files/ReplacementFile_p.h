#pragma once

#include <memory>
#include <string>

#include "OrvLibrary/host/impl/files/FileHandle_p.h"

namespace host {

/// New content for a file. It is written to a file beside the target and renamed to it at the end, so the
/// target always has either the old or the new content.
///
/// The name of the file beside (`besideName`) depends on the target's name, and the file is locked while it
/// is written. This has two effects: two writers of one target exclude each other even if the target does not
/// exist yet; and the next writer recognises the leftover of a killed process, because nobody has its lock,
/// and removes it. On a file system without locks, a file beside that has not changed for a second is taken
/// for a leftover.
class ReplacementFile
{
public:
    enum class Mode
    {
        Locked,   ///< follows links, locks the target and keeps its mode; it must be writable
        Replaced, ///< does not follow links; replaces whatever has the name
        Fresh     ///< the name must be free; otherwise EEXIST, also at `commit`
    };

    /// Opens a file beside `target`. If no mode is kept, it gets `newMode` without the bits of the process's
    /// umask.
    /// @return null on failure, with the reason in `errno`; EWOULDBLOCK if another writer has the lock
    static std::unique_ptr<ReplacementFile> open(const std::string& target, Mode mode, mode_t newMode = 0666,
                                                 std::chrono::milliseconds wait = kLockWait);
    /// If `commit` was not called, removes the file beside and leaves the target unchanged.
    ~ReplacementFile();
    ReplacementFile(const ReplacementFile&) = delete;
    ReplacementFile& operator=(const ReplacementFile&) = delete;

    /// Whether the target is still the file that it was when this object was made. Another program may have
    /// renamed a file over it without asking for our lock.
    bool targetIsUnchanged() const;
    /// The descriptor of the file beside.
    int descriptor() const { return mFile.get(); }
    /// When the new content is safe from a power failure.
    enum class Durability
    {
        Synced, ///< content and name are on the disk when `commit` returns, if the folder can be synced
        ContentSynced, ///< the content is on the disk before the rename; the old target may come back
        Unsynced       ///< no promise, as with an ordinary copy
    };
    /// Syncs the file, renames it to the target and syncs the folder, as `durability` demands.
    /// @return false on failure, with the reason in `errno`; the target is then unchanged. A folder that
    /// cannot be synced is no failure, because the target has the new content by then.
    bool commit(Durability durability = Durability::Synced);

    /// The path of the file beside. No other target and no other program uses it.
    static std::string besideName(const std::string& target);
    /// Removes the file beside `target` that a killed process has left.
    static void removeLeftover(const std::string& target);

private:
    enum class Attempt
    {
        Done,
        Again, ///< the files changed meanwhile: try again
        Failed
    };

    ReplacementFile(std::string target, Mode mode);
    Attempt attempt(mode_t newMode, Deadline deadline);
    Attempt lockTarget(Deadline deadline);
    Attempt createBeside(mode_t newMode, Deadline deadline);
    Attempt removeOld(Deadline deadline);
    bool putInPlace() const;
    void abandon();

    std::string mTarget; ///< never a link
    std::string mBeside;
    Mode mMode;
    FileHandle mTargetLock; ///< empty if the target does not exist
    FileHandle mFile;
    bool mPending = false; ///< whether the file beside exists and is ours
};

} // namespace host
