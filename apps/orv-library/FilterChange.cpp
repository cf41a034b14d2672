#include "apps/orv-library/FilterChange.h"

#include <algorithm>
#include <filesystem>
#include <set>

#include <unistd.h>

#include "OrvLibrary/host/FileUtils.h"
#include "OrvLibrary/host/PathUtils.h"
#include "apps/orv-library/Command.h"

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

void keepUnreadable(const fileString& path)
{
    const fileString copy = freeNameBeside(path);
    if (!FileUtils::copyFile(path, copy, false))
        throw CommandFailure("cannot keep the unreadable filter file as " + copy.toNativeString());
    Console::complain(path.toNativeString() + " cannot be read as a whole; it is kept as " +
                      copy.toNativeString());
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
        throw CommandFailure("cannot read " + path.toNativeString());
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

FilterChange::FilterChange(Session& session, const fileString& other)
    : mHost(session.host()),
      mLocks(lockFolders(other)),
      mFilters(LibraryFilterManager::getLibraryFilterManager())
{
    demandLoaded(mFilters);
}

void FilterChange::save()
{
    const fileString path = mFilters.getFilterFullname();
    prepareToOverwrite(path);
    // Not the manager's own way of saving, which keeps an empty list back and does not say whether it worked.
    if (!LibraryFilterManager::saveFiltersToFile(path, mFilters.getLibraryFilters(),
                                                 mFilters.getCurrentFilterId()))
        throw CommandFailure("cannot write " + path.toNativeString());
    mFilters.loadFilters();
}

void FilterChange::prepareToOverwrite(const fileString& path)
{
    if (!FileUtils::canWriteFile(path))
        throw CommandFailure("cannot write " + path.toNativeString());
    if (path.pathExists() && !LibraryFilterManager::isWhollyReadable(path))
        keepUnreadable(path);
}
