#pragma once

#include <memory>
#include <stdexcept>

#include "OrvLibrary/host/impl/zip/ZipArchive_p.h"

namespace ZipUtils {

/// Reads the end record, the directory and the local headers of an archive and compares them. Used once, by
/// one thread.
class ZipDirectoryReader
{
public:
    /// @param rejected receives the damaged members and leaves them out. If null, the first damaged member is
    /// a failure.
    ZipDirectoryReader(const ZipArchive& archive, std::uint64_t fileSize,
                       std::vector<DamagedMember>* rejected);

    /// @throws std::runtime_error with the path and the reason
    std::shared_ptr<const ZipDirectory> read();

private:
    struct EndRecord;

    std::size_t findEndRecord(const std::string& tail) const;
    EndRecord readEndRecord();
    void readZip64EndRecords(EndRecord& end) const;
    void readZip64EndRecord(std::uint64_t locatorOffset, EndRecord& end) const;
    std::uint64_t findZip64EndRecord(std::uint64_t locatorOffset, const char* locator) const;
    void placeDirectory(const EndRecord& end);
    void readEntries(const EndRecord& end);
    ZipEntry readCentralRecord(std::string_view& rest) const;
    void checkCentralRecord(ZipEntry& entry, std::uint16_t disk) const;
    void readZip64Sizes(ZipEntry& entry) const;
    void checkSizes(const ZipEntry& entry) const;
    void checkLocalHeaders();
    void checkLocalHeader(ZipEntry& entry) const;
    void checkLocalSizes(const ZipEntry& entry, const char* header, std::string_view extra) const;
    void checkOverlaps();
    void dropRejected(const std::vector<bool>& isRejected);

    /// Runs a check of one member.
    /// @return false if the check failed and the member is left out
    template <typename Check>
    bool passes(const ZipEntry& entry, Check check);
    void reject(const ZipEntry& entry, const std::exception& reason);

    const ZipArchive& mArchive;
    std::uint64_t mFileSize;
    std::vector<DamagedMember>* mRejected;
    std::shared_ptr<ZipDirectory> mDirectory = std::make_shared<ZipDirectory>();
    std::uint64_t mBase = 0; ///< the place in the file from which the directory counts its offsets
};

template <typename Check>
bool ZipDirectoryReader::passes(const ZipEntry& entry, Check check)
{
    if (!mRejected) {
        check();
        return true;
    }
    try {
        check();
        return true;
    } catch (const std::runtime_error& reason) {
        reject(entry, reason);
        return false;
    }
}

} // namespace ZipUtils
