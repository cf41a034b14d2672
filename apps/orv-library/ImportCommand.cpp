#include "apps/orv-library/ImportCommand.h"

#include "apps/common/ArchiveImport.h"
#include "apps/orv-library/ConsoleProgress.h"
#include "apps/orv-library/Interrupt.h"
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

/// What fails because of a signal is no failure, and gives nothing.
ArchiveImport::Result importUninterrupted(const std::string& source, bool isProprietary, ProgressMode mode)
{
    ProgressReporter reporter(mode);
    try {
        return ArchiveImport::run(source, isProprietary, std::make_shared<ConsoleProgress>(reporter));
    } catch (const std::runtime_error&) {
        if (!Interrupt::requested())
            throw;
        return {};
    }
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
    const ArchiveImport::Result result =
        importUninterrupted(mSource, mProprietary, session.options().progress);
    session.console().result({{"library", document(result.library)}, {"textures", document(result.textures)}},
                             text("Library: ", result.library) + text("Textures: ", result.textures));
    if (!result.library.empty() || !result.textures.empty())
        return ExitStatus::Done;
    if (Interrupt::requested())
        return ExitStatus::Interrupted;
    Console::complain(mSource + ": holds neither a library nor referenced files");
    return ExitStatus::Failed;
}
