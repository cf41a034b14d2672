#include "OrvHost/records/FilterChange.h"

#include <algorithm>
#include <filesystem>
#include <set>
#include <stdexcept>

#include <unistd.h>

#include "OrvLibrary/host/FileUtils.h"
#include "OrvLibrary/host/PathUtils.h"

namespace OrvHost {

namespace {

/// A name beside `path` that nothing has yet.
fileString freeNameBeside(const fileString& path)
{
    const fileString name = path + fileString(".unreadable");
    fileString candidate = name;
    for (int n = 2; candidate.pathExists(); ++n)
        candidate = name + fileString("." + std::to_string(n));
    return candidate;
}

fileString keepUnreadable(const fileString& path)
{
    const fileString copy = freeNameBeside(path);
    if (!FileUtils::copyFile(path, copy, false))
        throw std::runtime_error("cannot keep the unreadable filter file as " + copy.toNativeString());
    return copy;
}

bool areEqual(const LibraryFilter& left, const LibraryFilter& right)
{
    return left.getFilterId() == right.getFilterId() && left.getFilterName() == right.getFilterName() &&
           left.getDatabaseIds() == right.getDatabaseIds();
}

/// The manager does not say whether it could read its file; reading the file once more does.
void demandLoaded(const LibraryFilterManager& manager)
{
    const fileString path = manager.getFilterFullname();
    std::vector<LibraryFilter> filters;
    const long current = LibraryFilterManager::loadFiltersFromFile(path, filters);
    const std::vector<LibraryFilter>& loaded = manager.getLibraryFilters();
    if (current != manager.getCurrentFilterId() ||
        !std::equal(filters.begin(), filters.end(), loaded.begin(), loaded.end(), areEqual))
        throw std::runtime_error("cannot read " + path.toNativeString());
}

/// The folder without links, so that each has one name.
std::string resolved(const fileString& folder)
{
    std::error_code failure;
    const std::string name = folder.empty() ? "." : folder.toNativeString();
    return std::filesystem::weakly_canonical(name, failure).string();
}

/// Locks the folder of the filters, and that of the other file; in the order of their names, since a program
/// of another root may want the same two. One that cannot be written needs no lock: nothing will be changed.
std::vector<std::unique_ptr<ChangeLock>> lockFolders(const fileString& other)
{
    std::set<std::string> folders{resolved(PathUtils::getObject().getCoreLibraryDatabasePath())};
    if (!other.empty())
        folders.insert(resolved(other.parentPath()));
    std::vector<std::unique_ptr<ChangeLock>> locks;
    for (const std::string& folder : folders) {
        if (access(folder.c_str(), W_OK) == 0)
            locks.push_back(std::make_unique<ChangeLock>(fileString(folder), "filters"));
    }
    return locks;
}

} // namespace

FilterChange::FilterChange(const fileString& other)
    : mLocks(lockFolders(other)), mFilters(LibraryFilterManager::getLibraryFilterManager())
{
    demandLoaded(mFilters);
}

fileString FilterChange::save()
{
    const fileString path = mFilters.getFilterFullname();
    const fileString copy = prepareToOverwrite(path);
    // Not the manager's own way of saving, which keeps an empty list back and does not say whether it worked.
    if (!LibraryFilterManager::saveFiltersToFile(path, mFilters.getLibraryFilters(),
                                                 mFilters.getCurrentFilterId()))
        throw std::runtime_error("cannot write " + path.toNativeString());
    mFilters.loadFilters();
    return copy;
}

fileString FilterChange::prepareToOverwrite(const fileString& path)
{
    if (!FileUtils::canWriteFile(path))
        throw std::runtime_error("cannot write " + path.toNativeString());
    if (path.pathExists() && !LibraryFilterManager::isWhollyReadable(path))
        return keepUnreadable(path);
    return {};
}

} // namespace OrvHost
