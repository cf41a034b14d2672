#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "OrvLibrary/host/ProgressSubject.h"

namespace test {

/// A progress object that records every call: "total 12", "step Unpacking a | ", "labels a | b", "check". It
/// is not thread-safe.
class RecordingProgress : public ProgressSubject
{
public:
    /// Decides whether the user has asked to cancel. Its argument is the number of this check, counted from
    /// 1.
    std::function<bool(int)> isCancelled = [](int) { return false; };

    bool checkCancel(bool processEvents) override;
    void createSubProgress(std::uint64_t total) override;
    void increment(const marl::unicode::String& label1, const marl::unicode::String& label2) override;
    void updateLabels(const marl::unicode::String& label1, const marl::unicode::String& label2) override;

    void advanceBytes(std::uint64_t bytes) override;

    const std::vector<std::string>& calls() const { return mCalls; }
    /// The argument of each call of `advanceBytes`. The recorded calls do not include these.
    const std::vector<std::uint64_t>& bytes() const { return mBytes; }
    std::uint64_t sumOfBytes() const;
    int checks() const { return mChecks; }

private:
    std::vector<std::string> mCalls;
    std::vector<std::uint64_t> mBytes;
    int mChecks = 0;
};

} // namespace test
