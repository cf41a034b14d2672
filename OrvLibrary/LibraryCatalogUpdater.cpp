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

/// Makes a cancel end all requests of this thread while a run is active.
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
    // These run after a cancel, too; they check for it themselves.
    attempt(&LibraryCatalogUpdater::checkForUpdates, "Unable to check the catalogs");
    attempt(&LibraryCatalogUpdater::updateCatalogs, "Unable to update the catalogs");
    saveHashFiles();
    rememberOutcome();
    sendClosingInvocation();
}

// Deliberate: the download folders stay unchanged. They may hold a catalog that a killed run downloaded and
// the host has not yet put into place.
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

// Deliberate: all hash files are written, even after a cancel and for categories that were not gathered. A
// tag that is not saved is replaced in the next run by the SHA-1 of the installed file. The order is that of
// gathering: core, bonus, manufacturer.
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
        // No memory for the names. It is more important that the host learns of the end.
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
        // The run goes on without this entry.
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
