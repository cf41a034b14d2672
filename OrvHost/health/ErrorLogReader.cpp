#include "OrvHost/health/ErrorLogReader.h"

#include <stdexcept>

#include "OrvHost/TextFile.h"

namespace OrvHost {

namespace {

constexpr const char* kStart = "---\nTime: ";
constexpr const char* kThread = "Thread ID: ";
constexpr const char* kMessage = "Message: |\n";
constexpr const char* kEnd = "...\n";

/// Takes the next line from `text`, without its line break.
std::string takeLine(std::string& text)
{
    const std::size_t end = text.find('\n');
    std::string line = text.substr(0, end);
    text.erase(0, end == std::string::npos ? end : end + 1);
    return line;
}

bool takePrefix(std::string& text, const std::string& prefix)
{
    const bool present = text.compare(0, prefix.size(), prefix) == 0;
    if (present)
        text.erase(0, prefix.size());
    return present;
}

void dropEnding(std::string& text, const std::string& ending)
{
    const bool present =
        text.size() >= ending.size() && text.compare(text.size() - ending.size(), ending.size(), ending) == 0;
    if (present)
        text.erase(text.size() - ending.size());
}

/// @param text everything from the start of an entry to the start of the next one
ErrorLogEntry parseEntry(std::string text)
{
    ErrorLogEntry entry;
    entry.time = takeLine(text);
    if (takePrefix(text, kThread))
        entry.thread = takeLine(text);
    takePrefix(text, kMessage);
    dropEnding(text, kEnd);
    dropEnding(text, "\n");
    entry.message = text;
    return entry;
}

/// A message may contain lines that look like the start of an entry. They count only after the end of an
/// entry.
std::size_t findNextStart(const std::string& text, std::size_t from)
{
    const std::size_t position = text.find(std::string(kEnd) + kStart, from);
    return position == std::string::npos ? position : position + std::string(kEnd).size();
}

} // namespace

std::vector<ErrorLogEntry> ErrorLogReader::parse(const std::string& text)
{
    std::vector<ErrorLogEntry> entries;
    std::size_t start = text.find(kStart);
    while (start != std::string::npos) {
        const std::size_t next = findNextStart(text, start);
        const std::size_t body = start + std::string(kStart).size();
        entries.push_back(parseEntry(text.substr(body, next == std::string::npos ? next : next - body)));
        start = next;
    }
    return entries;
}

std::vector<ErrorLogEntry> ErrorLogReader::read(const fileString& path)
{
    if (!path.pathExists())
        return {};
    return parse(TextFile::read(path));
}

std::vector<ErrorLogEntry> ErrorLogReader::readIfPossible(const fileString& path)
try {
    return read(path);
} catch (const std::runtime_error&) {
    return {};
}

} // namespace OrvHost
