#include "apps/orv-library/UnpackCommand.h"

#include <filesystem>

#include "apps/common/LibrarySource.h"
#include "apps/orv-library/ConsoleProgress.h"
#include "apps/orv-library/Interrupt.h"
#include "apps/orv-library/Session.h"

namespace {

QJsonObject document(const LibraryImport::FoundFile& file)
{
    const bool found = file.first;
    return {{"found", found},
            {"path", found ? QJsonValue(jsonText(file.second.toNativeString())) : QJsonValue()}};
}

std::string text(const std::string& label, const LibraryImport::FoundFile& file)
{
    return file.first ? label + file.second.toNativeString() + "\n" : std::string();
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

ExitStatus UnpackCommand::run(Session& session) const
{
    session.host();
    if (mBeside && LibrarySource(mSource).isAddress())
        throw UsageError("--beside needs a local archive");
    // Beside itself, such an archive would be one of its own results.
    const std::string extension = fileString(mSource).extension().toNativeString();
    if (mBeside && (extension == ".zip" || extension == ".orvlib"))
        throw UsageError("--beside cannot unpack an archive whose name ends in " + extension);

    const Interrupt interrupt;
    LibraryImport::UnpackResult result = unpackUninterrupted(session);
    result.first.second = absolutePath(result.first.second);
    result.second.second = absolutePath(result.second.second);
    session.console().result({{"library", document(result.first)}, {"referenced", document(result.second)}},
                             text("Library: ", result.first) + text("Referenced files: ", result.second));
    if (Interrupt::requested() && !result.first.first && !result.second.first)
        return ExitStatus::Interrupted;
    if (result.first.first || result.second.first)
        return ExitStatus::Done;
    Console::complain(mSource + ": holds neither a library nor referenced files");
    return ExitStatus::Failed;
}

/// What fails because of a signal is no failure, and gives nothing.
LibraryImport::UnpackResult UnpackCommand::unpackUninterrupted(Session& session) const
{
    ProgressReporter reporter(session.options().progress);
    const auto progress = std::make_shared<ConsoleProgress>(reporter);
    try {
        return mBeside ? LibrarySource(mSource).unpackBeside(progress) : unpackInto(mOutputFolder, progress);
    } catch (const std::runtime_error&) {
        if (!Interrupt::requested())
            throw;
        return {};
    }
}

LibraryImport::UnpackResult UnpackCommand::unpackInto(const std::string& folder,
                                                      const std::shared_ptr<ProgressSubject>& progress) const
{
    requireFolder(folder);
    const LibrarySource source(mSource);
    const fileString target = fileString(folder) / source.stem();
    const std::unique_ptr<UnpackedFiles> files = source.unpack(progress);
    LibraryImport::UnpackResult result = files->found;
    if (result.second.first) {
        moveOver(result.second.second, target + fileString(".zip"));
        result.second.second = target + fileString(".zip");
    }
    if (result.first.first) {
        moveOver(result.first.second, target + fileString(".orvlib"));
        result.first.second = target + fileString(".orvlib");
    }
    return result;
}
