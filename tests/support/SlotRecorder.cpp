#include "tests/support/SlotRecorder.h"

#include <cstdio>
#include <filesystem>
#include <numeric>

namespace test {

namespace {

std::string joined(const std::vector<std::string>& texts)
{
    std::string all;
    for (const std::string& text : texts)
        all += (all.empty() ? "" : ", ") + text;
    return all;
}

std::string hexadecimal(std::int32_t number)
{
    char text[16];
    std::snprintf(text, sizeof text, "0x%x", static_cast<unsigned>(number));
    return text;
}

} // namespace

std::string SlotEvent::text() const
{
    return slot + "(" + joined(arguments) + ")";
}

std::vector<std::string> SlotRecorder::texts() const
{
    std::vector<std::string> all;
    for (const SlotEvent& event : mEvents)
        all.push_back(event.text());
    return all;
}

std::vector<std::string> SlotRecorder::argumentsOf(const std::string& slot) const
{
    std::vector<std::string> all;
    for (const SlotEvent& event : mEvents) {
        if (event.slot == slot)
            all.push_back(joined(event.arguments));
    }
    return all;
}

void SlotRecorder::onSetText(std::string text)
{
    keep("onSetText", {text});
}

void SlotRecorder::onSetUnits(std::string unit)
{
    keep("onSetUnits", {unit});
}

void SlotRecorder::onSetRangeInGauge(size_t range)
{
    keep("onSetRangeInGauge", {std::to_string(range)});
}

void SlotRecorder::onSetValueInGauge(size_t value)
{
    keep("onSetValueInGauge", {std::to_string(value)});
}

void SlotRecorder::onUpdateInGauge()
{
    keep("onUpdateInGauge");
}

void SlotRecorder::onCatalogUpdatedEvent(FileStringPair destinationAndNewFile)
{
    const auto& [destination, newFile] = destinationAndNewFile;
    mUpdatedFiles.push_back(destinationAndNewFile);
    std::error_code ignored;
    if (swapsIn)
        std::filesystem::rename(newFile.toNativeString(), destination.toNativeString(), ignored);
    keep("onCatalogUpdatedEvent", {destination.toNativeString(), newFile.toNativeString()});
}

void SlotRecorder::closeCatalogUpdateEvent(const LibraryCatalogUpdate::UpdateData& data)
{
    mClosingData = data;
    const std::vector<std::string> names(data.updatedCatalogs.begin(), data.updatedCatalogs.end());
    keep("closeCatalogUpdateEvent",
         {std::to_string(data.result), hexadecimal(data.messageCode), "[" + joined(names) + "]"});
}

void SlotRecorder::onClose()
{
    keep("onClose");
}

void SlotRecorder::keep(const std::string& slot, const std::vector<std::string>& arguments)
{
    mEvents.push_back({slot, arguments});
    const auto hook = onEvent; // the hook may destroy the recorder and with it the member
    if (hook)
        hook(mEvents.size());
}

} // namespace test
