#include "tests/support/RecordingProgress.h"

#include <numeric>

namespace test {

bool RecordingProgress::checkCancel(bool processEvents)
{
    mCalls.emplace_back(processEvents ? "check with events" : "check");
    return isCancelled(++mChecks);
}

void RecordingProgress::createSubProgress(std::uint64_t total)
{
    mCalls.push_back("total " + std::to_string(total));
}

void RecordingProgress::increment(const marl::unicode::String& label1, const marl::unicode::String& label2)
{
    mCalls.push_back("step " + label1.toUTF8String() + " | " + label2.toUTF8String());
}

void RecordingProgress::updateLabels(const marl::unicode::String& label1, const marl::unicode::String& label2)
{
    mCalls.push_back("labels " + label1.toUTF8String() + " | " + label2.toUTF8String());
}

void RecordingProgress::advanceBytes(std::uint64_t bytes)
{
    mBytes.push_back(bytes);
}

std::uint64_t RecordingProgress::sumOfBytes() const
{
    return std::accumulate(mBytes.begin(), mBytes.end(), std::uint64_t(0));
}

} // namespace test
