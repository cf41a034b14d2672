#pragma once

#include <memory>
#include <vector>

#include "OrvLibrary/host/ZipUtils.h"
#include "OrvLibrary/host/impl/zip/ZipArchive_p.h"
#include "OrvLibrary/host/impl/zip/ZipTargets_p.h"
#include "OrvLibrary/host/impl/zip/ZipVerification_p.h"

namespace ZipUtils {

class RawDataInfo
{
public:
    explicit RawDataInfo(std::size_t index) : mIndex(index) {}
    /// The member's place in the archive's directory.
    std::size_t index() const { return mIndex; }

private:
    std::size_t mIndex;
};

/// One walk: the archive, which of its members still have to be verified, and the archives that the callback
/// writes to. The thread knows its walks while they last, the innermost last.
class ArchiveHandle
{
public:
    /// @throws std::runtime_error for an unsound archive
    explicit ArchiveHandle(const fileString& archive);
    ~ArchiveHandle();
    ArchiveHandle(const ArchiveHandle&) = delete;
    ArchiveHandle& operator=(const ArchiveHandle&) = delete;

    void walk(const MemberCallback& callback);
    bool writeRaw(const fileString& target, const fileString& member, bool create, const RawDataInfo& info);

    /// What reads on after the walk keeps it.
    const std::shared_ptr<const ZipArchive>& archive() const { return mArchive; }
    /// Whether this walk, or the batch that it belongs to, began the target.
    bool hasTarget(const fileString& target) const { return mTargets.has(target); }

    /// Tells the walk of this archive, if there is one, that a member was read to its end and found sound.
    static void noteVerified(const ZipArchive& archive, const ZipEntry& entry);

    /// The innermost of this thread's walks that `accepts` says yes to; null when there is none.
    template <typename Predicate>
    static ArchiveHandle* findActive(Predicate accepts)
    {
        for (auto walk = active().rbegin(); walk != active().rend(); ++walk) {
            if (accepts(**walk))
                return *walk;
        }
        return nullptr;
    }

private:
    static std::vector<ArchiveHandle*>& active();

    void handOut(const MemberCallback& callback);

    std::shared_ptr<const ZipArchive> mArchive;
    std::vector<char> mVerified; ///< by place in the directory: read to its end
    ZipTargets mOwnTargets;
    ZipTargets& mTargets; ///< its own, or those of the batch
    ZipVerification& mVerification;
};

} // namespace ZipUtils
