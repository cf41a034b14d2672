#pragma once

#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "OrvLibrary/host/impl/zip/ZipArchive_p.h"
#include "OrvLibrary/host/impl/zip/ZipOutput_p.h"

namespace ZipUtils {

/// Whether a raw copy may carry this name: not empty, not absolute, no ".." component, drive letter or NUL,
/// at most 4,096 bytes. Both kinds of slash separate components, as some system takes either. A drive letter
/// is a letter and a colon before a separator or the end, so that "a::b.png" is a name like any other.
bool isSafeMemberName(std::string_view name);

/// An archive that a walk writes to. A member is written as soon as it is added, unless the archive it comes
/// from has another one of its name further on. The members of the archive that is added to come last: they
/// are written at the end, without those that were replaced, and stand first in the directory. The archives
/// that members come from must stay open until the end.
class ZipTarget
{
public:
    /// Begins a target: a sound archive that is there is added to.
    /// @param create makes one where none is, or none that is sound
    /// @return null when there is nothing to add to, or the target cannot be written; `errno` then has the
    /// reason, 0 when the archive is not sound
    /// @throws Cancelled
    static std::unique_ptr<ZipTarget> begin(const fileString& path, bool create, ZipPatience& patience,
                                            ZipMeter& meter);
    /// Begins an empty archive, whatever stands there.
    /// @throws std::runtime_error when the target cannot be written; Cancelled
    static std::unique_ptr<ZipTarget> beginEmpty(const fileString& path, ZipPatience& patience,
                                                 ZipMeter& meter);

    /// Adds a member under `name`, in place of one of that name.
    /// @return false when the target would hold too many, or the member's extra block would be too long
    /// @throws std::runtime_error when it cannot be written; Cancelled
    bool add(std::string_view name, const std::shared_ptr<const ZipArchive>& source, const ZipEntry& entry);
    /// Bytes that `write` still has to copy.
    std::uint64_t bytesLeft() const;
    /// Writes what is left, and the directory.
    /// @throws std::runtime_error, Cancelled
    void write();
    /// Gives what was written the target's name.
    /// @throws std::runtime_error
    void publish() { mOutput.publish(); }

private:
    ZipTarget(const fileString& path, ZipPatience& patience, ZipMeter& meter) : mOutput(path, patience, meter)
    {
    }

    struct Member
    {
        std::string name;
        std::shared_ptr<const ZipArchive> source; ///< null once the member was replaced
        const ZipEntry* entry = nullptr;
        bool isWritten = false;
        std::uint64_t headerOffset = 0; ///< in the new file
    };
    /// Bytes of one archive that go over as they are.
    struct Run
    {
        std::shared_ptr<const ZipArchive> source;
        std::uint64_t offset = 0;
        std::uint64_t size = 0;
    };

    bool takeExisting(const fileString& path);
    Member* replaceOrAppend(std::string_view name);
    std::uint64_t nextOffset() const { return mOutput.position() + mRun.size; }
    void writePrefix();
    void writeMember(Member& member);
    void writeDirectory();
    void writeEndRecords(std::uint64_t members, std::uint64_t offset, std::uint64_t size);
    void extendRun(const std::shared_ptr<const ZipArchive>& source, std::uint64_t offset, std::uint64_t size);
    void flushRun();

    /// Whether neither extra block passes the 65,535 bytes that a header has room for, with the zip64 fields
    /// that the member needs at its place.
    static bool fits(const Member& member);
    /// Whether the local header can stay as it is.
    static bool canGoAsItIs(const Member& member);
    static std::string localExtra(const Member& member);
    static std::string centralExtra(const Member& member);
    static std::string localHeader(const Member& member);
    static std::string centralRecord(const Member& member);

    ZipOutput mOutput;
    std::shared_ptr<const ZipArchive> mExisting;          ///< null for a new archive
    std::vector<Member> mMembers;                         ///< those that were replaced included
    std::unordered_map<std::string, std::size_t> mByName; ///< places in mMembers
    Run mRun;
};

} // namespace ZipUtils
