#pragma once

#include <tuple>

#include "OrvLibrary/host/fileString.h"

/// A place where items are looked at: everything, one category, one catalog, one folder of it, or one of the
/// user's own lists. A value.
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
        News ///< what updates brought since the user last looked
    };

    Kind kind = Kind::Everything;
    int category = -1;     ///< of a category, a catalog and a folder: 0 core to 3 the user's own
    fileString database;   ///< of a catalog and a folder
    long long folder = -1; ///< the id of a folder

    bool isInCatalog() const { return kind == Kind::Catalog || kind == Kind::Folder; }
    bool operator==(const Place& other) const
    {
        return std::tie(kind, category, database, folder) ==
               std::tie(other.kind, other.category, other.database, other.folder);
    }
    bool operator!=(const Place& other) const { return !(*this == other); }
};
