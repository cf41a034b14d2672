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

/// An archive that is open for reading and has a sound structure: the end record, the directory and the local
/// headers agree, and no two members overlap. Whether the members' data is sound is checked elsewhere
/// (`ZipMember_p.h`). The file stays open, so readers can go on even if another file takes its name. Several
/// threads may use one object at once.
class ZipArchive
{
public:
    /// Opens an archive. Reads its directory only if `DirectoryCache` does not have it.
    /// @throws std::runtime_error with the path and the reason
    explicit ZipArchive(const fileString& path);
    /// Opens an archive that may be damaged. If its directory cannot be read, the whole file is searched for
    /// members.
    /// @param rejected receives the damaged members, which are then not among the entries. One without a name
    /// stands for the directory.
    /// @throws std::runtime_error if the file cannot be read
    ZipArchive(const fileString& path, std::vector<DamagedMember>& rejected);

    const fileString& path() const { return mPath; }
    const std::vector<ZipEntry>& entries() const { return mDirectory->entries; }
    /// The comment of the whole archive.
    const std::string& comment() const { return mDirectory->comment; }
    /// The number of bytes before the archive itself: a self-extracting program, for example.
    std::uint64_t prefixSize() const { return mDirectory->prefixSize(); }
    int descriptor() const { return mFile.get(); }

    /// The last member with this name; null if there is none.
    const ZipEntry* find(std::string_view name) const { return mDirectory->find(name); }
    /// The index of the member in `entries`.
    std::size_t indexOf(const ZipEntry& entry) const;
    /// Reads exactly `size` bytes.
    /// @throws std::runtime_error if the file ends early or reading fails
    void readAt(std::uint64_t offset, char* buffer, std::size_t size) const;
    /// The extra block of the member's local header.
    std::string localExtra(const ZipEntry& entry) const;
    /// @throws std::runtime_error always, with the path and the reason
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
