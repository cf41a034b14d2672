#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "OrvLibrary/host/ProgressSubject.h"

namespace test {

/// A progress object that writes down every call: "total 12", "step Unpacking a | ", "labels a | b", "check".
/// Used from one thread.
class RecordingProgress : public ProgressSubject
{
public:
    /// Whether the user has asked to cancel; given the number of this check, from 1.
    std::function<bool(int)> isCancelled = [](int) { return false; };

    bool checkCancel(bool processEvents) override;
    void createSubProgress(std::uint64_t total) override;
    void increment(const marl::unicode::String& label1, const marl::unicode::String& label2) override;
    void updateLabels(const marl::unicode::String& label1, const marl::unicode::String& label2) override;

    void advanceBytes(std::uint64_t bytes) override;

    const std::vector<std::string>& calls() const { return mCalls; }
    /// The bytes told by each `advanceBytes`, which is not among the calls.
    const std::vector<std::uint64_t>& bytes() const { return mBytes; }
    std::uint64_t sumOfBytes() const;
    int checks() const { return mChecks; }

private:
    std::vector<std::string> mCalls;
    std::vector<std::uint64_t> mBytes;
    int mChecks = 0;
};

} // namespace test
