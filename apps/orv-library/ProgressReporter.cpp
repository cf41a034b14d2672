#include "apps/orv-library/ProgressReporter.h"

#include <algorithm>
#include <cstdio>

#include <sys/ioctl.h>
#include <unistd.h>

namespace {

constexpr int kBarCells = 20;
constexpr int kDefaultColumns = 80;
/// Often enough to look alive, rare enough to cost nothing.
constexpr auto kRedrawInterval = std::chrono::milliseconds(50);

ProgressMode resolved(ProgressMode mode)
{
    if (mode != ProgressMode::Automatic)
        return mode;
    return isatty(STDERR_FILENO) ? ProgressMode::Bar : ProgressMode::Plain;
}

std::size_t terminalColumns()
{
    winsize size{};
    const bool known = ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
    return known ? size.ws_col : kDefaultColumns;
}

bool continuesCharacter(char byte)
{
    return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

/// The first `columns` characters of a UTF-8 text.
std::string shortened(const std::string& text, std::size_t columns)
{
    std::size_t characters = 0;
    for (std::size_t index = 0; index < text.size(); ++index) {
        if (!continuesCharacter(text[index]) && ++characters > columns)
            return text.substr(0, index);
    }
    return text;
}

void print(const std::string& text)
{
    std::fwrite(text.data(), 1, text.size(), stderr);
    std::fflush(stderr);
}

} // namespace

ProgressReporter::ProgressReporter(ProgressMode mode) : mMode(resolved(mode)) {}

ProgressReporter::~ProgressReporter()
{
    clear();
}

void ProgressReporter::setText(const std::string& text)
{
    mText = text;
    if (mMode == ProgressMode::Plain && !text.empty())
        print(text + "\n");
    draw(true);
}

void ProgressReporter::setRange(std::uint64_t range)
{
    mRange = range;
    mValue = 0;
    draw(false);
}

void ProgressReporter::setValue(std::uint64_t value)
{
    mValue = value;
    draw(mValue == mRange);
}

void ProgressReporter::setUnits(const std::string& units)
{
    mUnits = units;
    draw(false);
}

void ProgressReporter::advance()
{
    setValue(mValue + 1);
}

void ProgressReporter::clear()
{
    if (mOnLine)
        print("\r\033[K");
    mOnLine = false;
}

void ProgressReporter::draw(bool always)
{
    const auto now = std::chrono::steady_clock::now();
    if (mMode != ProgressMode::Bar || (!always && now - mLastDrawn < kRedrawInterval))
        return;
    mLastDrawn = now;
    // One column stays free, because some terminals wrap when the last one is written.
    print("\r\033[K" + shortened(bar() + " " + mText, terminalColumns() - 1));
    mOnLine = true;
}

std::string ProgressReporter::bar() const
{
    const std::uint64_t value = std::min(mValue, mRange);
    const double share = mRange ? static_cast<double>(value) / static_cast<double>(mRange) : 0.0;
    const auto filled = static_cast<std::size_t>(share * kBarCells);
    std::string text = "[" + std::string(filled, '#') + std::string(kBarCells - filled, ' ') + "]";
    if (mRange)
        text += " " + std::to_string(value) + "/" + std::to_string(mRange);
    if (mRange && !mUnits.empty())
        text += " " + mUnits;
    return text;
}
