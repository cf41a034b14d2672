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
/// downloads and installs those, and remembers their tags in the hash files.
///
/// The host constructs an updater on the thread of its host object and runs it on a worker thread, to which
/// it can be handed by value; one object serves one run, and only one run may go on at a time. Everything is
/// reported to the host object by queued invocations of these slots, each of which it may lack:
/// "onSetText(std::string)", "onSetUnits(std::string)", "onSetRangeInGauge(size_t)",
/// "onSetValueInGauge(size_t)", "onUpdateInGauge()", "onCatalogUpdatedEvent(FileStringPair)", and at the end
/// either "closeCatalogUpdateEvent(const LibraryCatalogUpdate::UpdateData&)" or, after a cancel, "onClose()".
/// The host object may be destroyed at any time; the run then completes in silence.
class ORVLIBRARY_EXPORT LibraryCatalogUpdater : public LibraryProgressBase
{
public:
    /// Ends the effect of a former cancel.
    /// @param host the object that is told; not owned
    /// @param coreFiles, bonusFiles, manufacturerFiles full paths of the catalogs of each kind
    /// @param product, version sent with every request as they are
    /// @param contentRedirect the address that redirects to the web service
    /// @param onlyCore leaves the bonus and manufacturer catalogs alone
    LibraryCatalogUpdater(QObject& host, const std::set<fileString>& coreFiles,
                          const std::set<fileString>& bonusFiles,
                          const std::set<fileString>& manufacturerFiles, const std::string& product,
                          const std::string& version, const std::string& contentRedirect, bool onlyCore);
    /// Copies share the host object.
    LibraryCatalogUpdater(const LibraryCatalogUpdater&);
    LibraryCatalogUpdater& operator=(const LibraryCatalogUpdater&);
    ~LibraryCatalogUpdater() override;

    /// The whole run. A failure, and an exception of a host service, ends the step that it happens in, is
    /// written to the error log, and is summed up in the closing invocation, which is sent exactly once.
    /// @throws NullPointerError when there is no application object (`gApp`); nothing is sent or saved then
    void operator()();

    /// A run that ends after its check: it asks the web service everything that a whole run asks, and fetches
    /// nothing. No catalog, hash file or download folder changes. The host object is told what a run that
    /// is cancelled there tells it, "onClose" at the end. `catalogs` then says what the service answered.
    /// @throws NullPointerError as the whole run does
    void check();

    /// The records of the run, with what the service answered for each. To be called on the thread of the
    /// run, or after its end.
    const CatalogMap& catalogs() const { return mCatalogs; }

    /// Cancels the run, from any thread. The worker notices at its next check; the hash files are still
    /// saved.
    static void killDownload();

private:
    // The stages of a run, in order.
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

    // Download and installation; what returns bool is false on a failure that it has written to the log.
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

    // What keeps a failure inside its step. The missing application object is thrown on.
    void attempt(void (LibraryCatalogUpdater::*stage)(), const char* failure);
    /// Called while an exception is handled.
    void noteException(const char* failure, const fileString& subject = {});
    std::string hostText(int number);

    std::shared_ptr<CatalogEvents> mHostObject;
    bool mHadError;
    std::int32_t mMessageCode;
    bool mCoreOnly;
    bool mCatalogInstalled;
    std::set<fileString> mCoreFiles; ///< extended by gathering
    std::set<fileString> mBonusFiles;
    std::set<fileString> mManufacturerFiles;
    std::string mProduct;
    std::string mVersion;
    CatalogMap mCatalogs;
    std::set<std::string> mUpdatedCatalogs; ///< names without extension, Windows-1252
};

} // namespace LibraryCatalogUpdate
