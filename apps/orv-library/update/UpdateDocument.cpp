#include "apps/orv-library/update/UpdateDocument.h"

#include <QJsonArray>

#include "apps/orv-library/console/ByteText.h"
#include "apps/orv-library/console/Console.h"
#include "apps/orv-library/update/UpdateHost.h"

using OrvHost::UpdateOutcome;

namespace {

template <typename Text>
QJsonValue textOrNull(const std::optional<Text>& text)
{
    return text ? QJsonValue(jsonText(*text)) : QJsonValue();
}

QJsonArray postponed(const UpdateOutcome& outcome)
{
    QJsonArray list;
    for (const UpdateOutcome::Postponed& catalog : outcome.postponed) {
        const QJsonValue bytes =
            catalog.bytes ? QJsonValue(static_cast<qint64>(*catalog.bytes)) : QJsonValue();
        list.append(QJsonObject{{"catalog", jsonText(catalog.catalog)}, {"bytes", bytes}});
    }
    return list;
}

std::string postponedText(const UpdateOutcome& outcome)
{
    std::string text;
    double bytes = 0;
    for (const UpdateOutcome::Postponed& catalog : outcome.postponed) {
        text += "  " + catalog.catalog + "\n";
        bytes += static_cast<double>(catalog.bytes.value_or(0));
    }
    const std::size_t count = outcome.postponed.size();
    return "The connection is metered: " + std::to_string(count) +
           (count == 1 ? " catalog waits, " : " catalogs wait, ") + byteText(bytes) + " in all.\n" + text +
           "'orv-library update --metered fetch' fetches all the same.\n";
}

std::string counted(std::size_t count, const std::string& thing)
{
    return std::to_string(count) + " " + thing + (count == 1 ? "" : "s");
}

} // namespace

QJsonArray UpdateDocument::failures(const UpdateOutcome& outcome)
{
    QJsonArray list;
    for (const UpdateOutcome::Failure& failure : outcome.failed) {
        const QJsonValue status =
            failure.status ? QJsonValue(static_cast<qint64>(*failure.status)) : QJsonValue();
        list.append(QJsonObject{{"catalog", textOrNull(failure.catalog)},
                                {"status", status},
                                {"reason", jsonText(failure.reason)}});
    }
    return list;
}

QJsonObject UpdateDocument::document(const UpdateOutcome& outcome)
{
    QJsonArray updated;
    for (const std::string& name : outcome.updatedCatalogs)
        updated.append(jsonText(name));
    QJsonArray swappedIn;
    for (const fileString& destination : outcome.swappedIn)
        swappedIn.append(jsonText(destination.toNativeString()));
    const std::optional<std::string> code =
        outcome.messageCode ? std::optional<std::string>(messageCodeText(*outcome.messageCode))
                            : std::nullopt;
    QJsonObject object{{"outcome", outcome.name()},
                       {"result", outcome.result ? QJsonValue(*outcome.result) : QJsonValue()},
                       {"messageCode", textOrNull(code)},
                       {"updatedCatalogs", updated},
                       {"swappedIn", swappedIn},
                       {"failed", failures(outcome)}};
    if (!outcome.postponed.empty())
        object["postponed"] = postponed(outcome);
    return object;
}

std::string UpdateDocument::text(const UpdateOutcome& outcome)
{
    if (outcome.kind == UpdateOutcome::Kind::Cancelled)
        return {};
    if (outcome.kind == UpdateOutcome::Kind::Current)
        return "Everything is current.\n";
    if (!outcome.postponed.empty())
        return postponedText(outcome);
    if (outcome.updatedCatalogs.empty())
        return "Nothing was updated.\n";
    std::string text = "Updated " + counted(outcome.updatedCatalogs.size(), "catalog") + ":\n";
    for (const std::string& name : outcome.updatedCatalogs)
        text += "  " + name + "\n";
    return text;
}

std::string UpdateDocument::complaint(const UpdateOutcome& outcome, const std::string& url)
{
    const std::string from = "update from " + (url.empty() ? "no address" : url);
    switch (outcome.kind) {
    case UpdateOutcome::Kind::Cancelled:
        return "the update was cancelled";
    case UpdateOutcome::Kind::Incomplete:
        return from + " is incomplete: " + outcome.failedText();
    case UpdateOutcome::Kind::Failed:
        return outcome.service.verdict.empty() ? from + " failed: " + outcome.error : outcome.error;
    default:
        return {};
    }
}
