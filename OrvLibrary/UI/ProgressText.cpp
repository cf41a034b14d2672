#include "OrvLibrary/UI/ProgressText.h"

#include <algorithm>
#include <locale>
#include <utility>

#include <QMetaType>
#include <boost/format.hpp>

#include "OrvLibrary/host/PreferenceEngine.h"
#include "OrvLibrary/host/StringTable.h"
#include "OrvLibrary/host/StringUtils.h"

namespace {

constexpr int kCountPrecision = 9; // significant digits

// The translated template with its arguments. If a translation is broken, the template itself, because an
// exception must not leave a slot.
template <class... Arguments>
std::string filledIn(std::uint32_t stringNumber, const Arguments&... arguments)
{
    const std::string pattern = StringUtils::loadString(stringNumber);
    try {
        boost::format format(pattern, std::locale::classic());
        return boost::str((format % ... % arguments));
    } catch (const boost::io::format_error&) {
        return pattern;
    }
}

} // namespace

ProgressText::ProgressText(QObject* parent)
    : QObject(parent),
      mParent(parent),
      mDisplayType(static_cast<ProgressDisplayType>(
          PreferenceEngine::getThePrefs().getPrefAs<int>(PrefId::kProgressDisplayType)))
{
    qRegisterMetaType<ProgressDisplayType>("ProgressDisplayType");
    qRegisterMetaType<std::string>("std::string");
    connect(this, SIGNAL(setLabelText(const QString&)), mParent, SLOT(setProgressLabelText(const QString&)));
    connect(this, SIGNAL(setRangeText(const QString&)), mParent, SLOT(setProgressRangeText(const QString&)));
}

ProgressText::~ProgressText() = default;

void ProgressText::setUnitString(const std::string& unitString)
{
    mUnitString = unitString;
}

// Deliberate: a pause is remembered and both texts are sent again, but they do not show it.
// Kept by: ProgressTextTest.pauseAndResumeSendBothTextsUnchanged
void ProgressText::onPauseProcess()
{
    mPaused = true;
    updateLabel();
}

void ProgressText::onResumeProcess()
{
    mPaused = false;
    updateLabel();
}

void ProgressText::onSwitchDisplayType(ProgressDisplayType dispType)
{
    mDisplayType = dispType;
    updateLabel();
}

void ProgressText::onSetValue(int val)
{
    mValue = val;
    updateLabel();
}

void ProgressText::onSetRange(int val)
{
    mRange = val;
    updateLabel();
}

void ProgressText::onSetText(std::string text)
{
    mText = std::move(text);
    updateLabel();
}

void ProgressText::updateLabel()
{
    mRangeText.clear();
    if (mDisplayType == kProgressCount)
        mRangeText = countText();
    else if (mDisplayType == kProgressPercentage)
        mRangeText = percentageText();
    Q_EMIT setLabelText(StringUtils::toQString(mText));
    Q_EMIT setRangeText(StringUtils::toQString(mRangeText));
}

std::string ProgressText::countText() const
{
    const auto number = [](std::int32_t value) {
        return formatWithThousandsSeparatorPrecision(value, kCountPrecision);
    };
    const std::string count = filledIn(TextId::kCount, number(std::min(mValue, mRange)), number(mRange));
    return mUnitString.empty() ? count : count + " " + mUnitString;
}

std::string ProgressText::percentageText() const
{
    if (mRange < 1)
        return filledIn(TextId::kPercentage, 0);
    // Deliberate: the product has 32 bits and wraps above 21,474,836. It is unsigned, because a signed
    // overflow would be undefined.
    // Kept by: ProgressTextTest.percentageWrapsInThirtyTwoBits
    const auto done = static_cast<std::uint32_t>(std::min(mValue, mRange));
    return filledIn(TextId::kPercentage, static_cast<std::int32_t>(done * 100U) / mRange);
}
