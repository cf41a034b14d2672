// How an archive is read: first comes the end record, searched from the end of the file. If one of its fields
// is too small for the value, a zip64 end record holds the value. Both tell where the directory is. The
// directory is read into memory at once. Each record in it is compared with the local header before the
// member's data (ZipDirectoryReaderHeaders.cpp). If a self-extracting program stands before the archive, all
// offsets count from the end of that program.
#include <algorithm>
#include <stdexcept>

#include "OrvLibrary/host/impl/zip/ZipDirectoryReader_p.h"

namespace ZipUtils {

struct ZipDirectoryReader::EndRecord
{
    /// Whether a field is in the zip64 record.
    bool refersToZip64() const
    {
        return members == kSee64In16 || directorySize == kSee64In32 || directoryOffset == kSee64In32;
    }

    std::uint64_t members = 0;
    std::uint64_t directorySize = 0;
    std::uint64_t directoryOffset = 0; ///< as written, without the prefix
    std::uint64_t directoryEnd = 0;    ///< from the start of the file
};

ZipDirectoryReader::ZipDirectoryReader(const ZipArchive& archive, std::uint64_t fileSize,
                                       std::vector<DamagedMember>* rejected)
    : mArchive(archive), mFileSize(fileSize), mRejected(rejected)
{
}

std::shared_ptr<const ZipDirectory> ZipDirectoryReader::read()
{
    const EndRecord end = readEndRecord();
    placeDirectory(end);
    readEntries(end);
    checkLocalHeaders();
    checkOverlaps();
    return mDirectory;
}

void ZipDirectoryReader::reject(const ZipEntry& entry, const std::exception& reason)
{
    mRejected->push_back({fileString(std::string(entry.name)), reason.what()});
}

namespace {

/// Takes the 64-bit value of a field.
/// @return false if the short field has another value and does not refer to the zip64 record
bool takeWide(std::uint64_t& field, std::uint64_t saturated, std::uint64_t wide)
{
    if (field != saturated && field != wide)
        return false;
    field = wide;
    return true;
}

} // namespace

/// Finds the last end record whose comment reaches exactly to the end of the file. A file that was cut off,
/// or that has bytes after the archive, has no such record.
std::size_t ZipDirectoryReader::findEndRecord(const std::string& tail) const
{
    for (std::size_t at = tail.size() < kEndRecordSize ? 0 : tail.size() - kEndRecordSize + 1; at-- > 0;) {
        const char* record = tail.data() + at;
        if (get32(record) == kEndRecordSignature && at + kEndRecordSize + get16(record + 20) == tail.size())
            return at;
    }
    mArchive.fail("not a zip archive, or cut short");
}

ZipDirectoryReader::EndRecord ZipDirectoryReader::readEndRecord()
{
    const std::uint64_t tailSize = std::min<std::uint64_t>(mFileSize, kEndRecordSize + 0xFFFF);
    std::string tail(tailSize, '\0');
    mArchive.readAt(mFileSize - tailSize, tail.data(), tail.size());
    const std::size_t at = findEndRecord(tail);
    const char* record = tail.data() + at;

    const bool onOneDisk = (get16(record + 4) == 0 && get16(record + 6) == 0) ||
                           (get16(record + 4) == kSee64In16 && get16(record + 6) == kSee64In16);
    if (!onOneDisk || get16(record + 8) != get16(record + 10))
        mArchive.fail("the archive spans several disks, or its end record is damaged");
    EndRecord end;
    end.members = get16(record + 10);
    end.directorySize = get32(record + 12);
    end.directoryOffset = get32(record + 16);
    end.directoryEnd = mFileSize - tailSize + at;
    mDirectory->comment = tail.substr(at + kEndRecordSize);
    if (end.directoryEnd >= kZip64LocatorSize)
        readZip64EndRecords(end);
    return end;
}

/// Reads the zip64 end record if there is one. If the end record does not refer to it, the bytes that look
/// like its locator may belong to a comment, so an error there is ignored. If they are a locator, the zip64
/// record is not part of the directory.
void ZipDirectoryReader::readZip64EndRecords(EndRecord& end) const
{
    const std::uint64_t locatorOffset = end.directoryEnd - kZip64LocatorSize;
    if (end.refersToZip64()) {
        readZip64EndRecord(locatorOffset, end);
        return;
    }
    try {
        readZip64EndRecord(locatorOffset, end);
    } catch (const std::runtime_error&) {
        // These bytes were not a locator.
    }
}

void ZipDirectoryReader::readZip64EndRecord(std::uint64_t locatorOffset, EndRecord& end) const
{
    char locator[kZip64LocatorSize];
    mArchive.readAt(locatorOffset, locator, sizeof locator);
    if (get32(locator) != kZip64LocatorSignature)
        return;
    const std::uint64_t offset = findZip64EndRecord(locatorOffset, locator);
    char record[kZip64EndRecordSize];
    mArchive.readAt(offset, record, sizeof record);
    if (get32(record + 16) != 0 || get32(record + 20) != 0 || get64(record + 24) != get64(record + 32))
        mArchive.fail("the archive spans several disks, or its end record is damaged");
    EndRecord wide = end;
    wide.directoryEnd = offset;
    if (!takeWide(wide.members, kSee64In16, get64(record + 32)) ||
        !takeWide(wide.directorySize, kSee64In32, get64(record + 40)) ||
        !takeWide(wide.directoryOffset, kSee64In32, get64(record + 48)))
        mArchive.fail("the two end records disagree");
    end = wide;
}

/// The locator's offset does not count a prefix before the archive. So the record is first searched directly
/// before the locator, then at that offset.
std::uint64_t ZipDirectoryReader::findZip64EndRecord(std::uint64_t locatorOffset, const char* locator) const
{
    const std::uint64_t written = get64(locator + 8);
    const std::uint64_t before = locatorOffset - std::min<std::uint64_t>(locatorOffset, kZip64EndRecordSize);
    for (const std::uint64_t candidate : {before, written}) {
        char start[12];
        if (candidate > locatorOffset || locatorOffset - candidate < kZip64EndRecordSize)
            continue;
        mArchive.readAt(candidate, start, sizeof start);
        const bool endsAtLocator = get64(start + 4) == locatorOffset - candidate - sizeof start;
        if (get32(start) == kZip64EndRecordSignature && endsAtLocator && candidate >= written)
            return candidate;
    }
    mArchive.fail("the zip64 end record is missing");
}

void ZipDirectoryReader::placeDirectory(const EndRecord& end)
{
    if (end.members > kMostMembers)
        mArchive.fail("more than 100,000 members");
    if (end.directorySize > kLargestDirectory || end.directorySize > end.directoryEnd)
        mArchive.fail("bad directory size");
    mDirectory->start = end.directoryEnd - end.directorySize;
    if (end.directoryOffset > mDirectory->start)
        mArchive.fail("bad directory offset");
    mBase = mDirectory->start - end.directoryOffset;
    // Otherwise every file whose last 22 bytes look like an end record would be an empty archive.
    if (end.members == 0 && mBase != 0)
        mArchive.fail("an empty archive behind other data");
}

void ZipDirectoryReader::readEntries(const EndRecord& end)
{
    mDirectory->bytes.resize(end.directorySize);
    mArchive.readAt(mDirectory->start, mDirectory->bytes.data(), mDirectory->bytes.size());
    mDirectory->entries.reserve(end.members);
    std::string_view rest = mDirectory->bytes;
    for (std::uint64_t i = 0; i < end.members; ++i) {
        const std::string_view record = rest;
        ZipEntry entry = readCentralRecord(rest);
        const std::uint16_t disk = get16(record.data() + 34);
        if (passes(entry, [&] { checkCentralRecord(entry, disk); }))
            mDirectory->entries.push_back(entry);
    }
    if (!rest.empty())
        mArchive.fail("the directory does not end where it should");
}

ZipEntry ZipDirectoryReader::readCentralRecord(std::string_view& rest) const
{
    const char* record = rest.data();
    if (rest.size() < kCentralRecordSize || get32(record) != kCentralRecordSignature)
        mArchive.fail("bad directory record");
    const std::size_t nameSize = get16(record + 28);
    const std::size_t extraSize = get16(record + 30);
    const std::size_t commentSize = get16(record + 32);
    if (rest.size() - kCentralRecordSize < nameSize + extraSize + commentSize)
        mArchive.fail("bad directory record");

    ZipEntry entry;
    entry.versionMadeBy = get16(record + 4);
    entry.versionNeeded = get16(record + 6);
    entry.flags = get16(record + 8);
    entry.method = get16(record + 10);
    entry.time = get16(record + 12);
    entry.date = get16(record + 14);
    entry.checksum = get32(record + 16);
    entry.compressedSize = get32(record + 20);
    entry.size = get32(record + 24);
    entry.internalAttributes = get16(record + 36);
    entry.externalAttributes = get32(record + 38);
    entry.headerOffset = get32(record + 42);
    rest.remove_prefix(kCentralRecordSize);
    entry.name = rest.substr(0, nameSize);
    entry.extra = rest.substr(nameSize, extraSize);
    entry.comment = rest.substr(nameSize + extraSize, commentSize);
    rest.remove_prefix(nameSize + extraSize + commentSize);
    return entry;
}

void ZipDirectoryReader::checkCentralRecord(ZipEntry& entry, std::uint16_t disk) const
{
    if (disk != 0 && disk != kSee64In16)
        mArchive.fail(entry, "lies on another disk");
    readZip64Sizes(entry);
    checkSizes(entry);
}

/// The zip64 field holds only those values that the short fields refer to, in this order.
void ZipDirectoryReader::readZip64Sizes(ZipEntry& entry) const
{
    std::string_view field = findExtraField(entry.extra, kExtraZip64);
    if (field.data() == nullptr)
        return;
    for (std::uint64_t* value : {&entry.size, &entry.compressedSize, &entry.headerOffset}) {
        if (*value != kSee64In32)
            continue;
        if (field.size() < 8)
            mArchive.fail(entry, "bad zip64 sizes");
        *value = get64(field.data());
        field.remove_prefix(8);
    }
}

void ZipDirectoryReader::checkSizes(const ZipEntry& entry) const
{
    constexpr std::uint64_t kAllowance = 1U << 20U;
    if ((entry.flags & kFlagMaskedDirectory) != 0)
        mArchive.fail("the directory is encrypted");
    if (entry.headerOffset > mDirectory->start - mBase || entry.compressedSize > mDirectory->start)
        mArchive.fail(entry, "lies outside the archive");
    if (entry.size > kMostExpansion * entry.compressedSize + kAllowance)
        mArchive.fail(entry, "claims to be more than 1,100 times its compressed size");
    if (entry.method == kMethodStored && !entry.isEncrypted() && entry.size != entry.compressedSize)
        mArchive.fail(entry, "is stored in another size than its own");
}

} // namespace ZipUtils
