#include "apps/common/HashFile.h"

#include <exception>
#include <sstream>

#include "apps/common/TextFile.h"

namespace {

fileString hashFileIn(const fileString& folder)
{
    return folder / fileString("catalog_hash.txt");
}

/// The name of a line that holds exactly one name and one hash; empty for any other line.
std::string nameOf(const std::string& line)
{
    const std::size_t colon = line.find(':');
    const bool isEntry = colon != std::string::npos && colon > 0 && colon + 1 < line.size() &&
                         line.find(':', colon + 1) == std::string::npos;
    return isEntry ? line.substr(0, colon) : std::string();
}

} // namespace

namespace HashFile {

std::map<std::string, std::string> read(const fileString& folder)
{
    std::map<std::string, std::string> entries;
    try {
        std::istringstream text(TextFile::read(hashFileIn(folder)));
        for (std::string line; std::getline(text, line) && !line.empty();) {
            const std::string name = nameOf(line);
            if (!name.empty())
                entries[name] = line.substr(name.size() + 1);
        }
    } catch (const std::exception&) {
        // what cannot be read lists nothing
    }
    return entries;
}

bool remove(const fileString& folder, const std::string& name)
{
    try {
        std::istringstream text(TextFile::read(hashFileIn(folder)));
        std::string kept;
        bool isFound = false;
        for (std::string line; std::getline(text, line);) {
            const bool isIt = nameOf(line) == name;
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

} // namespace HashFile
