#include "OrvLibrary/host/impl/http/DownloadFile_p.h"

#include <cerrno>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

namespace {

/// The transfer library hands out 16 KB at a time. The system takes larger pieces much sooner.
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

bool DownloadFile::open(std::string& reason)
{
    // Found out before the transfer, not by the rename after it.
    if (isFolder(mTarget)) {
        reason = writeError(EISDIR);
        return false;
    }
    mFile = host::ReplacementFile::open(mTarget.toNativeString(), host::ReplacementFile::Mode::Replaced);
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

/// Writes what was gathered. What was not written stays gathered.
bool DownloadFile::flush(std::string& reason)
{
    std::size_t done = 0;
    while (done < mGathered.size()) {
        const ssize_t written =
            ::write(mFile->descriptor(), mGathered.data() + done, mGathered.size() - done);
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

/// Lets the disk work while the network does, so that the sync at the end has little left to wait for.
void DownloadFile::startWriteBack()
{
    sync_file_range(mFile->descriptor(), mWrittenBack, mWritten - mWrittenBack, SYNC_FILE_RANGE_WRITE);
    mWrittenBack = mWritten;
}

void DownloadFile::restAtEnd()
{
    std::string reason;
    if (!mFile || !flush(reason))
        return; // `commit` tries once more, and tells
    mGathered.shrink_to_fit();
    startWriteBack();
}

bool DownloadFile::commit(std::string& reason)
{
    if (!flush(reason))
        return false;
    if (mFile->commit(host::ReplacementFile::Durability::ContentSynced))
        return true;
    reason = writeError(errno);
    return false;
}

std::int64_t DownloadFile::freeBytes() const
{
    struct statvfs status;
    if (fstatvfs(mFile->descriptor(), &status) != 0)
        return -1;
    return static_cast<std::int64_t>(status.f_bavail) * static_cast<std::int64_t>(status.f_frsize);
}
