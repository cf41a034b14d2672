#pragma once

#include <chrono>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "OrvLibrary/host/impl/zip/ZipArchive_p.h"
#include "OrvLibrary/host/impl/zip/ZipOutput_p.h"

namespace ZipUtils {

/// Whether a raw copy may carry this name: not empty, not absolute, no ".." component, drive letter or NUL,
/// at most 4,096 bytes. Both kinds of slash separate components, as some system takes either.
bool isSafeMemberName(std::string_view name);

/// An archive that a walk writes to: a list of members, each still in the archive that it comes from, which
/// becomes a file at the end of the walk. Nothing is copied before, so that a member that is replaced later
/// costs nothing and leaves no gap. Every archive a member comes from must outlive the target.
class ZipTarget
{
public:
    /// Begins a target: a sound archive that is there is added to.
    /// @param create makes one where none is, or none that is sound
    /// @return null when there is nothing to add to, or the target cannot be written
    static std::unique_ptr<ZipTarget> begin(const fileString& path, bool create);
    /// Begins an empty archive, whatever stands there.
    /// @param wait how long another writer is waited for
    /// @throws std::runtime_error when the target cannot be written
    static std::unique_ptr<ZipTarget> beginEmpty(const fileString& path, std::chrono::milliseconds wait);

    /// Adds a member under `name`, in place of one of that name.
    /// @return false when the target would hold too many
    bool add(std::string_view name, const ZipArchive& source, const ZipEntry& entry);
    /// Writes everything beside the target.
    void write();
    /// Gives what was written the target's name.
    void publish() { mOutput.publish(); }

private:
    ZipTarget(const fileString& path, std::chrono::milliseconds wait) : mOutput(path, wait) {}

    struct Member
    {
        std::string name;
        const ZipArchive* source = nullptr; ///< null once the member was replaced
        const ZipEntry* entry = nullptr;
        std::uint64_t headerOffset = 0; ///< in the new file
    };
    /// Bytes of one archive that go over as they are.
    struct Run
    {
        const ZipArchive* source = nullptr;
        std::uint64_t offset = 0;
        std::uint64_t size = 0;
    };

    bool takeExisting(const fileString& path);
    void writePrefix();
    void writeMember(Member& member);
    void writeDirectory();
    void writeEndRecords(std::uint64_t members, std::uint64_t offset, std::uint64_t size);
    void extendRun(const ZipArchive& source, std::uint64_t offset, std::uint64_t size);
    void flushRun();
    std::string localHeader(const Member& member) const;
    std::string centralRecord(const Member& member) const;

    ZipOutput mOutput;
    std::unique_ptr<ZipArchive> mExisting; ///< null for a new archive
    std::vector<Member> mMembers;
    std::unordered_map<std::string, std::size_t> mByName; ///< places in mMembers
    Run mRun;
};

} // namespace ZipUtils
