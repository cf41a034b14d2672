#include "apps/orv-library/PathsCommand.h"

#include <utility>
#include <vector>

#include "OrvLibrary/host/PathUtils.h"
#include "apps/orv-library/Session.h"

namespace {

using NamedPath = std::pair<const char*, fileString>;

std::vector<NamedPath> wellKnownPaths(const fileString& root)
{
    const RootPathUtils paths(root);
    return {
        {"root", paths.root()},
        {"user", paths.getUserLibraryDatabasePath()},
        {"core", paths.getCoreLibraryDatabasePath()},
        {"bonus", paths.getBonusLibraryDatabasePath()},
        {"manufacturer", paths.getManufacturerLibraryPath()},
        {"manufacturerData", paths.getManufacturerDataPath()},
        {"referenced", paths.getProprietaryLibraryReferencedFilesPath()},
        {"textures", paths.getUserTexturePath()},
        {"temp", paths.root() + fileString("temp/")}, // the getter of this folder would create it
        {"errorLog", paths.getUserLibraryDatabasePath() + fileString("errors.log")},
        {"filters", paths.getCoreLibraryDatabasePath() + fileString("catalog_filters.json")},
        {"manufacturerFile", paths.getManufacturerDataPath() + fileString("manufacturer_data.json")},
    };
}

} // namespace

void PathsCommand::declare(CommandSyntax& syntax)
{
    syntax.flag("--create", mCreate, "Create the root and all missing folders");
    syntax.runs([this](Session& session) { return run(session); });
}

ExitStatus PathsCommand::run(Session& session) const
{
    QJsonObject document;
    std::string text;
    for (const auto& [name, path] : wellKnownPaths(session.root())) {
        document[name] = jsonText(path.toNativeString());
        const std::string label = std::string(name) + ":";
        text += label + std::string(18 - label.size(), ' ') + path.toNativeString() + "\n";
    }
    session.console().resultSoFar(document);
    if (mCreate)
        session.host();
    session.console().result(document, text);
    return ExitStatus::Done;
}
