#pragma once

#include <cstddef>
#include <memory>

#include <QMainWindow>
#include <QObject>
#include <QPointer>
#include <QString>

#include "OrvHost/Settings.h"
#include "OrvLibrary/host/fileString.h"

namespace OrvHost {
class CatalogUpdateRun;
struct ServiceReport;
struct UpdateOutcome;
} // namespace OrvHost
class LibraryProgressPanel;
class UpdateReceiver;
class UpdateSummary;
class UpdateWatch;

/// Runs catalog updates for the window: docks the progress panel while one runs, and says in a plain sentence
/// how it ended. Lives on the interface thread.
class UpdateController : public QObject
{
    Q_OBJECT

public:
    /// @param root the root of the well-known folders
    UpdateController(QMainWindow& window, const fileString& root);
    ~UpdateController() override;

    bool isRunning() const { return mRun != nullptr; }
    /// Starts a run; while one runs it does nothing.
    /// @param settings the service, and the catalogs to fetch beside those that are there
    void start(const OrvHost::Settings::Values& settings);
    void cancel();
    /// Cancels what is under way, waits for it, and puts in place what it had fetched.
    void stop();

Q_SIGNALS:
    /// A new catalog has been put in place.
    void catalogReplaced(const fileString& database);
    /// How the download goes on, for people.
    void speedChanged(const QString& text);
    /// A run has begun, behind this panel.
    void began(QWidget* panel);
    /// Five times a second: the requests and answers until now.
    void looked(const OrvHost::ServiceReport& service);
    /// The run is over.
    void ended(const UpdateSummary& summary, const OrvHost::UpdateOutcome& outcome);
    /// No run could begin.
    /// @param reason for people
    void refused(const QString& reason);

private:
    void connectReceiver();
    void runEnded();
    /// Sees to what comes after a run, and tells how it ended. The receiver must outlive the run's worker.
    std::unique_ptr<OrvHost::CatalogUpdateRun> conclude();
    void closePanel();

    QMainWindow& mWindow;
    fileString mRoot;
    QPointer<LibraryProgressPanel> mPanel;
    std::unique_ptr<UpdateReceiver> mReceiver;
    std::unique_ptr<OrvHost::CatalogUpdateRun> mRun;
    std::unique_ptr<UpdateWatch> mWatch; ///< of the run and the receiver
    std::size_t mLogEntriesBefore = 0;
    bool mIsCancelled = false; ///< whether the user cancelled the run
};
