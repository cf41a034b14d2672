#pragma once

#include <atomic>
#include <memory>

#include <QObject>
#include <QStringList>
#include <QThreadPool>

#include "OrvHost/imports/ArchiveImport.h"
#include "OrvLibrary/host/fileString.h"
#include "apps/orv-browser/activities/ImportSummary.h"

class ProgressSubject;
class QProgressDialog;
class QWidget;

/// Imports archives one after the other, off the interface thread, behind a progress dialog that can cancel.
/// Lives on the interface thread.
class ImportController : public QObject
{
    Q_OBJECT

public:
    /// @param root of the library, where former imports are kept
    ImportController(const fileString& root, QWidget* window);
    /// Cancels what is under way and waits for it.
    ~ImportController() override;

    bool isRunning() const { return mIsRunning; }
    /// Queues sources: paths or addresses.
    void import(const QStringList& sources);
    void cancel();
    /// Takes the last import back, off the interface thread. Says so, and changes nothing, when the last
    /// import is another one by now.
    /// @return whether it begins; false while an import goes on
    bool takeBack(const OrvHost::ArchiveImport::Result& import);

Q_SIGNALS:
    /// One source was imported.
    void imported(const OrvHost::ArchiveImport::Result& result);
    /// The queue is empty.
    /// @param summary what became of the sources, for people
    void finished(const QString& summary);
    /// An import was taken back, or not.
    void takenBack(const fileString& library, const QString& sentence);

private:
    class Progress;
    using Result = OrvHost::ArchiveImport::Result;

    void next();
    void start(const QString& source);
    void showDialog(const QString& source);
    void ended(const Result& result);
    void finish();

    fileString mRoot;
    QThreadPool mPool;
    QStringList mQueue;
    ImportSummary mSummary; ///< of the sources since the queue was empty
    std::shared_ptr<std::atomic<bool>> mCancelled;
    QProgressDialog* mDialog = nullptr;
    QWidget* mWindow;
    bool mIsRunning = false;
};
