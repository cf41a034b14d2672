#include "apps/orv-library/console/ProgressReporter.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include <sys/ioctl.h>
#include <unistd.h>

namespace {

constexpr int kBarCells = 20;
constexpr int kDefaultColumns = 80;
/// Often enough to look alive, and rare enough to need no noticeable time.
constexpr auto kRedrawInterval = std::chrono::milliseconds(50);
/// The time between two lines of one step.
constexpr auto kLineInterval = std::chrono::seconds(1);
/// Before this time, a speed would be a guess.
constexpr double kSecondsToMeasure = 0.5;
constexpr double kMegabyte = 1e6;
constexpr std::uint64_t kSmallestInMegabytes = 10000000;

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

/// Two amounts in the unit that suits the larger one: "312 of 800 MB".
std::string amountText(std::uint64_t value, std::uint64_t range, const std::string& units)
{
    if (units == ProgressReporter::kBytes) {
        const bool isLarge = range >= kSmallestInMegabytes;
        const std::uint64_t divisor = isLarge ? 1000000 : 1000;
        return amountText(value / divisor, range / divisor, isLarge ? "MB" : "KB");
    }
    return std::to_string(value) + " of " + std::to_string(range) + (units.empty() ? "" : " ") + units;
}

/// Such as "5 s" or "2:05".
std::string durationText(double seconds)
{
    const auto whole = static_cast<long>(std::ceil(seconds));
    if (whole < 60)
        return std::to_string(whole) + " s";
    const std::string rest = std::to_string(whole % 60);
    return std::to_string(whole / 60) + ":" + (rest.size() < 2 ? "0" : "") + rest;
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
    if (text == mText)
        return;
    mText = text;
    mDetail.clear();
    if (mMode == ProgressMode::Plain && !text.empty()) {
        print(text + "\n");
        mLastShown = Clock::now();
    }
    draw(true);
}

void ProgressReporter::setDetail(const std::string& detail)
{
    mDetail = detail;
    draw(false);
}

void ProgressReporter::setRange(std::uint64_t range)
{
    mRange = range;
    mValue = 0;
    mRangeBegan = Clock::now();
    draw(false);
}

void ProgressReporter::setValue(std::uint64_t value)
{
    mValue = value;
    show(mValue == mRange);
}

void ProgressReporter::setUnits(const std::string& units)
{
    mUnits = units;
    draw(false);
}

void ProgressReporter::advance(std::uint64_t amount)
{
    setValue(mValue + amount);
}

void ProgressReporter::clear()
{
    if (mOnLine)
        print("\r\033[K");
    mOnLine = false;
}

void ProgressReporter::show(bool always)
{
    if (mMode == ProgressMode::Plain)
        printAmount();
    draw(always);
}

void ProgressReporter::printAmount()
{
    const auto now = Clock::now();
    if (mRange == 0 || now - mLastShown < kLineInterval)
        return;
    mLastShown = now;
    print(amountText(std::min(mValue, mRange), mRange, mUnits) + "\n");
}

void ProgressReporter::draw(bool always)
{
    const auto now = Clock::now();
    if (mMode != ProgressMode::Bar || (!always && now - mLastShown < kRedrawInterval))
        return;
    mLastShown = now;
    const std::string text = mText + (mText.empty() || mDetail.empty() ? "" : ": ") + mDetail;
    // The last column stays free, because some terminals wrap the line when it is used.
    print("\r\033[K" + shortened(bar() + " " + text, terminalColumns() - 1));
    mOnLine = true;
}

std::string ProgressReporter::bar() const
{
    const std::uint64_t value = std::min(mValue, mRange);
    const double share = mRange ? static_cast<double>(value) / static_cast<double>(mRange) : 0.0;
    const auto filled = static_cast<std::size_t>(share * kBarCells);
    std::string text = "[" + std::string(filled, '#') + std::string(kBarCells - filled, ' ') + "]";
    return mRange ? text + " " + amountText(value, mRange, mUnits) + speed() : text;
}

/// Such as ", 95 MB/s, 5 s left". Empty if the unit is not bytes, or early in a step.
std::string ProgressReporter::speed() const
{
    const double seconds = std::chrono::duration<double>(Clock::now() - mRangeBegan).count();
    if (mUnits != kBytes || mValue == 0 || seconds < kSecondsToMeasure)
        return {};
    const double rate = static_cast<double>(mValue) / seconds;
    const double left = static_cast<double>(mRange - std::min(mValue, mRange)) / rate;
    char text[32];
    std::snprintf(text, sizeof text, ", %.*f MB/s", rate < 10 * kMegabyte ? 1 : 0, rate / kMegabyte);
    return text + (", " + durationText(left) + " left");
}
