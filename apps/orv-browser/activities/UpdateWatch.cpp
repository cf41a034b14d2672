#include "apps/orv-browser/activities/UpdateWatch.h"

#include <algorithm>

#include "OrvHost/update/CatalogUpdateRun.h"
#include "apps/orv-browser/activities/UpdateReceiver.h"

namespace {

constexpr int kLookMilliseconds = 200;
constexpr qint64 kBytesPerKilobyte = 1000;

/// Bytes of the bodies of a run.
struct Bodies
{
    qint64 there = 0;
    qint64 left = 0; ///< bytes of the downloads still to come, as far as their lengths are known
};

Bodies bodiesOf(const OrvHost::ServiceReport& service)
{
    Bodies bodies;
    for (const OrvHost::CatalogReport& catalog : service.catalogs) {
        bodies.there += catalog.bytes + catalog.received;
        if (catalog.isNew() && !catalog.isDownloadTried)
            bodies.left += std::max<qint64>(catalog.length.value_or(0) - catalog.received, 0);
    }
    return bodies;
}

} // namespace

UpdateWatch::UpdateWatch(const OrvHost::CatalogUpdateRun& run, UpdateReceiver& receiver)
    : mRun(run), mReceiver(receiver)
{
    connect(&mTimer, &QTimer::timeout, this, &UpdateWatch::look);
    mTimer.start(kLookMilliseconds);
    mTime.start();
}

void UpdateWatch::look()
{
    const OrvHost::ServiceReport service = mRun.service();
    const Bodies bodies = bodiesOf(service);
    mReceiver.showReceived(bodies.there / kBytesPerKilobyte);
    if (bodies.there > 0) {
        mSpeed.note(mTime.elapsed(), bodies.there);
        const QString text = mSpeed.text(bodies.left);
        if (!text.isEmpty())
            Q_EMIT speedChanged(text);
    }
    Q_EMIT looked(service);
}
