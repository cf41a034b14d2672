// Compares the local headers with the directory and finds where each member's data begins.
#include <algorithm>
#include <numeric>

#include "OrvLibrary/host/impl/zip/ZipDirectoryReader_p.h"

namespace ZipUtils {

namespace {

/// Whether version, flags and times are the same as in the directory.
bool sameFields(const ZipEntry& entry, const char* header)
{
    return get16(header + 4) == entry.versionNeeded && get16(header + 6) == entry.flags &&
           get16(header + 10) == entry.time && get16(header + 12) == entry.date;
}

} // namespace

void ZipDirectoryReader::checkLocalHeaders()
{
    std::vector<bool> isRejected;
    for (ZipEntry& entry : mDirectory->entries)
        isRejected.push_back(!passes(entry, [&] { checkLocalHeader(entry); }));
    dropRejected(isRejected);
}

void ZipDirectoryReader::checkLocalHeader(ZipEntry& entry) const
{
    entry.headerOffset += mBase;
    constexpr std::size_t kReadAhead = 128; // enough to read most extra blocks with the header
    const std::uint64_t room = mDirectory->start - entry.headerOffset;
    const std::size_t fixed = kLocalHeaderSize + entry.name.size();
    if (room < fixed)
        mArchive.fail(entry, "lies outside the archive");
    std::string header(std::min<std::uint64_t>(room, fixed + kReadAhead), '\0');
    mArchive.readAt(entry.headerOffset, header.data(), header.size());
    if (get32(header.data()) != kLocalHeaderSignature)
        mArchive.fail(entry, "has no local header");

    const std::uint16_t flags = get16(header.data() + 6);
    const std::size_t extraSize = get16(header.data() + 28);
    const std::string_view name(header.data() + kLocalHeaderSize, entry.name.size());
    if (get16(header.data() + 26) != entry.name.size() || name != entry.name ||
        get16(header.data() + 8) != entry.method || ((flags ^ entry.flags) & kFlagEncrypted) != 0)
        mArchive.fail(entry, "differs between local header and directory");
    if (extraSize > room - fixed || entry.compressedSize > room - fixed - extraSize)
        mArchive.fail(entry, "lies outside the archive");
    entry.dataOffset = entry.headerOffset + fixed + extraSize;
    entry.hasDescriptor = ((flags | entry.flags) & kFlagDescriptor) != 0;

    const bool whole = fixed + extraSize <= header.size();
    const std::string extra = whole ? header.substr(fixed, extraSize) : mArchive.localExtra(entry);
    if (!entry.hasDescriptor)
        checkLocalSizes(entry, header.data(), extra);
    // Method, checksum and sizes were compared above.
    entry.headerAgrees = !entry.hasDescriptor && sameFields(entry, header.data()) &&
                         findExtraField(extra, kExtraZip64).data() == nullptr;
}

void ZipDirectoryReader::checkLocalSizes(const ZipEntry& entry, const char* header,
                                         std::string_view extra) const
{
    std::uint64_t compressedSize = get32(header + 18);
    std::uint64_t size = get32(header + 22);
    std::string_view field = findExtraField(extra, kExtraZip64);
    for (std::uint64_t* value : {&size, &compressedSize}) {
        if (*value == kSee64In32 && field.size() >= 8) {
            *value = get64(field.data());
            field.remove_prefix(8);
        }
    }
    if (get32(header + 14) != entry.checksum || compressedSize != entry.compressedSize || size != entry.size)
        mArchive.fail(entry, "differs between local header and directory");
}

/// If two members share bytes, the one that starts later counts as damaged.
void ZipDirectoryReader::checkOverlaps()
{
    std::vector<ZipEntry>& entries = mDirectory->entries;
    const auto earlier = [&](std::size_t a, std::size_t b) {
        return entries[a].headerOffset < entries[b].headerOffset;
    };
    std::vector<std::size_t> order(entries.size());
    std::iota(order.begin(), order.end(), 0U);
    std::sort(order.begin(), order.end(), earlier);
    std::vector<bool> isRejected(entries.size(), false);
    std::uint64_t end = 0;
    for (const std::size_t i : order) {
        isRejected[i] = !passes(entries[i], [&] {
            if (end > entries[i].headerOffset)
                mArchive.fail(entries[i], "overlaps another member");
        });
        if (!isRejected[i])
            end = entries[i].dataEnd();
    }
    dropRejected(isRejected);
}

void ZipDirectoryReader::dropRejected(const std::vector<bool>& isRejected)
{
    std::size_t i = 0;
    const auto rejected = [&](const ZipEntry&) { return isRejected[i++]; };
    std::vector<ZipEntry>& entries = mDirectory->entries;
    entries.erase(std::remove_if(entries.begin(), entries.end(), rejected), entries.end());
}

} // namespace ZipUtils
