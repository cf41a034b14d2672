#include "apps/orv-library/HoldCommand.h"

#include <QJsonArray>

#include "OrvHost/history/CatalogPins.h"
#include "OrvHost/history/VersionRestore.h"
#include "apps/orv-library/Session.h"

using OrvHost::CatalogPins;
using OrvHost::CatalogPlace;

namespace {

const char* const kNameHelp = "File name of a catalog, or its name without extension";

void printHeld(Session& session, const std::vector<std::string>& names)
{
    QJsonArray held;
    std::string text;
    for (const std::string& name : names) {
        held.append(jsonText(name));
        text += name + "\n";
    }
    session.console().result({{"held", held}}, names.empty() ? "No catalog is held.\n" : "Held:\n" + text);
}

/// What is installed, and what is held although it is not.
std::vector<CatalogPlace> knownPlaces(const CatalogPins& pins)
{
    std::vector<CatalogPlace> places = OrvHost::CatalogPlaces::installed();
    for (const auto& [place, held] : pins.held()) {
        if (!place.path().pathExists())
            places.push_back(place);
    }
    return places;
}

} // namespace

void HoldCommand::declare(CommandSyntax& syntax)
{
    syntax.argument("NAME", mName, kNameHelp);
    syntax.runs([this](Session& session) { return run(session); });
}

ExitStatus HoldCommand::run(Session& session) const
{
    std::vector<std::string> names;
    CatalogPins::change(session.existingHost().root(), [&](CatalogPins& pins) {
        const CatalogPlace place = OrvHost::CatalogPlaces::find(mName, OrvHost::CatalogPlaces::installed());
        if (!pins.isHeld(place))
            pins.hold(place, {OrvHost::VersionRestore::versionInPlace(place), ""});
        names = pins.heldNames();
    });
    printHeld(session, names);
    return ExitStatus::Done;
}

void ReleaseCommand::declare(CommandSyntax& syntax)
{
    syntax.argument("NAME", mName, kNameHelp);
    syntax.runs([this](Session& session) { return run(session); });
}

ExitStatus ReleaseCommand::run(Session& session) const
{
    std::vector<std::string> names;
    CatalogPins::change(session.existingHost().root(), [&](CatalogPins& pins) {
        pins.release(OrvHost::CatalogPlaces::find(mName, knownPlaces(pins)));
        names = pins.heldNames();
    });
    printHeld(session, names);
    return ExitStatus::Done;
}
