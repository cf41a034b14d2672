#include "OrvHost/update/HashFile.h"

#include <algorithm>
#include <exception>
#include <sstream>
#include <vector>

#include "OrvHost/TextFile.h"
#include "OrvLibrary/host/StringUtils.h"

namespace OrvHost {

namespace {

fileString hashFileIn(const fileString& folder)
{
    return folder / fileString("catalog_hash.txt");
}

/// Splits a line into name and hash, as the library does. Empty if the line is not exactly that.
std::vector<std::string> entryOf(const std::string& line)
{
    std::vector<std::string> pieces;
    tokenizeString(line, ':', pieces);
    return pieces.size() == 2 ? pieces : std::vector<std::string>();
}

bool isOf(const std::string& name, const std::string& line)
{
    const std::vector<std::string> entry = entryOf(line);
    return !entry.empty() && entry[0] == name;
}

} // namespace

namespace HashFile {

std::map<std::string, std::string> readOrThrow(const fileString& folder)
{
    std::map<std::string, std::string> entries;
    if (!hashFileIn(folder).pathExists())
        return entries;
    std::istringstream text(TextFile::read(hashFileIn(folder)));
    for (std::string line; std::getline(text, line) && !line.empty();) {
        const std::vector<std::string> entry = entryOf(line);
        if (!entry.empty())
            entries[entry[0]] = entry[1];
    }
    return entries;
}

std::map<std::string, std::string> read(const fileString& folder)
try {
    return readOrThrow(folder);
} catch (const std::exception&) {
    return {};
}

bool remove(const fileString& folder, const std::string& name)
{
    try {
        std::istringstream text(TextFile::read(hashFileIn(folder)));
        std::string kept;
        bool isFound = false;
        for (std::string line; std::getline(text, line);) {
            const bool isIt = isOf(name, line);
            isFound |= isIt;
            if (!isIt)
                kept += line + "\n";
        }
        if (isFound)
            TextFile::write(hashFileIn(folder), kept);
        return isFound;
    } catch (const std::exception&) {
        return false;
    }
}

void set(const fileString& folder, const std::string& name, const std::string& hash)
{
    std::vector<std::string> lines;
    if (hashFileIn(folder).pathExists()) {
        std::istringstream text(TextFile::read(hashFileIn(folder)));
        for (std::string line; std::getline(text, line) && !line.empty();) {
            if (!isOf(name, line))
                lines.push_back(line);
        }
    }
    const auto next = std::find_if(lines.begin(), lines.end(), [&](const std::string& line) {
        const std::vector<std::string> entry = entryOf(line);
        return !entry.empty() && name < entry[0];
    });
    lines.insert(next, name + ":" + hash);
    std::string content;
    for (const std::string& line : lines)
        content += line + "\n";
    TextFile::write(hashFileIn(folder), content);
}

} // namespace HashFile

} // namespace OrvHost
