#include "apps/orv-library/history/RestoreCommand.h"

#include "OrvHost/Settings.h"
#include "OrvHost/history/VersionRestore.h"
#include "apps/orv-library/Session.h"

void RestoreCommand::declare(CommandSyntax& syntax)
{
    syntax.argument("NAME", mName, "File name of a catalog, or its name without extension");
    syntax.argument("VERSION", mVersion, "A version that history lists (default: the newest)",
                    CommandSyntax::Presence::Optional);
    syntax.runs([this](Session& session) { return run(session); });
}

ExitStatus RestoreCommand::run(Session& session) const
{
    session.console().resultSoFar(
        {{"name", jsonText(mName)}, {"restored", QJsonValue()}, {"former", QJsonValue()}});
    const fileString root = session.existingHost().root();
    const OrvHost::Settings::Values settings = OrvHost::Settings::load(root).values();
    const OrvHost::VersionRestore::Result result = OrvHost::VersionRestore::restore(
        root, mName, mVersion, {settings.historyVersions, settings.historyBytes});
    const QJsonValue former = result.former.empty() ? QJsonValue() : QJsonValue(jsonText(result.former));
    session.console().result(
        {{"name", jsonText(result.place.name)}, {"restored", jsonText(result.restored)}, {"former", former}},
        result.place.name + " is " + result.restored + " again" +
            (result.former.empty() ? "" : " in place of " + result.former) + ".\n");
    return ExitStatus::Done;
}
