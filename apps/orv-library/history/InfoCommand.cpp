#include "apps/orv-library/history/InfoCommand.h"

#include "apps/orv-library/Session.h"
#include "apps/orv-library/history/InstalledDocument.h"

void InfoCommand::declare(CommandSyntax& syntax)
{
    syntax.argument("NAME", mName, "File name of a catalog, or its name without extension");
    syntax.runs([this](Session& session) { return run(session); });
}

ExitStatus InfoCommand::run(Session& session) const
{
    session.console().resultSoFar(InstalledDocument::unknown(mName));
    const OrvHost::InstalledCatalog catalog =
        OrvHost::InstalledCatalogs::info(session.existingHost().root(), mName);
    session.console().result(InstalledDocument::object(catalog), InstalledDocument::fields(catalog));
    return ExitStatus::Done;
}
