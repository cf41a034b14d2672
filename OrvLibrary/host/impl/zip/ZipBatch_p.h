#pragma once

#include <map>
#include <memory>
#include <set>
#include <string>

#include "OrvLibrary/host/impl/zip/ZipExtraction_p.h"
#include "OrvLibrary/host/impl/zip/ZipTarget_p.h"
#include "OrvLibrary/host/impl/zip/ZipVerification_p.h"

namespace ZipUtils {

/// The files that one walk, or several that belong together, write: archives and extracted members. They take
/// their places together, after everything that the walks handed out was verified. Used by one thread.
class ZipBatch
{
public:
    /// @param progress may be null
    explicit ZipBatch(std::shared_ptr<ProgressSubject> progress);

    ZipMeter& meter() { return mMeter; }
    ZipVerification& verification() { return mVerification; }

    /// Whether the target was begun here, under whatever text for its path.
    bool has(const fileString& path) const;
    /// Whether the target could not be begun and is not tried again.
    bool isRefused(const fileString& path) const { return mRefused.count(path.toNativeString()) > 0; }
    /// The target of that path, begun when it was not.
    /// @return null when it cannot be written, or is no archive and `create` is false
    /// @throws Cancelled
    ZipTarget* find(const fileString& path, bool create);
    /// Begins an empty target, whatever stands there.
    /// @throws std::runtime_error when it cannot be written; Cancelled
    void beginEmpty(const fileString& path);
    /// As `extractFileFromArchive`.
    bool extract(const fileString& target, const std::shared_ptr<const ZipArchive>& source,
                 const ZipEntry& entry);
    /// The end of a walk: everything that it handed out is verified and told.
    /// @throws std::runtime_error for what is not sound; Cancelled
    void finishWalk();
    /// A walk ended early: nothing that was written remains, and nothing can be completed.
    void giveUp();
    /// Writes what is left to write, then gives everything its place.
    /// @throws std::runtime_error when something cannot be written; Cancelled
    void complete();

private:
    ZipMeter mMeter;
    ZipPatience mPatience;
    ZipVerification mVerification;
    std::map<std::string, std::unique_ptr<ZipTarget>> mTargets; ///< by resolved path
    std::map<std::string, ZipTarget*> mByText;                  ///< as the callers name them
    std::set<std::string> mRefused;
    std::map<std::string, std::unique_ptr<ZipExtraction>> mExtractions; ///< as the callers name the targets
    bool mGivenUp = false;
};

} // namespace ZipUtils
