// The end of an archive and its directory: found, read and checked.
#include <algorithm>

#include "OrvLibrary/host/impl/zip/ZipArchive_p.h"

namespace ZipUtils {

struct ZipArchive::EndRecord
{
    std::uint64_t members = 0;
    std::uint64_t directorySize = 0;
    std::uint64_t directoryOffset = 0; ///< as written: before a prefix is allowed for
    std::uint64_t directoryEnd = 0;    ///< from the start of the file
};

ZipArchive::ZipArchive(const fileString& path) : mPath(path)
{
    open();
    const EndRecord end = readEndRecord();
    placeDirectory(end);
    readDirectory(end);
    for (ZipEntry& entry : mEntries)
        checkLocalHeader(entry);
    checkOverlaps();
}

namespace {

/// A field of the end record: the 64 bit value where the short one refers to it.
/// @return false when both speak and disagree
bool takeWide(std::uint64_t& field, std::uint64_t saturated, std::uint64_t wide)
{
    if (field != saturated && field != wide)
        return false;
    field = wide;
    return true;
}

} // namespace

/// The last end record whose comment ends with the file: what follows a sound archive, or lacks at its end,
/// is not taken for a comment.
std::size_t ZipArchive::findEndRecord(const std::string& tail) const
{
    for (std::size_t at = tail.size() < kEndRecordSize ? 0 : tail.size() - kEndRecordSize + 1; at-- > 0;) {
        const char* record = tail.data() + at;
        if (get32(record) == kEndRecordSignature && at + kEndRecordSize + get16(record + 20) == tail.size())
            return at;
    }
    fail("not a zip archive, or cut short");
}

ZipArchive::EndRecord ZipArchive::readEndRecord()
{
    const std::uint64_t tailSize = std::min<std::uint64_t>(mFileSize, kEndRecordSize + 0xFFFF);
    std::string tail(tailSize, '\0');
    readAt(mFileSize - tailSize, tail.data(), tail.size());
    const std::size_t at = findEndRecord(tail);
    const char* record = tail.data() + at;

    const bool onOneDisk = (get16(record + 4) == 0 && get16(record + 6) == 0) ||
                           (get16(record + 4) == kSee64In16 && get16(record + 6) == kSee64In16);
    if (!onOneDisk || get16(record + 8) != get16(record + 10))
        fail("the archive spans several disks, or its end record is damaged");
    EndRecord end;
    end.members = get16(record + 10);
    end.directorySize = get32(record + 12);
    end.directoryOffset = get32(record + 16);
    end.directoryEnd = mFileSize - tailSize + at;
    mComment = tail.substr(at + kEndRecordSize);
    if (end.directoryEnd >= kZip64LocatorSize)
        readZip64EndRecord(end.directoryEnd - kZip64LocatorSize, end);
    return end;
}

void ZipArchive::readZip64EndRecord(std::uint64_t locatorOffset, EndRecord& end) const
{
    char locator[kZip64LocatorSize];
    readAt(locatorOffset, locator, sizeof locator);
    if (get32(locator) != kZip64LocatorSignature)
        return;
    const std::uint64_t offset = findZip64EndRecord(locatorOffset, locator);
    char record[kZip64EndRecordSize];
    readAt(offset, record, sizeof record);
    if (get32(record + 16) != 0 || get32(record + 20) != 0 || get64(record + 24) != get64(record + 32))
        fail("the archive spans several disks, or its end record is damaged");
    if (!takeWide(end.members, kSee64In16, get64(record + 32)) ||
        !takeWide(end.directorySize, kSee64In32, get64(record + 40)) ||
        !takeWide(end.directoryOffset, kSee64In32, get64(record + 48)))
        fail("the two end records disagree");
    end.directoryEnd = offset;
}

/// The locator does not know of a prefix, so the record is looked for right before it first.
std::uint64_t ZipArchive::findZip64EndRecord(std::uint64_t locatorOffset, const char* locator) const
{
    const std::uint64_t written = get64(locator + 8);
    const std::uint64_t before = locatorOffset - std::min<std::uint64_t>(locatorOffset, kZip64EndRecordSize);
    for (const std::uint64_t candidate : {before, written}) {
        char start[12];
        if (candidate > locatorOffset || locatorOffset - candidate < kZip64EndRecordSize)
            continue;
        readAt(candidate, start, sizeof start);
        const bool endsAtLocator = get64(start + 4) == locatorOffset - candidate - sizeof start;
        if (get32(start) == kZip64EndRecordSignature && endsAtLocator && candidate >= written)
            return candidate;
    }
    fail("the zip64 end record is missing");
}

void ZipArchive::placeDirectory(const EndRecord& end)
{
    if (end.members > kMaximumMembers)
        fail("more than 100,000 members");
    if (end.directorySize > kMaximumDirectorySize || end.directorySize > end.directoryEnd)
        fail("bad directory size");
    mDirectoryStart = end.directoryEnd - end.directorySize;
    if (end.directoryOffset > mDirectoryStart)
        fail("bad directory offset");
    mBase = mDirectoryStart - end.directoryOffset;
    // Anything with 22 fitting bytes at its end would pass for an empty archive otherwise.
    if (end.members == 0 && mBase != 0)
        fail("an empty archive behind other data");
}

void ZipArchive::readDirectory(const EndRecord& end)
{
    if (end.members * kCentralRecordSize > end.directorySize)
        fail("bad directory size");
    mDirectory.resize(end.directorySize);
    readAt(mDirectoryStart, mDirectory.data(), mDirectory.size());
    mEntries.reserve(end.members);
    std::string_view rest = mDirectory;
    for (std::uint64_t i = 0; i < end.members; ++i)
        mEntries.push_back(readCentralRecord(rest));
    if (!rest.empty())
        fail("the directory does not end where it should");
}

ZipEntry ZipArchive::readCentralRecord(std::string_view& rest) const
{
    const char* record = rest.data();
    if (rest.size() < kCentralRecordSize || get32(record) != kCentralRecordSignature)
        fail("bad directory record");
    const std::size_t nameSize = get16(record + 28);
    const std::size_t extraSize = get16(record + 30);
    const std::size_t commentSize = get16(record + 32);
    if (rest.size() - kCentralRecordSize < nameSize + extraSize + commentSize)
        fail("bad directory record");

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
    if (get16(record + 34) != 0 && get16(record + 34) != kSee64In16)
        fail(entry, "lies on another disk");
    readZip64Sizes(entry);
    checkSizes(entry);
    return entry;
}

/// The zip64 field holds only the values that the short fields refer to it, in this order.
void ZipArchive::readZip64Sizes(ZipEntry& entry) const
{
    std::string_view field = findExtraField(entry.extra, kExtraZip64);
    if (field.data() == nullptr)
        return;
    for (std::uint64_t* value : {&entry.size, &entry.compressedSize, &entry.headerOffset}) {
        if (*value != kSee64In32)
            continue;
        if (field.size() < 8)
            fail(entry, "bad zip64 sizes");
        *value = get64(field.data());
        field.remove_prefix(8);
    }
}

void ZipArchive::checkSizes(const ZipEntry& entry) const
{
    constexpr std::uint64_t kExpansion = 1100;
    constexpr std::uint64_t kAllowance = 1U << 20U;
    if ((entry.flags & kFlagMaskedDirectory) != 0)
        fail("the directory is encrypted");
    if (entry.headerOffset > mDirectoryStart - mBase || entry.compressedSize > mDirectoryStart)
        fail(entry, "lies outside the archive");
    if (entry.size > kExpansion * entry.compressedSize + kAllowance)
        fail(entry, "claims to be more than 1,100 times its compressed size");
    if (entry.method == kMethodStored && !entry.isEncrypted() && entry.size != entry.compressedSize)
        fail(entry, "is stored in another size than its own");
}

} // namespace ZipUtils
