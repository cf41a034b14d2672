#include "OrvLibrary/UI/qtProgressGauge.h"

#include <limits>

#include <QMetaObject>
#include <QMetaType>
#include <QMouseEvent>

#include "OrvLibrary/host/PreferenceEngine.h"
#include "OrvLibrary/host/StringTable.h"
#include "OrvLibrary/host/StringUtils.h"

namespace {

constexpr int kGaugeHeight = 20; // pixels

ProgressDisplayType nextDisplayType(ProgressDisplayType type)
{
    switch (type) {
    case kProgressCaptionOnly:
        return kProgressPercentage;
    case kProgressPercentage:
        return kProgressCount;
    case kProgressCount:
        return kProgressCaptionOnly;
    }
    return type;
}

} // namespace

ProgressGauge::ProgressGauge(QWidget* parent, ProgressText& text)
    : QProgressBar(parent),
      mDisplayType(static_cast<ProgressDisplayType>(
          PreferenceEngine::getThePrefs().getPrefAs<int>(PrefId::kProgressDisplayType))),
      mProgressText(text)
{
    setMinimum(0);
    setMaximum(100);
    setValue(0);
    setTextVisible(false);
    setContentsMargins(0, 0, 0, 0);
    setFixedHeight(kGaugeHeight);
    qRegisterMetaType<ProgressDisplayType>("ProgressDisplayType");
    updateToolTip();
}

ProgressGauge::~ProgressGauge() = default;

void ProgressGauge::SetValue(int v)
{
    setValue(v);
    QMetaObject::invokeMethod(&mProgressText, "onSetValue", Qt::QueuedConnection, Q_ARG(int, v));
}

void ProgressGauge::SetRange(int r)
{
    setMaximum(minimum() + r);
    QMetaObject::invokeMethod(&mProgressText, "onSetRange", Qt::QueuedConnection, Q_ARG(int, r));
}

void ProgressGauge::onUpdate()
{
    // A bar at the largest `int` stays there.
    SetValue(value() == std::numeric_limits<int>::max() ? value() : value() + 1);
}

void ProgressGauge::onSetValue(int size)
{
    SetValue(size);
}

void ProgressGauge::onSetRange(int size)
{
    SetValue(0);
    SetRange(size);
}

void ProgressGauge::updateToolTip()
{
    switch (mDisplayType) {
    case kProgressCaptionOnly:
        setToolTip(StringUtils::loadQString(TextId::kCaptionOnlyToolTip));
        break;
    case kProgressPercentage:
        setToolTip(StringUtils::loadQString(TextId::kPercentageToolTip));
        break;
    case kProgressCount:
        setToolTip(StringUtils::loadQString(TextId::kCountToolTip));
        break;
    }
}

void ProgressGauge::switchDisplayType()
{
    mDisplayType = nextDisplayType(mDisplayType);
    PreferenceEngine::getThePrefs().setPrefAs<int>(PrefId::kProgressDisplayType, mDisplayType);
    updateToolTip();
    QMetaObject::invokeMethod(&mProgressText, "onSwitchDisplayType", Qt::QueuedConnection,
                              Q_ARG(ProgressDisplayType, mDisplayType));
}

void ProgressGauge::mouseReleaseEvent(QMouseEvent* e)
{
    if (e->button() == Qt::LeftButton)
        switchDisplayType();
    e->ignore();
}
