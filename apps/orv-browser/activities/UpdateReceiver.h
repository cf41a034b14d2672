#pragma once

#include <optional>

#include <QObject>
#include <QPointer>

#include "OrvHost/update/CatalogSwapper.h"
#include "OrvLibrary/CatalogUpdateData.h"
#include "OrvLibrary/UI/qtLibraryProgressPanel.h"

/// The host object of an update in a window: passes the progress to the panel, puts new catalogs into place
/// and keeps the outcome. Lives on the interface thread.
class UpdateReceiver : public QObject
{
    Q_OBJECT

public:
    /// @param swapper must outlive the object
    /// @param panel may be destroyed at any time
    UpdateReceiver(OrvHost::CatalogSwapper& swapper, LibraryProgressPanel* panel);

    /// Updates the gauge between the updater's own updates, which come only every two megabytes.
    /// @param kilobytes received in this run; ignored before the first download
    void showReceived(qint64 kilobytes);

    /// The result reported by the updater; empty after a cancel.
    const std::optional<LibraryCatalogUpdate::UpdateData>& outcome() const { return mOutcome; }

Q_SIGNALS:
    void catalogReplaced(const fileString& database);

public Q_SLOTS:
    void onSetText(std::string text);
    void onSetUnits(std::string units);
    void onSetRangeInGauge(size_t range);
    void onSetValueInGauge(size_t value);
    void onUpdateInGauge();
    void onCatalogUpdatedEvent(FileStringPair catalog);
    void closeCatalogUpdateEvent(const LibraryCatalogUpdate::UpdateData& outcome);
    void onClose();

private:
    OrvHost::CatalogSwapper& mSwapper;
    QPointer<LibraryProgressPanel> mPanel;
    std::optional<LibraryCatalogUpdate::UpdateData> mOutcome;
    bool mIsDownloading = false; ///< whether the gauge shows kilobytes
};
