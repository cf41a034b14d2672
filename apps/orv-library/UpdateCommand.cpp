#include "apps/orv-library/UpdateCommand.h"

#include <QEventLoop>
#include <QSocketNotifier>

#include "OrvHost/health/ErrorLogReader.h"
#include "OrvLibrary/IO/ErrorLog.h"
#include "apps/orv-library/Interrupt.h"
#include "apps/orv-library/Session.h"
#include "apps/orv-library/UpdateDocument.h"
#include "apps/orv-library/UpdateHost.h"

namespace {

constexpr std::int64_t kMostRetries = 100;

/// A name that the service is asked for and that becomes a file directly in the folder.
bool isCatalogName(const std::string& name)
{
    const fileString file(name);
    return name.find('/') == std::string::npos && file.extension() == fileString(".orvlib");
}

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

/// The first line that the run added to the error log, and where there is more.
std::string logText(std::size_t formerEntries)
{
    const fileString file = Library::ErrorLog::file();
    const std::vector<OrvHost::ErrorLogEntry> entries = OrvHost::ErrorLogReader::readIfPossible(file);
    // A log that was not written for a week starts anew when something is written to it.
    const std::size_t first = formerEntries < entries.size() ? formerEntries : 0;
    if (first >= entries.size())
        return {};
    return "; " + firstLine(entries[first].message) + " (more in " + file.toNativeString() + ")";
}

/// Runs the event loop until the worker has ended and all its invocations were delivered.
void waitForEnd(OrvHost::CatalogUpdateRun& update, UpdateHost& host)
{
    const Interrupt interrupt;
    QEventLoop loop;
    QObject::connect(&update, &OrvHost::CatalogUpdateRun::finished, &loop, &QEventLoop::quit);
    update.start(host);
    // From here on, because a cancel before the updater was made has no effect on it.
    QSocketNotifier notifier(interrupt.descriptor(), QSocketNotifier::Read);
    QObject::connect(&notifier, &QSocketNotifier::activated, &notifier, [&notifier] {
        notifier.setEnabled(false);
        OrvHost::CatalogUpdateRun::cancel();
    });
    loop.exec();
}

} // namespace

void UpdateCommand::declare(CommandSyntax& syntax)
{
    using Presence = CommandSyntax::Presence;
    syntax.option("--url", mUrl, "REDIRECT", "Address that redirects to the web service", Presence::Required);
    syntax.option("--product", mProduct, "P",
                  "Product that the service is told; otherwise the program's name");
    syntax.option("--product-version", mProductVersion, "V",
                  "Version that the service is told; otherwise the program's own");
    syntax.option("--retries", mRetries, "N", "Ask again up to N times where a request fails; otherwise 3");
    syntax.option("--cacert", mAccess.certificates, "FILE",
                  "Trust the authorities in FILE (PEM); otherwise the system's");
    syntax.option("--proxy", mAccess.proxy, "URL", "Use this proxy; otherwise what the environment says");
    syntax.option("--limit-rate", mAccess.limitRate, "BYTES", "Receive at most so many bytes a second");
    syntax.flag("--no-database-check", mNoDatabaseCheck, "Take catalogs that are no databases");
    syntax.flag("--core-only", mCoreOnly, "Leave bonus and manufacturer catalogs alone");
    syntax.option("--index", mIndex, "NAME",
                  std::string("Core content index; otherwise ") + OrvHost::AppHost::kDefaultContentIndex);
    syntax.list("--bonus", mBonus, "NAME", "One more bonus catalog, NAME.orvlib; may be repeated");
    syntax.list("--manufacturer", mManufacturer, "NAME",
                "One more manufacturer catalog, NAME.orvlib; may be repeated");
    syntax.runs([this](Session& session) { return run(session); });
}

void UpdateCommand::checkValues() const
{
    for (const std::vector<std::string>* names : {&mBonus, &mManufacturer}) {
        for (const std::string& name : *names) {
            if (!isCatalogName(name))
                throw UsageError("'" + name + "' is not a file name that ends in .orvlib");
        }
    }
    if (mRetries < 0 || mRetries > kMostRetries)
        throw UsageError("--retries takes a number from 0 to " + std::to_string(kMostRetries));
    if (mAccess.limitRate < 0)
        throw UsageError("--limit-rate takes a number of bytes a second, or 0 for no limit");
}

OrvHost::CatalogUpdateRun::Request UpdateCommand::request() const
{
    OrvHost::CatalogUpdateRun::Request request;
    request.url = mUrl;
    request.product = mProduct;
    request.productVersion = mProductVersion;
    request.coreOnly = mCoreOnly;
    request.bonus = mBonus;
    request.manufacturer = mManufacturer;
    request.checksDatabases = !mNoDatabaseCheck;
    request.retries = static_cast<int>(mRetries);
    request.access = mAccess;
    return request;
}

ExitStatus UpdateCommand::run(Session& session)
{
    checkValues();
    session.console().resultSoFar(failureDocument());
    OrvHost::AppHost& appHost = session.host();
    if (!mIndex.empty())
        appHost.setContentIndexName(mIndex);
    OrvHost::CatalogUpdateRun update(request());
    InvocationTrace trace(session.options().traceFile);
    ProgressReporter progress(session.options().progress);
    UpdateHost host(progress, trace, update.swapper());
    const std::size_t formerLogEntries =
        OrvHost::ErrorLogReader::readIfPossible(Library::ErrorLog::file()).size();
    waitForEnd(update, host);
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
    std::string complaint = UpdateDocument::complaint(outcome, mUrl);
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
    return outcome.isGood() ? ExitStatus::Done : ExitStatus::Failed;
}
