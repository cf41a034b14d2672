#include "OrvLibrary/host/ZipUtils.h"

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <stdexcept>

#include "OrvLibrary/host/impl/zip/ZipBatch_p.h"
#include "OrvLibrary/host/impl/zip/ZipMember_p.h"
#include "OrvLibrary/host/impl/zip/ZipWalk_p.h"

namespace ZipUtils {

namespace {

constexpr const char* kDelimiter = "::";

/// A member of an archive that is open for it.
struct OpenMember
{
    std::shared_ptr<const ZipArchive> archive;
    const ZipEntry* entry = nullptr;
};

OpenMember memberOf(std::shared_ptr<const ZipArchive> archive, const std::string& name)
{
    const ZipEntry* entry = archive->find(name);
    if (!entry)
        archive->fail("no member \"" + name + "\"");
    return {std::move(archive), entry};
}

/// Opens the member that an address names. The delimiter may occur in paths and names as well: the archive of
/// a walk on this thread comes first, then the first occurrence with a regular file on its left.
OpenMember openMember(const std::string& address)
{
    const auto startOf = [](const ArchiveHandle& walk) {
        return walk.archive()->path().toNativeString() + kDelimiter;
    };
    const ArchiveHandle* walk = ArchiveHandle::findActive([&](const ArchiveHandle& candidate) {
        const std::string start = startOf(candidate);
        return address.compare(0, start.size(), start) == 0;
    });
    if (walk)
        return memberOf(walk->archive(), address.substr(startOf(*walk).size()));
    for (std::size_t at = address.find(kDelimiter); at != std::string::npos;
         at = address.find(kDelimiter, at + 1)) {
        std::error_code error;
        const std::string path = address.substr(0, at);
        if (std::filesystem::is_regular_file(path, error))
            return memberOf(std::make_shared<ZipArchive>(fileString(path)),
                            address.substr(at + std::strlen(kDelimiter)));
    }
    throw std::runtime_error(address + ": no such archive");
}

} // namespace

fileString getExtension()
{
    return fileString(".zip");
}

fileString getDelimiter()
{
    return fileString(kDelimiter);
}

std::uint64_t getSizeOfArchive(const fileString& archive)
{
    const std::shared_ptr<const ZipArchive> opened = openArchive(archive);
    std::uint64_t total = 0;
    for (const ZipEntry& entry : opened->entries())
        total += std::min(entry.size, UINT64_MAX - total);
    return total;
}

std::vector<fileString> getFilenamesInArchive(const fileString& archive)
{
    const std::shared_ptr<const ZipArchive> opened = openArchive(archive);
    std::vector<fileString> names;
    names.reserve(opened->entries().size());
    for (const ZipEntry& entry : opened->entries())
        names.emplace_back(std::string(entry.name));
    return names;
}

void getFilesDataInArchive(const fileString& archive, const MemberCallback& callback)
{
    ArchiveHandle(archive).walk(callback);
}

bool writeFileToArchiveRaw(const fileString& target, const fileString& member, ArchiveHandle& handle,
                           bool create, const RawDataInfo& rawInfo)
{
    return handle.writeRaw(target, member, create, rawInfo);
}

bool canAddToArchive(const fileString& archive)
{
    if (currentBatch() && currentBatch()->has(archive))
        return true;
    if (ArchiveHandle::findActive([&](const ArchiveHandle& walk) { return walk.hasTarget(archive); }))
        return true;
    try {
        const ZipArchive opened(archive);
        const std::optional<struct stat> status = host::fileStatus(archive.toNativeString());
        return status && host::mayWrite(archive.toNativeString(), *status);
    } catch (const std::runtime_error&) {
        return false;
    }
}

void writeFileDataFromArchive(const fileString& memberAddress, const DataCallback& callback)
{
    const OpenMember member = openMember(memberAddress.toNativeString());
    const std::vector<unsigned char> content = readWholeMember(*member.archive, *member.entry);
    ArchiveHandle::noteVerified(*member.archive, *member.entry);
    callback(content);
}

class Q_DECL_HIDDEN ZipInputStream::Private
{
public:
    explicit Private(OpenMember member)
        : mMember(std::move(member)), mStream(*mMember.archive, *mMember.entry)
    {
    }

    std::vector<unsigned char> read(std::size_t maxBytes)
    {
        std::vector<unsigned char> piece(std::min<std::uint64_t>(maxBytes, mStream.remaining()));
        mStream.read(piece.data(), piece.size());
        if (atEnd())
            ArchiveHandle::noteVerified(*mMember.archive, *mMember.entry);
        return piece;
    }

    bool atEnd() const { return mStream.remaining() == 0; }

private:
    OpenMember mMember;
    ZipMemberStream mStream;
};

ZipInputStream::ZipInputStream(const fileString& memberAddress)
    : mPrivate(std::make_unique<Private>(openMember(memberAddress.toNativeString())))
{
}

ZipInputStream::~ZipInputStream() = default;

bool ZipInputStream::isFileOpen() const
{
    return mPrivate != nullptr;
}

std::vector<unsigned char> ZipInputStream::readArchivedFile(std::size_t maxBytes)
{
    return mPrivate->read(maxBytes);
}

bool ZipInputStream::reachedEOF() const
{
    return mPrivate->atEnd();
}

} // namespace ZipUtils
