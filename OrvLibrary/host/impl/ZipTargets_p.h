#pragma once

#include <chrono>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "OrvLibrary/host/impl/ZipTarget_p.h"

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
    /// Keeps an archive whose members the targets name.
    void keep(std::shared_ptr<const ZipArchive> source);
    /// A walk ended early: what it left in the targets was not verified, so that nothing can be completed.
    void giveUp() { mGivenUp = true; }
    /// Writes all, then gives each its name.
    /// @throws std::runtime_error
    void complete();

private:
    std::vector<std::shared_ptr<const ZipArchive>> mSources;
    std::map<std::string, std::unique_ptr<ZipTarget>> mTargets; ///< by resolved path
    std::map<std::string, ZipTarget*> mByText;                  ///< as the callers name them
    bool mGivenUp = false;
};

} // namespace ZipUtils
