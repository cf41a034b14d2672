#include "OrvLibrary/host/impl/files/ReplacementFile_p.h"

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <utility>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include "OrvLibrary/host/fileString.h"

namespace host {

namespace {

constexpr int kMostLinks = 40;
constexpr std::size_t kNameBytesKept = 180; // leaves room in the 255 bytes of a name

/// Where a chain of links ends, be there a file or not; empty for a circle.
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

/// FNV-1a, which tells names apart that share their first bytes.
std::string hashText(const std::string& text)
{
    std::uint64_t hash = 14695981039346656037u;
    for (const char c : text)
        hash = (hash ^ static_cast<unsigned char>(c)) * 1099511628211u;
    char digits[17];
    std::snprintf(digits, sizeof digits, "%016llx", static_cast<unsigned long long>(hash));
    return digits;
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
    if (!waitForLock(mTargetLock.get(), LOCK_EX, deadline))
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
    const bool isLocked = waitForLock(mFile.get(), LOCK_EX, deadline);
    if (!namesFile(mBeside, mFile.get()))
        return Attempt::Again; // taken for a leftover before it was locked
    mPending = true;
    if (!isLocked)
        return Attempt::Failed;
    if (!keepsMode)
        return Attempt::Done;
    if (fchown(mFile.get(), old.st_uid, old.st_gid) != 0)
        errno = 0; // only the superuser may give files away; the owner is then the writer
    return fchmod(mFile.get(), old.st_mode & 0777) == 0 ? Attempt::Done : Attempt::Failed;
}

ReplacementFile::Attempt ReplacementFile::removeOld(Deadline deadline)
{
    const FileHandle old = openForLock(mBeside, O_NOFOLLOW);
    if (!old)
        return errno == ENOENT ? Attempt::Again : Attempt::Failed;
    // Who gets the lock knows that the writer is gone, or has renamed its file.
    if (!waitForLock(old.get(), LOCK_EX, deadline))
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
    return mTargetLock ? namesFile(mTarget, mTargetLock.get()) : !nameIsTaken(mTarget);
}

bool ReplacementFile::commit(Durability durability)
{
    const bool isSynced = durability != Durability::Unsynced;
    if (!mPending || (isSynced && fsync(mFile.get()) != 0) || rename(mBeside.c_str(), mTarget.c_str()) != 0)
        return false;
    mPending = false;
    return durability != Durability::Synced || syncFolderOf(mTarget);
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
    if (old && flock(old.get(), LOCK_EX | LOCK_NB) == 0 && namesFile(beside, old.get()))
        unlink(beside.c_str());
}

} // namespace host
