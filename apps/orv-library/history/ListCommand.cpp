#include "apps/orv-library/history/ListCommand.h"

#include <QJsonArray>

#include "apps/orv-library/Session.h"
#include "apps/orv-library/history/InstalledDocument.h"

void ListCommand::declare(CommandSyntax& syntax)
{
    syntax.runs([](Session& session) { return run(session); });
}

ExitStatus ListCommand::run(Session& session)
{
    QJsonArray array;
    std::string text;
    session.console().resultSoFar({{"catalogs", array}});
    for (const OrvHost::InstalledCatalog& catalog :
         OrvHost::InstalledCatalogs::list(session.existingHost().root())) {
        array.append(InstalledDocument::object(catalog));
        text += InstalledDocument::line(catalog);
    }
    session.console().result({{"catalogs", array}}, array.isEmpty() ? "No catalog is installed.\n" : text);
    return ExitStatus::Done;
}
