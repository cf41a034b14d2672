#include "OrvHost/update/CatalogUpdateRun.h"

#include <stdexcept>

#include "OrvHost/update/CatalogFolders.h"
#include "OrvHost/update/CheckHistory.h"

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

} // namespace

CatalogUpdateRun::CatalogUpdateRun(const Request& request) : mRequest(request), mSwapper(request.history) {}

CatalogUpdateRun::~CatalogUpdateRun()
{
    if (mWorker.joinable())
        cancel();
    endWorker();
}

void CatalogUpdateRun::start(QObject& host)
{
    mSwapper.setDatabaseCheck(mRequest.checksDatabases);
    mSwapper.recover();
    const LibraryCatalogUpdater updater(
        host, CatalogFolders::core().catalogs(), catalogSet(CatalogFolders::bonus(), mRequest.bonus),
        catalogSet(CatalogFolders::manufacturer(), mRequest.manufacturer), mRequest.product,
        mRequest.productVersion, mRequest.url, mRequest.coreOnly);
    mRecorder = std::make_unique<AnswerRecorder>(Curl::get());
    mKeeper = std::make_unique<VersionKeeper>(*mRecorder);
    mFormerService = Curl::install(mKeeper.get());
    mWorker = std::thread([this, updater] { work(updater); });
}

void CatalogUpdateRun::work(LibraryCatalogUpdater updater)
{
    try {
        updater();
    } catch (...) {
        mException = std::current_exception();
    }
    // Queued behind everything that the updater sent. By name, as the updater does: a pointer to the member
    // would be counted inside Qt, where the thread sanitizer does not look.
    QMetaObject::invokeMethod(this, "finished", Qt::QueuedConnection);
}

void CatalogUpdateRun::endWorker()
{
    if (!mWorker.joinable())
        return;
    mWorker.join();
    Curl::install(mFormerService);
}

std::vector<std::string> CatalogUpdateRun::finish(bool good, const fileString& root)
{
    endWorker();
    std::vector<std::string> problems;
    for (const fileString& destination : mSwapper.forgetFailed())
        problems.push_back("the hash file still lists " + destination.toNativeString());
    mSwapper.settleHistory();
    try {
        saveHistory(good, root);
    } catch (const std::runtime_error& error) {
        problems.emplace_back(error.what());
    }
    if (mException)
        std::rethrow_exception(mException);
    return problems;
}

void CatalogUpdateRun::saveHistory(bool good, const fileString& root) const
{
    CheckHistory history(root);
    const QDateTime now = QDateTime::currentDateTimeUtc();
    for (const auto& [catalog, status] : mRecorder->answers())
        history.noteAnswer(catalog, status, now);
    if (good)
        history.noteGoodCheck(now);
    history.save();
}

} // namespace OrvHost
