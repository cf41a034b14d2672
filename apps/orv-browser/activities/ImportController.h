#pragma once

#include <atomic>
#include <memory>

#include <QObject>
#include <QStringList>
#include <QThreadPool>

#include "OrvHost/imports/ArchiveImport.h"
#include "OrvLibrary/host/fileString.h"
#include "apps/orv-browser/activities/ImportSummary.h"

/// Imports archives one after the other, on another thread. Lives on the interface thread.
class ImportController : public QObject
{
    Q_OBJECT

public:
    /// @param root the library's root, which holds the former imports
    ImportController(const fileString& root, QObject* parent);
    /// Cancels the current import and waits for it.
    ~ImportController() override;

    bool isRunning() const { return mIsRunning; }
    /// Queues sources: paths or addresses.
    void import(const QStringList& sources);
    void cancel();
    /// Undoes the last import on another thread. If another import has been made meanwhile, changes nothing
    /// and says so.
    /// @return whether it has begun; false during an import
    bool takeBack(const OrvHost::ArchiveImport::Result& import);
    /// Why an import, if it is the last one, cannot be undone any more, for people; empty if nothing is known
    /// to speak against it.
    QString whyNotTakenBack(const OrvHost::ArchiveImport::Result& import) const;

Q_SIGNALS:
    /// Sources have been queued.
    /// @param isFirst whether the queue was empty before
    void queued(const QStringList& sources, bool isFirst);
    /// The progress of an import.
    /// @param step for people
    /// @param done finished bytes of the step
    /// @param whole all bytes of the step; 0 if unknown
    void progressed(const QString& source, const QString& step, qint64 done, qint64 whole);
    /// An import has ended, successfully or not.
    void ended(const OrvHost::ArchiveImport::Result& result);
    /// A source has been imported.
    void imported(const OrvHost::ArchiveImport::Result& result);
    /// The queue is empty.
    /// @param summary the result for all sources, for people
    /// @param failed the sources that were not imported
    void finished(const QString& summary, const QStringList& failed);
    /// An import has been undone, or could not be.
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
    ImportSummary mSummary; ///< for the sources since the queue was last empty
    std::shared_ptr<std::atomic<bool>> mCancelled;
    bool mIsRunning = false;
    int mBeingTakenBack = 0; ///< undone at this moment
};
