#include "apps/orv-library/update/UpdateHost.h"

#include <cstdio>

#include <QJsonObject>

#include "OrvHost/LegacyText.h"
#include "OrvLibrary/host/SQL.h"
#include "apps/orv-library/console/Console.h"

using LibraryCatalogUpdate::UpdateData;

namespace {

QJsonValue number(size_t value)
{
    return static_cast<qint64>(value);
}

QJsonObject outcomeObject(const UpdateData& outcome)
{
    QJsonArray names;
    for (const std::string& name : outcome.updatedCatalogs)
        names.append(jsonText(SQL::to_utf8(name)));
    return {{"result", outcome.result},
            {"messageCode", jsonText(messageCodeText(outcome.messageCode))},
            {"updatedCatalogs", names}};
}

} // namespace

std::string messageCodeText(std::int32_t code)
{
    char text[16];
    std::snprintf(text, sizeof text, "0x%08x", static_cast<unsigned int>(code));
    return text;
}

UpdateHost::UpdateHost(ProgressReporter& progress, InvocationTrace& trace, OrvHost::CatalogSwapper& swapper)
    : mProgress(progress), mTrace(trace), mSwapper(swapper)
{
}

void UpdateHost::onSetText(const std::string& text)
{
    const std::string utf8 = OrvHost::LegacyText::toUtf8(text);
    mTrace.write("onSetText", {jsonText(utf8)});
    mProgress.setText(utf8);
}

void UpdateHost::onSetUnits(const std::string& units)
{
    mTrace.write("onSetUnits", {jsonText(OrvHost::LegacyText::toUtf8(units))});
    mProgress.setUnits(OrvHost::LegacyText::toUtf8(units));
}

void UpdateHost::onSetRangeInGauge(size_t range)
{
    mTrace.write("onSetRangeInGauge", {number(range)});
    mProgress.setRange(range);
}

void UpdateHost::onSetValueInGauge(size_t value)
{
    mTrace.write("onSetValueInGauge", {number(value)});
    mProgress.setValue(value);
}

void UpdateHost::onUpdateInGauge()
{
    mTrace.write("onUpdateInGauge", {});
    mProgress.advance();
}

void UpdateHost::onCatalogUpdatedEvent(const FileStringPair& catalog)
{
    const auto& [destination, newFile] = catalog;
    mTrace.write("onCatalogUpdatedEvent",
                 {jsonText(destination.toNativeString()), jsonText(newFile.toNativeString())});
    mSwapper.swapIn(destination, newFile); // the outcome reports a failure
}

void UpdateHost::closeCatalogUpdateEvent(const UpdateData& outcome)
{
    mTrace.write("closeCatalogUpdateEvent", {outcomeObject(outcome)});
    mOutcome = outcome;
    close();
}

void UpdateHost::onClose()
{
    mTrace.write("onClose", {});
    close();
}

void UpdateHost::close()
{
    mProgress.clear();
    mClosed = true;
    Q_EMIT closed();
}
