#include "fuzz/ArchiveFacts.h"

#include <algorithm>
#include <map>
#include <stdexcept>
#include <tuple>

#include <zlib.h>

#include "fuzz/FuzzSandbox.h"
#include "tests/support/ArchiveReader.h"

using ZipUtils::ZipArchive;
using ZipUtils::ZipEntry;

namespace fuzz {

namespace {

/// The rule for names of raw copies, applied to each component.
bool mayBeCopiedUnder(const std::string& name)
{
    if (name.empty() || name.size() > 4096 || name.find('\0') != std::string::npos)
        return false;
    std::string slashes = name;
    std::replace(slashes.begin(), slashes.end(), '\\', '/');
    const bool hasDrive = name.size() > 1 && name[1] == ':' && (name.size() == 2 || slashes[2] == '/');
    if (hasDrive && std::isalpha(static_cast<unsigned char>(name[0])) != 0)
        return false;
    const std::string framed = "/" + slashes + "/";
    return slashes[0] != '/' && framed.find("/../") == std::string::npos;
}

/// The content of a deflate stream that ends with the last byte and has this size.
std::optional<std::string> inflateAll(const std::string& compressed, std::uint64_t size)
{
    z_stream stream = {};
    require(inflateInit2(&stream, -15) == Z_OK, "the compression library starts");
    std::string content(size + 1, '\0');
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(compressed.data()));
    stream.avail_in = static_cast<uInt>(compressed.size());
    stream.next_out = reinterpret_cast<Bytef*>(content.data());
    stream.avail_out = static_cast<uInt>(content.size());
    const int result = inflate(&stream, Z_FINISH);
    const bool isGood = result == Z_STREAM_END && stream.total_out == size && stream.avail_in == 0;
    inflateEnd(&stream);
    content.resize(size);
    return isGood ? std::optional<std::string>(content) : std::nullopt;
}

bool isReadableKind(const ZipEntry& entry)
{
    return (entry.flags & 1) == 0 && (entry.method == 0 || entry.method == 8);
}

std::optional<std::string> readContent(const ZipEntry& entry, const std::string& compressed)
{
    if (!isReadableKind(entry))
        return std::nullopt;
    const std::optional<std::string> content =
        entry.method == 8 ? inflateAll(compressed, entry.size) : compressed;
    const auto* bytes = content ? reinterpret_cast<const Bytef*>(content->data()) : nullptr;
    const bool isGood = content && crc32(0, bytes, static_cast<uInt>(content->size())) == entry.checksum;
    return isGood ? content : std::nullopt;
}

JudgedMember judge(const ZipArchive& archive, const ZipEntry& entry)
{
    JudgedMember member;
    member.name = entry.name;
    member.facts.compressed.resize(entry.compressedSize);
    archive.readAt(entry.dataOffset, member.facts.compressed.data(), entry.compressedSize);
    member.facts.method = entry.method;
    member.facts.flags = entry.flags & 0xFFF7;
    member.facts.versionMadeBy = entry.versionMadeBy;
    member.facts.dosDate = static_cast<std::uint32_t>(entry.date) << 16U | entry.time;
    member.facts.checksum = entry.checksum;
    member.facts.size = entry.size;
    member.facts.externalAttributes = entry.externalAttributes;
    member.facts.comment = entry.comment;
    member.content = readContent(entry, member.facts.compressed);
    member.isUnsound = isReadableKind(entry) && !member.content;
    member.isCopied = mayBeCopiedUnder(member.name) && !(entry.isEncrypted() && entry.hasDescriptor);
    return member;
}

/// Compares the members with those that the zip library reads. It reads only known methods.
void requireIndependentReaderAgrees(const fileString& archive,
                                    const std::map<std::string, const JudgedMember*>& expected)
try {
    for (const auto& [name, content] : test::contentsOf(archive)) {
        const auto found = expected.find(name);
        require(found != expected.end() && found->second->content == content,
                "another reader finds the same content");
    }
} catch (const std::runtime_error& error) {
    fail(std::string("another reader reads the archive: ") + error.what());
}

} // namespace

bool MemberFacts::operator==(const MemberFacts& other) const
{
    const auto all = [](const MemberFacts& f) {
        return std::tie(f.compressed, f.method, f.flags, f.versionMadeBy, f.dosDate, f.checksum, f.size,
                        f.externalAttributes, f.comment);
    };
    return all(*this) == all(other);
}

std::optional<std::vector<JudgedMember>> judgeArchive(const fileString& path)
try {
    const ZipArchive archive(path);
    std::vector<JudgedMember> members;
    for (const ZipEntry& entry : archive.entries())
        members.push_back(judge(archive, entry));
    return members;
} catch (const std::runtime_error&) {
    return std::nullopt;
}

std::vector<const JudgedMember*> lastOfEachName(const std::vector<JudgedMember>& members)
{
    std::vector<const JudgedMember*> last;
    for (const JudgedMember& member : members) {
        const auto sameName = [&](const JudgedMember* other) { return other->name == member.name; };
        last.erase(std::remove_if(last.begin(), last.end(), sameName), last.end());
        last.push_back(&member);
    }
    return last;
}

void requireMembers(const fileString& archive, const std::vector<const JudgedMember*>& expected)
{
    std::map<std::string, const JudgedMember*> open;
    bool allReadable = true;
    for (const JudgedMember* member : expected) {
        open[member->name] = member;
        allReadable = allReadable && member->content;
    }
    const auto found = judgeArchive(archive);
    require(found.has_value(), "an archive that was written is sound");
    require(found->size() == open.size(), "the result has as many members as it should");
    for (const JudgedMember& member : *found) {
        const auto wanted = open.find(member.name);
        require(wanted != open.end(), "the result has no foreign member");
        require(wanted->second->facts == member.facts, "a copied member is what it was");
    }
    // The zip library does not find the end record of an empty archive, which is at the very start.
    if (allReadable && !expected.empty())
        requireIndependentReaderAgrees(archive, open);
}

} // namespace fuzz
