#include "OrvLibrary/host/impl/zip/ZipMappedFile_p.h"

#include <algorithm>
#include <cerrno>
#include <exception>

#include <fcntl.h>
#include <sys/mman.h>

namespace ZipUtils {

MappedFile::MappedFile(int file, std::size_t size) : mSize(size)
{
    if (fallocate(file, 0, 0, static_cast<off_t>(size)) != 0) {
        const bool hasNoRoom = errno == ENOSPC || errno == EDQUOT || errno == EFBIG;
        mRefusal = hasNoRoom ? errno : 0;
        return;
    }
    void* pages = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    if (pages == MAP_FAILED)
        return;
    mPages = static_cast<unsigned char*>(pages);
    try {
        mThread = std::thread([this] { askForPages(); });
    } catch (const std::exception&) {
        // Without a thread, each page comes when it is written.
    }
}

MappedFile::~MappedFile()
{
    mIsStopped = true;
    if (mThread.joinable())
        mThread.join();
    if (mPages)
        munmap(mPages, mSize);
}

void MappedFile::askForPages() const noexcept
{
#ifdef MADV_POPULATE_WRITE
    constexpr std::size_t kStep = 8U << 20U;
    for (std::size_t offset = 0; offset < mSize && !mIsStopped; offset += kStep) {
        if (madvise(mPages + offset, std::min(kStep, mSize - offset), MADV_POPULATE_WRITE) != 0)
            return; // the system is too old for it
    }
#endif
}

} // namespace ZipUtils
