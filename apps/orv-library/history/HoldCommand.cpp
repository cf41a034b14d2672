#include "apps/orv-library/history/HoldCommand.h"

#include <QJsonArray>

#include "OrvHost/history/CatalogPins.h"
#include "OrvHost/history/VersionRestore.h"
#include "apps/orv-library/Session.h"

using OrvHost::CatalogPins;
using OrvHost::CatalogPlace;

namespace {

const char* const kNameHelp = "File name of a catalog, or its name without extension";

QJsonObject document(const std::vector<std::string>& names)
{
    QJsonArray held;
    for (const std::string& name : names)
        held.append(jsonText(name));
    return {{"held", held}};
}

void printHeld(Session& session, const std::vector<std::string>& names)
{
    std::string text;
    for (const std::string& name : names)
        text += name + "\n";
    session.console().result(document(names), names.empty() ? "No catalog is held.\n" : "Held:\n" + text);
}

/// All installed files, and those that are held but not installed.
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
    session.console().resultSoFar(document(names));
    CatalogPins::change(session.existingHost().root(), [&](CatalogPins& pins) {
        session.console().resultSoFar(document(pins.heldNames()));
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
    session.console().resultSoFar(document(names));
    CatalogPins::change(session.existingHost().root(), [&](CatalogPins& pins) {
        session.console().resultSoFar(document(pins.heldNames()));
        pins.release(OrvHost::CatalogPlaces::find(mName, knownPlaces(pins)));
        names = pins.heldNames();
    });
    printHeld(session, names);
    return ExitStatus::Done;
}
