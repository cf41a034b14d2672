#include "OrvLibrary/host/impl/zip/ZipWalk_p.h"

#include "OrvLibrary/host/impl/zip/ZipBatch_p.h"

namespace ZipUtils {

ArchiveHandle::ArchiveHandle(const fileString& archive)
    : mArchive(openArchive(archive)),
      mVerified(mArchive->entries().size(), 0),
      mTargets(currentBatch() ? *currentBatch() : mOwnTargets),
      mVerification(mTargets.verificationOf(mArchive))
{
    active().push_back(this);
}

ArchiveHandle::~ArchiveHandle()
{
    active().pop_back();
}

std::vector<ArchiveHandle*>& ArchiveHandle::active()
{
    static thread_local std::vector<ArchiveHandle*> walks;
    return walks;
}

void ArchiveHandle::noteVerified(const ZipArchive& archive, const ZipEntry& entry)
{
    ArchiveHandle* walk =
        findActive([&](const ArchiveHandle& candidate) { return candidate.mArchive.get() == &archive; });
    if (walk)
        walk->mVerified[static_cast<std::size_t>(&entry - archive.entries().data())] = 1;
}

void ArchiveHandle::walk(const MemberCallback& callback)
{
    try {
        handOut(callback);
    } catch (...) {
        mTargets.giveUp();
        throw;
    }
    if (&mTargets == &mOwnTargets)
        mTargets.complete();
}

/// What was handed out is sound to its last byte before anything that came of it takes its place. It is
/// verified after the callback, which itself reads, and so verifies, the largest member.
void ArchiveHandle::handOut(const MemberCallback& callback)
{
    bool goesOn = true;
    for (std::size_t i = 0; goesOn && i < mArchive->entries().size(); ++i) {
        const fileString name(std::string(mArchive->entries()[i].name));
        goesOn = callback(name, *this, RawDataInfo(i));
        if (mVerified[i] == 0)
            mVerification.add(i);
    }
}

bool ArchiveHandle::writeRaw(const fileString& target, const fileString& member, bool create,
                             const RawDataInfo& info)
{
    const ZipEntry& entry = mArchive->entries().at(info.index());
    if (!isSafeMemberName(member.toNativeString()))
        return false;
    // The password check of such a member lies in its time or its checksum, depending on the flag that a copy
    // cannot keep.
    if (entry.isEncrypted() && entry.hasDescriptor)
        return false;
    ZipTarget* begun = mTargets.find(target, create);
    return begun != nullptr && begun->add(member.toNativeString(), *mArchive, entry);
}

} // namespace ZipUtils
