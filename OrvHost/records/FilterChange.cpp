// How it works: the constructor takes the locks and makes the filter manager read its file again, so that the
// change begins with what other programs have written. The operations change the manager's list in memory.
// `save` keeps a copy of a file that could not be read completely, writes the list and reads it back.
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

/// A free name beside `path`.
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

/// The first filter with this id; null if there is none.
const LibraryFilter* withId(const std::vector<LibraryFilter>& filters, long id)
{
    const auto found = std::find_if(filters.begin(), filters.end(),
                                    [id](const LibraryFilter& filter) { return filter.getFilterId() == id; });
    return found == filters.end() ? nullptr : &*found;
}

/// The manager does not report whether it could read its file, so the file is read once more.
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

/// The folder without links, so that each folder has one name.
std::string resolved(const fileString& folder)
{
    std::error_code failure;
    const std::string name = folder.empty() ? "." : folder.toNativeString();
    return std::filesystem::weakly_canonical(name, failure).string();
}

/// Locks the folder of the filters and that of the other file, in the order of their names, because another
/// program may want the same two. A folder that cannot be written needs no lock, because nothing in it will
/// change.
std::vector<HostLock> lockFolders(const fileString& other)
{
    std::set<std::string> folders{resolved(PathUtils::getObject().getCoreLibraryDatabasePath())};
    if (!other.empty())
        folders.insert(resolved(other.parentPath()));
    std::vector<HostLock> locks;
    for (const std::string& folder : folders) {
        if (access(folder.c_str(), W_OK) == 0)
            locks.push_back(HostLock::ofChange(fileString(folder), "filters"));
    }
    return locks;
}

} // namespace

FilterChange::FilterChange(const fileString& other)
    : mLocks(lockFolders(other)), mFilters(LibraryFilterManager::getLibraryFilterManager())
{
    // Another program may have changed the file since the manager read it.
    mFilters.loadFilters();
    demandLoaded(mFilters);
}

bool FilterChange::hasId(long id) const
{
    return withId(mFilters.getLibraryFilters(), id) != nullptr;
}

void FilterChange::demandId(long id) const
{
    if (!hasId(id))
        throw std::runtime_error("no filter has the id " + std::to_string(id) + ": " +
                                 mFilters.getFilterFullname().toNativeString());
}

void FilterChange::use(long id)
{
    if (id != kNoFilter)
        demandId(id);
    mFilters.setCurrentFilterId(id);
}

long FilterChange::add(const std::string& name, const std::vector<std::string>& databases,
                       std::optional<long> wantedId)
{
    if (wantedId && hasId(*wantedId))
        throw std::runtime_error("another filter has the id " + std::to_string(*wantedId));
    Filters filters = mFilters.getLibraryFilters();
    for (const LibraryFilter& filter : filters) {
        if (filter.getFilterName() == name)
            throw std::runtime_error("another filter has the name " + name + "; its id is " +
                                     std::to_string(filter.getFilterId()));
    }
    long id = wantedId.value_or(0);
    while (hasId(id))
        ++id;
    // The list is in the order of a load, with the newest filter first.
    filters.insert(filters.begin(), LibraryFilter(name, id, databases));
    mFilters.setLibraryFilters(filters);
    return id;
}

void FilterChange::remove(long id)
{
    demandId(id);
    Filters filters = mFilters.getLibraryFilters();
    filters.erase(std::find_if(filters.begin(), filters.end(),
                               [id](const LibraryFilter& filter) { return filter.getFilterId() == id; }));
    mFilters.setLibraryFilters(filters);
    if (mFilters.getCurrentFilterId() == id && !hasId(id))
        mFilters.setCurrentFilterId(kNoFilter);
}

std::size_t FilterChange::dropDatabase(const std::string& database)
{
    const auto entries = [this] {
        std::size_t count = 0;
        for (const LibraryFilter& filter : mFilters.getLibraryFilters())
            count += filter.getDatabaseIds().size();
        return count;
    };
    const std::size_t before = entries();
    // A file of which nothing could be read may still contain the database.
    const fileString path = mFilters.getFilterFullname();
    if (before == 0 && path.pathExists() && !LibraryFilterManager::isWhollyReadable(path))
        throw std::runtime_error("cannot read " + path.toNativeString());
    mFilters.removeIdFromLibraryFilters(database);
    return before - entries();
}

void FilterChange::apply(const Filters& before, const Filters& after)
{
    Filters filters;
    for (const LibraryFilter& filter : mFilters.getLibraryFilters()) {
        const LibraryFilter* const former = withId(before, filter.getFilterId());
        const LibraryFilter* const edited = withId(after, filter.getFilterId());
        if (!former || (edited && areEqual(*former, *edited)))
            filters.push_back(filter);
        else if (edited)
            filters.push_back(*edited);
    }
    for (LibraryFilter filter : after) {
        if (withId(before, filter.getFilterId()))
            continue;
        while (withId(filters, filter.getFilterId()))
            filter.setFilterId(filter.getFilterId() + 1);
        filters.push_back(filter);
    }
    mFilters.setLibraryFilters(filters);
    if (!hasId(mFilters.getCurrentFilterId()))
        mFilters.setCurrentFilterId(kNoFilter);
}

fileString FilterChange::save(Order order)
{
    const fileString path = mFilters.getFilterFullname();
    const fileString copy = prepareToOverwrite(path);
    Filters filters = mFilters.getLibraryFilters();
    // Loading reverses the list, so to keep its order, it is written in reverse.
    if (order == Order::Kept)
        std::reverse(filters.begin(), filters.end());
    // The manager's own save does not write an empty list and does not report failures.
    const long current = mFilters.getCurrentFilterId();
    if (!LibraryFilterManager::saveFiltersToFile(path, filters, current))
        throw std::runtime_error("cannot write " + path.toNativeString());
    mFilters.loadFilters();
    // The list in memory stays what was written, even if the file cannot be read at this moment.
    if (mFilters.getLibraryFilters().size() != filters.size()) {
        std::reverse(filters.begin(), filters.end());
        mFilters.setLibraryFilters(filters);
        mFilters.setCurrentFilterId(current);
    }
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

bool FilterChange::isFiltering(const LibraryFilterManager& filters)
{
    return filters.hasActiveFilter() && withId(filters.getLibraryFilters(), filters.getCurrentFilterId());
}

} // namespace OrvHost
