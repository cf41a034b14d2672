#pragma once

#include <exception>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include <QDateTime>
#include <QObject>

#include "OrvHost/OrvHostExport.h"
#include "OrvHost/history/CatalogPins.h"
#include "OrvHost/history/HeldVersions.h"
#include "OrvHost/history/VersionKeeper.h"
#include "OrvHost/update/CarefulCurl.h"
#include "OrvHost/update/CatalogSwapper.h"
#include "OrvHost/update/CheckOutcome.h"
#include "OrvHost/update/HostLock.h"
#include "OrvHost/update/ServiceAccess.h"
#include "OrvHost/update/UpdateOutcome.h"
#include "OrvLibrary/LibraryCatalogUpdater.h"

namespace OrvHost {

class RunJournal;
class UpdateRelay;

/// One complete update for a host. It locks out other updates, puts into place what a killed update has left,
/// runs the updater on a worker thread with a `CarefulCurl`, and at the end removes the hash lines of
/// catalogs that could not be put into place, determines the outcome and writes the history for `status`.
///
/// The host object passed to `start` has the updater's slots, calls `swapper` in "onCatalogUpdatedEvent", and
/// must live as long as the run. The run lives on the host object's thread. Its event loop must run until
/// `finished`; then the host calls `finish`.
class ORVHOST_EXPORT CatalogUpdateRun : public QObject
{
    Q_OBJECT

public:
    /// The service and the catalogs to update.
    struct Request
    {
        std::string url; ///< the address that redirects to the service
        std::string product;
        std::string productVersion;
        bool coreOnly = false;
        /// File names with the ending ".orvlib", to fetch in addition to the installed catalogs.
        std::vector<std::string> bonus;
        std::vector<std::string> manufacturer;
        /// Whether new catalogs that are not databases are refused.
        bool checksDatabases = true;
        ServiceAccess access;
        /// How often a request is repeated after a failure that may pass.
        int retries = 3;
        /// The pause before the first repetition; later pauses are longer.
        std::chrono::milliseconds firstPause{500};
        /// Whether to end after the check: nothing is downloaded, put into place or locked.
        bool onlyChecks = false;
        /// Whether the run ends after the check while the connection is metered. New catalogs then wait.
        bool postponesOnMetered = false;
        /// Bytes that downloads leave free on the disk, at least. The download service always leaves some.
        std::int64_t diskReserve = 0;
        /// How many replaced versions to keep.
        CatalogHistory::Bounds history = {};
    };

    /// Takes the lock for the folders of the installed path service.
    /// @throws std::runtime_error if another update is running there, or if the certificates cannot be read
    explicit CatalogUpdateRun(const Request& request);
    /// If the worker is still running, cancels it and waits.
    ~CatalogUpdateRun() override;

    /// Starts the worker, which first puts into place what a killed update has left. Call it once.
    /// @throws std::runtime_error if the list of held catalogs cannot be read
    void start(QObject& host);
    /// Cancels the update. `finished` is still sent.
    static void cancel();
    /// Waits for the worker without running the event loop.
    void wait() { endWorker(); }
    /// Removes the hash lines of failed catalogs, determines the outcome and writes the history. Call it
    /// once, after `finished`.
    /// @param closing the argument of "closeCatalogUpdateEvent"; empty after "onClose"
    /// @param root the folder for the history
    /// @throws any exception that left the updater
    UpdateOutcome finish(const std::optional<LibraryCatalogUpdate::UpdateData>& closing,
                         const fileString& root);

    /// Does the same for a run that only checks. `LastCheck` returns the result later.
    /// @param wasCancelled whether the user cancelled the run
    CheckOutcome finishCheck(bool wasCancelled, const fileString& root);

    CatalogSwapper& swapper() { return mSwapper; }
    /// All requests and answers so far, to show the catalogs in progress. May be called at any time on the
    /// thread of the run.
    ServiceReport service() const { return mService ? mService->report() : ServiceReport(); }

Q_SIGNALS:
    /// Sent when the worker has ended and all its calls have been delivered.
    void finished();

private:
    CarefulCurl::Settings serviceSettings() const;
    void reconcile();
    void recover();
    void work();
    void askAndFetch();
    void endWorker();
    void noteHeld(UpdateOutcome& outcome);
    void noteNews(const std::vector<CatalogChanges>& news, UpdateOutcome& outcome) const;
    void saveHistory(const UpdateOutcome& outcome, const fileString& root) const;

    CheckOutcome checkOutcome(const fileString& root) const;
    void noteAnswers(const CheckOutcome& found, const fileString& root) const;

    std::optional<HostLock> mLock; ///< empty for a check
    Request mRequest;
    CatalogSwapper mSwapper;
    QDateTime mStart;
    Curl* mFormerService = nullptr;
    std::optional<CatalogPins> mPins;       ///< as they are when the run begins
    std::unique_ptr<VersionKeeper> mKeeper; ///< requests pass through mService, then through this
    std::unique_ptr<CarefulCurl> mService;  ///< installed while the worker runs
    std::unique_ptr<UpdateRelay> mRelay;    ///< between the worker and the host object
    std::unique_ptr<RunJournal> mJournal;
    std::vector<HeldVersions::Failure> mHeldFailures; ///< the worker writes this and the next three
    LibraryCatalogUpdate::CatalogMap mRecords;        ///< before it ends; they are read afterwards
    bool mIsPostponed = false;
    std::exception_ptr mException;
    std::thread mWorker;
};

} // namespace OrvHost
