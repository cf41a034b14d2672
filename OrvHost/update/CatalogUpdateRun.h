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

/// One catalog update as a host runs it: the lock against a second one, the catalogs that an update which
/// died had left, the updater on a worker thread, a download service that judges what it is told, and
/// afterwards the hash lines of what could not be swapped in, the outcome, and the history for `status`.
///
/// The host object that is handed to `start` has the updater's slots, applies "onCatalogUpdatedEvent" through
/// `swapper`, and lives at least as long as the run. The run lives on the host object's thread, whose event
/// loop goes on until `finished`; then the host calls `finish`.
class ORVHOST_EXPORT CatalogUpdateRun : public QObject
{
    Q_OBJECT

public:
    /// The order for an update: the service, and the catalogs to ask for.
    struct Request
    {
        std::string url; ///< the content redirect address
        std::string product;
        std::string productVersion;
        bool coreOnly = false;
        /// File names that end in ".orvlib", to fetch beside the catalogs that are there.
        std::vector<std::string> bonus;
        std::vector<std::string> manufacturer;
        /// Refuses new catalogs that are no databases.
        bool checksDatabases = true;
        ServiceAccess access;
        /// How often a request is made again that failed in a way that may pass.
        int retries = 3;
        /// Before the first of them; later ones wait longer.
        std::chrono::milliseconds firstPause{500};
        /// Ends after the check: nothing is fetched, put in place or locked.
        bool onlyChecks = false;
        /// How much of what is replaced is kept.
        CatalogHistory::Bounds history = {};
    };

    /// Takes the lock on the installed path service's folders.
    /// @throws std::runtime_error at once when another update is running there, and when the certificates
    /// cannot be read
    explicit CatalogUpdateRun(const Request& request);
    /// Cancels and waits when the worker is still running.
    ~CatalogUpdateRun() override;

    /// Swaps in what an update that died had left, and starts the worker. To be called once.
    /// @throws std::runtime_error when it cannot be read which catalogs are held
    void start(QObject& host);
    /// Cancels the update; `finished` comes all the same.
    static void cancel();
    /// Waits for the worker, without the event loop.
    void wait() { endWorker(); }
    /// Takes the hash lines of failed catalogs out, puts the outcome together and writes the history. To be
    /// called once, after `finished`.
    /// @param closing what "closeCatalogUpdateEvent" brought; none after "onClose"
    /// @param root where the history is kept
    /// @throws what left the updater
    UpdateOutcome finish(const std::optional<LibraryCatalogUpdate::UpdateData>& closing,
                         const fileString& root);

    /// The same for a run that only checks; `LastCheck` tells the same later.
    /// @param wasCancelled whether the user ended it
    CheckOutcome finishCheck(bool wasCancelled, const fileString& root);

    CatalogSwapper& swapper() { return mSwapper; }
    /// The requests and answers so far, for a list of the catalogs that are under way. May
    /// be called as often as a window wants, on the run's thread.
    ServiceReport service() const { return mService ? mService->report() : ServiceReport(); }

Q_SIGNALS:
    /// The worker has ended, and all its invocations were delivered.
    void finished();

private:
    CarefulCurl::Settings serviceSettings() const;
    void recover();
    void work(LibraryCatalogUpdate::LibraryCatalogUpdater updater);
    void endWorker();
    void noteHeld(UpdateOutcome& outcome);
    void noteNews(const std::vector<CatalogChanges>& news, UpdateOutcome& outcome) const;
    void saveHistory(const UpdateOutcome& outcome, const fileString& root) const;

    CheckOutcome checkOutcome(const fileString& root) const;
    void noteAnswers(const CheckOutcome& found, const fileString& root) const;

    std::optional<HostLock> mLock; ///< none for a check
    Request mRequest;
    CatalogSwapper mSwapper;
    QDateTime mStart;
    Curl* mFormerService = nullptr;
    std::optional<CatalogPins> mPins;       ///< as they are when the run starts
    std::unique_ptr<VersionKeeper> mKeeper; ///< below the service
    std::unique_ptr<CarefulCurl> mService;  ///< installed while the worker runs
    std::unique_ptr<RunJournal> mJournal;
    std::vector<HeldVersions::Failure> mHeldFailures; ///< this and the next two written by the worker
    LibraryCatalogUpdate::CatalogMap mRecords;        ///< before it ends, read after
    std::exception_ptr mException;
    std::thread mWorker;
};

} // namespace OrvHost
