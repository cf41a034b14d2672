#include "OrvLibrary/LibraryCatalogUpdater.h"

#include <new>

#include "OrvLibrary/IO/ErrorLog.h"
#include "OrvLibrary/catalog/CatalogEvents_p.h"
#include "OrvLibrary/catalog/CatalogHashFile_p.h"
#include "OrvLibrary/catalog/CatalogSources_p.h"
#include "OrvLibrary/catalog/CatalogUpdaterState_p.h"
#include "OrvLibrary/host/Curl.h"
#include "OrvLibrary/host/FileUtils.h"
#include "OrvLibrary/host/NullPointerRaiser.h"
#include "OrvLibrary/host/PathUtils.h"
#include "OrvLibrary/host/PreferenceEngine.h"
#include "OrvLibrary/host/StringUtils.h"

namespace LibraryCatalogUpdate {

namespace {

/// For the length of a run, a cancel ends the requests of its thread, whatever their kind.
class RunCancelQuestion
{
public:
    RunCancelQuestion() : mFormer(Curl::setCancelQuestion(&isDownloadKilled)) {}
    ~RunCancelQuestion() { Curl::setCancelQuestion(mFormer); }
    RunCancelQuestion(const RunCancelQuestion&) = delete;
    RunCancelQuestion& operator=(const RunCancelQuestion&) = delete;

private:
    const Curl::CancelQuestion mFormer;
};

} // namespace

LibraryCatalogUpdater::LibraryCatalogUpdater(QObject& host, const std::set<fileString>& coreFiles,
                                             const std::set<fileString>& bonusFiles,
                                             const std::set<fileString>& manufacturerFiles,
                                             const std::string& product, const std::string& version,
                                             const std::string& contentRedirect, bool onlyCore)
    : mHostObject(CatalogEvents::watch(host)),
      mHadError(false),
      mMessageCode(kMessageNone),
      mCoreOnly(onlyCore),
      mCatalogInstalled(false),
      mCoreFiles(coreFiles),
      mBonusFiles(bonusFiles),
      mManufacturerFiles(manufacturerFiles),
      mProduct(product),
      mVersion(version)
{
    kContentRedirect = contentRedirect;
    kApiEndpoint.clear();
    setDownloadKilled(false);
}

LibraryCatalogUpdater::LibraryCatalogUpdater(const LibraryCatalogUpdater&) = default;
LibraryCatalogUpdater& LibraryCatalogUpdater::operator=(const LibraryCatalogUpdater&) = default;
LibraryCatalogUpdater::~LibraryCatalogUpdater() = default;

void LibraryCatalogUpdater::operator()()
{
    const RunCancelQuestion question;
    prepareFolders();
    attempt(&LibraryCatalogUpdater::gatherCatalogs, "Unable to gather the catalogs");
    // Also after a cancel, which these find out about themselves.
    attempt(&LibraryCatalogUpdater::checkForUpdates, "Unable to check the catalogs");
    attempt(&LibraryCatalogUpdater::updateCatalogs, "Unable to update the catalogs");
    saveHashFiles();
    rememberOutcome();
    sendClosingInvocation();
}

// Deliberate: the download folders are left alone. A catalog may wait there that a run which died had
// fetched, and a host has not put in place.
// Kept by: LibraryCatalogUpdaterCheck.checkAloneAsksTheSameAndChangesNothing
void LibraryCatalogUpdater::check()
{
    const RunCancelQuestion question;
    attempt(&LibraryCatalogUpdater::gatherCatalogs, "Unable to gather the catalogs");
    attempt(&LibraryCatalogUpdater::checkForUpdates, "Unable to check the catalogs");
    mHostObject->close();
}

void LibraryCatalogUpdater::killDownload()
{
    setDownloadKilled(true);
}

void LibraryCatalogUpdater::prepareFolders()
{
    try {
        const fileString folder = PathUtils::getObject().getProprietaryLibraryReferencedFilesPath();
        FileUtils::createDirectoriesWithPerm(folder, false);
    } catch (...) {
        noteException("Unable to create the referenced files folder");
    }
    for (const auto category :
         {Library::kCoreLibrary, Library::kBonusLibrary, Library::kManufacturerLibrary}) {
        try {
            FileUtils::removeDirectoryAndFiles(getTempDirectoryPathFromCategory(category), 1);
        } catch (...) {
            noteException("Unable to empty a download folder");
        }
    }
}

void LibraryCatalogUpdater::gatherCatalogs()
{
    if (mCoreOnly || !isCoreExcluded()) {
        gatherCoreCatalogs(mCoreFiles);
        gatherLibraryCatalogs(mCoreFiles, Library::kCoreLibrary);
    }
    if (mCoreOnly)
        return;
    gatherLibraryCatalogs(mBonusFiles, Library::kBonusLibrary);
    gatherLibraryCatalogs(mManufacturerFiles, Library::kManufacturerLibrary);
}

// Deliberate: every hash file of the run is written anew, also after a cancel and when its category was not
// gathered. What is not remembered then is asked for by the SHA-1 of the installed file the next time. The
// order is that of the gathering: core, bonus, manufacturer.
// Kept by: LibraryCatalogUpdaterCheck.aCancelWhileCheckingFinishesTheChecksAndSavesAllHashFiles
void LibraryCatalogUpdater::saveHashFiles()
{
    for (const auto category :
         {Library::kCoreLibrary, Library::kBonusLibrary, Library::kManufacturerLibrary}) {
        if (mCoreOnly && category != Library::kCoreLibrary)
            break;
        try {
            saveCatalogHashMap(mCatalogs, category);
        } catch (...) {
            noteException("Unable to save a hash file");
        }
    }
}

void LibraryCatalogUpdater::rememberOutcome()
try {
    if (mCoreOnly)
        PreferenceEngine::getThePrefs().setPrefAs<bool>(PrefId::kLastCoreUpdateHadError, mHadError);
} catch (...) {
    noteException("Unable to remember the outcome of the update");
}

void LibraryCatalogUpdater::sendClosingInvocation()
{
    if (isDownloadKilled()) {
        mHostObject->close();
        return;
    }
    UpdateData data;
    if (mHadError)
        data.result = mCoreOnly ? kResultCoreFailed : kResultFailed;
    else
        data.result = mCatalogInstalled ? kResultUpdated : kResultCurrent;
    data.messageCode = mMessageCode;
    try {
        UpdateData whole = data;
        whole.updatedCatalogs = mUpdatedCatalogs;
        mHostObject->closeCatalogUpdate(whole);
    } catch (const std::bad_alloc&) {
        // No memory for the names: that the host hears of the end matters more.
        mHostObject->closeCatalogUpdate(data);
    }
}

void LibraryCatalogUpdater::attempt(void (LibraryCatalogUpdater::*stage)(), const char* failure)
try {
    (this->*stage)();
} catch (...) {
    noteException(failure);
}

void LibraryCatalogUpdater::noteException(const char* failure, const fileString& subject)
{
    mHadError = true;
    try {
        const std::string reason = reasonOfException();
        Library::ErrorLog() << failure << subject << "   Reason:  " << reason << "\n";
    } catch (const std::bad_alloc&) {
        // The run goes on without the entry.
    }
}

std::string LibraryCatalogUpdater::hostText(int number)
try {
    return StringUtils::loadString(number);
} catch (...) {
    noteException("Unable to load a text");
    return {};
}

} // namespace LibraryCatalogUpdate
