#include "apps/orv-library/ConsoleProgress.h"

#include "apps/orv-library/Interrupt.h"

bool ConsoleProgress::checkCancel(bool /*processEvents*/)
{
    return Interrupt::requested();
}

void ConsoleProgress::createSubProgress(std::uint64_t /*total*/)
{
    // The total counts bytes, the increments count members: a scale of both would never be full.
    mReporter.setRange(0);
}

void ConsoleProgress::increment(const marl::unicode::String& label1, const marl::unicode::String& label2)
{
    updateLabels(label1, label2);
}

void ConsoleProgress::updateLabels(const marl::unicode::String& label1, const marl::unicode::String& label2)
{
    const std::string& second = label2.toUTF8String();
    mReporter.setText(label1.toUTF8String() + (second.empty() ? "" : " " + second));
}
