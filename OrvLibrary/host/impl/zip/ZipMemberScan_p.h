#pragma once

#include <memory>
#include <optional>

#include "OrvLibrary/host/impl/zip/ZipArchive_p.h"

namespace ZipUtils {

/// Searches a file for members by their local headers, for an archive whose directory is lost. The scan skips
/// the data of each member found, so it finds no archive inside of an archive, unless the outer member's own
/// header is lost. Does not verify the data. Used once, by one thread.
class ZipMemberScan
{
public:
    ZipMemberScan(const ZipArchive& archive, std::uint64_t fileSize);

    /// @throws std::runtime_error if the file cannot be read
    std::shared_ptr<const ZipDirectory> read();

private:
    std::optional<std::uint64_t> findHeader(std::uint64_t from) const;
    std::optional<ZipEntry> readHeader(std::uint64_t offset, std::string& name) const;
    bool readSizes(ZipEntry& entry, const char* header, std::string_view extra) const;
    bool findEnd(ZipEntry& entry) const;

    const ZipArchive& mArchive;
    std::uint64_t mFileSize;
};

} // namespace ZipUtils
