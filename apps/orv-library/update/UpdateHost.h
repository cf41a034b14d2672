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

/// The host object of a catalog update without a window: shows the progress, swaps new catalogs in, keeps the
/// outcome. It lives on the main thread, where the queued invocations of the worker arrive.
class UpdateHost : public QObject
{
    Q_OBJECT

public:
    /// All three outlive the object.
    UpdateHost(ProgressReporter& progress, InvocationTrace& trace, OrvHost::CatalogSwapper& swapper);

    /// How the run ended; empty when it was cancelled or has not ended.
    const std::optional<LibraryCatalogUpdate::UpdateData>& outcome() const { return mOutcome; }
    /// Whether one of the closing invocations came.
    bool isClosed() const { return mClosed; }

Q_SIGNALS:
    /// The closing invocation came.
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

/// "0x10369189".
std::string messageCodeText(std::int32_t code);
