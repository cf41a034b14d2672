#include "apps/orv-browser/activities/UpdateReceiver.h"

#include <algorithm>
#include <limits>

#include "OrvHost/LegacyText.h"
#include "apps/orv-browser/models/DataSize.h"

namespace {

/// A value that the gauge can show. Converting must not throw, because this is called in a slot.
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

// The unit comes when the download begins. It is written as in the rest of the window.
void UpdateReceiver::onSetUnits(std::string)
{
    mIsDownloading = true;
    if (mPanel)
        mPanel->onSetUnits(DataSize::kilobyte().toStdString());
}

void UpdateReceiver::onSetRangeInGauge(size_t range)
{
    if (mPanel)
        mPanel->onSetRangeInGauge(shown(range));
}

void UpdateReceiver::onSetValueInGauge(size_t value)
{
    if (mPanel)
        mPanel->onSetValueInGauge(shown(value));
}

void UpdateReceiver::showReceived(qint64 kilobytes)
{
    if (mIsDownloading && kilobytes > 0)
        onSetValueInGauge(static_cast<size_t>(kilobytes));
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
