#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include <QObject>

#include "OrvHost/update/CatalogSwapper.h"
#include "OrvLibrary/CatalogUpdateData.h"
#include "apps/orv-library/console/InvocationTrace.h"
#include "apps/orv-library/console/ProgressReporter.h"

class QJsonObject;

/// The host object of an update without a window: shows the progress, puts new catalogs into place and keeps
/// the outcome. It lives on the main thread, which receives the worker's queued calls.
class UpdateHost : public QObject
{
    Q_OBJECT

public:
    /// The arguments must outlive the object.
    UpdateHost(ProgressReporter& progress, InvocationTrace& trace, OrvHost::CatalogSwapper& swapper);

    /// The result of the run; empty if it was cancelled or has not ended.
    const std::optional<LibraryCatalogUpdate::UpdateData>& outcome() const { return mOutcome; }
    /// Whether a closing call has come.
    bool isClosed() const { return mClosed; }

Q_SIGNALS:
    /// Sent when the closing call has come.
    void closed();

public Q_SLOTS:
    void onSetText(const std::string& text);
    void onSetUnits(const std::string& units);
    void onSetRangeInGauge(size_t range);
    void onSetValueInGauge(size_t value);
    void onUpdateInGauge();
    void onCatalogUpdatedEvent(const FileStringPair& catalog);
    void closeCatalogUpdateEvent(const LibraryCatalogUpdate::UpdateData& outcome);
    void onClose();

private:
    void close();

    ProgressReporter& mProgress;
    InvocationTrace& mTrace;
    OrvHost::CatalogSwapper& mSwapper;
    std::optional<LibraryCatalogUpdate::UpdateData> mOutcome;
    bool mClosed = false;
};

/// Such as "0x10369189".
std::string messageCodeText(std::int32_t code);
