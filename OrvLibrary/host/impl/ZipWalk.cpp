#include "OrvLibrary/host/impl/ZipWalk_p.h"

#include <algorithm>
#include <filesystem>
#include <stdexcept>

#include "OrvLibrary/host/impl/ZipMember_p.h"

namespace ZipUtils {

namespace {

/// One text for all the ways to name a file; links are followed, so that what they lead to is replaced.
std::string resolved(const fileString& path)
{
    std::error_code error;
    const std::filesystem::path found = std::filesystem::weakly_canonical(path.toNativeString(), error);
    return error ? path.toNativeString() : found.string();
}

} // namespace

ArchiveHandle::ArchiveHandle(const fileString& archive)
    : mArchive(std::make_shared<ZipArchive>(archive)), mVerified(mArchive->entries().size(), 0)
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

void ArchiveHandle::walk(const MemberCallback& callback)
{
    std::size_t handedOut = 0;
    bool goesOn = true;
    while (goesOn && handedOut < mArchive->entries().size()) {
        const fileString name(std::string(mArchive->entries()[handedOut].name));
        goesOn = callback(name, *this, RawDataInfo(handedOut));
        ++handedOut;
    }
    verify(handedOut);
    completeTargets();
}

/// What was handed out is sound to its last byte before anything that came of it takes its place. At the end,
/// because the callback itself reads, and so verifies, the largest member.
void ArchiveHandle::verify(std::size_t handedOut) const
{
    std::vector<std::size_t> members;
    for (std::size_t i = 0; i < handedOut; ++i) {
        if (mVerified[i] == 0)
            members.push_back(i);
    }
    verifyMembers(*mArchive, members);
}

void ArchiveHandle::completeTargets()
{
    for (auto& target : mTargets)
        target.second->write();
    for (auto& target : mTargets)
        target.second->publish();
}

void ArchiveHandle::noteVerified(const ZipArchive& archive, const ZipEntry& entry)
{
    ArchiveHandle* walk =
        findActive([&](const ArchiveHandle& candidate) { return candidate.mArchive.get() == &archive; });
    if (walk)
        walk->mVerified[static_cast<std::size_t>(&entry - archive.entries().data())] = 1;
}

bool ArchiveHandle::hasTarget(const fileString& target) const
{
    return mByPath.count(target.toNativeString()) > 0 || mTargets.count(resolved(target)) > 0;
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
    ZipTarget* begun = targetFor(target, create);
    return begun != nullptr && begun->add(member.toNativeString(), *mArchive, entry);
}

ZipTarget* ArchiveHandle::targetFor(const fileString& path, bool create)
{
    const auto known = mByPath.find(path.toNativeString());
    if (known != mByPath.end())
        return known->second;
    const std::string key = resolved(path);
    if (mTargets.count(key) == 0) {
        std::unique_ptr<ZipTarget> begun = ZipTarget::begin(fileString(key), create);
        if (!begun)
            return nullptr;
        mTargets[key] = std::move(begun);
    }
    return mByPath[path.toNativeString()] = mTargets[key].get();
}

} // namespace ZipUtils
