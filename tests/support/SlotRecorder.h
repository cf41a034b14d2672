#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include <QObject>

#include "OrvLibrary/CatalogUpdateData.h"

namespace test {

/// One call of a slot with its arguments as text.
struct SlotEvent
{
    std::string slot;
    std::vector<std::string> arguments;

    /// The call as text, such as "onSetText(Doors.orvlib)"; commas separate several arguments.
    std::string text() const;
};

/// A host object with every slot that a catalog update invokes. It records the calls in order. Use it on its
/// own thread only.
class SlotRecorder : public QObject
{
    Q_OBJECT

public:
    const std::vector<SlotEvent>& events() const { return mEvents; }
    std::vector<std::string> texts() const;
    /// The arguments of each call of one slot, in order; ", " joins the arguments of one call.
    std::vector<std::string> argumentsOf(const std::string& slot) const;
    std::size_t count(const std::string& slot) const { return argumentsOf(slot).size(); }
    /// How often the run announced its end, by either slot.
    std::size_t closings() const { return count("closeCatalogUpdateEvent") + count("onClose"); }
    /// The data of the last "closeCatalogUpdateEvent".
    const std::optional<LibraryCatalogUpdate::UpdateData>& closingData() const { return mClosingData; }
    const std::vector<FileStringPair>& updatedFiles() const { return mUpdatedFiles; }

    /// Called after each recorded event with the number of events so far. It may destroy the recorder.
    std::function<void(std::size_t)> onEvent;
    /// Whether the recorder renames new catalogs to their destinations, as a host does.
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
