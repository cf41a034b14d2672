#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include <QObject>

#include "OrvLibrary/CatalogUpdateData.h"

namespace test {

/// One invocation as it arrived: the slot, and its arguments as text.
struct SlotEvent
{
    std::string slot;
    std::vector<std::string> arguments;

    /// "onSetText(Doors.orvlib)"; several arguments are parted by ", ".
    std::string text() const;
};

/// A host object with every slot that a catalog update invokes. It keeps what arrives, in order; it is used
/// on its own thread only.
class SlotRecorder : public QObject
{
    Q_OBJECT

public:
    const std::vector<SlotEvent>& events() const { return mEvents; }
    /// The events as texts.
    std::vector<std::string> texts() const;
    /// The arguments of one slot's invocations, in order, each invocation's joined by ", ".
    std::vector<std::string> argumentsOf(const std::string& slot) const;
    std::size_t count(const std::string& slot) const { return argumentsOf(slot).size(); }
    /// How many times the run was ended, in either way.
    std::size_t closings() const { return count("closeCatalogUpdateEvent") + count("onClose"); }
    /// What the last "closeCatalogUpdateEvent" carried.
    const std::optional<LibraryCatalogUpdate::UpdateData>& closingData() const { return mClosingData; }
    const std::vector<FileStringPair>& updatedFiles() const { return mUpdatedFiles; }

    /// Called after each event was kept, with its number, from 1; may destroy the recorder.
    std::function<void(std::size_t)> onEvent;
    /// Whether new catalogs are renamed to their destinations, as a host does. Set by default.
    bool swapsIn = true;

public Q_SLOTS:
    void onSetText(std::string text);
    void onSetUnits(std::string unit);
    void onSetRangeInGauge(size_t range);
    void onSetValueInGauge(size_t value);
    void onUpdateInGauge();
    void onCatalogUpdatedEvent(FileStringPair destinationAndNewFile);
    void closeCatalogUpdateEvent(const LibraryCatalogUpdate::UpdateData& data);
    void onClose();

private:
    void keep(const std::string& slot, const std::vector<std::string>& arguments = {});

    std::vector<SlotEvent> mEvents;
    std::vector<FileStringPair> mUpdatedFiles;
    std::optional<LibraryCatalogUpdate::UpdateData> mClosingData;
};

} // namespace test
