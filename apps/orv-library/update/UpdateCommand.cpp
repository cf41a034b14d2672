#include "apps/orv-library/update/UpdateCommand.h"

#include "OrvHost/health/ErrorLogReader.h"
#include "OrvLibrary/IO/ErrorLog.h"
#include "apps/orv-library/Session.h"
#include "apps/orv-library/console/RunLoop.h"
#include "apps/orv-library/update/UpdateDocument.h"
#include "apps/orv-library/update/UpdateHost.h"

namespace {

/// The document of a run that could not begin.
QJsonObject failureDocument()
{
    OrvHost::UpdateOutcome outcome;
    outcome.kind = OrvHost::UpdateOutcome::Kind::Failed;
    return UpdateDocument::document(outcome);
}

std::string firstLine(const std::string& text)
{
    return text.substr(0, text.find('\n'));
}

/// The first line that the run added to the error log, and the path of the log if there are more.
std::string logText(std::size_t formerEntries)
{
    const fileString file = Library::ErrorLog::file();
    const std::vector<OrvHost::ErrorLogEntry> entries = OrvHost::ErrorLogReader::readIfPossible(file);
    // If the log was not written for a week, the next entry begins a new log.
    const std::size_t first = formerEntries < entries.size() ? formerEntries : 0;
    if (first >= entries.size())
        return {};
    return "; " + firstLine(entries[first].message) + " (more in " + file.toNativeString() + ")";
}

} // namespace

void UpdateCommand::declare(CommandSyntax& syntax)
{
    mOptions.declare(syntax);
    syntax.runs([this](Session& session) { return run(session); });
}

ExitStatus UpdateCommand::run(Session& session)
{
    session.console().resultSoFar(failureDocument());
    mOptions.complete(OrvHost::Settings::load(session.root()));
    mOptions.requireAddress();
    OrvHost::AppHost& appHost = session.host();
    if (!mOptions.index().empty())
        appHost.setContentIndexName(mOptions.index());
    mOptions.apply();
    OrvHost::CatalogUpdateRun update(mOptions.request());
    InvocationTrace trace(session.options().traceFile);
    ProgressReporter progress(session.options().progress);
    UpdateHost host(progress, trace, update.swapper());
    const std::size_t formerLogEntries =
        OrvHost::ErrorLogReader::readIfPossible(Library::ErrorLog::file()).size();
    RunLoop::run(update, host);
    const OrvHost::UpdateOutcome outcome = update.finish(host.outcome(), appHost.root());
    for (const std::string& note : outcome.notes)
        Console::complain(note);
    return report(session, outcome, formerLogEntries);
}

ExitStatus UpdateCommand::report(Session& session, const OrvHost::UpdateOutcome& outcome,
                                 std::size_t formerLogEntries) const
{
    using Kind = OrvHost::UpdateOutcome::Kind;
    const QJsonObject document = UpdateDocument::document(outcome);
    std::string complaint = UpdateDocument::complaint(outcome, mOptions.values().url);
    if (outcome.kind == Kind::Failed) {
        if (outcome.failed.empty())
            complaint += logText(formerLogEntries);
        session.console().resultSoFar(document);
        session.console().failure(complaint);
        return ExitStatus::Failed;
    }
    session.console().result(document, UpdateDocument::text(outcome));
    if (!complaint.empty())
        Console::complain(complaint);
    if (outcome.kind == Kind::Cancelled)
        return ExitStatus::Interrupted;
    if (outcome.kind == Kind::Waiting)
        return ExitStatus::UpdatesWait;
    return outcome.isGood() ? ExitStatus::Done : ExitStatus::Failed;
}
