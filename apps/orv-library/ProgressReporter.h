#pragma once

#include <chrono>
#include <cstdint>
#include <string>

#include "apps/orv-library/GlobalOptions.h"

/// Shows on standard error how the work goes on: a bar that is redrawn, one plain line a step, or nothing.
/// Used by one thread at a time.
class ProgressReporter
{
public:
    explicit ProgressReporter(ProgressMode mode);
    /// Ends the bar's line.
    ~ProgressReporter();
    ProgressReporter(const ProgressReporter&) = delete;
    ProgressReporter& operator=(const ProgressReporter&) = delete;

    /// A new step or thing that is worked on.
    void setText(const std::string& text);
    /// The end of the scale; the value goes back to 0.
    void setRange(std::uint64_t range);
    void setValue(std::uint64_t value);
    /// What the scale counts, such as "KB"; empty for things.
    void setUnits(const std::string& units);
    /// One more of the scale.
    void advance();
    /// Takes the bar off the line, so that something else can be printed.
    void clear();

private:
    void draw(bool always);
    std::string bar() const;

    ProgressMode mMode;
    std::string mText;
    std::string mUnits;
    std::uint64_t mRange = 0;
    std::uint64_t mValue = 0;
    bool mOnLine = false; ///< a bar stands on the terminal's line
    std::chrono::steady_clock::time_point mLastDrawn{};
};
