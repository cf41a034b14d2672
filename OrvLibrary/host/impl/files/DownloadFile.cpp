// How it works: bytes are gathered up to 256 KB and then written in one call. After every 8 MB the system is
// told to begin writing to the disk. The file is either a `ReplacementFile` (private, removed after a
// failure) or the partial file (locked, kept after a failure). `commit` syncs it and renames it.
#include "OrvLibrary/host/impl/files/DownloadFile_p.h"

#include <cerrno>
#include <system_error>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include "OrvLibrary/host/FileUtils.h"

namespace host {

namespace {

/// The transfer library delivers at most 16 KB at a time; writing larger pieces is much faster.
constexpr std::size_t kPiece = 256 * 1024;
constexpr std::int64_t kWriteBackStep = 8 * 1024 * 1024;

std::string writeError(int number)
{
    return "write error: " + std::generic_category().message(number);
}

bool isFolder(const fileString& path)
{
    struct stat status;
    return stat(path.toNativeString().c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

} // namespace

DownloadFile::~DownloadFile()
{
    std::string reason;
    if (!mPartialFile)
        return;
    flush(reason); // a later download can continue them
    if (mSize == 0)
        discard();
}

bool DownloadFile::openPartial(int flags, std::string& reason)
{
    mPartialFile = openFile(mPartial.toNativeString(), O_RDWR | O_NOFOLLOW | flags, 0666);
    if (!mPartialFile)
        return false;
    struct stat status;
    const Lock lock = tryLock(mPartialFile.get(), LOCK_EX);
    const bool isOurs = fstat(mPartialFile.get(), &status) == 0 && S_ISREG(status.st_mode) &&
                        (lock == Lock::Held || lock == Lock::Unknown);
    if (!isOurs) {
        reason = "the partial file is in use";
        mPartialFile.reset();
        return false;
    }
    mSize = mWritten = mWrittenBack = status.st_size;
    return true;
}

bool DownloadFile::resume(std::string& reason)
{
    if (mPartial.empty() || openPartial(0, reason))
        return true;
    if (reason.empty() && errno != ENOENT)
        reason = writeError(errno);
    return reason.empty();
}

bool DownloadFile::read(const std::function<bool(const char*, std::size_t)>& take, std::string& reason)
{
    std::string piece(kPiece, '\0');
    for (off_t at = 0; at < mWritten;) {
        const ssize_t count = pread(descriptor(), piece.data(), piece.size(), at);
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0) {
            reason = "read error: " + std::generic_category().message(errno);
            return false;
        }
        if (!take(piece.data(), static_cast<std::size_t>(count)))
            return false;
        at += count;
    }
    return true;
}

void DownloadFile::discard()
{
    if (mPartialFile)
        unlink(mPartial.toNativeString().c_str());
    mPartialFile.reset();
}

bool DownloadFile::open(std::string& reason)
{
    // Report this before the transfer. Otherwise the rename would fail after it.
    if (isFolder(mTarget)) {
        reason = writeError(EISDIR);
        return false;
    }
    if (!mPartial.empty()) {
        mGathered.clear();
        if ((mPartialFile || openPartial(O_CREAT, reason)) && ftruncate(mPartialFile.get(), 0) == 0) {
            mSize = mWritten = mWrittenBack = 0;
            return true;
        }
        if (reason.empty())
            reason = writeError(errno);
        return false;
    }
    mFile = ReplacementFile::open(mTarget.toNativeString(), ReplacementFile::Mode::Replaced);
    if (!mFile)
        reason = writeError(errno);
    return mFile != nullptr;
}

bool DownloadFile::write(const char* data, std::size_t size, std::string& reason)
{
    if (mGathered.size() + size > kPiece && !flush(reason))
        return false;
    mGathered.append(data, size);
    mSize += static_cast<std::int64_t>(size);
    return true;
}

/// Writes the gathered bytes. After an error, those not yet written stay gathered.
bool DownloadFile::flush(std::string& reason)
{
    std::size_t done = 0;
    while (done < mGathered.size()) {
        const ssize_t written = pwrite(descriptor(), mGathered.data() + done, mGathered.size() - done,
                                       static_cast<off_t>(mWritten + static_cast<std::int64_t>(done)));
        if (written < 0 && errno == EINTR)
            continue;
        if (written < 0) {
            reason = writeError(errno);
            break;
        }
        done += static_cast<std::size_t>(written);
    }
    mWritten += static_cast<std::int64_t>(done);
    mGathered.erase(0, done);
    if (mWritten - mWrittenBack >= kWriteBackStep)
        startWriteBack();
    return mGathered.empty();
}

/// Starts writing to the disk while the network still delivers, so that the sync at the end is short.
void DownloadFile::startWriteBack()
{
    sync_file_range(descriptor(), mWrittenBack, mWritten - mWrittenBack, SYNC_FILE_RANGE_WRITE);
    mWrittenBack = mWritten;
}

void DownloadFile::restAtEnd()
{
    std::string reason;
    if (!isOpen() || !flush(reason))
        return; // `commit` writes again, and reports the error
    mGathered.shrink_to_fit();
    startWriteBack();
}

bool DownloadFile::commit(std::string& reason)
{
    if (!flush(reason))
        return false;
    if (mFile ? mFile->commit(ReplacementFile::Durability::ContentSynced) : nameTarget())
        return true;
    reason = writeError(errno);
    return false;
}

/// Renames the partial file to the target. After a failure `errno` holds the reason.
bool DownloadFile::nameTarget()
{
    if (fsync(mPartialFile.get()) != 0)
        return false;
    if (rename(mPartial.toNativeString().c_str(), mTarget.toNativeString().c_str()) != 0) {
        const int number = errno;
        // `rename` cannot move a file to another disk.
        if (number != EXDEV || !FileUtils::moveFile(mPartial, mTarget, false)) {
            errno = number;
            return false;
        }
    }
    mPartialFile.reset();
    return true;
}

SizeLimit DownloadFile::limit(std::int64_t most, const SpareSpace& spare) const
{
    struct statvfs status;
    DiskSpace disk;
    if (fstatvfs(descriptor(), &status) == 0) {
        const auto block = static_cast<std::int64_t>(status.f_frsize);
        disk = {static_cast<std::int64_t>(status.f_bavail) * block,
                static_cast<std::int64_t>(status.f_blocks) * block};
    }
    return SizeLimit(most, mSize, disk, spare);
}

} // namespace host
