#include "apps/orv-browser/activities/UpdateReceiver.h"

#include <algorithm>
#include <limits>

#include "OrvHost/LegacyText.h"

namespace {

constexpr double kBytesPerKilobyte = 1000;
constexpr qint64 kLeastMilliseconds = 500; // before that a speed says nothing

/// What a gauge can show; a slot must not throw.
size_t shown(size_t value)
{
    return std::min<size_t>(value, std::numeric_limits<int>::max());
}

} // namespace

UpdateReceiver::UpdateReceiver(OrvHost::CatalogSwapper& swapper, LibraryProgressPanel* panel)
    : mSwapper(swapper), mPanel(panel)
{
}

void UpdateReceiver::onSetText(std::string text)
{
    if (mPanel)
        mPanel->onSetText(OrvHost::LegacyText::toUtf8(text));
}

void UpdateReceiver::onSetUnits(std::string units)
{
    mDownloadTime.start();
    if (mPanel)
        mPanel->onSetUnits(units);
}

void UpdateReceiver::onSetRangeInGauge(size_t range)
{
    mRange = range;
    if (mPanel)
        mPanel->onSetRangeInGauge(shown(range));
}

void UpdateReceiver::onSetValueInGauge(size_t value)
{
    if (mPanel)
        mPanel->onSetValueInGauge(shown(value));
    if (!mDownloadTime.isValid() || mDownloadTime.elapsed() < kLeastMilliseconds || value == 0)
        return;
    const double seconds = static_cast<double>(mDownloadTime.elapsed()) / 1000;
    const double bytesPerSecond = static_cast<double>(value) * kBytesPerKilobyte / seconds;
    const double left = mRange > value ? static_cast<double>(mRange - value) * kBytesPerKilobyte : 0;
    Q_EMIT speedChanged(bytesPerSecond, left / bytesPerSecond);
}

void UpdateReceiver::onUpdateInGauge()
{
    if (mPanel)
        mPanel->onUpdateInGauge();
}

void UpdateReceiver::onCatalogUpdatedEvent(FileStringPair catalog)
{
    if (mSwapper.swapIn(catalog.first, catalog.second))
        Q_EMIT catalogReplaced(catalog.first);
}

void UpdateReceiver::closeCatalogUpdateEvent(const LibraryCatalogUpdate::UpdateData& outcome)
{
    mOutcome = outcome;
}

void UpdateReceiver::onClose()
{
    mOutcome.reset();
}
