#include "apps/orv-browser/start/FirstStart.h"

#include "apps/orv-browser/LibraryActions.h"
#include "apps/orv-browser/activities/UpdateController.h"
#include "apps/orv-browser/dialogs/AddressCheck.h"
#include "apps/orv-browser/models/DataSize.h"
#include "apps/orv-browser/models/Reasons.h"
#include "apps/orv-browser/start/CatalogBoxes.h"
#include "apps/orv-browser/start/FirstStartPage.h"
#include "apps/orv-browser/start/SampleService.h"
#include "apps/orv-browser/start/ServiceLook.h"

FirstStart::FirstStart(LibraryActions& library, FirstStartPage& page, QObject* parent)
    : QObject(parent),
      mLibrary(library),
      mPage(page),
      mLook(new ServiceLook(this)),
      mSamples(new SampleService(this))
{
    connectPage();
    connect(mLook, &ServiceLook::asking, this, [this] { mPage.say(tr("Asking the service…")); });
    connect(mLook, &ServiceLook::answered, this, &FirstStart::showOffer);
    connect(mSamples, &SampleService::ready, this, &FirstStart::fetchSamples);
    connect(mSamples, &SampleService::failed, this, &FirstStart::samplesFailed);
    connect(&mLibrary, &LibraryActions::runningChanged, this, &FirstStart::runningChanged);
}

void FirstStart::connectPage()
{
    connect(&mPage, &FirstStartPage::shownChanged, this, &FirstStart::showChanged);
    connect(&mPage, &FirstStartPage::addressChanged, this, &FirstStart::look);
    connect(&mPage, &FirstStartPage::fetchAsked, this, &FirstStart::fetch);
    connect(&mPage, &FirstStartPage::importAsked, &mLibrary, &LibraryActions::openArchive);
    connect(&mPage, &FirstStartPage::samplesAsked, this, &FirstStart::trySamples);
}

void FirstStart::stop()
{
    mLook->stop();
    mSamples->stop();
}

void FirstStart::showChanged(bool isShown)
{
    if (!isShown)
        return mLook->stop();
    mLibrary.readShared();
    mPage.offerSamples(SampleService::isThere());
    mPage.suggest(QString::fromStdString(mLibrary.settings().url));
    look();
}

/// The settings, with what the page says in their place.
OrvHost::Settings::Values FirstStart::wanted() const
{
    OrvHost::Settings::Values values = mLibrary.settings();
    values.url = mPage.address().toStdString();
    values.bonus = mPage.bonus().chosen(values.bonus);
    values.manufacturer = mPage.manufacturer().chosen(values.manufacturer);
    return values;
}

void FirstStart::look()
{
    mLook->stop();
    const QString address = mPage.address();
    const QString problem = address.isEmpty() ? QString() : AddressCheck::problemOf(address);
    mPage.setFetchable(!address.isEmpty() && problem.isEmpty());
    mPage.say(problem);
    if (address.isEmpty() || !problem.isEmpty())
        mPage.showCatalogs({}, mLibrary.settings());
    else if (!mLibrary.updates().isRunning())
        mLook->ask(wanted());
}

void FirstStart::showOffer(const ServiceOffer& offer)
{
    mPage.showCatalogs(offer, mLibrary.settings());
    if (!offer.problem.empty())
        mPage.say(tr("No catalogs can be fetched from there: %1").arg(Reasons::text(offer.problem)));
    else if (offer.catalogs == 0)
        mPage.say(tr("The service answers, but it has no catalogs."));
    else
        mPage.say(tr("The service answers: %1, %2")
                      .arg(tr("%Ln catalog(s)", nullptr, offer.catalogs), DataSize::text(offer.bytes)));
}

void FirstStart::fetch()
{
    mLook->stop();
    const OrvHost::Settings::Values before = mLibrary.settings();
    const OrvHost::Settings::Values after = wanted();
    SharedSettings::Changes changes;
    if (after.url != before.url)
        changes.push_back({"url", {after.url}});
    if (after.bonus != before.bonus)
        changes.push_back({"bonus", after.bonus});
    if (after.manufacturer != before.manufacturer)
        changes.push_back({"manufacturer", after.manufacturer});
    mLibrary.fetchWith(changes);
}

void FirstStart::trySamples()
{
    mLook->stop();
    mPage.showFetching(true);
    mSamples->start();
}

/// For this one fetch; the settings stay as they are.
void FirstStart::fetchSamples(const ServiceOverrides& service)
{
    mOverrides = mLibrary.overrides();
    mLibrary.overrideService(service);
    mLibrary.checkForUpdates();
    if (!mLibrary.updates().isRunning())
        runningChanged(false);
}

void FirstStart::samplesFailed(const QString& reason)
{
    mPage.showFetching(false);
    mPage.say(tr("The sample content could not be made: %1").arg(reason));
}

void FirstStart::runningChanged(bool isRunning)
{
    mLook->stop();
    mPage.showFetching(isRunning);
    if (isRunning || !mSamples->isRunning())
        return;
    mSamples->stop();
    mLibrary.overrideService(mOverrides);
}
