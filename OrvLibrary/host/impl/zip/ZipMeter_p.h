#pragma once

#include <chrono>
#include <cstdint>
#include <memory>

#include "OrvLibrary/host/ProgressSubject.h"

namespace ZipUtils {

/// Tells a progress object how much content is done, and asks it whether to go on. Both happen after every
/// 8 MB of work, or after 50 ms of waiting, and not before: work below that is neither told nor
/// asked about until its end. Used by the thread that the progress object belongs to.
class ZipMeter
{
public:
    /// @param subject may be null
    explicit ZipMeter(std::shared_ptr<ProgressSubject> subject);

    /// So much content of the archive is done.
    /// @throws Cancelled
    void addContent(std::uint64_t bytes);
    /// So many bytes were moved that are not counted as content, or not yet.
    /// @throws Cancelled
    void addWork(std::uint64_t bytes);
    /// Time went by without work of this thread.
    /// @throws Cancelled
    void waited(std::chrono::milliseconds time);
    /// Tells what is left to tell.
    void tellAll();
    /// Names the step that comes now, if `bytes` of work lie before it and it will be seen.
    void label(const char* step, std::uint64_t bytes);

private:
    void ask();

    std::shared_ptr<ProgressSubject> mSubject;
    std::uint64_t mUntold = 0;  ///< bytes of content
    std::uint64_t mUnasked = 0; ///< bytes of work since the last question
    std::chrono::milliseconds mWaited{0};
};

/// How much work is done without a question.
constexpr std::uint64_t kPortion = 8U << 20U;

} // namespace ZipUtils
