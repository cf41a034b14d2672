#include "apps/orv-library/history/HistoryCommand.h"

#include <QJsonArray>

#include "OrvHost/history/CatalogHistory.h"
#include "apps/orv-library/Session.h"

void HistoryCommand::declare(CommandSyntax& syntax)
{
    syntax.argument("NAME", mName, "File name of a catalog, or its name without extension");
    syntax.runs([this](Session& session) { return run(session); });
}

ExitStatus HistoryCommand::run(Session& session) const
{
    session.console().resultSoFar({{"name", jsonText(mName)}, {"versions", QJsonArray()}});
    session.existingHost();
    const OrvHost::CatalogHistory history;
    const OrvHost::CatalogPlace place = OrvHost::CatalogPlaces::find(mName, history.knownPlaces());
    QJsonArray array;
    std::string text;
    for (const OrvHost::FormerVersion& version : history.versions(place)) {
        const QString replaced = version.replaced.toString(Qt::ISODate);
        array.append(QJsonObject{{"version", jsonText(version.version)},
                                 {"bytes", static_cast<qint64>(version.bytes)},
                                 {"replaced", replaced}});
        text += version.version + "  " + std::to_string(version.bytes) + " bytes  replaced " +
                replaced.toStdString() + "\n";
    }
    if (array.isEmpty())
        text = place.name + " has no former versions.\n";
    session.console().result({{"name", jsonText(place.name)}, {"versions", array}}, text);
    return ExitStatus::Done;
}
