#include "OrvLibrary/host/impl/DownloadFile_p.h"

#include <cerrno>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

namespace {

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
    while (size > 0) {
        const ssize_t written = ::write(mFile->descriptor(), data, size);
        if (written < 0 && errno == EINTR)
            continue;
        if (written < 0) {
            reason = writeError(errno);
            return false;
        }
        data += written;
        size -= static_cast<std::size_t>(written);
        mSize += written;
    }
    writeBackEarly();
    return true;
}

/// Lets the disk work while the network does, so that the sync at the end has little left to wait for.
void DownloadFile::writeBackEarly()
{
    if (mSize - mWrittenBack >= kWriteBackStep)
        startWriteBack();
}

void DownloadFile::startWriteBack()
{
    if (!mFile || mSize == mWrittenBack)
        return;
    sync_file_range(mFile->descriptor(), mWrittenBack, mSize - mWrittenBack, SYNC_FILE_RANGE_WRITE);
    mWrittenBack = mSize;
}

bool DownloadFile::commit(std::string& reason)
{
    if (mFile->commit())
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
