// How it works: the functions that need one archive open it as a `ZipArchive`; those that read one member
// first find the archive's end in its address. `getFilesDataInArchive` makes a `ZipBatch` for everything that
// is written and an `ArchiveHandle` for the walk. The callback's calls (write, extract, leave out) go to this
// handle. When the walk is over, the batch gives all written files their names, or none of them.
#include "OrvLibrary/host/ZipUtils.h"

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <stdexcept>
#include <utility>

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

/// Finds a walk of this thread over the archive in `address`. So bytes that are read inside a walk count for
/// it.
const ArchiveHandle* walkOf(const std::string& address)
{
    return ArchiveHandle::findActive([&](const ArchiveHandle& walk) {
        const std::string start = walk.archive()->path().toNativeString() + kDelimiter;
        return address.compare(0, start.size(), start) == 0;
    });
}

/// Opens the member that an address names. The archive's path and the member's name may contain the
/// delimiter, too. So each delimiter is tried: the right one has an archive on its left that holds the
/// member.
OpenMember openMember(const std::string& address)
{
    const auto nameFrom = [&](std::size_t at) { return address.substr(at + std::strlen(kDelimiter)); };
    if (const ArchiveHandle* walk = walkOf(address))
        return memberOf(walk->archive(), nameFrom(walk->archive()->path().toNativeString().size()));
    std::string reason = address + ": no such archive";
    bool hasReason = false;
    for (std::size_t at = address.find(kDelimiter); at != std::string::npos;
         at = address.find(kDelimiter, at + 1)) {
        std::error_code error;
        const std::string path = address.substr(0, at);
        if (!std::filesystem::is_regular_file(path, error))
            continue;
        try {
            return memberOf(std::make_shared<ZipArchive>(fileString(path)), nameFrom(at));
        } catch (const std::runtime_error& failure) {
            if (!std::exchange(hasReason, true))
                reason = failure.what();
        }
    }
    throw std::runtime_error(reason);
}

bool isWritableArchive(const fileString& path)
{
    const std::optional<struct stat> status = host::fileStatus(path.toNativeString());
    if (!status || !host::mayWrite(path.toNativeString(), *status))
        return false;
    try {
        const ZipArchive opened(path);
        return true;
    } catch (const std::runtime_error&) {
        return false;
    }
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
    return sizeOfContent(ZipArchive(archive));
}

std::vector<fileString> getFilenamesInArchive(const fileString& archive)
{
    const ZipArchive opened(archive);
    std::vector<fileString> names;
    names.reserve(opened.entries().size());
    for (const ZipEntry& entry : opened.entries())
        names.emplace_back(std::string(entry.name));
    return names;
}

void getFilesDataInArchive(const fileString& archive, const MemberCallback& callback)
{
    ZipBatch batch(nullptr);
    ArchiveHandle(archive, batch).walk(callback);
    batch.complete();
}

bool writeFileToArchiveRaw(const fileString& target, const fileString& member, ArchiveHandle& handle,
                           bool create, const RawDataInfo& rawInfo)
{
    return handle.writeRaw(target, member, create, rawInfo);
}

bool extractFileFromArchive(const fileString& target, ArchiveHandle& handle, const RawDataInfo& rawInfo)
{
    return handle.extract(target, rawInfo);
}

void leaveOutMember(ArchiveHandle& handle, const RawDataInfo& rawInfo)
{
    handle.leaveOut(rawInfo);
}

bool canAddToArchive(const fileString& archive)
{
    const ArchiveHandle* innermost = ArchiveHandle::findActive([](const ArchiveHandle&) { return true; });
    return innermost ? canAddToArchive(archive, *innermost) : isWritableArchive(archive);
}

bool canAddToArchive(const fileString& archive, const ArchiveHandle& handle)
{
    if (handle.batch().has(archive))
        return true;
    return !handle.batch().isRefused(archive) && isWritableArchive(archive);
}

bool isRefused(const fileString& target, const ArchiveHandle& handle)
{
    return handle.batch().isRefused(target);
}

class Q_DECL_HIDDEN ArchiveBatch::Private
{
public:
    explicit Private(std::shared_ptr<ProgressSubject> subject) : progress(subject), batch(std::move(subject))
    {
    }

    std::shared_ptr<ProgressSubject> progress; ///< may be null
    ZipBatch batch;
};

ArchiveBatch::ArchiveBatch(std::shared_ptr<ProgressSubject> progress)
    : mPrivate(std::make_unique<Private>(std::move(progress)))
{
}

ArchiveBatch::~ArchiveBatch() = default;

void ArchiveBatch::begin(const fileString& archive)
{
    mPrivate->batch.beginEmpty(archive);
}

void ArchiveBatch::walk(const fileString& archive, const MemberCallback& callback)
{
    ArchiveHandle handle(archive, mPrivate->batch);
    if (mPrivate->progress)
        mPrivate->progress->createSubProgress(sizeOfContent(*handle.archive()));
    handle.walk(callback);
}

void ArchiveBatch::complete()
{
    mPrivate->batch.complete();
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
