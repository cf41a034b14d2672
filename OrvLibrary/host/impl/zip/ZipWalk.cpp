#include "OrvLibrary/host/impl/zip/ZipWalk_p.h"

namespace ZipUtils {

ArchiveHandle::ArchiveHandle(const fileString& archive, ZipBatch& batch)
    : mArchive(std::make_shared<ZipArchive>(archive)),
      mStates(mArchive->entries().size(), State::Open),
      mBatch(batch)
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
    if (walk && walk->mStates[archive.indexOf(entry)] == State::Open)
        walk->mStates[archive.indexOf(entry)] = State::Known;
}

void ArchiveHandle::walk(const MemberCallback& callback)
{
    try {
        handOut(callback);
        mBatch.finishWalk();
    } catch (...) {
        mBatch.giveUp();
        throw;
    }
}

/// Verifies the members that were handed out, before the files made from them replace their targets.
void ArchiveHandle::handOut(const MemberCallback& callback)
{
    bool goesOn = true;
    for (std::size_t i = 0; goesOn && i < mArchive->entries().size(); ++i) {
        const fileString name(std::string(mArchive->entries()[i].name));
        goesOn = callback(name, *this, RawDataInfo(i));
        if (mStates[i] == State::Known)
            mBatch.meter().addContent(mArchive->entries()[i].size);
        verify(i);
    }
}

void ArchiveHandle::verify(std::size_t index)
{
    if (mStates[index] != State::Open)
        return;
    mStates[index] = State::Queued;
    mBatch.verification().add(mArchive, index);
}

bool ArchiveHandle::writeRaw(const fileString& target, const fileString& member, bool create,
                             const RawDataInfo& info)
{
    const ZipEntry& entry = mArchive->entries().at(info.index());
    if (!isSafeMemberName(member.toNativeString()))
        return false;
    // An encrypted member checks its password against its time or its checksum; this flag decides which. A
    // copy cannot keep the flag.
    if (entry.isEncrypted() && entry.hasDescriptor)
        return false;
    ZipTarget* begun = mBatch.find(target, create);
    if (!begun)
        return false;
    verify(info.index()); // other threads verify while this one copies
    return begun->add(member.toNativeString(), mArchive, entry);
}

bool ArchiveHandle::extract(const fileString& target, const RawDataInfo& info)
{
    if (!mBatch.extract(target, mArchive, mArchive->entries().at(info.index())))
        return false;
    mStates[info.index()] = State::Queued;
    return true;
}

void ArchiveHandle::leaveOut(const RawDataInfo& info)
{
    if (mStates.at(info.index()) == State::Open)
        mStates[info.index()] = State::Known;
}

} // namespace ZipUtils
