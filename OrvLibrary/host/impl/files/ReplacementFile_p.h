#pragma once

#include <memory>
#include <string>

#include "OrvLibrary/host/impl/files/FileHandle_p.h"

namespace host {

/// The new content of a file, written beside it and renamed over it at the end, so that the target is old or
/// new at every instant and never anything else.
///
/// The file beside has a name of its own per target (`besideName`) and is locked as long as it is written. So
/// two writers of one target exclude each other even when the target does not exist yet, and what a killed
/// process left is recognised, because nobody holds its lock, and removed by the next writer. On a file
/// system without locks the next writer removes a file beside that nobody has written to for a second.
class ReplacementFile
{
public:
    enum class Mode
    {
        Locked, ///< what links lead to; locked against readers and writers, must be writable, keeps its mode
        Replaced, ///< the name itself, whatever stands there, as by a rename
        Fresh     ///< a name that nothing has; EEXIST when something has it, also at `commit`
    };

    /// Opens a file beside `target`. Where no permissions are kept, it has `newMode` less the process's mask.
    /// @return null on failure, with the reason in `errno`; EWOULDBLOCK when a lock was not to be had
    static std::unique_ptr<ReplacementFile> open(const std::string& target, Mode mode, mode_t newMode = 0666,
                                                 std::chrono::milliseconds wait = kLockWait);
    /// Abandons what was not committed: the target stays as it is and the file beside is removed.
    ~ReplacementFile();
    ReplacementFile(const ReplacementFile&) = delete;
    ReplacementFile& operator=(const ReplacementFile&) = delete;

    /// Whether what stood at the target when this object was made still stands there. A program that renames
    /// a file over the target asks for no lock.
    bool targetIsUnchanged() const;
    /// The file to write to.
    int descriptor() const { return mFile.get(); }
    /// How sure the new content is to survive a loss of power.
    enum class Durability
    {
        Synced,        ///< on the disk when `commit` returns, with its name
        ContentSynced, ///< on the disk before the target has it; the target may still be the old one
        Unsynced       ///< as after an ordinary copy
    };
    /// Syncs the file, renames it over the target and syncs the folder, as far as `durability` asks for it.
    /// @return false, with the reason in `errno`, leaves the target as it was; when nothing but the sync of
    /// the folder failed, it has the new content
    bool commit(Durability durability = Durability::Synced);

    /// The path of the file beside: a name that no other program and no other target has.
    static std::string besideName(const std::string& target);
    /// Removes what a killed process left beside `target`.
    static void removeLeftover(const std::string& target);

private:
    enum class Attempt
    {
        Done,
        Again, ///< the file system changed under us
        Failed
    };

    ReplacementFile(std::string target, Mode mode);
    Attempt attempt(mode_t newMode, Deadline deadline);
    Attempt lockTarget(Deadline deadline);
    Attempt createBeside(mode_t newMode, Deadline deadline);
    Attempt removeOld(Deadline deadline);
    bool putInPlace() const;
    void abandon();

    std::string mTarget; ///< not a link
    std::string mBeside;
    Mode mMode;
    FileHandle mTargetLock; ///< none when the target does not exist
    FileHandle mFile;
    bool mPending = false; ///< the file beside exists and is ours
};

} // namespace host
