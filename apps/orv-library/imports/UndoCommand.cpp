#include "apps/orv-library/imports/UndoCommand.h"

#include "OrvHost/imports/ImportUndo.h"
#include "apps/orv-library/Session.h"

namespace {

using OrvHost::ImportUndo;

QJsonValue document(const fileString& path)
{
    return path.empty() ? QJsonValue() : QJsonValue(jsonText(path.toNativeString()));
}

QJsonObject document(const ImportUndo::Import& import)
{
    return {{"library", document(import.library)}, {"textures", document(import.textures)}};
}

std::string text(const std::string& label, const fileString& path)
{
    if (path.empty())
        return {};
    return label + path.toNativeString() + (path.pathExists() ? " is as before\n" : " is gone again\n");
}

} // namespace

void UndoCommand::declare(CommandSyntax& syntax)
{
    syntax.runs([](Session& session) { return run(session); });
}

ExitStatus UndoCommand::run(Session& session)
{
    session.console().resultSoFar(document(ImportUndo::Import()));
    ImportUndo undo(session.existingHost().root());
    const ImportUndo::Import import = undo.run();
    session.console().result(document(import), "Took back the import of " + import.name + ".\n" +
                                                   text("Library: ", import.library) +
                                                   text("Textures: ", import.textures));
    return ExitStatus::Done;
}
