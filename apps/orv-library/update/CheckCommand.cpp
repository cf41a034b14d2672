#include "apps/orv-library/update/CheckCommand.h"

#include <charconv>

#include <QJsonArray>
#include <QStringList>

#include "apps/orv-library/Session.h"
#include "apps/orv-library/console/ByteText.h"
#include "apps/orv-library/console/Interrupt.h"
#include "apps/orv-library/console/RunLoop.h"

namespace {

constexpr std::int64_t kMostHours = 1000000;

/// The number in "24" or "24h".
std::int64_t hoursOf(std::string text)
{
    const std::string given = text;
    if (!text.empty() && text.back() == 'h')
        text.pop_back();
    std::int64_t hours = 0;
    const auto read = std::from_chars(text.data(), text.data() + text.size(), hours);
    if (text.empty() || read.ec != std::errc() || read.ptr != text.data() + text.size() || hours < 0 ||
        hours > kMostHours)
        throw UsageError("--max-age: '" + given + "' is no number of hours");
    return hours;
}

std::string lineOf(const QJsonObject& catalog, bool isExplained)
{
    const QJsonValue bytes = catalog["bytes"];
    std::string line =
        catalog["name"].toString().toStdString() + ": " + catalog["state"].toString().toStdString();
    if (!bytes.isNull())
        line += ", " + byteText(bytes.toDouble());
    if (isExplained)
        line += " (" + catalog["why"].toString().toStdString() + ")";
    return line + "\n";
}

std::string readable(const QJsonObject& document, bool isExplained)
{
    std::string lines;
    int waiting = 0;
    for (const QJsonValue entry : document["catalogs"].toArray()) {
        const QJsonObject catalog = entry.toObject();
        const QString state = catalog["state"].toString();
        waiting += state == "new" || state == "missing" ? 1 : 0;
        if (isExplained || state != "current")
            lines += lineOf(catalog, isExplained);
    }
    if (document["outcome"] == "current")
        return lines + "Everything is current.\n";
    return lines + std::to_string(waiting) + (waiting == 1 ? " catalog waits, " : " catalogs wait, ") +
           byteText(document["bytes"].toDouble()) + " in all; " + byteText(document["free"].toDouble()) +
           " are free.\n";
}

/// Why the check in a stored document is incomplete: "Doors.orvlib: HTTP 500".
std::string complaintOf(const QJsonObject& document)
{
    if (document.contains("error"))
        return document["error"].toString().toStdString();
    QStringList reasons;
    for (const QJsonValue entry : document["catalogs"].toArray()) {
        const QJsonObject catalog = entry.toObject();
        if (catalog["state"] == "unknown")
            reasons << catalog["name"].toString() + ": " + catalog["why"].toString();
    }
    return reasons.join("; ").toStdString();
}

/// The document of a check that could not begin.
QJsonObject failureDocument()
{
    return OrvHost::CheckOutcome().document();
}

} // namespace

void CheckCommand::declare(CommandSyntax& syntax)
{
    mOptions.declare(syntax);
    syntax.flag("--explain", mExplain, "List every catalog with the reason");
    syntax.flag("--quiet", mQuiet, "Print nothing, or one line if the check is incomplete");
    syntax.option("--max-age", mMaxAge, "H", "Repeat the last result if it is less than H hours old");
    syntax.runs([this](Session& session) { return run(session); });
}

ExitStatus CheckCommand::run(Session& session)
{
    session.console().resultSoFar(failureDocument());
    if (!mMaxAge.empty())
        mMaxAgeHours = hoursOf(mMaxAge);
    mOptions.complete(OrvHost::Settings::load(session.root()));
    session.requireRoot();
    const auto last = OrvHost::LastCheck::load(session.root());
    if (last && isFresh(*last)) {
        QJsonObject document = last->document;
        document["asked"] = false;
        return print(session, document, last->exitStatus, complaintOf(document));
    }
    mOptions.requireAddress();
    return ask(session);
}

/// A time in the future does not count.
bool CheckCommand::isFresh(const OrvHost::LastCheck& last) const
{
    const qint64 seconds = last.time.secsTo(QDateTime::currentDateTimeUtc());
    return mMaxAgeHours >= 0 && seconds >= 0 && seconds < mMaxAgeHours * 3600;
}

ExitStatus CheckCommand::ask(Session& session)
{
    OrvHost::AppHost& appHost = session.existingHost();
    if (!mOptions.index().empty())
        appHost.setContentIndexName(mOptions.index());
    mOptions.apply();
    OrvHost::CatalogUpdateRun::Request request = mOptions.request();
    request.onlyChecks = true;
    OrvHost::CatalogUpdateRun check(request);
    InvocationTrace trace(session.options().traceFile);
    ProgressReporter progress(mQuiet ? ProgressMode::None : session.options().progress);
    UpdateHost host(progress, trace, check.swapper());
    RunLoop::run(check, host);
    const bool isCancelled = Interrupt::requested();
    const OrvHost::CheckOutcome found = check.finishCheck(isCancelled, appHost.root());
    if (isCancelled) {
        session.console().resultSoFar(found.document());
        session.console().failure("cancelled");
        return ExitStatus::Interrupted;
    }
    return print(session, found.document(), found.exitStatus(), found.complaint());
}

ExitStatus CheckCommand::print(Session& session, const QJsonObject& document, int exitStatus,
                               const std::string& complaint) const
{
    session.console().result(document, mQuiet ? std::string() : readable(document, mExplain));
    if (exitStatus == static_cast<int>(ExitStatus::Failed) && !(mQuiet && session.options().json))
        Console::complain(complaint.empty() ? "not every catalog could be checked" : complaint);
    return static_cast<ExitStatus>(exitStatus);
}
