#pragma once

#include <optional>

#include <QElapsedTimer>
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

    /// What the updater reported; empty after a cancel.
    const std::optional<LibraryCatalogUpdate::UpdateData>& outcome() const { return mOutcome; }

Q_SIGNALS:
    void catalogReplaced(const fileString& database);
    /// How fast the content comes, and how long it will take: bytes a second and seconds.
    void speedChanged(double bytesPerSecond, double secondsLeft);

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
    QElapsedTimer mDownloadTime; ///< since the unit of the download was told
    size_t mRange = 0;           ///< kilobytes once the download goes on
};
