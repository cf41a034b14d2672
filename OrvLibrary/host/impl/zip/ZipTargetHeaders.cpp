// Writes the records of an archive: local headers, directory and end records.
#include <algorithm>

#include "OrvLibrary/host/impl/zip/ZipTarget_p.h"
#include "OrvLibrary/host/impl/zip/ZipText_p.h"

namespace ZipUtils {

namespace {

/// A zip64 field with the sizes that are too large for the short fields; empty if there are none.
std::string zip64Field(std::initializer_list<std::uint64_t> values)
{
    std::string content;
    for (const std::uint64_t value : values) {
        if (value >= kSee64In32)
            put64(content, value);
    }
    std::string field;
    if (!content.empty()) {
        put16(field, kExtraZip64);
        put16(field, content.size());
        field += content;
    }
    return field;
}

std::uint32_t shortOr64(std::uint64_t value)
{
    return static_cast<std::uint32_t>(std::min<std::uint64_t>(value, kSee64In32));
}

/// The fields of an extra block that are still true in the copy.
std::string keptExtra(std::string_view extra, bool renamed)
{
    std::string kept = withoutExtraField(extra, kExtraZip64);
    return renamed ? withoutExtraField(kept, kExtraUnicodePath) : kept;
}

/// Whether the sizes need zip64 fields.
bool isWide(const ZipEntry& entry)
{
    return entry.size >= kSee64In32 || entry.compressedSize >= kSee64In32;
}

/// The fields that both headers have in common, from the version to the sizes.
void putSharedFields(std::string& out, const ZipEntry& entry, std::string_view name, bool isWide)
{
    std::uint16_t flags = entry.flags & static_cast<std::uint16_t>(~kFlagDescriptor);
    if (name != entry.name) {
        flags &= static_cast<std::uint16_t>(~kFlagUtf8);
        flags |= needsUtf8Flag(name) ? kFlagUtf8 : 0;
    }
    put16(out, std::max<std::uint16_t>(entry.versionNeeded, isWide ? kVersionZip64 : 0));
    put16(out, flags);
    put16(out, entry.method);
    put16(out, entry.time);
    put16(out, entry.date);
    put32(out, entry.checksum);
}

} // namespace

std::string ZipTarget::localExtra(const Member& member)
{
    const ZipEntry& entry = *member.entry;
    std::string extra;
    if (isWide(entry)) { // the local zip64 field always has both sizes
        put16(extra, kExtraZip64);
        put16(extra, 16);
        put64(extra, entry.size);
        put64(extra, entry.compressedSize);
    }
    return extra + keptExtra(member.source->localExtra(entry), member.name != entry.name);
}

std::string ZipTarget::centralExtra(const Member& member)
{
    const ZipEntry& entry = *member.entry;
    return zip64Field({entry.size, entry.compressedSize, member.headerOffset}) +
           keptExtra(entry.extra, member.name != entry.name);
}

bool ZipTarget::fits(const Member& member)
{
    constexpr std::size_t kLongest = 0xFFFF;
    return centralExtra(member).size() <= kLongest &&
           (canGoAsItIs(member) || localExtra(member).size() <= kLongest);
}

bool ZipTarget::canGoAsItIs(const Member& member)
{
    return member.entry->headerAgrees && member.name == member.entry->name;
}

std::string ZipTarget::localHeader(const Member& member)
{
    const ZipEntry& entry = *member.entry;
    const std::string extra = localExtra(member);

    std::string header;
    put32(header, kLocalHeaderSignature);
    putSharedFields(header, entry, member.name, isWide(entry));
    put32(header, isWide(entry) ? kSee64In32 : entry.compressedSize);
    put32(header, isWide(entry) ? kSee64In32 : entry.size);
    put16(header, member.name.size());
    put16(header, extra.size());
    return header + member.name + extra;
}

std::string ZipTarget::centralRecord(const Member& member)
{
    const ZipEntry& entry = *member.entry;
    const std::string extra = centralExtra(member);
    const bool isLarge = isWide(entry) || member.headerOffset >= kSee64In32;

    std::string record;
    put32(record, kCentralRecordSignature);
    put16(record, entry.versionMadeBy);
    putSharedFields(record, entry, member.name, isLarge);
    put32(record, shortOr64(entry.compressedSize));
    put32(record, shortOr64(entry.size));
    put16(record, member.name.size());
    put16(record, extra.size());
    put16(record, entry.comment.size());
    put16(record, 0); // disk
    put16(record, entry.internalAttributes);
    put32(record, entry.externalAttributes);
    put32(record, shortOr64(member.headerOffset));
    return record.append(member.name).append(extra).append(entry.comment);
}

void ZipTarget::writeDirectory()
{
    const std::uint64_t start = mOutput.position();
    for (const Member& member : mMembers) {
        if (member.source)
            mOutput.append(centralRecord(member));
    }
    writeEndRecords(mByName.size(), start, mOutput.position() - start);
}

void ZipTarget::writeEndRecords(std::uint64_t members, std::uint64_t offset, std::uint64_t size)
{
    std::string end;
    if (members >= kSee64In16 || offset >= kSee64In32 || size >= kSee64In32) {
        put32(end, kZip64EndRecordSignature);
        put64(end, kZip64EndRecordSize - 12);
        put16(end, kVersionZip64); // made by
        put16(end, kVersionZip64); // needed
        put32(end, 0);             // this disk
        put32(end, 0);             // disk of the directory
        put64(end, members);
        put64(end, members);
        put64(end, size);
        put64(end, offset);
        put32(end, kZip64LocatorSignature);
        put32(end, 0); // disk of the record
        put64(end, offset + size);
        put32(end, 1); // disks
    }
    const std::string comment = mExisting ? mExisting->comment() : std::string();
    const std::uint64_t shortMembers = std::min<std::uint64_t>(members, kSee64In16);
    put32(end, kEndRecordSignature);
    put32(end, 0); // disks
    put16(end, shortMembers);
    put16(end, shortMembers);
    put32(end, shortOr64(size));
    put32(end, shortOr64(offset));
    put16(end, comment.size());
    mOutput.append(end + comment);
}

} // namespace ZipUtils
