#pragma once

#include <tuple>

#include "OrvLibrary/host/fileString.h"

/// A place with items: everything, one category, one catalog, one of its folders, or one of the user's lists.
/// A plain value.
struct Place
{
    enum class Kind
    {
        Everything,
        Category,
        Catalog,
        Folder,
        Favourites,
        Recent,
        News ///< items that updates have added or changed since the user last looked
    };

    Kind kind = Kind::Everything;
    int category = -1;     ///< of a category, a catalog and a folder: 0 core to 3 the user's own
    fileString database;   ///< for a catalog or a folder
    long long folder = -1; ///< the id of a folder

    bool isInCatalog() const { return kind == Kind::Catalog || kind == Kind::Folder; }
    bool operator==(const Place& other) const
    {
        return std::tie(kind, category, database, folder) ==
               std::tie(other.kind, other.category, other.database, other.folder);
    }
    bool operator!=(const Place& other) const { return !(*this == other); }
};
