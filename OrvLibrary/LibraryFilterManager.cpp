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
    mFilters.clear();
    mCurrentFilterId = -1;
    try {
        mCurrentFilterId = loadFiltersFromFile(getFilterFullname(), mFilters);
    } catch (...) {
        // The host could not even say where the file is: no filters, as for a file that cannot be read.
    }
}

void LibraryFilterManager::saveFilters()
try {
    // Deliberate: removing the last filter does not reach the file.
    if (!mFilters.empty())
        saveFiltersToFile(getFilterFullname(), mFilters, mCurrentFilterId);
} catch (...) {
    // Deliberate: silence. The file has its old content.
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
    mFilters = filters;
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
    if (!hasActiveFilter())
        return false;
    const std::vector<std::string> ids = getCurrentFilteredDatabases();
    return std::find(ids.begin(), ids.end(), databaseId) != ids.end();
}

std::vector<std::string> LibraryFilterManager::getCurrentFilteredDatabases() const
{
    return getLibraryFilterFromId(mCurrentFilterId, mFilters).getDatabaseIds();
}

void LibraryFilterManager::removeIdFromLibraryFilters(const std::string& databaseId)
{
    for (LibraryFilter& filter : mFilters)
        filter.removeDatabaseId(databaseId);
}

bool LibraryFilterManager::mergeFilters(const fileString& path)
try {
    std::vector<LibraryFilter> merged;
    long currentId = -1;
    if (readFilters(path, merged, currentId) == Reading::Impossible) {
        // What cannot be read now may be there whole: it is not written over.
        isRefused(path);
        return false;
    }
    LibraryFilterMerge merge(merged);
    for (const LibraryFilter& filter : mFilters)
        merge.add(filter);
    if (!saveFiltersToFile(path, merged, currentId))
        return false;
    mFilters.swap(merged);
    mCurrentFilterId = currentId;
    return true;
} catch (...) {
    return false;
}

std::string LibraryFilterManager::getCurrentFilterString() const
{
    const auto filter =
        std::find_if(mFilters.begin(), mFilters.end(), [this](const LibraryFilter& candidate) {
            return candidate.getFilterId() == mCurrentFilterId;
        });
    const bool isKnown = hasActiveFilter() && filter != mFilters.end();
    return isKnown ? filter->getFilterName() : StringUtils::loadString(TextId::kNoFilter);
}

std::vector<std::string> LibraryFilterManager::getFilterStrings() const
{
    std::vector<std::string> strings{StringUtils::loadString(TextId::kNoFilter)};
    for (const LibraryFilter& filter : mFilters)
        strings.push_back(filter.getFilterName());
    return strings;
}
