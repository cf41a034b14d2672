#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include <sys/stat.h>

#include "OrvLibrary/host/ZipUtils.h"
#include "OrvLibrary/host/fileString.h"
#include "OrvLibrary/host/impl/files/FileHandle_p.h"
#include "OrvLibrary/host/impl/zip/ZipDirectory_p.h"

namespace ZipUtils {

/// An archive that was opened for reading and whose structure was found sound: end record, directory, local
/// headers, and that no two members overlap. The data of the members is another matter (`ZipMember_p.h`).
/// The file stays open, so that a replacement of its name harms nobody who reads. Several threads may use one
/// object at once.
class ZipArchive
{
public:
    /// Opens an archive. Its directory is read only when the file is not the one that was opened last.
    /// @throws std::runtime_error with the path and the reason
    explicit ZipArchive(const fileString& path);
    /// Opens an archive of which some members may be damaged.
    /// Where the directory cannot be read, the members are looked for in the whole file.
    /// @param rejected takes the members that are not sound, which are then not among the entries; one
    /// without a name stands for the directory
    /// @throws std::runtime_error when the file cannot be read
    ZipArchive(const fileString& path, std::vector<DamagedMember>& rejected);

    const fileString& path() const { return mPath; }
    const std::vector<ZipEntry>& entries() const { return mDirectory->entries; }
    /// The archive's own comment.
    const std::string& comment() const { return mDirectory->comment; }
    /// Bytes before the archive proper, such as a self-extracting program.
    std::uint64_t prefixSize() const { return mDirectory->prefixSize(); }
    int descriptor() const { return mFile.get(); }

    /// The last member of that name; null when there is none.
    const ZipEntry* find(std::string_view name) const { return mDirectory->find(name); }
    /// The member's place among the entries.
    std::size_t indexOf(const ZipEntry& entry) const;
    /// Reads exactly `size` bytes.
    /// @throws std::runtime_error at the end of the file, or when reading fails
    void readAt(std::uint64_t offset, char* buffer, std::size_t size) const;
    /// The extra block of a member's local header.
    std::string localExtra(const ZipEntry& entry) const;
    /// @throws std::runtime_error always: the path, then the reason
    [[noreturn]] void fail(const std::string& reason) const;
    [[noreturn]] void fail(const ZipEntry& entry, const std::string& reason) const;

private:
    void open();

    fileString mPath;
    host::FileHandle mFile;
    struct stat mStatus = {};
    std::shared_ptr<const ZipDirectory> mDirectory;
};

} // namespace ZipUtils
