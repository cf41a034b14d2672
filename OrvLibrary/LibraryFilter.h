#pragma once

#include <string>
#include <vector>

#include "OrvLibrary/OrvLibraryExport.h"

/// A named selection of library databases. The library browser can show just these. A plain value; one object
/// belongs to one thread.
class ORVLIBRARY_EXPORT LibraryFilter
{
public:
    /// No filter: an empty name, the id -1 and no databases.
    LibraryFilter();
    LibraryFilter(const std::string& name, long id, const std::vector<std::string>& databaseIds);

    /// The display name, UTF-8.
    const std::string& getFilterName() const { return mName; }
    void setFilterName(const std::string& name) { mName = name; }

    /// -1 means no filter. In a filter file, ids have 32 bits only.
    long getFilterId() const { return mId; }
    void setFilterId(long id) { mId = id; }

    /// The ids of the databases, in the user's order. An id may occur several times.
    const std::vector<std::string>& getDatabaseIds() const { return mDatabaseIds; }
    void setDatabaseIds(const std::vector<std::string>& databaseIds) { mDatabaseIds = databaseIds; }

    /// Removes the first id equal to `databaseId`, compared byte by byte. Later ones stay.
    void removeDatabaseId(const std::string& databaseId);

private:
    std::string mName;
    long mId = -1;
    std::vector<std::string> mDatabaseIds;
};
