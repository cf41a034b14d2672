#include "apps/orv-library/health/LogCommand.h"

#include <QDateTime>
#include <QJsonArray>

#include "OrvHost/health/ErrorLogReader.h"
#include "OrvLibrary/host/FileUtils.h"
#include "OrvLibrary/host/PathUtils.h"
#include "apps/orv-library/Session.h"

namespace {

fileString logFile(Session& session)
{
    session.console().resultSoFar({{"path", QJsonValue()}, {"entries", QJsonArray()}});
    session.existingHost();
    return PathUtils::getObject().getUserLibraryDatabasePath() + fileString("errors.log");
}

/// Converts a time of the log, which is UTC without saying so: "2026-11-21 03:35:12". Other texts stay
/// unchanged.
QString documentTime(const std::string& logTime)
{
    QDateTime time = QDateTime::fromString(jsonText(logTime), "yyyy-MM-dd HH:mm:ss");
    time.setTimeSpec(Qt::UTC);
    return time.isValid() ? time.toString(Qt::ISODate) : jsonText(logTime);
}

QJsonObject document(const fileString& path, const std::vector<OrvHost::ErrorLogEntry>& entries)
{
    QJsonArray array;
    for (const OrvHost::ErrorLogEntry& entry : entries) {
        array.append(QJsonObject{{"time", documentTime(entry.time)},
                                 {"thread", jsonText(entry.thread)},
                                 {"message", jsonText(entry.message)}});
    }
    return {{"path", jsonText(path.toNativeString())}, {"entries", array}};
}

std::string indented(const std::string& text)
{
    std::string result = "    ";
    for (const char character : text)
        result += character == '\n' ? std::string("\n    ") : std::string(1, character);
    return result;
}

std::string readable(const fileString& path, const std::vector<OrvHost::ErrorLogEntry>& entries)
{
    if (entries.empty())
        return "The error log is empty: " + path.toNativeString() + "\n";
    std::string text;
    for (const OrvHost::ErrorLogEntry& entry : entries)
        text += entry.time + "  thread " + entry.thread + "\n" + indented(entry.message) + "\n";
    return text;
}

} // namespace

void LogCommand::declare(CommandSyntax& syntax)
{
    syntax.action("show", "Print the entries of the error log, oldest first").runs(show);
    syntax.action("path", "Print the path of the error log").runs(path);
    syntax.action("clear", "Remove the error log, whatever its age").runs(clear);
}

ExitStatus LogCommand::show(Session& session)
{
    const fileString file = logFile(session);
    const std::vector<OrvHost::ErrorLogEntry> entries = OrvHost::ErrorLogReader::read(file);
    session.console().result(document(file, entries), readable(file, entries));
    return ExitStatus::Done;
}

ExitStatus LogCommand::path(Session& session)
{
    const fileString file = logFile(session);
    session.console().result(document(file, OrvHost::ErrorLogReader::read(file)),
                             file.toNativeString() + "\n");
    return ExitStatus::Done;
}

ExitStatus LogCommand::clear(Session& session)
{
    const fileString file = logFile(session);
    const bool isThere = file.pathExists();
    if (!FileUtils::removePath(file, 1))
        throw CommandFailure("cannot remove " + file.toNativeString());
    session.console().result(document(file, {}), (isThere ? "Removed " : "There is no error log: ") +
                                                     file.toNativeString() + "\n");
    return ExitStatus::Done;
}
