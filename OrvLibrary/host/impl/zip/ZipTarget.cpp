#include "OrvLibrary/host/impl/zip/ZipTarget_p.h"

#include <algorithm>
#include <stdexcept>

#include "OrvLibrary/host/impl/zip/ZipText_p.h"

namespace ZipUtils {

namespace {

bool isSeparator(char c)
{
    return c == '/' || c == '\\';
}

bool hasParentComponent(std::string_view name)
{
    while (!name.empty()) {
        const auto end = std::find_if(name.begin(), name.end(), isSeparator);
        const auto size = static_cast<std::size_t>(end - name.begin());
        if (name.substr(0, size) == "..")
            return true;
        name.remove_prefix(std::min(size + 1, name.size()));
    }
    return false;
}

bool hasDriveLetter(std::string_view name)
{
    const auto isLetter = [](char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); };
    return name.size() >= 2 && name[1] == ':' && isLetter(name[0]);
}

/// The sizes that do not fit the short fields, as a zip64 field; empty when all fit.
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

/// Everything of an extra block that still holds in the copy.
std::string keptExtra(std::string_view extra, bool renamed)
{
    std::string kept = withoutExtraField(extra, kExtraZip64);
    return renamed ? withoutExtraField(kept, kExtraUnicodePath) : kept;
}

} // namespace

bool isSafeMemberName(std::string_view name)
{
    constexpr std::size_t kLongestName = 4096;
    return !name.empty() && name.size() <= kLongestName && !isSeparator(name.front()) &&
           name.find('\0') == std::string_view::npos && !hasDriveLetter(name) && !hasParentComponent(name);
}

std::unique_ptr<ZipTarget> ZipTarget::begin(const fileString& path, bool create)
{
    if (path.empty() || (!create && !path.pathExists()))
        return nullptr;
    try {
        // Locked before it is read, so that no other writer's members are lost.
        std::unique_ptr<ZipTarget> target(new ZipTarget(path, host::kLockWait));
        return target->takeExisting(path) || create ? std::move(target) : nullptr;
    } catch (const std::runtime_error&) {
        return nullptr;
    }
}

std::unique_ptr<ZipTarget> ZipTarget::beginEmpty(const fileString& path, std::chrono::milliseconds wait)
{
    return std::unique_ptr<ZipTarget>(new ZipTarget(path, wait));
}

/// @return false when there is none, or none that is sound
bool ZipTarget::takeExisting(const fileString& path)
{
    try {
        mExisting = std::make_unique<ZipArchive>(path);
    } catch (const std::runtime_error&) {
        return false;
    }
    for (const ZipEntry& entry : mExisting->entries())
        add(entry.name, *mExisting, entry);
    return true;
}

bool ZipTarget::add(std::string_view name, const ZipArchive& source, const ZipEntry& entry)
{
    const auto former = mByName.find(std::string(name));
    if (former == mByName.end() && mByName.size() >= kMaximumMembers)
        return false;
    mMembers.push_back({std::string(name), &source, &entry, 0});
    if (former != mByName.end())
        mMembers[former->second].source = nullptr;
    mByName[mMembers.back().name] = mMembers.size() - 1;
    return true;
}

void ZipTarget::write()
{
    const auto isReplaced = [](const Member& member) { return member.source == nullptr; };
    mMembers.erase(std::remove_if(mMembers.begin(), mMembers.end(), isReplaced), mMembers.end());
    writePrefix();
    for (Member& member : mMembers)
        writeMember(member);
    flushRun();
    writeDirectory();
    mOutput.flush();
}

/// A self-extracting program in front of the archive stays; offsets are counted from its start.
void ZipTarget::writePrefix()
{
    if (mExisting)
        extendRun(*mExisting, 0, mExisting->prefixSize());
}

void ZipTarget::writeMember(Member& member)
{
    const ZipEntry& entry = *member.entry;
    member.headerOffset = mOutput.position() + mRun.size;
    if (entry.headerAgrees && member.name == entry.name) {
        extendRun(*member.source, entry.headerOffset, entry.dataEnd() - entry.headerOffset);
        return;
    }
    flushRun();
    mOutput.append(localHeader(member));
    extendRun(*member.source, entry.dataOffset, entry.compressedSize);
}

void ZipTarget::extendRun(const ZipArchive& source, std::uint64_t offset, std::uint64_t size)
{
    const bool adjoins = mRun.source == &source && mRun.offset + mRun.size == offset;
    if (!adjoins) {
        flushRun();
        mRun = {&source, offset, 0};
    }
    mRun.size += size;
}

void ZipTarget::flushRun()
{
    if (mRun.size > 0)
        mOutput.appendRange(mRun.source->descriptor(), mRun.offset, mRun.size, mRun.source->path());
    mRun = {};
}

namespace {

/// The fields that both headers share: from the version needed up to the sizes.
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

std::string ZipTarget::localHeader(const Member& member) const
{
    const ZipEntry& entry = *member.entry;
    const bool isWide = entry.size >= kSee64In32 || entry.compressedSize >= kSee64In32;
    // The local field always holds both sizes.
    std::string extra = isWide ? zip64Field({kSee64In32, kSee64In32}) : std::string();
    if (isWide) {
        extra.resize(4);
        put64(extra, entry.size);
        put64(extra, entry.compressedSize);
    }
    extra += keptExtra(member.source->localExtra(entry), member.name != entry.name);

    std::string header;
    put32(header, kLocalHeaderSignature);
    putSharedFields(header, entry, member.name, isWide);
    put32(header, isWide ? kSee64In32 : entry.compressedSize);
    put32(header, isWide ? kSee64In32 : entry.size);
    put16(header, member.name.size());
    put16(header, extra.size());
    return header + member.name + extra;
}

std::string ZipTarget::centralRecord(const Member& member) const
{
    const ZipEntry& entry = *member.entry;
    const std::string wide = zip64Field({entry.size, entry.compressedSize, member.headerOffset});
    const std::string extra = wide + keptExtra(entry.extra, member.name != entry.name);

    std::string record;
    put32(record, kCentralRecordSignature);
    put16(record, entry.versionMadeBy);
    putSharedFields(record, entry, member.name, !wide.empty());
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
    for (const Member& member : mMembers)
        mOutput.append(centralRecord(member));
    writeEndRecords(mMembers.size(), start, mOutput.position() - start);
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
