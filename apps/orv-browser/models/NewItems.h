#pragma once

#include <map>

#include "OrvLibrary/host/fileString.h"

/// Items that updates brought since the user last looked. A value, shared by threads.
struct NewItems
{
    enum class Kind
    {
        Old,
        Added,
        Changed
    };

    std::map<fileString, std::map<long long, Kind>> catalogs; ///< by file, by id; added or changed
    int gone = 0;                                             ///< items that are there no more

    Kind kindOf(const fileString& database, long long item) const
    {
        const auto catalog = catalogs.find(database);
        if (catalog == catalogs.end())
            return Kind::Old;
        const auto found = catalog->second.find(item);
        return found == catalog->second.end() ? Kind::Old : found->second;
    }
    bool operator==(const NewItems& other) const { return catalogs == other.catalogs && gone == other.gone; }
    /// In one catalog.
    int count(const fileString& database) const
    {
        const auto catalog = catalogs.find(database);
        return catalog == catalogs.end() ? 0 : static_cast<int>(catalog->second.size());
    }
    int count() const
    {
        int sum = 0;
        for (const auto& catalog : catalogs)
            sum += static_cast<int>(catalog.second.size());
        return sum;
    }
};
