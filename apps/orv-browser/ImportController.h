#pragma once

#include <atomic>
#include <memory>

#include <QObject>
#include <QStringList>
#include <QThreadPool>

class QProgressDialog;
class QWidget;

/// Imports archives one after the other, off the interface thread, behind a progress dialog that can cancel.
/// Lives on the interface thread.
class ImportController : public QObject
{
    Q_OBJECT

public:
    explicit ImportController(QWidget* window);
    /// Cancels what is under way and waits for it.
    ~ImportController() override;

    bool isRunning() const { return mIsRunning; }
    /// Queues sources: paths or addresses.
    void import(const QStringList& sources);
    void cancel();

Q_SIGNALS:
    /// One source is done. `problem` is empty when all went well.
    void imported(const QString& source, const QString& problem);
    /// The queue is empty.
    void finished();

private:
    class Progress;

    void next();
    void ended(const QString& source, const QString& problem);

    QThreadPool mPool;
    QStringList mQueue;
    std::shared_ptr<std::atomic<bool>> mCancelled;
    QProgressDialog* mDialog = nullptr;
    QWidget* mWindow;
    bool mIsRunning = false;
};
