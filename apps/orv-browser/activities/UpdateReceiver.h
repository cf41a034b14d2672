#pragma once

#include <optional>

#include <QObject>
#include <QPointer>

#include "OrvHost/update/CatalogSwapper.h"
#include "OrvLibrary/CatalogUpdateData.h"
#include "OrvLibrary/UI/qtLibraryProgressPanel.h"

/// The host object of a catalog update in a window: hands the progress on to the panel, puts new catalogs in
/// place, and keeps the outcome. Lives on the interface thread.
class UpdateReceiver : public QObject
{
    Q_OBJECT

public:
    /// @param swapper outlives the object
    /// @param panel may go at any time
    UpdateReceiver(OrvHost::CatalogSwapper& swapper, LibraryProgressPanel* panel);

    /// Shows in the gauge how much content is there. The updater tells it every two megabytes only.
    /// @param kilobytes in the run until now; nothing is shown before the download goes on
    void showReceived(qint64 kilobytes);

    /// What the updater reported; empty after a cancel.
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
    bool mIsDownloading = false; ///< the gauge counts kilobytes
};
