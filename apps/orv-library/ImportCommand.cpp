#include "apps/orv-library/ImportCommand.h"

#include "OrvHost/imports/ArchiveImport.h"
#include "apps/orv-library/ConsoleProgress.h"
#include "apps/orv-library/Interrupt.h"
#include "apps/orv-library/Session.h"

namespace {

QJsonValue document(const fileString& path)
{
    return path.empty() ? QJsonValue() : QJsonValue(jsonText(path.toNativeString()));
}

QJsonObject document(const OrvHost::ArchiveImport::Result& result)
{
    return {{"library", document(result.library)}, {"textures", document(result.textures)}};
}

std::string text(const std::string& label, const fileString& path)
{
    return path.empty() ? std::string() : label + path.toNativeString() + "\n";
}

/// What fails because of a signal before anything is in place is no failure, and gives nothing.
OrvHost::ArchiveImport::Result importUninterrupted(Session& session, const std::string& source,
                                                   bool isProprietary)
{
    ProgressReporter reporter(session.options().progress);
    OrvHost::ArchiveImport::Result result;
    try {
        OrvHost::ArchiveImport::run(source, isProprietary, std::make_shared<ConsoleProgress>(reporter),
                                    result);
    } catch (const std::runtime_error&) {
        session.console().resultSoFar(document(result));
        if (!Interrupt::requested() || !result.textures.empty())
            throw;
    }
    return result;
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
    session.console().resultSoFar(document(OrvHost::ArchiveImport::Result()));
    session.host();
    const Interrupt interrupt;
    const OrvHost::ArchiveImport::Result result = importUninterrupted(session, mSource, mProprietary);
    session.console().result(document(result),
                             text("Library: ", result.library) + text("Textures: ", result.textures));
    if (!result.library.empty() || !result.textures.empty())
        return ExitStatus::Done;
    if (Interrupt::requested())
        return ExitStatus::Interrupted;
    Console::complain(mSource + ": holds neither a library nor referenced files");
    return ExitStatus::Failed;
}
