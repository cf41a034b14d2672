#include "OrvLibrary/LibraryFilter.h"

#include <algorithm>

LibraryFilter::LibraryFilter() = default;

LibraryFilter::LibraryFilter(const std::string& name, long id, const std::vector<std::string>& databaseIds)
    : mName(name), mId(id), mDatabaseIds(databaseIds)
{
}

void LibraryFilter::removeDatabaseId(const std::string& databaseId)
{
    // Deliberate: only one entry, although a list may hold an id twice.
    // Kept by: LibraryFilter.removesTheFirstEqualDatabaseOnly
    const auto entry = std::find(mDatabaseIds.begin(), mDatabaseIds.end(), databaseId);
    if (entry != mDatabaseIds.end())
        mDatabaseIds.erase(entry);
}
