#pragma once

#include <chrono>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "OrvLibrary/host/impl/zip/ZipTarget_p.h"
#include "OrvLibrary/host/impl/zip/ZipVerification_p.h"

namespace ZipUtils {

/// The archives that a walk, or a batch of walks, writes to. They are completed together, or not at all.
class ZipTargets
{
public:
    /// Whether the target was begun here, under whatever text for its path.
    bool has(const fileString& path) const;
    /// The target of that path, begun when it was not.
    /// @return null when it cannot be written, or is no archive and `create` is false
    ZipTarget* find(const fileString& path, bool create);
    /// Begins an empty target, whatever stands there.
    /// @throws std::runtime_error when it cannot be written
    void beginEmpty(const fileString& path, std::chrono::milliseconds wait);
    /// Keeps an archive, whose members the targets may name.
    void keep(std::shared_ptr<const ZipArchive> source);
    /// Where a walk of that archive has its members verified.
    ZipVerification& verificationOf(std::shared_ptr<const ZipArchive> source);
    /// An archive that is kept and did not change since; null when there is none.
    std::shared_ptr<const ZipArchive> findSource(const fileString& path) const;
    /// A walk ended early: what it left in the targets was not verified, so that nothing can be completed.
    void giveUp() { mGivenUp = true; }
    /// Writes all while the last members are verified, then gives each its name.
    /// @throws std::runtime_error when an archive that was walked is not sound, or one cannot be written
    void complete();

private:
    std::vector<std::shared_ptr<const ZipArchive>> mSources;
    std::vector<std::unique_ptr<ZipVerification>> mVerifications;
    std::map<std::string, std::unique_ptr<ZipTarget>> mTargets; ///< by resolved path
    std::map<std::string, ZipTarget*> mByText;                  ///< as the callers name them
    bool mGivenUp = false;
};

} // namespace ZipUtils
