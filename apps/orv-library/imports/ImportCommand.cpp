#include "apps/orv-library/imports/ImportCommand.h"

#include <algorithm>

#include <QJsonArray>

#include "OrvLibrary/host/Curl.h"
#include "apps/orv-library/Session.h"
#include "apps/orv-library/console/ConsoleProgress.h"
#include "apps/orv-library/console/Interrupt.h"
#include "apps/orv-library/update/ServiceOptions.h"

namespace {

using OrvHost::ArchiveImport;
using Results = std::vector<ArchiveImport::Result>;

QJsonValue document(const fileString& path)
{
    return path.empty() ? QJsonValue() : QJsonValue(jsonText(path.toNativeString()));
}

QJsonObject document(const ArchiveImport::Result& result)
{
    return {{"source", jsonText(result.source)},
            {"library", document(result.library)},
            {"textures", document(result.textures)},
            {"replaces", result.replaces},
            {"added", static_cast<qint64>(result.added)},
            {"replaced", static_cast<qint64>(result.replaced)},
            {"error", result.error.empty() ? QJsonValue() : QJsonValue(jsonText(result.error))}};
}

bool isAddress(const std::string& source)
{
    return Curl::get().downloadable(source);
}

void applyNetworkSettings(const fileString& root)
{
    ServiceOptions options;
    options.complete(OrvHost::Settings::load(root));
    options.apply();
}

bool isFailed(const ArchiveImport::Result& result)
{
    return !result.error.empty() && !result.isCancelled;
}

/// The complete document. It has its own reason if a failure prevented all work.
QJsonObject document(const Results& results, bool isDryRun)
{
    QJsonArray imports;
    for (const ArchiveImport::Result& result : results)
        imports.append(document(result));
    const bool isOne = results.size() == 1;
    QJsonObject document{{"library", isOne ? imports[0].toObject()["library"] : QJsonValue()},
                         {"textures", isOne ? imports[0].toObject()["textures"] : QJsonValue()},
                         {"imports", imports}};
    if (isDryRun)
        document["dryRun"] = true;
    if (!results.empty() && std::all_of(results.begin(), results.end(), isFailed))
        document["error"] = isOne ? jsonText(results[0].error) : QString("no library was imported");
    return document;
}

std::string counted(std::size_t count, const std::string& what)
{
    return std::to_string(count) + (count == 1 ? " file " : " files ") + what;
}

std::string text(const ArchiveImport::Result& result)
{
    std::string text;
    if (!result.library.empty())
        text += "Library: " + result.library.toNativeString() + "\n";
    if (result.replaces)
        text += "  replaces the former one, which is kept as " + result.library.toNativeString() + ".bak\n";
    if (!result.textures.empty())
        text += "Textures: " + result.textures.toNativeString() + "\n  " + counted(result.added, "added, ") +
                counted(result.replaced, "replaced") + "\n";
    if (!result.setAside.empty())
        text += "  the damaged archive is kept as " + result.setAside.toNativeString() + "\n";
    return text;
}

std::string text(const Results& results, bool isDryRun)
{
    std::string all;
    for (const ArchiveImport::Result& result : results)
        all += text(result);
    if (all.empty())
        return {};
    return isDryRun ? "Nothing was changed. An import would give:\n" + all
                    : all + "To go back: orv-library undo\n";
}

} // namespace

void ImportCommand::declare(CommandSyntax& syntax)
{
    syntax.arguments("SOURCE", mSources, "The archives: paths or http addresses",
                     CommandSyntax::Presence::Required);
    syntax.flag("--proprietary", mIsProprietary, "A manufacturer's library");
    syntax.flag("--dry-run", mIsDryRun, "Show what would be imported, replaced and added; change nothing");
    syntax.flag("--set-aside", mSetsAside,
                "Keep a damaged texture archive as NAME.zip.damaged, and continue\nwith its sound files");
    syntax.flag("--no-database-check", mSkipsDatabaseCheck, "Accept a library whose database is not one");
    syntax.runs([this](Session& session) { return run(session); });
}

ExitStatus ImportCommand::run(Session& session) const
{
    session.console().resultSoFar(document({ArchiveImport::Result()}, mIsDryRun));
    mIsDryRun ? session.rootlessHost() : session.host();
    const Interrupt interrupt;
    const Results results = importAll(session);
    session.console().result(document(results, mIsDryRun), text(results, mIsDryRun));
    complain(results);
    Interrupt::setEndStatus(status(results));
    return status(results);
}

Results ImportCommand::importAll(Session& session) const
{
    if (std::any_of(mSources.begin(), mSources.end(), isAddress))
        applyNetworkSettings(session.root());
    Results results;
    for (const std::string& source : mSources)
        results.push_back(importOne(session, source));
    return results;
}

ArchiveImport::Result ImportCommand::importOne(Session& session, const std::string& source) const
{
    ProgressReporter reporter(session.options().progress);
    const auto progress = std::make_shared<ConsoleProgress>(reporter);
    ArchiveImport::Options options;
    options.isProprietary = mIsProprietary;
    options.checksDatabase = !mSkipsDatabaseCheck;
    options.setsAside = mSetsAside;
    const ArchiveImport import(session.root(), options);
    return mIsDryRun ? import.plan(source, progress) : import.run(source, progress);
}

void ImportCommand::complain(const std::vector<Result>& results) const
{
    for (const Result& result : results) {
        if (result.isCancelled)
            Console::complain(result.source + ": interrupted, nothing of it was imported");
        else if (!result.error.empty())
            Console::complain(result.error);
        if (!result.damaged.empty())
            Console::complain("to keep that archive aside and go on with its sound files, add --set-aside");
    }
}

ExitStatus ImportCommand::status(const std::vector<Result>& results) const
{
    if (std::any_of(results.begin(), results.end(), [](const Result& each) { return each.isCancelled; }))
        return ExitStatus::Interrupted;
    return std::any_of(results.begin(), results.end(), isFailed) ? ExitStatus::Failed : ExitStatus::Done;
}
