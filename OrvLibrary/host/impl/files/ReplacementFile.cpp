// How it works: `open` repeats three steps until they fit together: it opens and locks the target, makes the
// file beside it, and checks that the target is still the same file. If a file beside already exists, another
// writer is at work or a killed process has left it; `removeOld` waits for its lock and removes a leftover.
// `commit` checks that the file beside is still ours, syncs it and renames it.
#include "OrvLibrary/host/impl/files/ReplacementFile_p.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <thread>
#include <utility>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include "OrvLibrary/host/fileString.h"

namespace host {

namespace {

constexpr int kMostLinks = 40;
constexpr std::chrono::milliseconds kLeftoverAge{1000};
constexpr std::size_t kNameBytesKept = 180; // so that the name beside fits into 255 bytes

/// Follows a chain of links to its end, where a file may exist or not. Empty for a circle.
std::string withoutLinks(const std::string& path)
{
    fileString current(path);
    for (int i = 0; i < kMostLinks; ++i) {
        const auto status = linkStatus(current.toNativeString());
        if (!status || !S_ISLNK(status->st_mode))
            return current.toNativeString();
        std::error_code failure;
        const fileString link(std::filesystem::read_symlink(current.toNativeString(), failure).native());
        if (failure)
            return {};
        const bool isAbsolute = link.toNativeString().front() == '/';
        current = isAbsolute ? link : current.parentPathWithSeparator() + link;
    }
    errno = ELOOP;
    return {};
}

/// FNV-1a. It distinguishes names that begin with the same bytes.
std::string hashText(const std::string& text)
{
    std::uint64_t hash = 14695981039346656037u;
    for (const char c : text)
        hash = (hash ^ static_cast<unsigned char>(c)) * 1099511628211u;
    char digits[17];
    std::snprintf(digits, sizeof digits, "%016llx", static_cast<unsigned long long>(hash));
    return digits;
}

/// Whether nobody writes to the file for a second. This identifies a leftover if there are no locks.
bool staysUnchanged(int file, Deadline deadline)
{
    struct stat before = {};
    struct stat after = {};
    const bool isSeen = fstat(file, &before) == 0;
    std::this_thread::sleep_until(std::min(deadline, std::chrono::steady_clock::now() + kLeftoverAge));
    const auto& old = before.st_mtim;
    const auto& now = after.st_mtim;
    if (isSeen && fstat(file, &after) == 0 && before.st_size == after.st_size && old.tv_sec == now.tv_sec &&
        old.tv_nsec == now.tv_nsec)
        return true;
    errno = EWOULDBLOCK;
    return false;
}

/// Renames a file only if the new name is free, even if another process takes the name at the same moment.
bool renameWithoutReplacing(const std::string& from, const std::string& to)
{
    if (renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0)
        return true;
    if (errno != EINVAL && errno != ENOSYS)
        return false;
    // Network file systems cannot do this, but they have hard links, which never replace a file either.
    if (link(from.c_str(), to.c_str()) == 0) {
        unlink(from.c_str()); // if it fails, the next writer removes this leftover
        return true;
    }
    if (errno != EPERM && errno != EOPNOTSUPP && errno != ENOSYS)
        return false;
    // Without hard links, we take the name with an empty file first. The rename then replaces that file.
    if (!openFile(to, O_WRONLY | O_CREAT | O_EXCL, 0600))
        return false;
    if (rename(from.c_str(), to.c_str()) == 0)
        return true;
    const int reason = errno;
    unlink(to.c_str());
    errno = reason;
    return false;
}

} // namespace

std::unique_ptr<ReplacementFile> ReplacementFile::open(const std::string& target, Mode mode, mode_t newMode,
                                                       std::chrono::milliseconds wait)
{
    const Deadline deadline = std::chrono::steady_clock::now() + wait;
    std::string resolved = mode == Mode::Locked ? withoutLinks(target) : target;
    if (resolved.empty())
        return nullptr;
    std::unique_ptr<ReplacementFile> file(new ReplacementFile(std::move(resolved), mode));
    do {
        file->abandon();
        const Attempt result = file->attempt(newMode, deadline);
        if (result != Attempt::Again)
            return result == Attempt::Done ? std::move(file) : nullptr;
    } while (std::chrono::steady_clock::now() < deadline);
    errno = EWOULDBLOCK;
    return nullptr;
}

ReplacementFile::ReplacementFile(std::string target, Mode mode)
    : mTarget(std::move(target)), mBeside(besideName(mTarget)), mMode(mode)
{
}

ReplacementFile::~ReplacementFile()
{
    abandon();
}

ReplacementFile::Attempt ReplacementFile::attempt(mode_t newMode, Deadline deadline)
{
    const Attempt locked = lockTarget(deadline);
    if (locked != Attempt::Done)
        return locked;
    const Attempt created = createBeside(newMode, deadline);
    if (created != Attempt::Done)
        return created;
    return targetIsUnchanged() ? Attempt::Done : Attempt::Again;
}

ReplacementFile::Attempt ReplacementFile::lockTarget(Deadline deadline)
{
    if (mMode == Mode::Replaced)
        return Attempt::Done;
    if (mMode == Mode::Fresh)
        return targetIsUnchanged() ? Attempt::Done : Attempt::Failed;
    const auto status = fileStatus(mTarget);
    if (!status)
        return errno == ENOENT && isUsable(mTarget) ? Attempt::Done : Attempt::Failed;
    if (!S_ISREG(status->st_mode) || !mayWrite(mTarget, *status)) {
        errno = S_ISDIR(status->st_mode) ? EISDIR : EACCES;
        return Attempt::Failed;
    }
    mTargetLock = openForLock(mTarget);
    if (!mTargetLock)
        return errno == ENOENT ? Attempt::Again : Attempt::Failed;
    if (!mayUse(waitForLock(mTargetLock.get(), LOCK_EX, deadline)))
        return Attempt::Failed;
    return namesFile(mTarget, mTargetLock.get()) ? Attempt::Done : Attempt::Again;
}

ReplacementFile::Attempt ReplacementFile::createBeside(mode_t newMode, Deadline deadline)
{
    struct stat old = {};
    const bool keepsMode = mTargetLock && fstat(mTargetLock.get(), &old) == 0;
    mFile =
        openFile(mBeside, O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW, keepsMode ? old.st_mode & 0777 : newMode);
    if (!mFile)
        return errno == EEXIST ? removeOld(deadline) : Attempt::Failed;
    const bool isLocked = mayUse(waitForLock(mFile.get(), LOCK_EX, deadline));
    if (!namesFile(mBeside, mFile.get()))
        return Attempt::Again; // another writer removed it as a leftover before it was locked
    mPending = true;
    if (!isLocked)
        return Attempt::Failed;
    if (!keepsMode)
        return Attempt::Done;
    if (fchown(mFile.get(), old.st_uid, old.st_gid) != 0)
        errno = 0; // only the superuser may change the owner; without that, the writer is the owner
    return fchmod(mFile.get(), old.st_mode & 0777) == 0 ? Attempt::Done : Attempt::Failed;
}

ReplacementFile::Attempt ReplacementFile::removeOld(Deadline deadline)
{
    const FileHandle old = openForLock(mBeside, O_NOFOLLOW);
    if (!old)
        return errno == ENOENT ? Attempt::Again : Attempt::Failed;
    // When we get the lock, the writer has ended or has renamed its file.
    const Lock lock = waitForLock(old.get(), LOCK_EX, deadline);
    if (!mayUse(lock) || (lock == Lock::Unknown && !staysUnchanged(old.get(), deadline)))
        return Attempt::Failed;
    const bool isLeftover = namesFile(mBeside, old.get());
    if (isLeftover && unlink(mBeside.c_str()) != 0 && errno != ENOENT)
        return Attempt::Failed;
    return Attempt::Again;
}

bool ReplacementFile::targetIsUnchanged() const
{
    if (mMode == Mode::Replaced)
        return true;
    if (mTargetLock)
        return namesFile(mTarget, mTargetLock.get());
    const bool isTaken = nameIsTaken(mTarget);
    errno = isTaken ? EEXIST : errno;
    return !isTaken;
}

bool ReplacementFile::putInPlace() const
{
    // Without locks, another writer may have removed our file as a leftover.
    if (!namesFile(mBeside, mFile.get())) {
        errno = nameIsTaken(mBeside) ? EBUSY : ENOENT;
        return false;
    }
    return mMode == Mode::Fresh ? renameWithoutReplacing(mBeside, mTarget)
                                : rename(mBeside.c_str(), mTarget.c_str()) == 0;
}

bool ReplacementFile::commit(Durability durability)
{
    const bool isSynced = durability != Durability::Unsynced;
    if (!mPending || (isSynced && fsync(mFile.get()) != 0) || !putInPlace())
        return false;
    mPending = false;
    if (durability == Durability::Synced)
        syncFolderOf(mTarget); // the new content is in place, so a failure here is none of `commit`
    return true;
}

void ReplacementFile::abandon()
{
    const int reason = errno;
    if (std::exchange(mPending, false))
        unlink(mBeside.c_str());
    errno = reason;
    mFile.reset();
    mTargetLock.reset();
}

std::string ReplacementFile::besideName(const std::string& target)
{
    const fileString path(target);
    const std::string name = path.stemWithExtension().toNativeString();
    const std::string beside = "." + name.substr(0, kNameBytesKept) + "." + hashText(name) + ".orv-new";
    return path.parentPathWithSeparator().toNativeString() + beside;
}

void ReplacementFile::removeLeftover(const std::string& target)
{
    const std::string beside = besideName(target);
    const FileHandle old = openForLock(beside, O_NOFOLLOW);
    if (old && tryLock(old.get(), LOCK_EX) == Lock::Held && namesFile(beside, old.get()))
        unlink(beside.c_str());
}

} // namespace host
