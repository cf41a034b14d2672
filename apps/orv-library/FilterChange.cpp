#include "apps/orv-library/FilterChange.h"

#include <algorithm>

#include "OrvLibrary/host/FileUtils.h"
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

} // namespace

FilterChange::FilterChange(Session& session)
    : mHost(session.host()), mLock("filters"), mFilters(LibraryFilterManager::getLibraryFilterManager())
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
