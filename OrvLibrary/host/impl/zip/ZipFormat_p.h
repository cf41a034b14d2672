#pragma once

#include <cstdint>
#include <string>
#include <string_view>

/// The records of a zip archive, byte by byte: signatures, sizes, flags, and little-endian numbers.
namespace ZipUtils {

constexpr std::uint32_t kLocalHeaderSignature = 0x04034b50;
constexpr std::uint32_t kCentralRecordSignature = 0x02014b50;
constexpr std::uint32_t kEndRecordSignature = 0x06054b50;
constexpr std::uint32_t kZip64EndRecordSignature = 0x06064b50;
constexpr std::uint32_t kZip64LocatorSignature = 0x07064b50;

constexpr std::size_t kLocalHeaderSize = 30;
constexpr std::size_t kCentralRecordSize = 46;
constexpr std::size_t kEndRecordSize = 22;
constexpr std::size_t kZip64EndRecordSize = 56;
constexpr std::size_t kZip64LocatorSize = 20;

/// A field of 16 or 32 bits with all bits set: the value is in the zip64 record.
constexpr std::uint16_t kSee64In16 = 0xFFFF;
constexpr std::uint32_t kSee64In32 = 0xFFFFFFFF;

constexpr std::uint16_t kFlagEncrypted = 0x0001;
constexpr std::uint16_t kFlagDescriptor = 0x0008; ///< sizes and checksum follow the data
constexpr std::uint16_t kFlagUtf8 = 0x0800;
constexpr std::uint16_t kFlagMaskedDirectory = 0x2000;

constexpr std::uint16_t kMethodStored = 0;
constexpr std::uint16_t kMethodDeflated = 8;

/// A deflate stream expands to about 1,030 times its size at most. A member that claims more is damaged.
constexpr std::uint64_t kMostExpansion = 1100;

constexpr std::uint16_t kExtraZip64 = 0x0001;
constexpr std::uint16_t kExtraUnicodePath = 0x7075; ///< repeats the member's name
constexpr std::uint16_t kVersionZip64 = 45;

inline std::uint16_t get16(const char* bytes)
{
    const auto* p = reinterpret_cast<const unsigned char*>(bytes);
    return static_cast<std::uint16_t>(p[0] | p[1] << 8);
}

inline std::uint32_t get32(const char* bytes)
{
    return get16(bytes) | static_cast<std::uint32_t>(get16(bytes + 2)) << 16;
}

inline std::uint64_t get64(const char* bytes)
{
    return get32(bytes) | static_cast<std::uint64_t>(get32(bytes + 4)) << 32;
}

inline void put16(std::string& out, std::uint64_t value)
{
    out.push_back(static_cast<char>(value & 0xFF));
    out.push_back(static_cast<char>(value >> 8 & 0xFF));
}

inline void put32(std::string& out, std::uint64_t value)
{
    put16(out, value);
    put16(out, value >> 16);
}

inline void put64(std::string& out, std::uint64_t value)
{
    put32(out, value);
    put32(out, value >> 32);
}

/// The content of one field of an extra block; empty if the block has no such field. Some writers pad blocks
/// with zeros, so bytes that are not a field end the search.
std::string_view findExtraField(std::string_view extra, std::uint16_t id);
/// The block without the fields of one kind. Bytes that are not a field stay.
std::string withoutExtraField(std::string_view extra, std::uint16_t id);

} // namespace ZipUtils
