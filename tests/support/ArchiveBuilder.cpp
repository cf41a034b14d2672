#include "tests/support/ArchiveBuilder.h"

#include <random>
#include <stdexcept>

#include <zlib.h>

namespace test {

namespace {

void put(std::string& out, std::uint64_t value, int bytes)
{
    for (int i = 0; i < bytes; ++i)
        out.push_back(static_cast<char>(value >> (8 * i) & 0xFF));
}

/// A member with every value of `ArchiveMember` that was left open filled in.
struct Laid
{
    ArchiveMember member;
    std::string data;
    std::uint32_t checksum = 0;
    std::uint64_t compressedSize = 0;
    std::uint64_t size = 0;
    std::uint64_t headerOffset = 0;
};

Laid lay(const ArchiveMember& member, std::uint64_t headerOffset)
{
    Laid laid;
    laid.member = member;
    const bool deflate = member.method == ArchiveMember::kDeflated;
    laid.data = member.rawData ? *member.rawData : deflate ? deflated(member.content) : member.content;
    const auto* content = reinterpret_cast<const Bytef*>(member.content.data());
    laid.checksum = member.checksum.value_or(
        static_cast<std::uint32_t>(crc32(0, content, static_cast<uInt>(member.content.size()))));
    laid.compressedSize = member.compressedSize.value_or(laid.data.size());
    laid.size = member.size.value_or(member.content.size());
    laid.headerOffset = member.headerOffset.value_or(headerOffset);
    return laid;
}

void putZip64Field(std::string& out, std::initializer_list<std::uint64_t> values)
{
    put(out, 1, 2);
    put(out, 8 * values.size(), 2);
    for (const std::uint64_t value : values)
        put(out, value, 8);
}

void putLocalHeader(std::string& out, const Laid& laid)
{
    const ArchiveMember& member = laid.member;
    const bool descriptor = (member.flags & 8U) != 0;
    const std::uint64_t size = member.localSize.value_or(laid.size);
    const std::string name = member.localName.value_or(member.name);
    std::string wide;
    if (member.zip64)
        putZip64Field(wide, {descriptor ? 0 : size, descriptor ? 0 : laid.compressedSize});
    const std::string extra = member.zip64Last ? member.localExtra + wide : wide + member.localExtra;
    put(out, 0x04034b50, 4);
    put(out, member.versionNeeded, 2);
    put(out, member.flags, 2);
    put(out, member.method, 2);
    put(out, member.time, 2);
    put(out, member.date, 2);
    put(out, descriptor ? 0 : laid.checksum, 4);
    put(out, member.zip64 ? 0xFFFFFFFF : descriptor ? 0 : laid.compressedSize, 4);
    put(out, member.zip64 ? 0xFFFFFFFF : descriptor ? 0 : size, 4);
    put(out, name.size(), 2);
    put(out, extra.size(), 2);
    out += name + extra;
}

void putDescriptor(std::string& out, const Laid& laid)
{
    const int width = laid.member.zip64 ? 8 : 4;
    put(out, 0x08074b50, 4);
    put(out, laid.checksum, 4);
    put(out, laid.compressedSize, width);
    put(out, laid.size, width);
}

void putCentralRecord(std::string& out, const Laid& laid)
{
    const ArchiveMember& member = laid.member;
    std::string wide;
    if (member.zip64)
        putZip64Field(wide, {laid.size, laid.compressedSize, laid.headerOffset});
    const std::string extra = member.zip64Last ? member.extra + wide : wide + member.extra;
    put(out, 0x02014b50, 4);
    put(out, member.versionMadeBy, 2);
    put(out, member.versionNeeded, 2);
    put(out, member.flags, 2);
    put(out, member.method, 2);
    put(out, member.time, 2);
    put(out, member.date, 2);
    put(out, laid.checksum, 4);
    put(out, member.zip64 ? 0xFFFFFFFF : laid.compressedSize, 4);
    put(out, member.zip64 ? 0xFFFFFFFF : laid.size, 4);
    put(out, member.name.size(), 2);
    put(out, extra.size(), 2);
    put(out, member.comment.size(), 2);
    put(out, 0, 2);
    put(out, member.internalAttributes, 2);
    put(out, member.externalAttributes, 4);
    put(out, member.zip64 ? 0xFFFFFFFF : laid.headerOffset, 4);
    out += member.name + extra + member.comment;
}

void putZip64End(std::string& out, std::uint64_t at, std::uint64_t count, std::uint64_t size,
                 std::uint64_t offset)
{
    put(out, 0x06064b50, 4);
    put(out, 44, 8);
    put(out, 45, 2);
    put(out, 45, 2);
    put(out, 0, 8);
    put(out, count, 8);
    put(out, count, 8);
    put(out, size, 8);
    put(out, offset, 8);
    put(out, 0x07064b50, 4);
    put(out, 0, 4);
    put(out, at, 8);
    put(out, 1, 4);
}

} // namespace

ArchiveMember& ArchiveBuilder::add(const std::string& name, const std::string& content)
{
    mMembers.emplace_back();
    mMembers.back().name = name;
    mMembers.back().content = content;
    return mMembers.back();
}

std::string ArchiveBuilder::bytes() const
{
    std::string out = prefix;
    std::string directory;
    const std::uint64_t base = offsetsCountPrefix ? 0 : prefix.size();
    for (const ArchiveMember& member : mMembers) {
        const Laid laid = lay(member, out.size() - base);
        putLocalHeader(out, laid);
        out += laid.data;
        if ((member.flags & 8U) != 0)
            putDescriptor(out, laid);
        putCentralRecord(directory, laid);
    }
    const std::uint64_t members = count.value_or(mMembers.size());
    const std::uint64_t size = directorySize.value_or(directory.size());
    const std::uint64_t offset = directoryOffset.value_or(out.size() - base);
    const bool wide = zip64End || members >= 0xFFFF || size >= 0xFFFFFFFF || offset >= 0xFFFFFFFF;
    out += directory;
    if (wide)
        putZip64End(out, out.size() - base, members, size, offset);
    put(out, 0x06054b50, 4);
    put(out, 0, 4);
    put(out, wide ? 0xFFFF : members, 2);
    put(out, wide ? 0xFFFF : members, 2);
    put(out, wide ? 0xFFFFFFFF : size, 4);
    put(out, wide ? 0xFFFFFFFF : offset, 4);
    put(out, comment.size(), 2);
    return out + comment;
}

fileString ArchiveBuilder::write(const TempFolder& folder, const std::string& name) const
{
    return folder.write(name, bytes());
}

std::string deflated(const std::string& content)
{
    z_stream stream = {};
    if (deflateInit2(&stream, 6, Z_DEFLATED, -15, 8, Z_DEFAULT_STRATEGY) != Z_OK)
        throw std::runtime_error("deflateInit2");
    std::string out(deflateBound(&stream, content.size()), '\0');
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(content.data()));
    stream.avail_in = static_cast<uInt>(content.size());
    stream.next_out = reinterpret_cast<Bytef*>(out.data());
    stream.avail_out = static_cast<uInt>(out.size());
    deflate(&stream, Z_FINISH);
    out.resize(stream.total_out);
    deflateEnd(&stream);
    return out;
}

std::string inflated(const std::string& data, std::size_t size)
{
    z_stream stream = {};
    if (inflateInit2(&stream, -15) != Z_OK)
        throw std::runtime_error("inflateInit2");
    std::string out(size + 1, '\0');
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(data.data()));
    stream.avail_in = static_cast<uInt>(data.size());
    stream.next_out = reinterpret_cast<Bytef*>(out.data());
    stream.avail_out = static_cast<uInt>(out.size());
    const int result = inflate(&stream, Z_FINISH);
    out.resize(stream.total_out);
    inflateEnd(&stream);
    if (result != Z_STREAM_END || out.size() != size)
        throw std::runtime_error("bad deflate stream");
    return out;
}

std::string sampleBytes(std::size_t size, unsigned seed)
{
    std::mt19937 random(seed);
    std::string bytes(size, '\0');
    for (char& byte : bytes)
        byte = static_cast<char>('A' + random() % 40);
    return bytes;
}

} // namespace test
