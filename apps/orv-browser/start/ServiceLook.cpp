#include "apps/orv-browser/start/ServiceLook.h"

#include "OrvLibrary/host/Application.h"
#include "OrvLibrary/host/Curl.h"
#include "apps/orv-browser/models/Background.h"

namespace {

constexpr int kPauseMilliseconds = 400; // of somebody who types
constexpr int kThreads = 2;             // a dropped question takes a moment to end

} // namespace

ServiceLook::ServiceLook(QObject* parent) : QObject(parent)
{
    mPool.setMaxThreadCount(kThreads);
    mPause.setSingleShot(true);
    mPause.setInterval(kPauseMilliseconds);
    connect(&mPause, &QTimer::timeout, this, &ServiceLook::begin);
}

ServiceLook::~ServiceLook()
{
    stop();
    mPool.waitForDone();
}

void ServiceLook::ask(const OrvHost::Settings::Values& settings)
{
    stop();
    mSettings = settings;
    mPause.start();
}

void ServiceLook::stop()
{
    mPause.stop();
    if (mCancelled)
        *mCancelled = true;
    mPool.clear();
}

void ServiceLook::begin()
{
    const Application* application = gApp;
    if (!application)
        return;
    Curl::forgetFailures(); // the address, or the network, is another one now
    const auto cancelled = std::make_shared<std::atomic<bool>>(false);
    mCancelled = cancelled;
    Q_EMIT asking();
    // An update, which would install a service of its own, stops this question first.
    Background::run(
        mPool, this,
        [service = &Curl::get(), settings = mSettings, cancelled,
         index = application->contentIndexName().toNativeString()] {
            return ServiceOffer::ask(*service, settings, index, *cancelled);
        },
        [this, cancelled](const ServiceOffer& offer) {
            if (*cancelled)
                return;
            *cancelled = true;
            Q_EMIT answered(offer);
        });
}
