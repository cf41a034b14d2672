#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include <sys/stat.h>

#include "OrvLibrary/host/fileString.h"
#include "OrvLibrary/host/impl/files/FileHandle_p.h"
#include "OrvLibrary/host/impl/zip/ZipFormat_p.h"

namespace ZipUtils {

/// More members than this make an archive unsound.
constexpr std::size_t kMaximumMembers = 100000;
/// A larger directory makes an archive unsound: it is held in memory as a whole.
constexpr std::uint64_t kMaximumDirectorySize = 256U << 20U;

/// One member, as the directory describes it. The texts belong to the archive.
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

/// An archive that was opened for reading and whose structure was found sound: end record, directory, local
/// headers, and that no two members overlap. The data of the members is another matter (`ZipMember_p.h`).
/// The file stays open, so that a replacement of its name harms nobody who reads. After the constructor only
/// `find` changes anything; everything else may be called by several threads at once.
class ZipArchive
{
public:
    /// @throws std::runtime_error with the path and the reason
    explicit ZipArchive(const fileString& path);

    const fileString& path() const { return mPath; }
    const std::vector<ZipEntry>& entries() const { return mEntries; }
    /// The archive's own comment.
    const std::string& comment() const { return mComment; }
    /// Bytes before the archive proper, such as a self-extracting program.
    std::uint64_t prefixSize() const;
    int descriptor() const { return mFile.get(); }

    /// Whether the path still names the file that was opened, as it was then.
    bool isUnchanged() const;

    /// The last member of that name; null when there is none.
    const ZipEntry* find(std::string_view name) const;
    /// Reads exactly `size` bytes.
    /// @throws std::runtime_error at the end of the file, or when reading fails
    void readAt(std::uint64_t offset, char* buffer, std::size_t size) const;
    /// The extra block of a member's local header.
    std::string localExtra(const ZipEntry& entry) const;
    /// @throws std::runtime_error always: the path, then the reason
    [[noreturn]] void fail(const std::string& reason) const;
    [[noreturn]] void fail(const ZipEntry& entry, const std::string& reason) const;

private:
    struct EndRecord;

    void open();
    std::size_t findEndRecord(const std::string& tail) const;
    EndRecord readEndRecord();
    void readZip64EndRecord(std::uint64_t locatorOffset, EndRecord& end) const;
    std::uint64_t findZip64EndRecord(std::uint64_t locatorOffset, const char* locator) const;
    void placeDirectory(const EndRecord& end);
    void readDirectory(const EndRecord& end);
    ZipEntry readCentralRecord(std::string_view& rest) const;
    void readZip64Sizes(ZipEntry& entry) const;
    void checkSizes(const ZipEntry& entry) const;
    void checkLocalHeader(ZipEntry& entry) const;
    void checkLocalSizes(const ZipEntry& entry, const char* header, std::string_view extra) const;
    void checkOverlaps() const;

    fileString mPath;
    host::FileHandle mFile;
    struct stat mStatus = {};
    std::uint64_t mFileSize = 0;
    std::uint64_t mBase = 0;           ///< where offset 0 of the directory's offsets lies
    std::uint64_t mDirectoryStart = 0; ///< from the start of the file
    std::string mDirectory;
    std::string mComment;
    std::vector<ZipEntry> mEntries;
    mutable std::unordered_map<std::string_view, std::size_t> mByName;
};

} // namespace ZipUtils
