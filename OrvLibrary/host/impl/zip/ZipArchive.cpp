#include "OrvLibrary/host/impl/zip/ZipArchive_p.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <stdexcept>

#include <unistd.h>

namespace ZipUtils {

void ZipArchive::open()
{
    mFile = host::openRegularFile(mPath.toNativeString());
    if (!mFile || fstat(mFile.get(), &mStatus) != 0)
        fail(std::strerror(errno));
    mFileSize = static_cast<std::uint64_t>(mStatus.st_size);
}

bool ZipArchive::isUnchanged() const
{
    const auto same = [](const timespec& a, const timespec& b) {
        return a.tv_sec == b.tv_sec && a.tv_nsec == b.tv_nsec;
    };
    const std::optional<struct stat> now = host::fileStatus(mPath.toNativeString());
    return now && now->st_dev == mStatus.st_dev && now->st_ino == mStatus.st_ino &&
           now->st_size == mStatus.st_size && same(now->st_mtim, mStatus.st_mtim) &&
           same(now->st_ctim, mStatus.st_ctim);
}

const ZipEntry* ZipArchive::find(std::string_view name) const
{
    if (mByName.empty()) {
        // Whole or not at all: where memory runs out in between, the next look-up must not miss a member.
        std::unordered_map<std::string_view, std::size_t> byName;
        for (std::size_t i = 0; i < mEntries.size(); ++i)
            byName[mEntries[i].name] = i;
        mByName.swap(byName);
    }
    const auto found = mByName.find(name);
    return found == mByName.end() ? nullptr : &mEntries[found->second];
}

std::uint64_t ZipArchive::prefixSize() const
{
    std::uint64_t first = mDirectoryStart;
    for (const ZipEntry& entry : mEntries)
        first = std::min(first, entry.headerOffset);
    return first;
}

void ZipArchive::readAt(std::uint64_t offset, char* buffer, std::size_t size) const
{
    while (size > 0) {
        const ssize_t got = pread(mFile.get(), buffer, size, static_cast<off_t>(offset));
        if (got < 0 && errno == EINTR)
            continue;
        if (got < 0)
            fail(std::strerror(errno));
        if (got == 0)
            fail("cut short");
        buffer += got;
        offset += static_cast<std::uint64_t>(got);
        size -= static_cast<std::size_t>(got);
    }
}

std::string ZipArchive::localExtra(const ZipEntry& entry) const
{
    const std::uint64_t start = entry.headerOffset + kLocalHeaderSize + entry.name.size();
    std::string extra(entry.dataOffset - start, '\0');
    readAt(start, extra.data(), extra.size());
    return extra;
}

void ZipArchive::fail(const std::string& reason) const
{
    throw std::runtime_error(mPath.toNativeString() + ": " + reason);
}

void ZipArchive::fail(const ZipEntry& entry, const std::string& reason) const
{
    fail("member \"" + std::string(entry.name) + "\": " + reason);
}

} // namespace ZipUtils
