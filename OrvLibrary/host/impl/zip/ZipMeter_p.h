#pragma once

#include <chrono>
#include <cstdint>
#include <memory>

#include "OrvLibrary/host/ProgressSubject.h"

namespace ZipUtils {

/// Reports the finished content to a progress object and asks it whether to go on. Does both after every 8 MB
/// of work or 50 ms of waiting. Less work than that is reported only at the end. Used by the thread that owns
/// the progress object.
class ZipMeter
{
public:
    /// @param subject may be null
    explicit ZipMeter(std::shared_ptr<ProgressSubject> subject);

    /// Counts finished content of the archive.
    /// @throws Cancelled
    void addContent(std::uint64_t bytes);
    /// Counts work that is not content, or that will be counted as content later.
    /// @throws Cancelled
    void addWork(std::uint64_t bytes);
    /// Counts time in which this thread only waited.
    /// @throws Cancelled
    void waited(std::chrono::milliseconds time);
    /// Reports everything not yet reported.
    void tellAll();
    /// Names the next step for the user, unless its `bytes` of work are done too soon to be seen.
    void label(const char* step, std::uint64_t bytes);

private:
    void ask();

    std::shared_ptr<ProgressSubject> mSubject;
    std::uint64_t mUntold = 0;  ///< content not yet reported
    std::uint64_t mUnasked = 0; ///< work since the progress object was last asked
    std::chrono::milliseconds mWaited{0};
};

/// The amount of work between two questions.
constexpr std::uint64_t kPortion = 8U << 20U;

} // namespace ZipUtils
