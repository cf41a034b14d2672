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
    /// The index of the member in the archive's directory.
    std::size_t index() const { return mIndex; }

private:
    std::size_t mIndex;
};

/// One walk over an archive: which members must still be verified, and the batch that it writes to.
///
/// Each thread has a list of its walks, because a caller may read a member by its address without naming the
/// walk. The list does not own them.
class ArchiveHandle
{
public:
    /// @param batch must live longer than the walk
    /// @throws std::runtime_error if the archive is damaged
    ArchiveHandle(const fileString& archive, ZipBatch& batch);
    ~ArchiveHandle();
    ArchiveHandle(const ArchiveHandle&) = delete;
    ArchiveHandle& operator=(const ArchiveHandle&) = delete;

    /// Calls the callback for each member, until it returns false. Then waits until each of these members is
    /// verified.
    /// @throws std::runtime_error, Cancelled, and whatever the callback throws. The batch is then given up.
    void walk(const MemberCallback& callback);
    /// Does what `writeFileToArchiveRaw` promises.
    bool writeRaw(const fileString& target, const fileString& member, bool create, const RawDataInfo& info);
    /// Does what `extractFileFromArchive` promises.
    bool extract(const fileString& target, const RawDataInfo& info);
    /// Does what `leaveOutMember` promises.
    void leaveOut(const RawDataInfo& info);

    /// Keep this pointer to read on after the walk.
    const std::shared_ptr<const ZipArchive>& archive() const { return mArchive; }
    const ZipBatch& batch() const { return mBatch; }

    /// Tells this thread's walk over the archive, if there is one, that a member was read to its end and is
    /// sound.
    static void noteVerified(const ZipArchive& archive, const ZipEntry& entry);

    /// The innermost walk of this thread that `accepts` agrees to; null if there is none.
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
    /// How far a member is.
    enum class State : char
    {
        Open,   ///< nobody has read its content
        Known,  ///< read and sound, or not wanted
        Queued, ///< being verified and reported
    };

    static std::vector<ArchiveHandle*>& active();

    void handOut(const MemberCallback& callback);
    void verify(std::size_t index);

    std::shared_ptr<const ZipArchive> mArchive;
    std::vector<State> mStates; ///< by index in the directory
    ZipBatch& mBatch;
};

} // namespace ZipUtils
