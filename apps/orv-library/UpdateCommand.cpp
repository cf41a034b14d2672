#include "apps/orv-library/UpdateCommand.h"

#include <QEventLoop>
#include <QJsonArray>
#include <QSocketNotifier>

#include "OrvHost/health/ErrorLogReader.h"
#include "OrvLibrary/IO/ErrorLog.h"
#include "OrvLibrary/host/SQL.h"
#include "apps/orv-library/Interrupt.h"
#include "apps/orv-library/Session.h"
#include "apps/orv-library/UpdateHost.h"

using namespace LibraryCatalogUpdate;

namespace {

/// A name that the service is asked for and that becomes a file directly in the folder.
bool isCatalogName(const std::string& name)
{
    const fileString file(name);
    return name.find('/') == std::string::npos && file.extension() == fileString(".orvlib");
}

std::string messageText(std::int32_t code)
{
    switch (code) {
    case kMessageDownloadCancelled:
        return "a download stalled or was cancelled";
    case kMessageNoEndpoint:
        return "the catalog web service was not found";
    case kMessageInstallationFailed:
        return "a new catalog could not be installed";
    default:
        return "not every catalog could be checked or fetched";
    }
}

std::string firstLine(const std::string& text)
{
    return text.substr(0, text.find('\n'));
}

const char* outcomeName(const UpdateHost& host, const OrvHost::CatalogSwapper& swapper)
{
    if (!host.outcome())
        return "cancelled";
    const std::int32_t result = host.outcome()->result;
    if (result == kResultFailed || result == kResultCoreFailed || !swapper.failed().empty())
        return "failed";
    return result == kResultUpdated ? "updated" : "current";
}

QJsonObject document(const UpdateHost& host, const OrvHost::CatalogSwapper& swapper)
{
    QJsonArray updated;
    if (host.outcome()) {
        for (const std::string& name : host.outcome()->updatedCatalogs)
            updated.append(jsonText(SQL::to_utf8(name)));
    }
    QJsonArray swappedIn;
    for (const fileString& destination : swapper.swappedIn())
        swappedIn.append(jsonText(destination.toNativeString()));
    return {{"outcome", outcomeName(host, swapper)},
            {"result", host.outcome() ? QJsonValue(host.outcome()->result) : QJsonValue()},
            {"messageCode", host.outcome()
                                ? QJsonValue(jsonText(messageCodeText(host.outcome()->messageCode)))
                                : QJsonValue()},
            {"updatedCatalogs", updated},
            {"swappedIn", swappedIn}};
}

/// Of a run that could not begin.
QJsonObject failureDocument()
{
    return {{"outcome", "failed"},
            {"result", QJsonValue()},
            {"messageCode", QJsonValue()},
            {"updatedCatalogs", QJsonArray()},
            {"swappedIn", QJsonArray()}};
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

std::string readable(const UpdateHost& host)
{
    if (!host.outcome())
        return "Cancelled.\n";
    const std::set<std::string>& names = host.outcome()->updatedCatalogs;
    if (names.empty())
        return host.outcome()->result == kResultCurrent ? "Everything is current.\n"
                                                        : "Nothing was updated.\n";
    std::string text =
        "Updated " + std::to_string(names.size()) + (names.size() == 1 ? " catalog:\n" : " catalogs:\n");
    for (const std::string& name : names)
        text += "  " + SQL::to_utf8(name) + "\n";
    return text;
}

} // namespace

void UpdateCommand::declare(CommandSyntax& syntax)
{
    using Presence = CommandSyntax::Presence;
    syntax.option("--url", mUrl, "REDIRECT", "Address that redirects to the web service", Presence::Required);
    syntax.option("--product", mProduct, "P", "Product that the service is told", Presence::Required);
    syntax.option("--product-version", mProductVersion, "V", "Version that the service is told",
                  Presence::Required);
    syntax.flag("--no-database-check", mNoDatabaseCheck, "Take catalogs that are no databases");
    syntax.flag("--core-only", mCoreOnly, "Leave bonus and manufacturer catalogs alone");
    syntax.option("--index", mIndex, "NAME",
                  std::string("Core content index; otherwise ") + OrvHost::AppHost::kDefaultContentIndex);
    syntax.list("--bonus", mBonus, "NAME", "One more bonus catalog, NAME.orvlib; may be repeated");
    syntax.list("--manufacturer", mManufacturer, "NAME",
                "One more manufacturer catalog, NAME.orvlib; may be repeated");
    syntax.runs([this](Session& session) { return run(session); });
}

void UpdateCommand::checkNames() const
{
    for (const std::vector<std::string>* names : {&mBonus, &mManufacturer}) {
        for (const std::string& name : *names) {
            if (!isCatalogName(name))
                throw UsageError("'" + name + "' is not a file name that ends in .orvlib");
        }
    }
}

OrvHost::CatalogUpdateRun::Request UpdateCommand::request() const
{
    return {mUrl, mProduct, mProductVersion, mCoreOnly, mBonus, mManufacturer, !mNoDatabaseCheck};
}

ExitStatus UpdateCommand::run(Session& session)
{
    checkNames();
    session.console().resultSoFar(failureDocument());
    OrvHost::AppHost& appHost = session.host();
    if (!mIndex.empty())
        appHost.setContentIndexName(mIndex);
    OrvHost::CatalogUpdateRun update(request());
    InvocationTrace trace(session.options().traceFile);
    ProgressReporter progress(session.options().progress);
    UpdateHost host(progress, trace, update.swapper());
    const std::size_t formerLogEntries = OrvHost::ErrorLogReader::read(Library::ErrorLog::file()).size();
    waitForEnd(update, host);
    const std::string outcome = outcomeName(host, update.swapper());
    for (const std::string& problem :
         update.finish(outcome != "cancelled" && outcome != "failed", appHost.root()))
        Console::complain(problem);
    return report(session, host, update.swapper(), formerLogEntries);
}

ExitStatus UpdateCommand::report(Session& session, const UpdateHost& host,
                                 const OrvHost::CatalogSwapper& swapper, std::size_t formerLogEntries) const
{
    session.console().result(document(host, swapper), readable(host));
    const std::string outcome = outcomeName(host, swapper);
    if (outcome == "cancelled")
        return ExitStatus::Interrupted;
    if (outcome != "failed")
        return ExitStatus::Done;
    Console::complain("update from " + (mUrl.empty() ? "no address" : mUrl) +
                      " failed: " + failureReason(host, swapper, formerLogEntries));
    return ExitStatus::Failed;
}

std::string UpdateCommand::failureReason(const UpdateHost& host, const OrvHost::CatalogSwapper& swapper,
                                         std::size_t formerLogEntries) const
{
    if (!swapper.failed().empty())
        return swapper.failed().front().destination.stemWithExtension().toNativeString() + ": " +
               swapper.failed().front().reason;
    std::string reason = messageText(host.outcome()->messageCode);
    const fileString logFile = Library::ErrorLog::file();
    const std::vector<OrvHost::ErrorLogEntry> entries = OrvHost::ErrorLogReader::read(logFile);
    // A log that has gone a week without being written starts anew when something is written to it.
    const std::size_t first = formerLogEntries < entries.size() ? formerLogEntries : 0;
    if (first < entries.size())
        reason += "; " + firstLine(entries[first].message) + " (more in " + logFile.toNativeString() + ")";
    return reason;
}
