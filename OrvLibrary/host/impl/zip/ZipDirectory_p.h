#pragma once

#include <cstdint>
#include <mutex>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "OrvLibrary/host/impl/zip/ZipFormat_p.h"

namespace ZipUtils {

/// An archive with more members is refused.
constexpr std::size_t kMostMembers = 100000;
/// An archive with a larger directory is refused, because the directory is kept in memory.
constexpr std::uint64_t kLargestDirectory = 256U << 20U;

/// One member, as the directory describes it. Its texts point into the directory's bytes.
struct ZipEntry
{
    std::string_view name;
    std::string_view extra;
    std::string_view comment;
    std::uint16_t versionMadeBy = 0;
    std::uint16_t versionNeeded = 0;
    std::uint16_t flags = 0;
    std::uint16_t method = 0;
    std::uint16_t time = 0;
    std::uint16_t date = 0;
    std::uint32_t checksum = 0;
    std::uint16_t internalAttributes = 0;
    std::uint32_t externalAttributes = 0;
    std::uint64_t compressedSize = 0; ///< bytes in the archive
    std::uint64_t size = 0;           ///< bytes of content
    std::uint64_t headerOffset = 0;   ///< of the local header, from the start of the file
    std::uint64_t dataOffset = 0;     ///< from the start of the file
    /// Whether the sizes and the checksum come after the data, according to the directory or the local
    /// header.
    bool hasDescriptor = false;
    /// Whether the local header equals the directory's record. If so, header and data can be copied together.
    bool headerAgrees = false;

    bool isEncrypted() const { return (flags & kFlagEncrypted) != 0; }
    std::uint64_t dataEnd() const { return dataOffset + compressedSize; }
};

/// The directory of an archive that was read and found sound. It never changes, so several threads may use it
/// at once. It does not keep the file open.
struct ZipDirectory
{
    /// The last member with this name; null if there is none.
    const ZipEntry* find(std::string_view name) const;
    /// The number of bytes before the archive itself: a self-extracting program, for example.
    std::uint64_t prefixSize() const;

    std::string bytes;       ///< the directory as it is in the file
    std::string comment;     ///< of the archive
    std::uint64_t start = 0; ///< its offset in the file
    std::vector<ZipEntry> entries;

private:
    mutable std::once_flag mNamesAreKnown;
    mutable std::unordered_map<std::string_view, std::size_t> mByName; ///< built when it is first needed
};

} // namespace ZipUtils
