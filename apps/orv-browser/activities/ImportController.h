#pragma once

#include <atomic>
#include <memory>

#include <QObject>
#include <QStringList>
#include <QThreadPool>

#include "OrvLibrary/host/fileString.h"

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

Q_SIGNALS:
    /// One source is done. `problem` is empty when all went well, and then `library` is the database, if
    /// there was one.
    void imported(const QString& source, const fileString& library, const QString& problem);
    /// The queue is empty.
    void finished();

private:
    class Progress;
    struct Outcome;

    static Outcome importOne(const fileString& root, const std::string& source,
                             const std::shared_ptr<ProgressSubject>& progress);
    void next();
    void ended(const QString& source, const Outcome& outcome);

    fileString mRoot;
    QThreadPool mPool;
    QStringList mQueue;
    std::shared_ptr<std::atomic<bool>> mCancelled;
    QProgressDialog* mDialog = nullptr;
    QWidget* mWindow;
    bool mIsRunning = false;
};
