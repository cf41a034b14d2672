#pragma once

#include <atomic>
#include <functional>
#include <memory>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QObject>
#include <QString>

#include "OrvLibrary/host/ProgressSubject.h"

/// Passes the progress of an import to the interface thread, at most ten times a second. Called on the
/// import's thread.
class ImportProgress : public ProgressSubject
{
    Q_DECLARE_TR_FUNCTIONS(ImportProgress)

public:
    /// Receives the step for people, its finished bytes and all its bytes.
    using Show = std::function<void(const QString& step, qint64 done, qint64 whole)>;

    /// @param receiver `show` is called on its thread; must outlive the import
    /// @param cancelled set to cancel the import
    ImportProgress(QObject& receiver, Show show, std::shared_ptr<std::atomic<bool>> cancelled);

    bool checkCancel(bool) override { return *mCancelled; }
    void createSubProgress(std::uint64_t total) override;
    void increment(const marl::unicode::String&, const marl::unicode::String&) override {}
    void updateLabels(const marl::unicode::String& label1, const marl::unicode::String&) override;
    void advanceBytes(std::uint64_t bytes) override;

private:
    void post();

    QObject& mReceiver;
    Show mShow;
    std::shared_ptr<std::atomic<bool>> mCancelled;
    QElapsedTimer mSincePost;
    QString mStep;
    qint64 mDone = 0;
    qint64 mWhole = 0;
};
