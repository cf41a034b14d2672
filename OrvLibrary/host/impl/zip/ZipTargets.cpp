#include "OrvLibrary/host/impl/zip/ZipTargets_p.h"

#include <filesystem>
#include <stdexcept>

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

bool ZipTargets::has(const fileString& path) const
{
    return mByText.count(path.toNativeString()) > 0 ||
           (!mTargets.empty() && mTargets.count(resolved(path)) > 0);
}

ZipTarget* ZipTargets::find(const fileString& path, bool create)
{
    const auto known = mByText.find(path.toNativeString());
    if (known != mByText.end())
        return known->second;
    const std::string key = resolved(path);
    if (mTargets.count(key) == 0) {
        std::unique_ptr<ZipTarget> begun = ZipTarget::begin(fileString(key), create);
        if (!begun)
            return nullptr;
        mTargets[key] = std::move(begun);
    }
    return mByText[path.toNativeString()] = mTargets[key].get();
}

void ZipTargets::beginEmpty(const fileString& path, std::chrono::milliseconds wait)
{
    const std::string key = resolved(path);
    mTargets[key] = ZipTarget::beginEmpty(fileString(key), wait);
    mByText[path.toNativeString()] = mTargets[key].get();
}

void ZipTargets::keep(std::shared_ptr<const ZipArchive> source)
{
    mSources.push_back(std::move(source));
}

ZipVerification& ZipTargets::verificationOf(std::shared_ptr<const ZipArchive> source)
{
    mVerifications.push_back(std::make_unique<ZipVerification>(std::move(source)));
    return *mVerifications.back();
}

std::shared_ptr<const ZipArchive> ZipTargets::findSource(const fileString& path) const
{
    for (const std::shared_ptr<const ZipArchive>& source : mSources) {
        if (source->path() == path && source->isUnchanged())
            return source;
    }
    return nullptr;
}

void ZipTargets::complete()
{
    if (mGivenUp)
        throw std::runtime_error("a walk that wrote to these archives failed");
    for (auto& target : mTargets)
        target.second->write();
    for (auto& verification : mVerifications)
        verification->finish();
    for (auto& target : mTargets)
        target.second->publish();
}

} // namespace ZipUtils
