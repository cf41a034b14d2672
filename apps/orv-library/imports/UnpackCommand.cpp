#include "apps/orv-library/imports/UnpackCommand.h"

#include <filesystem>

#include "OrvHost/imports/LibrarySource.h"
#include "apps/orv-library/Session.h"
#include "apps/orv-library/console/Console.h"
#include "apps/orv-library/console/ConsoleProgress.h"
#include "apps/orv-library/console/Interrupt.h"

namespace {

QJsonObject document(const LibraryImport::FoundFile& file)
{
    const bool found = file.first;
    return {{"found", found},
            {"path", found ? QJsonValue(jsonText(OrvHost::absolutePath(file.second).toNativeString()))
                           : QJsonValue()}};
}

QJsonObject document(const LibraryImport::UnpackResult& result)
{
    return {{"library", document(result.first)}, {"referenced", document(result.second)}};
}

std::string text(const std::string& label, const LibraryImport::FoundFile& file)
{
    return file.first ? label + OrvHost::absolutePath(file.second).toNativeString() + "\n" : std::string();
}

void requireFolder(const std::string& folder)
{
    std::error_code error;
    if (!std::filesystem::is_directory(folder, error))
        throw CommandFailure(folder + ": no such folder");
}

} // namespace

void UnpackCommand::declare(CommandSyntax& syntax)
{
    syntax.argument("SOURCE", mSource, "The archive: a path or an http address");
    syntax.flag("--beside", mBeside, "Write next to the archive, under its name");
    syntax.option("--output-dir", mOutputFolder, "DIR", "Write into this folder (default: the current one)");
    syntax.exclusive("--beside", "--output-dir");
    syntax.runs([this](Session& session) { return run(session); });
}

/// Refuses an archive whose own name is that of a result.
void UnpackCommand::requireOtherFile(const fileString& target) const
{
    std::error_code error;
    if (std::filesystem::equivalent(mSource, target.toNativeString(), error))
        throw CommandFailure(mSource + ": is the archive itself, which a result would replace");
}

void UnpackCommand::checkUsage() const
{
    if (mBeside && OrvHost::LibrarySource(mSource).isAddress())
        throw UsageError("--beside needs a local archive");
    // With such a name, the archive would be replaced by its own content.
    const std::string extension = fileString(mSource).extension().toNativeString();
    if (mBeside && (extension == ".zip" || extension == ".orvlib"))
        throw UsageError("--beside cannot unpack an archive whose name ends in " + extension);
}

ExitStatus UnpackCommand::run(Session& session) const
{
    checkUsage();
    session.console().resultSoFar(document(LibraryImport::UnpackResult()));
    session.rootlessHost();
    const Interrupt interrupt;
    const LibraryImport::UnpackResult result = unpackUninterrupted(session);
    const bool isEmpty = !result.first.first && !result.second.first;
    const std::string left = Interrupt::requested() ? std::string() : leftBeside(result);
    if (isEmpty && !left.empty())
        throw CommandFailure(left);
    if (!left.empty())
        Console::complain(left);
    if (isEmpty && !Interrupt::requested())
        throw CommandFailure(mSource + ": holds neither a library nor referenced files");
    session.console().result(document(result),
                             text("Library: ", result.first) + text("Referenced files: ", result.second));
    const ExitStatus status = isEmpty ? ExitStatus::Interrupted : ExitStatus::Done;
    Interrupt::setEndStatus(status);
    return status;
}

/// Names the files beside the archive that are still there though they were not found: the library leaves a
/// file that cannot be written. Empty if there is none.
std::string UnpackCommand::leftBeside(const LibraryImport::UnpackResult& result) const
{
    std::string names;
    const auto look = [&](const LibraryImport::FoundFile& file, const char* extension) {
        const fileString beside = fileString(mSource).pathAndName() + fileString(extension);
        if (mBeside && !file.first && beside.pathExists())
            names += (names.empty() ? "" : " and ") + beside.toNativeString();
    };
    look(result.first, ".orvlib");
    look(result.second, ".zip");
    return names.empty() ? names : names + ": cannot be written and was left as it was";
}

/// If a signal made it fail, returns an empty result instead of a failure.
LibraryImport::UnpackResult UnpackCommand::unpackUninterrupted(Session& session) const
{
    ProgressReporter reporter(session.options().progress);
    const auto progress = std::make_shared<ConsoleProgress>(reporter);
    try {
        if (!mBeside)
            return unpackInto(session, progress);
        progress->updateLabels("reading", {});
        return OrvHost::LibrarySource(mSource).unpackBeside(progress);
    } catch (const std::runtime_error&) {
        if (!Interrupt::requested())
            throw;
        return {};
    }
}

LibraryImport::UnpackResult UnpackCommand::unpackInto(Session& session,
                                                      const std::shared_ptr<ProgressSubject>& progress) const
{
    requireFolder(mOutputFolder);
    OrvHost::LibrarySource source(mSource);
    const fileString target = fileString(mOutputFolder) / source.stem();
    for (const char* extension : {".zip", ".orvlib"})
        requireOtherFile(target + fileString(extension));
    if (source.isAddress())
        progress->updateLabels("downloading", {});
    source.fetch(progress);
    progress->updateLabels("reading", {});
    const std::unique_ptr<OrvHost::UnpackedFiles> files = source.unpack(progress);
    progress->updateLabels("putting in place", {});
    LibraryImport::UnpackResult result;
    const auto place = [&](const LibraryImport::FoundFile& from, const char* extension,
                           LibraryImport::FoundFile& to) {
        if (!from.first)
            return;
        OrvHost::moveOver(from.second, target + fileString(extension));
        to = {true, target + fileString(extension)};
        session.console().resultSoFar(document(result));
    };
    place(files->found.second, ".zip", result.second);
    place(files->found.first, ".orvlib", result.first);
    return result;
}
