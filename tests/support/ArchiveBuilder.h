#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tests/support/TempFolder.h"

namespace test {

/// One member of an archive to be built. The builder computes every optional value that is not set, and
/// writes every value that is set unchanged, even if it is wrong.
struct ArchiveMember
{
    static constexpr std::uint16_t kStored = 0;
    static constexpr std::uint16_t kDeflated = 8;

    std::string name;
    std::string content;
    std::uint16_t method = kDeflated;
    std::uint16_t flags = 0; ///< 0x0001 encrypted, 0x0008 descriptor behind the data, 0x0800 UTF-8
    std::uint16_t versionMadeBy = 0x031E;
    std::uint16_t versionNeeded = 20;
    std::uint16_t time = 0x6B2A; ///< 13:25:20
    std::uint16_t date = 0x5A6F; ///< 2025-03-15
    std::uint16_t internalAttributes = 0;
    std::uint32_t externalAttributes = 0x81A40000; ///< a regular file, mode 0644
    std::string localExtra;
    std::string extra; ///< in the directory
    std::string comment;
    bool zip64 = false;     ///< sizes and offset in zip64 fields
    bool zip64Last = false; ///< these fields follow the other extra fields

    // Values to set for a damaged archive.
    std::optional<std::string> rawData; ///< in place of the compressed content
    std::optional<std::uint32_t> checksum;
    std::optional<std::uint64_t> compressedSize;
    std::optional<std::uint64_t> size;
    std::optional<std::uint64_t> headerOffset; ///< in the directory
    std::optional<std::string> localName;
    std::optional<std::uint64_t> localSize;
};

/// Builds sound and damaged archives byte by byte.
class ArchiveBuilder
{
public:
    /// Adds a member. The reference is valid until the next call.
    ArchiveMember& add(const std::string& name, const std::string& content);

    std::string prefix;                 ///< in front of the archive
    bool offsetsCountPrefix = true;     ///< false leaves the offsets as if there were no prefix
    std::string comment;                ///< of the archive
    bool zip64End = false;              ///< always write the zip64 end records
    std::optional<std::uint64_t> count; ///< members, according to the end record
    std::optional<std::uint64_t> directorySize;
    std::optional<std::uint64_t> directoryOffset;

    /// The bytes of the archive. More than 65,534 members need zip64 end records.
    std::string bytes() const;
    /// Writes the archive to a file of that name.
    fileString write(const TempFolder& folder, const std::string& name) const;

private:
    std::vector<ArchiveMember> mMembers;
};

/// Compresses `content` to a raw deflate stream.
std::string deflated(const std::string& content);
std::string inflated(const std::string& stream, std::size_t size);
/// Bytes that compress to about two thirds of their size; the same seed gives the same bytes.
std::string sampleBytes(std::size_t size, unsigned seed);

} // namespace test
