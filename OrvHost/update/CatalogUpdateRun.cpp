// How it works: requests go from the updater through `CarefulCurl`, which judges the answers, and
// `VersionKeeper`, which protects held catalogs, to the installed service. `start` repairs what a killed run
// left and starts `work` on a thread. `work` runs the updater, then downloads versions of held catalogs, and
// at the end queues `finished`. `finish` runs on the host object's thread and writes the records.
#include "OrvHost/update/CatalogUpdateRun.h"

#include <algorithm>
#include <atomic>
#include <stdexcept>

#include "OrvHost/update/CatalogFolders.h"
#include "OrvHost/update/CheckHistory.h"
#include "OrvHost/update/MeteredConnection.h"
#include "OrvHost/update/PartialFiles.h"
#include "OrvHost/update/RunJournal.h"
#include "OrvHost/update/UpdateRelay_p.h"
#include "OrvLibrary/host/Application.h"

namespace OrvHost {

using LibraryCatalogUpdate::LibraryCatalogUpdater;

namespace {

std::set<fileString> catalogSet(const CatalogFolder& folder, const std::vector<std::string>& names)
{
    std::set<fileString> files = folder.catalogs();
    for (const std::string& name : names)
        files.insert(folder.path(fileString(name)));
    return files;
}

/// Whether the calling thread's cancel question answers yes. The updater sets it while it runs.
bool isThreadCancelled()
{
    const Curl::CancelQuestion question = Curl::setCancelQuestion(nullptr);
    Curl::setCancelQuestion(question);
    return question && question();
}

/// For the work before and after the updater, which notices a cancel itself. Only one run is active at a
/// time.
std::atomic<bool> isCancelled{false};

} // namespace

CatalogUpdateRun::CatalogUpdateRun(const Request& request) : mRequest(request), mSwapper(request.history)
{
    if (!mRequest.onlyChecks)
        mLock.emplace(HostLock::ofUpdate());
    mRequest.access.apply();
}

CatalogUpdateRun::~CatalogUpdateRun()
{
    if (mWorker.joinable())
        cancel();
    endWorker();
}

void CatalogUpdateRun::start(QObject& host)
{
    mStart = QDateTime::currentDateTimeUtc();
    isCancelled = false;
    mPins.emplace(CatalogFolders::root());
    mJournal = std::make_unique<RunJournal>(CatalogFolders::root());
    mJournal->begin(mRequest.onlyChecks ? "check" : "update", mStart);
    if (mRequest.onlyChecks)
        mPins->forgetReplaced(); // a check tells what an update would do, so it does this, too
    else
        reconcile();
    mRelay = std::make_unique<UpdateRelay>(host, mSwapper);
    connect(mRelay.get(), SIGNAL(ended()), this, SIGNAL(finished()));
    mKeeper = std::make_unique<VersionKeeper>(Curl::get(), *mPins);
    mService = std::make_unique<CarefulCurl>(*mKeeper, serviceSettings());
    mFormerService = Curl::install(mService.get());
    mWorker = std::thread([this] { work(); });
}

CarefulCurl::Settings CatalogUpdateRun::serviceSettings() const
{
    const Application* const application = gApp;
    CarefulCurl::Settings settings;
    settings.url = mRequest.url;
    if (application)
        settings.indexName =
            application->contentIndexName().stemWithExtension().unicodeString().toUTF8String();
    settings.partialFolder = PartialFiles::defaultFolder();
    settings.diskReserve = mRequest.diskReserve;
    settings.retries.retries = mRequest.retries;
    settings.retries.firstPause = mRequest.firstPause;
    settings.retries.isCancelled = isThreadCancelled;
    return settings;
}

void CatalogUpdateRun::reconcile()
{
    mSwapper.setDatabaseCheck(mRequest.checksDatabases);
    if (mPins->reconcile())
        mPins->save();
}

void CatalogUpdateRun::recover()
{
    std::set<CatalogPlace> held;
    for (const auto& [place, version] : mPins->held())
        held.insert(place);
    mSwapper.recover(held);
    PartialFiles(PartialFiles::defaultFolder()).prune();
}

void CatalogUpdateRun::cancel()
{
    isCancelled = true;
    LibraryCatalogUpdater::killDownload();
}

void CatalogUpdateRun::work()
{
    try {
        askAndFetch();
    } catch (...) {
        mException = std::current_exception();
    }
    // Queued after everything that the updater sent. By name, as the updater does it: with a pointer to the
    // member, Qt would count references in code that the thread sanitizer does not see.
    QMetaObject::invokeMethod(mRelay.get(), "end", Qt::QueuedConnection);
}

void CatalogUpdateRun::askAndFetch()
{
    if (!mRequest.onlyChecks)
        recover();
    mIsPostponed = !mRequest.onlyChecks && mRequest.postponesOnMetered && MeteredConnection::isMetered();
    const bool onlyChecks = mRequest.onlyChecks || mIsPostponed;
    LibraryCatalogUpdater updater(*mRelay, CatalogFolders::core().catalogs(),
                                  catalogSet(CatalogFolders::bonus(), mRequest.bonus),
                                  catalogSet(CatalogFolders::manufacturer(), mRequest.manufacturer),
                                  mRequest.product, mRequest.productVersion, mRequest.url, mRequest.coreOnly);
    if (isCancelled)
        LibraryCatalogUpdater::killDownload(); // a cancel that came before, which a new updater forgets
    onlyChecks ? updater.check() : updater();
    mRecords = updater.catalogs();
    if (!onlyChecks)
        mHeldFailures = HeldVersions::fetch(*mService, mKeeper->offers(), mRequest.checksDatabases,
                                            [] { return isCancelled.load(); });
}

void CatalogUpdateRun::endWorker()
{
    if (!mWorker.joinable())
        return;
    mWorker.join();
    mRelay->drain();
    Curl::install(mFormerService);
}

UpdateOutcome CatalogUpdateRun::finish(const std::optional<LibraryCatalogUpdate::UpdateData>& closing,
                                       const fileString& root)
{
    endWorker();
    const std::vector<fileString> remaining = mSwapper.forgetFailed();
    const std::vector<CatalogChanges> news = mSwapper.takeNews();
    mSwapper.settleHistory();
    PartialFiles(PartialFiles::defaultFolder()).prune();
    UpdateOutcome outcome = mIsPostponed && !isCancelled
                                ? UpdateOutcome::ofPostponed(mService->report(), mSwapper, checkOutcome(root))
                                : UpdateOutcome::of(mService->report(), mSwapper, closing);
    outcome.start = mStart;
    outcome.end = QDateTime::currentDateTimeUtc();
    noteHeld(outcome);
    noteNews(news, outcome);
    for (const fileString& destination : remaining)
        outcome.notes.push_back("the hash file still lists " + destination.toNativeString());
    try {
        mJournal->endUpdate(outcome, checkOutcome(root));
        saveHistory(outcome, root);
    } catch (const std::runtime_error& error) {
        outcome.notes.emplace_back(error.what());
    }
    if (!mJournal->problem().empty())
        outcome.notes.push_back(mJournal->problem());
    if (mException)
        std::rethrow_exception(mException);
    return outcome;
}

void CatalogUpdateRun::noteHeld(UpdateOutcome& outcome)
{
    for (const HeldVersions::Failure& failure : mHeldFailures) {
        const std::string& name = failure.place.name;
        const bool isNoted =
            std::any_of(outcome.failed.begin(), outcome.failed.end(),
                        [&](const UpdateOutcome::Failure& other) { return other.catalog == name; });
        if (!isNoted)
            outcome.failed.push_back({name, {}, "its newer version was not fetched: " + failure.reason});
        if (outcome.isGood())
            outcome.kind = UpdateOutcome::Kind::Incomplete;
    }
    try {
        if (mPins && HeldVersions::note(*mPins, mKeeper->offers()))
            mPins->save();
    } catch (const std::runtime_error& error) {
        outcome.notes.emplace_back(error.what());
    }
}

void CatalogUpdateRun::noteNews(const std::vector<CatalogChanges>& news, UpdateOutcome& outcome) const
{
    for (const CatalogChanges& catalog : news) {
        outcome.newItems += catalog.items.added.size();
        outcome.changedItems += catalog.items.changed.size();
        outcome.goneItems += catalog.items.gone.size();
    }
    try {
        CatalogNews::add(CatalogFolders::root(), mStart, news);
    } catch (const std::runtime_error& error) {
        outcome.notes.emplace_back(error.what());
    }
}

CheckOutcome CatalogUpdateRun::finishCheck(bool wasCancelled, const fileString& root)
{
    endWorker();
    if (mException)
        std::rethrow_exception(mException);
    const CheckOutcome found = checkOutcome(root);
    mJournal->endCheck(mService->report(), found, wasCancelled);
    if (!wasCancelled)
        noteAnswers(found, root);
    return found;
}

CheckOutcome CatalogUpdateRun::checkOutcome(const fileString& root) const
{
    const auto isHeld = [this](const CatalogPlace& place) { return mPins->isHeld(place); };
    return CheckOutcome::of(mRecords, mService->report(), isHeld, root);
}

/// Failing to write the history is not a failure of the check, because its result is known.
void CatalogUpdateRun::noteAnswers(const CheckOutcome& found, const fileString& root) const
try {
    CheckHistory history(root);
    const QDateTime now = QDateTime::currentDateTimeUtc();
    history.noteAttempt(now, found.error);
    if (found.kind != CheckOutcome::Kind::Failed)
        history.noteGoodCheck(now);
    for (const CatalogReport& catalog : mService->report().catalogs)
        history.noteAnswer(catalog.asked, catalog.status, now, catalog.reason);
    history.save();
} catch (const std::runtime_error&) {
}

void CatalogUpdateRun::saveHistory(const UpdateOutcome& outcome, const fileString& root) const
{
    CheckHistory history(root);
    history.noteAttempt(outcome.end, outcome.error);
    if (outcome.hasCheckedAll())
        history.noteGoodCheck(outcome.end);
    const bool askedAll = outcome.hasCheckedAll() || outcome.kind == UpdateOutcome::Kind::Incomplete;
    const auto former = history.answers();
    for (const auto& [catalog, answer] : former) {
        const bool isPacked = installedName(catalog) != catalog;
        if (askedAll && !(mRequest.coreOnly && isPacked))
            history.forgetAnswer(catalog);
    }
    for (const CatalogReport& catalog : outcome.service.catalogs)
        history.noteAnswer(catalog.asked, catalog.status, outcome.end, outcome.reasonOf(catalog));
    history.save();
}

} // namespace OrvHost
