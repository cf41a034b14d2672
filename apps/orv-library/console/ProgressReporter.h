#pragma once

#include <chrono>
#include <cstdint>
#include <string>

#include "apps/orv-library/GlobalOptions.h"

/// Shows progress on standard error in one of three ways: as a bar that is redrawn; as lines, one for each
/// step and in a long step at most one per second with the amount, such as "312 of 800 MB"; or not at all.
/// Used by one thread at a time.
class ProgressReporter
{
public:
    /// The unit of a scale in bytes.
    static constexpr const char* kBytes = "bytes";

    explicit ProgressReporter(ProgressMode mode);
    /// Ends the bar's line.
    ~ProgressReporter();
    ProgressReporter(const ProgressReporter&) = delete;
    ProgressReporter& operator=(const ProgressReporter&) = delete;

    /// Begins a step such as "reading". The same step twice in a row counts once.
    void setText(const std::string& text);
    /// Sets the object of the step, such as a file name. Only the bar shows it.
    void setDetail(const std::string& detail);
    /// Sets the end of the scale, 0 for none, and sets the value to 0.
    void setRange(std::uint64_t range);
    void setValue(std::uint64_t value);
    /// Sets the unit of the scale, such as "KB"; empty for a number of things. For bytes, the bar also shows
    /// the speed and the remaining time.
    void setUnits(const std::string& units);
    /// Adds to the value.
    void advance(std::uint64_t amount = 1);
    /// Removes the bar, so that something else can be printed.
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
    bool mOnLine = false;           ///< whether the bar is on the terminal's line
    Clock::time_point mLastShown{}; ///< when the bar was last drawn, or a line last printed
    Clock::time_point mRangeBegan{};
};
