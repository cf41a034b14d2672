#include "OrvHost/history/HistoryFolder.h"

#include <filesystem>

namespace OrvHost::HistoryFolder {

namespace fs = std::filesystem;

bool isRegularFile(const fileString& file)
{
    std::error_code error;
    return fs::is_regular_file(file.toNativeString(), error);
}

bool isSameFile(const fileString& left, const fileString& right)
{
    std::error_code error;
    return fs::equivalent(left.toNativeString(), right.toNativeString(), error) && !error;
}

std::vector<fileString> namesIn(const fileString& folder)
{
    std::vector<fileString> names;
    std::error_code error;
    fs::directory_iterator entry(folder.toNativeString(), error);
    for (; !error && entry != fs::directory_iterator(); entry.increment(error))
        names.emplace_back(entry->path().native());
    return names;
}

} // namespace OrvHost::HistoryFolder
