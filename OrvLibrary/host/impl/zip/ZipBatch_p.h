#pragma once

#include <map>
#include <memory>
#include <set>
#include <string>

#include "OrvLibrary/host/impl/zip/ZipExtraction_p.h"
#include "OrvLibrary/host/impl/zip/ZipTarget_p.h"
#include "OrvLibrary/host/impl/zip/ZipVerification_p.h"

namespace ZipUtils {

/// All files that one walk writes, or several walks that belong together: archives and extracted members.
/// They replace their targets together, at the end, and only if every member that the walks handed out was
/// sound. Used by one thread.
class ZipBatch
{
public:
    /// @param progress may be null
    explicit ZipBatch(std::shared_ptr<ProgressSubject> progress);

    ZipMeter& meter() { return mMeter; }
    ZipVerification& verification() { return mVerification; }

    /// Whether this batch already writes to the target. Different spellings of the path count as one.
    bool has(const fileString& path) const;
    /// Whether writing to the target failed and is not tried again.
    bool isRefused(const fileString& path) const { return mRefused.count(path.toNativeString()) > 0; }
    /// The target with this path. The first call begins it.
    /// @return null if it cannot be written, or if there is no archive and `create` is false
    /// @throws Cancelled
    ZipTarget* find(const fileString& path, bool create);
    /// Begins an empty target. An archive that exists will be replaced.
    /// @throws std::runtime_error if it cannot be written; Cancelled
    void beginEmpty(const fileString& path);
    /// Does what `extractFileFromArchive` promises.
    bool extract(const fileString& target, const std::shared_ptr<const ZipArchive>& source,
                 const ZipEntry& entry);
    /// Ends a walk: waits until every member that it handed out is verified.
    /// @throws std::runtime_error if a member is damaged; Cancelled
    void finishWalk();
    /// Called when a walk ends early. Removes everything that was written; `complete` is no longer possible.
    void giveUp();
    /// Writes the rest, then gives all files their names.
    /// @throws std::runtime_error if something cannot be written; Cancelled
    void complete();

private:
    ZipMeter mMeter;
    ZipPatience mPatience;
    ZipVerification mVerification;
    std::map<std::string, std::unique_ptr<ZipTarget>> mTargets; ///< by resolved path
    std::map<std::string, ZipTarget*> mByText;                  ///< by path, as the callers spell it
    std::set<std::string> mRefused;
    std::map<std::string, std::unique_ptr<ZipExtraction>> mExtractions; ///< by path, as the callers spell it
    bool mGivenUp = false;
};

} // namespace ZipUtils
