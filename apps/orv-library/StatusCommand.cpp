#include "apps/orv-library/StatusCommand.h"

#include <utility>
#include <vector>

#include <QJsonArray>

#include "OrvHost/health/LibraryHealth.h"
#include "OrvHost/history/CatalogPins.h"
#include "OrvHost/update/CheckHistory.h"
#include "apps/orv-library/Session.h"

namespace {

/// Catalog and text.
using Warning = std::pair<std::string, std::string>;

constexpr std::int64_t kNew = 200;
constexpr std::int64_t kCurrent = 304;

void addAnswers(std::vector<Warning>& warnings, const OrvHost::CheckHistory& history)
{
    for (const auto& [catalog, answer] : history.answers())
        if (answer.status == 0)
            warnings.emplace_back(catalog, "the service gave no answer when it was last asked");
        else if (answer.status != kNew && answer.status != kCurrent)
            warnings.emplace_back(catalog, "the service last answered HTTP " + std::to_string(answer.status));
}

std::vector<Warning> collectWarnings(const OrvHost::CheckHistory& history)
{
    std::vector<Warning> warnings;
    addAnswers(warnings, history);
    for (const auto& stamp : OrvHost::LibraryHealth::futureStamps())
        warnings.emplace_back(stamp.name, stamp.text);
    if (history.lastGoodCheck() > QDateTime::currentDateTimeUtc())
        warnings.emplace_back("", "the last good check lies in the future");
    OrvHost::LibraryHealth health;
    health.checkCoreCatalogs();
    for (const auto& damage : health.damages())
        warnings.emplace_back(damage.name, damage.text);
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

void StatusCommand::declare(CommandSyntax& syntax)
{
    syntax.runs([](Session& session) { return run(session); });
}

ExitStatus StatusCommand::run(Session& session)
{
    const OrvHost::CheckHistory history(session.existingHost().root());
    const QDateTime& good = history.lastGoodCheck();
    std::string text = "Last good check: " + ageText(good) + "\n";
    QJsonArray list;
    for (const auto& [catalog, warning] : collectWarnings(history)) {
        list.append(QJsonObject{{"catalog", jsonText(catalog)}, {"text", jsonText(warning)}});
        text += (catalog.empty() ? "" : catalog + ": ") + warning + "\n";
    }
    if (list.isEmpty())
        text += "No warnings.\n";
    const OrvHost::CatalogPins pins(session.existingHost().root());
    text += heldText(pins);
    QJsonArray held;
    for (const std::string& name : pins.heldNames())
        held.append(jsonText(name));
    const QJsonValue lastGoodCheck = good.isValid() ? QJsonValue(good.toString(Qt::ISODate)) : QJsonValue();
    session.console().result({{"lastGoodCheck", lastGoodCheck}, {"warnings", list}, {"held", held}}, text);
    return ExitStatus::Done;
}
