#pragma once

#include <chrono>
#include <cstdint>
#include <string>

#include "apps/orv-library/GlobalOptions.h"

/// Shows on standard error how the work goes on: as a bar that is redrawn; as plain lines, one for each step
/// and, in a long step, at most one a second with the amount done, such as "312 of 800 MB"; or not at all.
/// Used by one thread at a time.
class ProgressReporter
{
public:
    /// The units of a scale that counts bytes.
    static constexpr const char* kBytes = "bytes";

    explicit ProgressReporter(ProgressMode mode);
    /// Ends the bar's line.
    ~ProgressReporter();
    ProgressReporter(const ProgressReporter&) = delete;
    ProgressReporter& operator=(const ProgressReporter&) = delete;

    /// A new step, such as "reading". A step that is told twice in a row counts once.
    void setText(const std::string& text);
    /// The thing of the step that is worked on, such as the name of a file; only the bar shows it.
    void setDetail(const std::string& detail);
    /// The end of the scale, 0 for none; the value goes back to 0.
    void setRange(std::uint64_t range);
    void setValue(std::uint64_t value);
    /// The units of the scale, such as "KB"; empty for a number of things. For bytes the bar shows the speed
    /// and the time that is left, too.
    void setUnits(const std::string& units);
    /// So much more of the scale.
    void advance(std::uint64_t amount = 1);
    /// Takes the bar off the line, so that something else can be printed.
    void clear();

private:
    using Clock = std::chrono::steady_clock;

    void show(bool always);
    void draw(bool always);
    void printAmount();
    std::string bar() const;
    std::string speed() const;

    ProgressMode mMode;
    std::string mText;
    std::string mDetail;
    std::string mUnits;
    std::uint64_t mRange = 0;
    std::uint64_t mValue = 0;
    bool mOnLine = false;           ///< a bar stands on the terminal's line
    Clock::time_point mLastShown{}; ///< when the bar was drawn, or the last plain line printed
    Clock::time_point mRangeBegan{};
};
