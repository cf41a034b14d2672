#include "OrvLibrary/host/impl/zip/ZipArchive_p.h"

#include <cerrno>
#include <cstring>
#include <stdexcept>

#include <unistd.h>

#include "OrvLibrary/host/impl/zip/ZipDirectoryCache_p.h"
#include "OrvLibrary/host/impl/zip/ZipDirectoryReader_p.h"
#include "OrvLibrary/host/impl/zip/ZipMemberScan_p.h"

namespace ZipUtils {

ZipArchive::ZipArchive(const fileString& path) : mPath(path)
{
    open();
    mDirectory = DirectoryCache::find(mStatus);
    if (mDirectory)
        return;
    mDirectory = ZipDirectoryReader(*this, static_cast<std::uint64_t>(mStatus.st_size), nullptr).read();
    DirectoryCache::keep(mStatus, mDirectory);
}

ZipArchive::ZipArchive(const fileString& path, std::vector<DamagedMember>& rejected) : mPath(path)
{
    open();
    const auto size = static_cast<std::uint64_t>(mStatus.st_size);
    const std::size_t before = rejected.size();
    try {
        mDirectory = ZipDirectoryReader(*this, size, &rejected).read();
    } catch (const std::runtime_error& reason) {
        rejected.resize(before);
        rejected.push_back({fileString(), reason.what()});
        mDirectory = ZipMemberScan(*this, size).read();
    }
}

void ZipArchive::open()
{
    mFile = host::openRegularFile(mPath.toNativeString());
    if (!mFile || fstat(mFile.get(), &mStatus) != 0)
        fail(std::strerror(errno));
}

std::size_t ZipArchive::indexOf(const ZipEntry& entry) const
{
    return static_cast<std::size_t>(&entry - entries().data());
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
