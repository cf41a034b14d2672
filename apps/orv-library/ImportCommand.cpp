#include "apps/orv-library/ImportCommand.h"

#include "OrvLibrary/host/FileUtils.h"
#include "OrvLibrary/host/PathUtils.h"
#include "apps/orv-library/ConsoleProgress.h"
#include "apps/orv-library/Interrupt.h"
#include "apps/orv-library/LibrarySource.h"
#include "apps/orv-library/Session.h"

namespace {

QJsonValue document(const fileString& path)
{
    return path.empty() ? QJsonValue() : QJsonValue(jsonText(path.toNativeString()));
}

std::string text(const std::string& label, const fileString& path)
{
    return path.empty() ? std::string() : label + path.toNativeString() + "\n";
}

} // namespace

void ImportCommand::declare(CommandSyntax& syntax)
{
    syntax.argument("SOURCE", mSource, "The archive: a path or an http address");
    syntax.flag("--proprietary", mProprietary, "A manufacturer's library");
    syntax.runs([this](Session& session) { return run(session); });
}

ExitStatus ImportCommand::run(Session& session) const
{
    session.host();
    const Interrupt interrupt;
    Placed placed;
    try {
        placed = place(session);
    } catch (const CommandFailure&) {
        // What fails because of a signal is no failure.
        if (!Interrupt::requested())
            throw;
    }
    session.console().result({{"library", document(placed.library)}, {"textures", document(placed.textures)}},
                             text("Library: ", placed.library) + text("Textures: ", placed.textures));
    if (!placed.library.empty() || !placed.textures.empty())
        return ExitStatus::Done;
    if (Interrupt::requested())
        return ExitStatus::Interrupted;
    Console::complain(mSource + ": holds neither a library nor referenced files");
    return ExitStatus::Failed;
}

ImportCommand::Placed ImportCommand::place(Session& session) const
{
    const fileString library = libraryPath();
    ProgressReporter reporter(session.options().progress);
    const auto progress = std::make_shared<ConsoleProgress>(reporter);
    const std::unique_ptr<UnpackedFiles> files = LibrarySource(mSource).unpack(progress);
    // The files that a library refers to are there before the library is.
    Placed placed;
    placed.textures = placeTextures(files->found.second, library, progress);
    placed.library = placeDatabase(files->found.first, library);
    return placed;
}

fileString ImportCommand::libraryPath() const
{
    const PathUtils& paths = PathUtils::getObject();
    const fileString folder =
        mProprietary ? paths.getManufacturerLibraryPath() : paths.getUserLibraryDatabasePath();
    return folder + LibrarySource(mSource).stem() + fileString(".orvlib");
}

fileString ImportCommand::placeTextures(const LibraryImport::FoundFile& referenced, const fileString& library,
                                        const std::shared_ptr<ProgressSubject>& progress) const
{
    if (!referenced.first)
        return {};
    const fileString textures = LibraryImport::getArchivedTexturePath(library, mProprietary);
    if (!LibraryImport::moveArchivedTextures(referenced.second, textures, progress))
        throw CommandFailure(textures.toNativeString() + ": the textures cannot be put there");
    return textures;
}

/// The former library is copied aside first, so that the name always stands for a whole library.
fileString ImportCommand::placeDatabase(const LibraryImport::FoundFile& database, const fileString& library)
{
    if (!database.first)
        return {};
    const fileString backup = library + fileString(".bak");
    if (library.pathExists() && !FileUtils::copyFile(library, backup, true))
        throw CommandFailure(backup.toNativeString() + ": the former library cannot be kept there");
    FileUtils::setFilePermission(database.second);
    moveOver(database.second, library);
    return library;
}
