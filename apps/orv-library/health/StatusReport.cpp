#include "apps/orv-library/health/StatusReport.h"

#include <utility>
#include <vector>

#include <QDateTime>
#include <QJsonArray>

#include "OrvHost/health/LibraryHealth.h"
#include "OrvHost/history/CatalogPins.h"
#include "OrvHost/update/CheckHistory.h"
#include "OrvHost/update/UpdateOutcome.h"
#include "apps/orv-library/console/Console.h"

namespace {

/// A catalog and a text about it.
using Warning = std::pair<std::string, std::string>;

constexpr std::int64_t kNew = 200;
constexpr std::int64_t kCurrent = 304;

std::string textOf(const OrvHost::CheckHistory::Answer& answer)
{
    const std::string because = answer.reason.empty() ? "" : ": " + answer.reason;
    if (answer.status == 0)
        return "the service gave no answer when it was last asked" + because;
    if (answer.status != kNew && answer.status != kCurrent)
        return "the service last answered HTTP " + std::to_string(answer.status);
    return answer.reason.empty() ? "" : "the last update could not bring it up to date" + because;
}

void addAnswers(std::vector<Warning>& warnings, const OrvHost::CheckHistory& history)
{
    for (const auto& [catalog, answer] : history.answers()) {
        const std::string text = textOf(answer);
        if (!text.empty())
            warnings.emplace_back(OrvHost::installedName(catalog), text);
    }
}

void addAll(std::vector<Warning>& warnings, const std::vector<OrvHost::LibraryHealth::Damage>& damages)
{
    for (const auto& damage : damages)
        warnings.emplace_back(damage.name, damage.text);
}

std::vector<Warning> collectWarnings(const OrvHost::CheckHistory& history)
{
    using OrvHost::LibraryHealth;
    std::vector<Warning> warnings;
    if (!history.lastError().empty())
        warnings.emplace_back("", "the last update failed: " + history.lastError());
    addAnswers(warnings, history);
    addAll(warnings, LibraryHealth::futureStamps());
    const QDateTime now = QDateTime::currentDateTimeUtc();
    if (history.lastGoodCheck() > now || history.lastAttempt() > now)
        warnings.emplace_back("", "the last update lies in the future");
    LibraryHealth health;
    health.checkCoreCatalogs();
    addAll(warnings, health.damages());
    addAll(warnings, LibraryHealth::missingFiles());
    addAll(warnings, LibraryHealth::leftOvers());
    return warnings;
}

std::string heldText(const OrvHost::CatalogPins& pins)
{
    std::string text;
    for (const auto& [place, held] : pins.held())
        text += place.key() + ": held" +
                (held.newer.empty() ? "" : "; " + held.newer + " waits in the history") + "\n";
    return text;
}

QJsonValue timeOrNull(const QDateTime& time)
{
    return time.isValid() ? QJsonValue(time.toUTC().toString(Qt::ISODate)) : QJsonValue();
}

std::string ageText(const QDateTime& time)
{
    if (!time.isValid())
        return "never";
    const qint64 minutes = time.secsTo(QDateTime::currentDateTimeUtc()) / 60;
    const std::string when = time.toString(Qt::ISODate).toStdString();
    if (minutes < 120)
        return when + " (" + std::to_string(minutes) + " minutes ago)";
    if (minutes < 48 * 60)
        return when + " (" + std::to_string(minutes / 60) + " hours ago)";
    return when + " (" + std::to_string(minutes / (24 * 60)) + " days ago)";
}

} // namespace

QJsonObject StatusReport::nothingYet()
{
    return {{"lastAttempt", QJsonValue()},
            {"lastGoodCheck", QJsonValue()},
            {"warnings", QJsonArray()},
            {"held", QJsonArray()}};
}

StatusReport StatusReport::of(const fileString& root)
{
    StatusReport report;
    const OrvHost::CheckHistory history(root);
    report.text = "Last attempt: " + ageText(history.lastAttempt()) + "\n" +
                  "Last good check: " + ageText(history.lastGoodCheck()) + "\n";
    QJsonArray warnings;
    for (const auto& [catalog, warning] : collectWarnings(history)) {
        const QJsonValue name = catalog.empty() ? QJsonValue() : QJsonValue(jsonText(catalog));
        warnings.append(QJsonObject{{"catalog", name}, {"text", jsonText(warning)}});
        report.text += (catalog.empty() ? "" : catalog + ": ") + warning + "\n";
    }
    report.isSound = warnings.isEmpty();
    if (report.isSound)
        report.text += "No warnings.\n";
    const OrvHost::CatalogPins pins(root);
    report.text += heldText(pins);
    QJsonArray held;
    for (const std::string& name : pins.heldNames())
        held.append(jsonText(name));
    report.document = {{"lastAttempt", timeOrNull(history.lastAttempt())},
                       {"lastGoodCheck", timeOrNull(history.lastGoodCheck())},
                       {"warnings", warnings},
                       {"held", held}};
    return report;
}
