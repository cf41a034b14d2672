#pragma once

#include <memory>

#include <QObject>

#include "OrvHost/Settings.h"
#include "OrvLibrary/host/fileString.h"

namespace OrvHost {
class CatalogUpdateRun;
}

/// Asks the service what is new, without a word to the user: fetches nothing, and leaves what it found where
/// the window looks for what waits. Lives on the interface thread.
class QuietCheck : public QObject
{
    Q_OBJECT

public:
    /// @param root the root of the well-known folders
    explicit QuietCheck(const fileString& root, QObject* parent = nullptr);
    /// Cancels and waits.
    ~QuietCheck() override;

    bool isRunning() const { return mRun != nullptr; }
    /// Whether no check or update reached the service in the last hours.
    bool isDue(int hours) const;
    /// Begins, unless it cannot. While one goes on it does nothing.
    void start(const OrvHost::Settings::Values& settings);
    /// `ended` comes within a second.
    void cancel();
    /// Cancels and waits; nothing is told.
    void stop();

Q_SIGNALS:
    void ended();

private:
    void conclude();

    fileString mRoot;
    QObject mHost; ///< has no slots: nobody wants to know
    std::unique_ptr<OrvHost::CatalogUpdateRun> mRun;
    bool mIsCancelled = false;
};
