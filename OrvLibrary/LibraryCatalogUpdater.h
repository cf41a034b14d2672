#pragma once

#include <cstdint>
#include <memory>
#include <set>
#include <string>

#include "OrvLibrary/CatalogUpdateData.h"
#include "OrvLibrary/LibraryProgressBase.h"
#include "OrvLibrary/OrvLibraryExport.h"

class QObject;

namespace Library {
class ErrorLog;
}

namespace LibraryCatalogUpdate {

class CatalogEvents;
class CatalogHashesAhead;

/// Brings the catalogs up to date: finds the catalog files, asks the web service which have changed,
/// downloads and installs these, and saves their tags in the hash files.
///
/// The host constructs an updater on the thread of its host object. It then runs it on a worker thread, to
/// which it may pass it by value. One object serves one run, and only one run may be active at a time.
///
/// The updater reports to the host object with queued calls of these slots, each of which may be missing:
/// "onSetText(std::string)", "onSetUnits(std::string)", "onSetRangeInGauge(size_t)",
/// "onSetValueInGauge(size_t)", "onUpdateInGauge()" and "onCatalogUpdatedEvent(FileStringPair)". The last
/// call is "closeCatalogUpdateEvent(const LibraryCatalogUpdate::UpdateData&)" or, after a cancel,
/// "onClose()". The host object may be destroyed at any time; the run then goes on without reporting.
class ORVLIBRARY_EXPORT LibraryCatalogUpdater : public LibraryProgressBase
{
public:
    /// Clears an earlier cancel.
    /// @param host the host object; not owned
    /// @param coreFiles, bonusFiles, manufacturerFiles the full paths of the catalogs of each kind
    /// @param product, version sent with every request, unchanged
    /// @param contentRedirect the address that redirects to the web service
    /// @param onlyCore if true, bonus and manufacturer catalogs are not updated
    LibraryCatalogUpdater(QObject& host, const std::set<fileString>& coreFiles,
                          const std::set<fileString>& bonusFiles,
                          const std::set<fileString>& manufacturerFiles, const std::string& product,
                          const std::string& version, const std::string& contentRedirect, bool onlyCore);
    /// Copies use the same host object.
    LibraryCatalogUpdater(const LibraryCatalogUpdater&);
    LibraryCatalogUpdater& operator=(const LibraryCatalogUpdater&);
    ~LibraryCatalogUpdater() override;

    /// Runs the whole update. If a step fails or a host service throws, this step ends and the error log gets
    /// an entry. The closing call, which is made exactly once, reports it.
    /// @throws NullPointerError if there is no application object (`gApp`); nothing is then reported or saved
    void operator()();

    /// Runs only the check: sends all requests of a full update and downloads nothing. No catalog, hash file
    /// or download folder changes. The host object gets the calls of an update that is cancelled after its
    /// check, with "onClose" as the last one. `catalogs` then returns the answers.
    /// @throws NullPointerError as a full update does
    void check();

    /// The records of the run, with the web service's answer to each. Call it on the thread of the run, or
    /// after its end.
    const CatalogMap& catalogs() const { return mCatalogs; }

    /// Cancels the run; may be called from any thread. The worker stops at its next check and still saves the
    /// hash files.
    static void killDownload();

private:
    // The steps of a run, in order.
    void prepareFolders();
    void gatherCatalogs();
    void checkForUpdates();
    void updateCatalogs();
    void saveHashFiles();
    void rememberOutcome();
    void sendClosingInvocation();

    // Gathering.
    bool isCoreExcluded();
    void gatherCoreCatalogs(std::set<fileString>& coreFiles);
    void gatherLibraryCatalogs(const std::set<fileString>& files, Library::LibraryCategory category);
    void loadHashFile(Library::LibraryCategory category);
    void gatherCatalog(const fileString& file, Library::LibraryCategory category, const std::string& prefix,
                       CatalogHashesAhead& hashes);

    // The update check.
    void checkForUpdate(const fileString& name, CatalogUpdateData& record, const std::string& prefix);
    void fetchErrorPage(const fileString& name, CatalogUpdateData& record);
    void updateTotalDownloadSize();

    // Download and installation. Those that return bool return false after a failure that they have logged.
    bool updateCatalog(const fileString& catalogFile, CatalogUpdateData& record, const std::string& prefix,
                       Library::ErrorLog& log);
    fileString prepareDownload(const fileString& catalogFile, const CatalogUpdateData& record,
                               const std::string& prefix);
    bool downloadCatalog(const fileString& catalogFile, const CatalogUpdateData& record,
                         const fileString& temporaryFile, std::string& reason);
    void noteFailedDownload(const fileString& catalogFile, const fileString& temporaryFile,
                            const std::string& reason, Library::ErrorLog& log);
    bool installCatalog(const fileString& downloadedFile, CatalogUpdateData& record,
                        const fileString& catalogFile);
    bool fileDownloaded(const fileString& downloadedFile, CatalogUpdateData& record,
                        const fileString& catalogFile);
    bool renameCoreFile(const fileString& downloadedFile, const fileString& renamedFile,
                        Library::ErrorLog& log);
    void handOverCatalog(const fileString& newFile, const CatalogUpdateData& record,
                         const fileString& catalogFile, Library::ErrorLog& log);
    bool installReferencedFile(const fileString& newFile, Library::ErrorLog& log);
    void setFilePermissionIfNotThrow(Library::ErrorLog& log, const fileString& file);

    // These keep a failure inside its step. The error for a missing application object is thrown on.
    void attempt(void (LibraryCatalogUpdater::*stage)(), const char* failure);
    /// Call it only while an exception is being handled.
    void noteException(const char* failure, const fileString& subject = {});
    std::string hostText(int number);

    std::shared_ptr<CatalogEvents> mHostObject;
    bool mHadError;
    std::int32_t mMessageCode;
    bool mCoreOnly;
    bool mCatalogInstalled;
    std::set<fileString> mCoreFiles; ///< gathering adds to them
    std::set<fileString> mBonusFiles;
    std::set<fileString> mManufacturerFiles;
    std::string mProduct;
    std::string mVersion;
    CatalogMap mCatalogs;
    std::set<std::string> mUpdatedCatalogs; ///< names without extension, Windows-1252
};

} // namespace LibraryCatalogUpdate
