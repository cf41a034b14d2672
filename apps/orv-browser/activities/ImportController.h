#pragma once

#include <atomic>
#include <memory>

#include <QObject>
#include <QStringList>
#include <QThreadPool>

#include "OrvHost/imports/ArchiveImport.h"
#include "OrvLibrary/host/fileString.h"
#include "apps/orv-browser/activities/ImportSummary.h"

/// Imports archives one after the other, off the interface thread.
/// Lives on the interface thread.
class ImportController : public QObject
{
    Q_OBJECT

public:
    /// @param root of the library, where former imports are kept
    ImportController(const fileString& root, QObject* parent);
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
    /// Sources wait from now on.
    /// @param isFirst whether there were none before
    void queued(const QStringList& sources, bool isFirst);
    /// How an import goes on.
    /// @param step for people
    /// @param done bytes of the step
    /// @param whole all bytes of the step; 0 when that is not known
    void progressed(const QString& source, const QString& step, qint64 done, qint64 whole);
    /// One source is done, well or not.
    void ended(const OrvHost::ArchiveImport::Result& result);
    /// One source was imported.
    void imported(const OrvHost::ArchiveImport::Result& result);
    /// The queue is empty.
    /// @param summary what became of the sources, for people
    /// @param failed the sources that were not imported
    void finished(const QString& summary, const QStringList& failed);
    /// An import was taken back, or not.
    void takenBack(const fileString& library, const QString& sentence);

private:
    using Result = OrvHost::ArchiveImport::Result;

    void next();
    void start(const QString& source);
    void conclude(const Result& result);
    void finish();

    fileString mRoot;
    QThreadPool mPool;
    QStringList mQueue;
    ImportSummary mSummary; ///< of the sources since the queue was empty
    std::shared_ptr<std::atomic<bool>> mCancelled;
    bool mIsRunning = false;
};
