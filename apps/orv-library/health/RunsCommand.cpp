#include "apps/orv-library/health/RunsCommand.h"

#include <QJsonArray>

#include "OrvHost/update/RunRecords.h"
#include "apps/orv-library/Session.h"

namespace {

std::string number(const QJsonValue& value)
{
    return std::to_string(static_cast<std::int64_t>(value.toDouble()));
}

std::string lineOf(const QJsonObject& run)
{
    return number(run["number"]) + "  " + run["start"].toString().toStdString() + "  " +
           run["kind"].toString().toStdString() + "  " + run["outcome"].toString().toStdString() + ": " +
           number(run["asked"]) + " asked, " + number(run["fetched"]) + " fetched, " + number(run["bytes"]) +
           " bytes\n";
}

std::string details(const QJsonObject& run)
{
    std::string lines = lineOf(run);
    for (const QJsonValue entry : run["catalogs"].toArray()) {
        const QJsonObject catalog = entry.toObject();
        lines += "  " + catalog["name"].toString().toStdString() + ": " +
                 catalog["state"].toString().toStdString() + ", " + number(catalog["bytes"]) + " bytes, " +
                 number(catalog["ms"]) + " ms\n";
    }
    for (const QJsonValue entry : run["failed"].toArray()) {
        const QJsonObject failure = entry.toObject();
        lines += "  failed: " + failure["catalog"].toString("the content index").toStdString() + ": " +
                 failure["reason"].toString().toStdString() + "\n";
    }
    return lines;
}

/// The document for an unknown run.
QJsonObject unknownRun(std::int64_t number)
{
    QJsonObject run{{"number", static_cast<qint64>(number)}};
    for (const char* member : {"start", "end", "kind", "outcome", "asked", "fetched", "bytes"})
        run[member] = QJsonValue();
    for (const char* member : {"failed", "catalogs"})
        run[member] = QJsonArray();
    return run;
}

} // namespace

void RunsCommand::declare(CommandSyntax& syntax)
{
    syntax.runs(list);
    CommandSyntax& one = syntax.optionalAction("show", "Print one run with its catalogs");
    one.argument("N", mNumber, "Number of the run");
    one.runs([this](Session& session) { return show(session); });
}

ExitStatus RunsCommand::list(Session& session)
{
    session.console().resultSoFar({{"runs", QJsonArray()}});
    const QJsonArray runs = OrvHost::RunRecords::list(session.existingHost().root());
    std::string lines;
    for (const QJsonValue run : runs)
        lines += lineOf(run.toObject());
    session.console().result({{"runs", runs}}, lines.empty() ? "There were no runs.\n" : lines);
    return ExitStatus::Done;
}

ExitStatus RunsCommand::show(Session& session) const
{
    session.console().resultSoFar(unknownRun(mNumber));
    const QJsonObject run = OrvHost::RunRecords::show(session.existingHost().root(), mNumber);
    session.console().result(run, details(run));
    return ExitStatus::Done;
}
