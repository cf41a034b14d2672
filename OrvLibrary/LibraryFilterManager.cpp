#include "OrvLibrary/LibraryFilterManager.h"

#include <algorithm>

#include "OrvLibrary/LibraryFilterMerge_p.h"
#include "OrvLibrary/host/PathUtils.h"
#include "OrvLibrary/host/StringTable.h"
#include "OrvLibrary/host/StringUtils.h"

LibraryFilterManager& LibraryFilterManager::getLibraryFilterManager()
{
    static LibraryFilterManager instance;
    return instance;
}

LibraryFilterManager::LibraryFilterManager()
{
    loadFilters();
}

void LibraryFilterManager::loadFilters()
{
    forgetCurrentDatabases();
    mFilters.clear();
    mCurrentFilterId = -1;
    try {
        mCurrentFilterId = loadFiltersFromFile(getFilterFullname(), mFilters);
    } catch (...) {
        // The host could not even name the file: no filters, as for an unreadable file.
    }
}

void LibraryFilterManager::saveFilters()
try {
    // Deliberate: removing the last filter does not change the file.
    // Kept by: LibraryFilterManagerTest.emptyListIsNotSaved
    if (!mFilters.empty())
        saveFiltersToFile(getFilterFullname(), mFilters, mCurrentFilterId);
} catch (...) {
    // Deliberate: no message. The file keeps its old content.
    // Kept by: LibraryFilterManagerTest.failureToSaveIsIgnoredButForTheMessage
}

marl::unicode::String LibraryFilterManager::getFilterFilename() const
{
    return "catalog_filters.json";
}

fileString LibraryFilterManager::getFilterFullname() const
{
    return PathUtils::getObject().getCoreLibraryDatabasePath() / fileString(getFilterFilename());
}

void LibraryFilterManager::setLibraryFilters(const std::vector<LibraryFilter>& filters)
{
    forgetCurrentDatabases();
    mFilters = filters;
}

void LibraryFilterManager::setCurrentFilterId(long id)
{
    forgetCurrentDatabases();
    mCurrentFilterId = id;
}

const LibraryFilter* LibraryFilterManager::currentFilter() const
{
    const auto filter =
        std::find_if(mFilters.begin(), mFilters.end(), [this](const LibraryFilter& candidate) {
            return candidate.getFilterId() == mCurrentFilterId;
        });
    return hasActiveFilter() && filter != mFilters.end() ? &*filter : nullptr;
}

LibraryFilter LibraryFilterManager::getLibraryFilterFromId(long id, const std::vector<LibraryFilter>& filters)
{
    const auto filter = std::find_if(filters.begin(), filters.end(), [id](const LibraryFilter& candidate) {
        return candidate.getFilterId() == id;
    });
    return filter != filters.end() ? *filter : LibraryFilter();
}

bool LibraryFilterManager::isFilteredDatabase(const std::string& databaseId) const
{
    // A browser asks about every catalog, so the ids are kept in a set until something changes.
    if (!mCurrentDatabases) {
        const LibraryFilter* const filter = currentFilter();
        const std::vector<std::string> none;
        const std::vector<std::string>& ids = filter ? filter->getDatabaseIds() : none;
        mCurrentDatabases = std::make_unique<const std::unordered_set<std::string>>(ids.begin(), ids.end());
    }
    return mCurrentDatabases->count(databaseId) > 0;
}

void LibraryFilterManager::forgetCurrentDatabases()
{
    mCurrentDatabases.reset();
}

std::vector<std::string> LibraryFilterManager::getCurrentFilteredDatabases() const
{
    return getLibraryFilterFromId(mCurrentFilterId, mFilters).getDatabaseIds();
}

void LibraryFilterManager::removeIdFromLibraryFilters(const std::string& databaseId)
{
    forgetCurrentDatabases();
    for (LibraryFilter& filter : mFilters)
        filter.removeDatabaseId(databaseId);
}

bool LibraryFilterManager::mergeFilters(const fileString& path)
try {
    std::vector<LibraryFilter> merged;
    long currentId = -1;
    const Reading reading = readFilters(path, merged, currentId);
    // A file that cannot be read now may still be intact, so it is not overwritten.
    if (reading == Reading::Impossible)
        tellThatFileCannotBeWritten(path);
    if (reading == Reading::Impossible || reading == Reading::WithoutMemory)
        return false;
    LibraryFilterMerge merge(merged);
    for (const LibraryFilter& filter : mFilters)
        merge.add(filter);
    if (!saveFiltersToFile(path, merged, currentId))
        return false;
    forgetCurrentDatabases();
    mFilters.swap(merged);
    mCurrentFilterId = currentId;
    return true;
} catch (...) {
    return false;
}

std::string LibraryFilterManager::getCurrentFilterString() const
{
    const LibraryFilter* const filter = currentFilter();
    return filter ? filter->getFilterName() : StringUtils::loadString(TextId::kNoFilter);
}

std::vector<std::string> LibraryFilterManager::getFilterStrings() const
{
    std::vector<std::string> strings{StringUtils::loadString(TextId::kNoFilter)};
    for (const LibraryFilter& filter : mFilters)
        strings.push_back(filter.getFilterName());
    return strings;
}
