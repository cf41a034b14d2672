#include "apps/orv-library/imports/PackCommand.h"

#include <algorithm>
#include <filesystem>
#include <set>

#include "OrvHost/health/DatabaseCheck.h"
#include "OrvHost/imports/LibrarySource.h"
#include "OrvLibrary/host/FileUtils.h"
#include "apps/catalog-service/ZipWriter.h"
#include "apps/orv-library/Session.h"
#include "apps/orv-library/console/ConsoleProgress.h"
#include "apps/orv-library/console/Interrupt.h"

namespace {

constexpr const char* kDatabaseExtension = ".orvlib";
constexpr std::int64_t kLargestFile = 0xFFFFFFFE; // the limit of the archive writer for one member
constexpr std::size_t kMostMembers = 65534;       // and for the number of members

std::string memberName(const std::string& path)
{
    return fileString(path).stemWithExtension().toNativeString();
}

/// Why later updates would fail for a file with this name; empty if they would not. The name appears without
/// escapes in addresses and in lines "name:tag".
std::string nameRefusal(const std::string& name)
{
    if (name.empty() || name == "." || name == "..")
        return "has no file name";
    if (QString::fromUtf8(name.c_str()).toUtf8().toStdString() != name)
        return "the name is not UTF-8, which an archive cannot hold";
    const std::size_t bad = name.find_first_of(":&#+%");
    if (bad != std::string::npos)
        return std::string("the name holds \"") + name[bad] + "\", which an update cannot fetch";
    const auto isControl = [](char c) { return (c >= 0 && c < 0x20) || c == 0x7F; };
    if (std::any_of(name.begin(), name.end(), isControl))
        return "the name holds a control character, which an update cannot fetch";
    return {};
}

std::string contentRefusal(const std::string& path)
{
    std::error_code error;
    const std::filesystem::file_status status = std::filesystem::status(path, error);
    if (!std::filesystem::exists(status))
        return "no such file";
    if (!std::filesystem::is_regular_file(status))
        return "is not a regular file";
    const std::int64_t size = FileUtils::fileSize(fileString(path));
    if (size < 1)
        return "is empty, which an update takes for a failed download";
    return size > kLargestFile ? "is larger than 4 GB" : std::string();
}

std::string refusal(const std::string& path)
{
    const std::string reason = nameRefusal(memberName(path));
    return reason.empty() ? contentRefusal(path) : reason;
}

} // namespace

void PackCommand::declare(CommandSyntax& syntax)
{
    syntax.argument("DATABASE", mDatabase, "The library database, NAME.orvlib");
    syntax.arguments("FILE", mFiles, "The files that the library refers to");
    syntax.option("--output", mOutput, "OUT.orvlibz", "The archive to write",
                  CommandSyntax::Presence::Required);
    syntax.flag("--no-database-check", mSkipsDatabaseCheck, "Pack a library even if its database is not one");
    syntax.runs([this](Session& session) { return run(session); });
}

ExitStatus PackCommand::run(Session& session) const
{
    if (fileString(mOutput).extension() != fileString(".orvlibz"))
        throw UsageError("the archive's name must end in .orvlibz");
    session.console().resultSoFar({{"archive", QJsonValue()}, {"members", 0}, {"bytes", 0}});
    const Interrupt interrupt;
    try {
        pack(session);
    } catch (const std::exception&) {
        if (!Interrupt::requested())
            throw;
        session.console().result({{"archive", QJsonValue()}, {"members", 0}, {"bytes", 0}}, {});
        Console::complain(mOutput + ": interrupted, nothing was written");
        return ExitStatus::Interrupted;
    }
    const fileString archive = OrvHost::absolutePath(fileString(mOutput));
    const auto members = static_cast<qint64>(inputs().size());
    const auto bytes = static_cast<qint64>(FileUtils::fileSize(archive));
    session.console().result(
        {{"archive", jsonText(archive.toNativeString())}, {"members", members}, {"bytes", bytes}},
        "Packed " + std::to_string(members) + " files into " + archive.toNativeString() + ".\n");
    return ExitStatus::Done;
}

void PackCommand::pack(Session& session) const
{
    ProgressReporter reporter(session.options().progress);
    ConsoleProgress progress(reporter);
    const std::vector<std::string> reasons = refusals();
    if (!reasons.empty()) {
        for (std::size_t i = 0; i + 1 < reasons.size(); ++i)
            Console::complain(reasons[i]);
        throw CommandFailure(reasons.back());
    }
    progress.updateLabels("checking", {});
    requireDatabase();
    progress.updateLabels("packing", {});
    progress.createSubProgress(totalBytes());
    ZipWriter writer(mOutput);
    writer.setProgress([&](std::uint64_t bytes) {
        progress.advanceBytes(bytes);
        if (Interrupt::requested())
            throw CommandFailure("interrupted");
    });
    for (const std::string& path : inputs()) {
        progress.increment(memberName(path), {});
        writer.addFile(memberName(path), path);
    }
    progress.updateLabels("putting in place", {});
    writer.close();
}

void PackCommand::requireDatabase() const
{
    using namespace OrvHost;
    if (mSkipsDatabaseCheck)
        return;
    const std::string problem = DatabaseCheck::problemOf(fileString(mDatabase), DatabaseCheck::kLimit,
                                                         [] { return Interrupt::requested(); });
    if (Interrupt::requested() || !problem.empty())
        throw CommandFailure(mDatabase + ": " + problem);
}

std::uint64_t PackCommand::totalBytes() const
{
    std::uint64_t total = 0;
    for (const std::string& path : inputs())
        total += static_cast<std::uint64_t>(FileUtils::fileSize(fileString(path)));
    return total;
}

std::vector<std::string> PackCommand::inputs() const
{
    std::vector<std::string> paths{mDatabase};
    paths.insert(paths.end(), mFiles.begin(), mFiles.end());
    return paths;
}

/// All reasons not to pack, one line each.
std::vector<std::string> PackCommand::refusals() const
{
    std::vector<std::string> reasons;
    const auto refuse = [&](const std::string& path, const std::string& reason) {
        if (!reason.empty())
            reasons.push_back(path + ": " + reason);
    };
    refuse(mOutput, nameRefusal(memberName(mOutput)));
    if (fileString(mDatabase).extension() != fileString(kDatabaseExtension))
        refuse(mDatabase, "the name of a library ends in .orvlib");
    std::set<std::string> names;
    for (const std::string& path : inputs()) {
        refuse(path, refusal(path));
        if (!names.insert(memberName(path)).second)
            refuse(path, "another file has the same name");
        if (OrvHost::absolutePath(fileString(path)) == OrvHost::absolutePath(fileString(mOutput)))
            refuse(path, "is the archive itself");
    }
    for (const std::string& path : mFiles) {
        if (fileString(path).extension() == fileString(kDatabaseExtension))
            refuse(path, "an archive holds one library only");
    }
    if (names.size() > kMostMembers)
        refuse(mOutput, "more than 65,534 files");
    return reasons;
}
