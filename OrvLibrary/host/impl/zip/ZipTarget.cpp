// How it works: a list has all members of the new archive in the order of its directory, first those of the
// existing archive. `add` appends a member and writes it at once, unless its source has a later one with the
// same name. A member that is replaced loses its source, and is not written. Copying is postponed:
// `extendRun` collects neighbouring ranges of one source, and `flushRun` copies them in one step. `write`
// writes the members left from the existing archive, then the directory.
#include "OrvLibrary/host/impl/zip/ZipTarget_p.h"

#include <algorithm>
#include <cerrno>
#include <stdexcept>

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
    return name.size() >= 2 && name[1] == ':' && isLetter(name[0]) &&
           (name.size() == 2 || isSeparator(name[2]));
}

} // namespace

bool isSafeMemberName(std::string_view name)
{
    constexpr std::size_t kLongestName = 4096;
    return !name.empty() && name.size() <= kLongestName && !isSeparator(name.front()) &&
           name.find('\0') == std::string_view::npos && !hasDriveLetter(name) && !hasParentComponent(name);
}

std::unique_ptr<ZipTarget> ZipTarget::begin(const fileString& path, bool create, ZipPatience& patience,
                                            ZipMeter& meter)
{
    errno = ENOENT;
    if (path.empty() || (!create && !path.pathExists()))
        return nullptr;
    std::unique_ptr<ZipTarget> target;
    try {
        // The archive is locked before it is read. Otherwise members added by another writer could be lost.
        target = beginEmpty(path, patience, meter);
    } catch (const Cancelled&) {
        throw;
    } catch (const std::runtime_error&) {
        return nullptr;
    }
    if (!target->takeExisting(path) && !create) {
        errno = 0;
        return nullptr;
    }
    target->writePrefix();
    return target;
}

std::unique_ptr<ZipTarget> ZipTarget::beginEmpty(const fileString& path, ZipPatience& patience,
                                                 ZipMeter& meter)
{
    return std::unique_ptr<ZipTarget>(new ZipTarget(path, patience, meter));
}

/// @return false if there is no archive, or it is damaged
bool ZipTarget::takeExisting(const fileString& path)
{
    try {
        mExisting = std::make_shared<ZipArchive>(path);
    } catch (const std::runtime_error&) {
        return false;
    }
    for (const ZipEntry& entry : mExisting->entries())
        *replaceOrAppend(entry.name) = {std::string(entry.name), mExisting, &entry};
    return true;
}

/// Makes a place for a member with this name. A former member with the name is dropped.
ZipTarget::Member* ZipTarget::replaceOrAppend(std::string_view name)
{
    const auto [former, isNew] = mByName.try_emplace(std::string(name), mMembers.size());
    if (!isNew)
        mMembers[former->second].source = nullptr;
    former->second = mMembers.size();
    return &mMembers.emplace_back();
}

bool ZipTarget::add(std::string_view name, const std::shared_ptr<const ZipArchive>& source,
                    const ZipEntry& entry)
{
    Member member{std::string(name), source, &entry};
    member.headerOffset = nextOffset();
    if ((mByName.size() >= kMostMembers && mByName.count(member.name) == 0) || !fits(member))
        return false;
    const ZipEntry* last = source->find(name);
    if (last == nullptr || last <= &entry)
        writeMember(member);
    *replaceOrAppend(name) = std::move(member);
    return true;
}

std::uint64_t ZipTarget::bytesLeft() const
{
    std::uint64_t bytes = 0;
    for (const Member& member : mMembers)
        bytes += member.source && !member.isWritten ? member.entry->compressedSize : 0;
    return bytes;
}

void ZipTarget::write()
{
    for (Member& member : mMembers) {
        if (member.source && !member.isWritten)
            writeMember(member);
    }
    flushRun();
    writeDirectory();
    mOutput.flush();
}

/// Copies a self-extracting program that stands before the archive. Offsets count from the start of the file.
void ZipTarget::writePrefix()
{
    if (mExisting)
        extendRun(mExisting, 0, mExisting->prefixSize());
}

void ZipTarget::writeMember(Member& member)
{
    const ZipEntry& entry = *member.entry;
    member.isWritten = true;
    member.headerOffset = nextOffset();
    if (!fits(member)) // a member of the existing archive, or one of two with the same name
        member.source->fail(entry, "its extra block is too long for its new place");
    if (canGoAsItIs(member)) {
        extendRun(member.source, entry.headerOffset, entry.dataEnd() - entry.headerOffset);
        return;
    }
    flushRun();
    mOutput.append(localHeader(member));
    extendRun(member.source, entry.dataOffset, entry.compressedSize);
}

/// Members that lie next to each other are copied together, up to 8 MB at a time.
void ZipTarget::extendRun(const std::shared_ptr<const ZipArchive>& source, std::uint64_t offset,
                          std::uint64_t size)
{
    const bool adjoins = mRun.source == source && mRun.offset + mRun.size == offset;
    if (!adjoins) {
        flushRun();
        mRun = {source, offset, 0};
    }
    mRun.size += size;
    if (mRun.size >= kPortion)
        flushRun();
}

void ZipTarget::flushRun()
{
    if (mRun.size > 0)
        mOutput.appendRange(mRun.source->descriptor(), mRun.offset, mRun.size, mRun.source->path());
    mRun = {};
}

} // namespace ZipUtils
