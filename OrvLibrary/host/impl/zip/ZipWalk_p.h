#pragma once

#include <memory>
#include <vector>

#include "OrvLibrary/host/ZipUtils.h"
#include "OrvLibrary/host/impl/zip/ZipArchive_p.h"
#include "OrvLibrary/host/impl/zip/ZipBatch_p.h"

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

/// One walk: the archive, which of its members are still to be verified, and the batch that it writes to.
///
/// A thread knows the walks that it is inside of, because a member may be read by its address, and an archive
/// be asked about by its path, without a word about the walk. The list holds nothing else.
class ArchiveHandle
{
public:
    /// @param batch outlives the walk
    /// @throws std::runtime_error for an unsound archive
    ArchiveHandle(const fileString& archive, ZipBatch& batch);
    ~ArchiveHandle();
    ArchiveHandle(const ArchiveHandle&) = delete;
    ArchiveHandle& operator=(const ArchiveHandle&) = delete;

    /// Hands every member to the callback until it returns false. Every member that was handed out is
    /// verified when the function returns.
    /// @throws std::runtime_error, Cancelled, and what the callback throws; the batch is given up then
    void walk(const MemberCallback& callback);
    /// As `writeFileToArchiveRaw`.
    bool writeRaw(const fileString& target, const fileString& member, bool create, const RawDataInfo& info);
    /// As `extractFileFromArchive`.
    bool extract(const fileString& target, const RawDataInfo& info);
    /// As `leaveOutMember`.
    void leaveOut(const RawDataInfo& info);

    /// Whoever reads on after the walk keeps it.
    const std::shared_ptr<const ZipArchive>& archive() const { return mArchive; }
    const ZipBatch& batch() const { return mBatch; }

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
    /// How far a member came.
    enum class State : char
    {
        Open,   ///< nobody looked at its content
        Known,  ///< read and sound, or not wanted
        Queued, ///< somebody verifies it, and tells its size
    };

    static std::vector<ArchiveHandle*>& active();

    void handOut(const MemberCallback& callback);
    void verify(std::size_t index);

    std::shared_ptr<const ZipArchive> mArchive;
    std::vector<State> mStates; ///< by place in the directory
    ZipBatch& mBatch;
};

} // namespace ZipUtils
