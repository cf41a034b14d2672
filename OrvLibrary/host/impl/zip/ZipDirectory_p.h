#pragma once

#include <cstdint>
#include <mutex>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "OrvLibrary/host/impl/zip/ZipFormat_p.h"

namespace ZipUtils {

/// More members than this make an archive unsound.
constexpr std::size_t kMaximumMembers = 100000;
/// A larger directory makes an archive unsound: it is held in memory as a whole.
constexpr std::uint64_t kMaximumDirectorySize = 256U << 20U;

/// One member, as the directory describes it. The texts belong to the directory.
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
    /// Sizes and checksum stand behind the data, according to either header.
    bool hasDescriptor = false;
    /// The local header says just what the directory says, so that header and data can be copied in one run.
    bool headerAgrees = false;

    bool isEncrypted() const { return (flags & kFlagEncrypted) != 0; }
    std::uint64_t dataEnd() const { return dataOffset + compressedSize; }
};

/// The directory of an archive, read and found sound. It does not change once it is read, so that several
/// threads may use it at once, and it does not keep the file open.
struct ZipDirectory
{
    /// The last member of that name; null when there is none.
    const ZipEntry* find(std::string_view name) const;
    /// Bytes before the archive proper, such as a self-extracting program.
    std::uint64_t prefixSize() const;

    std::string bytes;       ///< as they stand in the file
    std::string comment;     ///< of the archive
    std::uint64_t start = 0; ///< from the start of the file
    std::vector<ZipEntry> entries;

private:
    mutable std::once_flag mNamesAreKnown;
    mutable std::unordered_map<std::string_view, std::size_t> mByName; ///< made when it is first needed
};

} // namespace ZipUtils
