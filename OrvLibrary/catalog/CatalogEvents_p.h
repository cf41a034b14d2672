#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>

#include <QMetaMethod>
#include <QObject>

#include "OrvLibrary/CatalogUpdateData.h"
#include "OrvLibrary/host/ThreadMutex.h"

namespace LibraryCatalogUpdate {

/// The host object of a run: what the worker tells it goes into the object's event queue. Shared by the
/// copies of an updater, used from any thread.
///
/// Asking a weak pointer and then using it is not enough, since the object may die in between on its own
/// thread. So the pointer is cleared by the object's destruction, under the mutex that is held while
/// something is posted, or the watch ended. The slots are looked up once, while the object is certainly
/// whole; one that the object lacks is passed over in silence, as is everything once the object is gone.
class CatalogEvents
{
public:
    /// Registers the types that the invocations carry and starts to watch `host`. To be called on its thread,
    /// or while that thread does not destroy it.
    static std::shared_ptr<CatalogEvents> watch(QObject& host);
    ~CatalogEvents();
    CatalogEvents(const CatalogEvents&) = delete;
    CatalogEvents& operator=(const CatalogEvents&) = delete;

    /// A new step or catalog.
    void setText(const std::string& text);
    /// The unit of the gauge.
    void setUnits(const std::string& unit);
    /// Items of a step, or kilobytes to download; at most the largest `int`, which is all a gauge can take.
    void setRangeInGauge(std::uint64_t range);
    /// Kilobytes downloaded in the run; bounded like the range.
    void setValueInGauge(std::uint64_t value);
    /// One item of a step is done.
    void updateInGauge();
    /// A catalog is ready to be put into place.
    void catalogUpdated(const FileStringPair& destinationAndNewFile);
    /// The run ended.
    void closeCatalogUpdate(const UpdateData& data);
    /// The run ended after a cancel.
    void close();

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

    /// Shared with the connection that clears it.
    struct Host
    {
        ThreadMutex mutex;
        /// Null once the object is on its way out; guarded by `mutex`.
        QObject* object = nullptr;
    };

    explicit CatalogEvents(QObject& host);
    void post(Slot slot, QGenericArgument argument = {});

    const std::shared_ptr<Host> mHost = std::make_shared<Host>();
    /// Of the host object's class, in the order of `Slot`; invalid where it has none.
    std::array<QMetaMethod, SlotCount> mSlots;
    QMetaObject::Connection mDestroyed;
};

} // namespace LibraryCatalogUpdate
