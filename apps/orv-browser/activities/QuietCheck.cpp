#include "apps/orv-browser/activities/QuietCheck.h"

#include <QDateTime>

#include "OrvHost/update/CatalogUpdateRun.h"
#include "OrvHost/update/LastCheck.h"
#include "apps/orv-browser/activities/UpdateRequest.h"

namespace {

constexpr qint64 kSecondsPerHour = 3600;

} // namespace

QuietCheck::QuietCheck(const fileString& root, QObject* parent) : QObject(parent), mRoot(root) {}

QuietCheck::~QuietCheck()
{
    stop();
}

/// A check of the future says nothing: the clock was wrong.
bool QuietCheck::isDue(int hours) const
{
    const auto last = OrvHost::LastCheck::load(mRoot);
    const qint64 age = last ? last->time.secsTo(QDateTime::currentDateTimeUtc()) : -1;
    return age < 0 || age >= hours * kSecondsPerHour;
}

void QuietCheck::start(const OrvHost::Settings::Values& settings)
{
    if (mRun)
        return;
    mIsCancelled = false;
    OrvHost::CatalogUpdateRun::Request request = UpdateRequest::of(settings);
    request.onlyChecks = true;
    try {
        auto run = std::make_unique<OrvHost::CatalogUpdateRun>(request);
        run->start(mHost);
        mRun = std::move(run);
    } catch (const std::exception&) {
        return; // whoever asks for an update is told why
    }
    connect(mRun.get(), &OrvHost::CatalogUpdateRun::finished, this, &QuietCheck::conclude);
}

void QuietCheck::conclude()
{
    try {
        mRun->finishCheck(mIsCancelled, mRoot);
    } catch (const std::exception&) {
        // as above
    }
    mRun.release()->deleteLater(); // it is the sender
    Q_EMIT ended();
}

void QuietCheck::cancel()
{
    if (!mRun)
        return;
    mIsCancelled = true;
    OrvHost::CatalogUpdateRun::cancel();
}

void QuietCheck::stop()
{
    if (!mRun)
        return;
    cancel();
    disconnect(mRun.get(), nullptr, this, nullptr);
    mRun->wait();
    mRun.reset();
}
