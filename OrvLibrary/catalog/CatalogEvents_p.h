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

/// Sends the events of a run to the host object, as queued calls of its slots. The copies of an updater share
/// one such object. May be used from any thread.
///
/// The host object may be destroyed on its own thread at any moment, even between checking a weak pointer and
/// using it. Therefore its destruction clears our pointer under a mutex, and we hold this mutex whenever we
/// post a call. The slots are looked up once, at the start, while the host object certainly exists. An event
/// whose slot is missing is dropped, and so are all events after the host object's destruction.
class CatalogEvents
{
public:
    /// Starts to watch `host` and registers the types of the slots' arguments. Call it on the thread of
    /// `host`, or while that thread cannot destroy it.
    static std::shared_ptr<CatalogEvents> watch(QObject& host);
    ~CatalogEvents();
    CatalogEvents(const CatalogEvents&) = delete;
    CatalogEvents& operator=(const CatalogEvents&) = delete;

    /// A new step has begun, or the next catalog.
    void setText(const std::string& text);
    /// The unit of the gauge.
    void setUnits(const std::string& unit);
    /// The number of steps, or the kilobytes to download. At most the largest `int`, because a gauge cannot
    /// show more.
    void setRangeInGauge(std::uint64_t range);
    /// The kilobytes downloaded so far in this run; limited in the same way.
    void setValueInGauge(std::uint64_t value);
    /// One step is finished.
    void updateInGauge();
    /// A new catalog has been downloaded; the host must put it into place.
    void catalogUpdated(const FileStringPair& destinationAndNewFile);
    /// The run has ended.
    void closeCatalogUpdate(const UpdateData& data);
    /// The run has ended after a cancel.
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

    /// Shared with the connection that clears it when the host object is destroyed.
    struct Host
    {
        ThreadMutex mutex;
        /// Null when the host object is being destroyed. Guarded by `mutex`.
        QObject* object = nullptr;
    };

    explicit CatalogEvents(QObject& host);
    void post(Slot slot, QGenericArgument argument = {});

    const std::shared_ptr<Host> mHost = std::make_shared<Host>();
    /// The slots of the host object's class, in the order of `Slot`; invalid if it has no such slot.
    std::array<QMetaMethod, SlotCount> mSlots;
    QMetaObject::Connection mDestroyed;
};

} // namespace LibraryCatalogUpdate
