#pragma once

#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "OrvLibrary/host/impl/zip/ZipArchive_p.h"
#include "OrvLibrary/host/impl/zip/ZipOutput_p.h"

namespace ZipUtils {

/// Whether a member may be written under this name. Refused are names that are empty, absolute or longer than
/// 4,096 bytes, and names with a ".." component, a drive letter or NUL. Both kinds of slash separate
/// components, because some systems accept both. A drive letter is a letter and a colon at the start of
/// the name, before a separator or the end. So "C:/b.png" is refused, and "a::b.png" is an ordinary name.
bool isSafeMemberName(std::string_view name);

/// An archive that a walk writes to. Each member is written when it is added, except if its source archive
/// has a later member with the same name. Members that were already in the archive are copied at the end,
/// without those that were replaced; in the directory they come first. The source archives must stay open
/// until the end.
class ZipTarget
{
public:
    /// Begins a target. If a sound archive exists, its members are kept.
    /// @param create if true, a missing or damaged archive is replaced by a new one
    /// @return null if there is no archive to add to, or if the target cannot be written. `errno` has the
    /// reason; 0 if the archive is damaged.
    /// @throws Cancelled
    static std::unique_ptr<ZipTarget> begin(const fileString& path, bool create, ZipPatience& patience,
                                            ZipMeter& meter);
    /// Begins an empty archive. One that exists will be replaced.
    /// @throws std::runtime_error if the target cannot be written; Cancelled
    static std::unique_ptr<ZipTarget> beginEmpty(const fileString& path, ZipPatience& patience,
                                                 ZipMeter& meter);

    /// Adds a member as `name`, and replaces a member with this name.
    /// @return false if the archive would have too many members, or the member's extra block would be too
    /// long
    /// @throws std::runtime_error if it cannot be written; Cancelled
    bool add(std::string_view name, const std::shared_ptr<const ZipArchive>& source, const ZipEntry& entry);
    /// The bytes that `write` will copy.
    std::uint64_t bytesLeft() const;
    /// Writes the rest of the members and the directory.
    /// @throws std::runtime_error, Cancelled
    void write();
    /// Renames the written file to the target.
    /// @throws std::runtime_error
    void publish() { mOutput.publish(); }

private:
    ZipTarget(const fileString& path, ZipPatience& patience, ZipMeter& meter) : mOutput(path, patience, meter)
    {
    }

    struct Member
    {
        std::string name;
        std::shared_ptr<const ZipArchive> source; ///< null if the member was replaced
        const ZipEntry* entry = nullptr;
        bool isWritten = false;
        std::uint64_t headerOffset = 0; ///< in the new file
    };
    /// A range of bytes that is copied unchanged from one archive.
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

    /// Whether both extra blocks, with the zip64 fields they need, fit into the 65,535 bytes that a header
    /// allows.
    static bool fits(const Member& member);
    /// Whether the local header can be copied unchanged.
    static bool canGoAsItIs(const Member& member);
    static std::string localExtra(const Member& member);
    static std::string centralExtra(const Member& member);
    static std::string localHeader(const Member& member);
    static std::string centralRecord(const Member& member);

    ZipOutput mOutput;
    std::shared_ptr<const ZipArchive> mExisting;          ///< null for a new archive
    std::vector<Member> mMembers;                         ///< including those that were replaced
    std::unordered_map<std::string, std::size_t> mByName; ///< indexes into mMembers
    Run mRun;
};

} // namespace ZipUtils
