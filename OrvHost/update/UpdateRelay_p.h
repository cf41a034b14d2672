#pragma once

#include <array>
#include <cstddef>
#include <mutex>
#include <string>

#include <QMetaMethod>
#include <QObject>
#include <QThread>

#include "OrvLibrary/CatalogUpdateData.h"

namespace OrvHost {

class CatalogSwapper;

/// Stands between the updater and the host object: takes the updater's invocations on a thread of its own and
/// hands them on in their order. A new catalog is looked at on the way, so that neither the updater nor the
/// host's thread waits for that. Nothing is handed on once the host object is gone.
class UpdateRelay : public QObject
{
    Q_OBJECT

public:
    /// To be made on the host object's thread.
    /// @param swapper examines the new catalogs; outlives the object
    UpdateRelay(QObject& host, CatalogSwapper& swapper);
    ~UpdateRelay() override;

    /// Hands on what has come until now, and ends. Nothing may come afterwards.
    void drain();

Q_SIGNALS:
    /// All signals that came before `end` were handed on.
    void ended();

public Q_SLOTS:
    void onSetText(std::string text);
    void onSetUnits(std::string unit);
    void onSetRangeInGauge(size_t range);
    void onSetValueInGauge(size_t value);
    void onUpdateInGauge();
    void onCatalogUpdatedEvent(FileStringPair catalog);
    void closeCatalogUpdateEvent(LibraryCatalogUpdate::UpdateData outcome);
    void onClose();
    /// To be queued behind the last invocation.
    void end();

private Q_SLOTS:
    void leave();

private:
    enum Slot
    {
        SetText,
        SetUnits,
        SetRange,
        SetValue,
        UpdateGauge,
        CatalogUpdated,
        CloseUpdate,
        Close,
        SlotCount
    };

    void handOn(Slot slot, QGenericArgument argument = {});

    CatalogSwapper& mSwapper;
    std::mutex mMutex;
    QObject* mHost; ///< guarded by mMutex; null once the object is on its way out
    /// Of the host object's class; invalid where it has none.
    const std::array<QMetaMethod, SlotCount> mSlots;
    QMetaObject::Connection mDestroyed;
    QThread mThread;
};

} // namespace OrvHost
