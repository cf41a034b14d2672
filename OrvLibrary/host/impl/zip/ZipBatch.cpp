// How it works: targets and extractions are begun when a walk first uses them, and are then found by the path
// that the caller used. `finishWalk` waits for everything that verifies or inflates the members of this walk.
// `complete` first writes and syncs all files, and only then renames them, so that a full disk changes
// nothing.
#include "OrvLibrary/host/impl/zip/ZipBatch_p.h"

#include <cerrno>
#include <filesystem>
#include <stdexcept>

namespace ZipUtils {

namespace {

/// Brings all spellings of a path to one. Links are followed, so the file they lead to is replaced.
std::string resolved(const fileString& path)
{
    std::error_code error;
    const std::filesystem::path found = std::filesystem::weakly_canonical(path.toNativeString(), error);
    return error ? path.toNativeString() : found.string();
}

} // namespace

ZipBatch::ZipBatch(std::shared_ptr<ProgressSubject> progress)
    : mMeter(std::move(progress)), mPatience(mMeter), mVerification(mMeter)
{
}

bool ZipBatch::has(const fileString& path) const
{
    return mByText.count(path.toNativeString()) > 0 ||
           (!mTargets.empty() && mTargets.count(resolved(path)) > 0);
}

ZipTarget* ZipBatch::find(const fileString& path, bool create)
{
    const auto known = mByText.find(path.toNativeString());
    if (known != mByText.end())
        return known->second;
    if (mGivenUp || isRefused(path))
        return nullptr;
    const std::string key = resolved(path);
    if (mTargets.count(key) == 0) {
        std::unique_ptr<ZipTarget> begun = ZipTarget::begin(fileString(key), create, mPatience, mMeter);
        // If there was just no archive yet, a later call with `create` may still succeed.
        if (!begun && (create || (errno != ENOENT && errno != 0)))
            mRefused.insert(path.toNativeString());
        if (!begun)
            return nullptr;
        mTargets[key] = std::move(begun);
    }
    return mByText[path.toNativeString()] = mTargets[key].get();
}

void ZipBatch::beginEmpty(const fileString& path)
{
    const std::string key = resolved(path);
    mTargets[key] = ZipTarget::beginEmpty(fileString(key), mPatience, mMeter);
    mRefused.erase(path.toNativeString());
}

bool ZipBatch::extract(const fileString& target, const std::shared_ptr<const ZipArchive>& source,
                       const ZipEntry& entry)
{
    if (isRefused(target))
        return false;
    // One large extraction at a time: two would compete for the disk and need twice the memory.
    for (const auto& other : mExtractions)
        other.second->finish();
    std::unique_ptr<ZipExtraction>& extraction = mExtractions[target.toNativeString()];
    if (!extraction)
        extraction = ZipExtraction::begin(target, mPatience, mMeter);
    if (!extraction) {
        mExtractions.erase(target.toNativeString());
        mRefused.insert(target.toNativeString());
        return false;
    }
    extraction->extract(source, entry);
    return true;
}

void ZipBatch::finishWalk()
{
    std::uint64_t waiting = mVerification.waiting();
    for (const auto& extraction : mExtractions)
        waiting += extraction.second->waiting();
    mMeter.label("checking", waiting);
    mVerification.finish();
    for (const auto& extraction : mExtractions)
        extraction.second->finish();
    mMeter.tellAll();
}

void ZipBatch::giveUp()
{
    mGivenUp = true;
    mVerification.stop();
    mExtractions.clear();
    mByText.clear();
    mTargets.clear();
}

void ZipBatch::complete()
{
    if (mGivenUp)
        throw std::runtime_error("a walk that wrote to these archives failed");
    std::uint64_t bytesLeft = 0;
    for (const auto& extraction : mExtractions)
        bytesLeft += extraction.second->size();
    for (const auto& target : mTargets)
        bytesLeft += target.second->bytesLeft();
    mMeter.label("putting in place", bytesLeft);
    for (const auto& target : mTargets)
        target.second->write();
    for (const auto& extraction : mExtractions)
        extraction.second->sync();
    for (const auto& extraction : mExtractions)
        extraction.second->publish();
    for (const auto& target : mTargets)
        target.second->publish();
}

} // namespace ZipUtils
