#include "apps/orv-library/history/NewsCommand.h"

#include <QJsonArray>

#include "OrvHost/history/CatalogNews.h"
#include "apps/orv-library/Session.h"

namespace {

QJsonArray listOf(const std::vector<OrvHost::CatalogItems::Item>& items)
{
    QJsonArray array;
    for (const OrvHost::CatalogItems::Item& item : items)
        array.append(QJsonObject{{"id", static_cast<qint64>(item.id)}, {"name", jsonText(item.name)}});
    return array;
}

std::string linesOf(const char* sign, const std::vector<OrvHost::CatalogItems::Item>& items)
{
    std::string text;
    for (const OrvHost::CatalogItems::Item& item : items)
        text += std::string("  ") + sign + " " + item.name + "\n";
    return text;
}

} // namespace

void NewsCommand::declare(CommandSyntax& syntax)
{
    syntax.option("--since", mSince, "RUN", "Show all changes since the run with this number");
    syntax.runs([this](Session& session) { return run(session); });
}

ExitStatus NewsCommand::run(Session& session) const
{
    session.console().resultSoFar({{"catalogs", QJsonArray()}});
    const fileString root = session.existingHost().root();
    if (mSince < 0)
        throw UsageError("--since takes the number of a run, from 1 on");
    if (mSince > 0 && !OrvHost::CatalogNews::isKnown(root, mSince))
        throw CommandFailure("no run has the number " + std::to_string(mSince));
    const auto changes = mSince > 0 ? OrvHost::CatalogNews::since(root, mSince)
                                    : OrvHost::CatalogNews::since(root, std::nullopt);
    QJsonArray catalogs;
    std::string text;
    for (const auto& [place, items] : changes) {
        catalogs.append(QJsonObject{{"name", jsonText(place.name)},
                                    {"added", listOf(items.added)},
                                    {"changed", listOf(items.changed)},
                                    {"gone", listOf(items.gone)}});
        text += place.key() + "\n" + linesOf("+", items.added) + linesOf("*", items.changed) +
                linesOf("-", items.gone);
    }
    session.console().result({{"catalogs", catalogs}}, text.empty() ? "Nothing is new.\n" : text);
    return ExitStatus::Done;
}
