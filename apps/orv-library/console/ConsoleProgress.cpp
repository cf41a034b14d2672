#include "apps/orv-library/console/ConsoleProgress.h"

#include "apps/orv-library/console/Interrupt.h"

namespace {

std::string joined(const marl::unicode::String& label1, const marl::unicode::String& label2)
{
    const std::string second = label2.toUTF8String();
    return label1.toUTF8String() + (second.empty() ? "" : " ") + second;
}

} // namespace

bool ConsoleProgress::checkCancel(bool /*processEvents*/)
{
    return Interrupt::requested();
}

void ConsoleProgress::createSubProgress(std::uint64_t total)
{
    mReporter.setUnits(ProgressReporter::kBytes);
    mReporter.setRange(total);
}

void ConsoleProgress::increment(const marl::unicode::String& label1, const marl::unicode::String& label2)
{
    mReporter.setDetail(joined(label1, label2));
}

void ConsoleProgress::updateLabels(const marl::unicode::String& label1, const marl::unicode::String& label2)
{
    mReporter.setText(joined(label1, label2));
    mReporter.setRange(0);
}

void ConsoleProgress::advanceBytes(std::uint64_t bytes)
{
    mReporter.advance(bytes);
}
