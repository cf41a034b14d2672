#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "OrvHost/OrvHostExport.h"
#include "OrvLibrary/host/fileString.h"

/// Reads the items in a catalog database; docs/formats/catalog-database.md describes it. The database is
/// opened read-only and as immutable, so that no file appears beside it. May be used from any thread while a
/// Qt application object exists.
namespace OrvHost::CatalogItems {

/// The number of items in a catalog; empty if it cannot be read.
ORVHOST_EXPORT std::optional<std::int64_t> count(const fileString& catalog);

/// An item of a catalog's database.
struct ORVHOST_EXPORT Item
{
    std::int64_t id = 0;
    std::string name; ///< UTF-8
};

/// The differences between two versions of a catalog. An item is identified by its id.
struct ORVHOST_EXPORT Changes
{
    std::vector<Item> added;
    std::vector<Item> changed; ///< with their new names
    std::vector<Item> gone;

    bool empty() const { return added.empty() && changed.empty() && gone.empty(); }
};

/// Compares two versions. Each list is ordered by id. An item has changed if a column that both versions have
/// is different.
/// @param former empty for a catalog that is new; all its items then count as added
/// @return empty if one of the files cannot be read
ORVHOST_EXPORT std::optional<Changes> compare(const fileString& former, const fileString& current);

} // namespace OrvHost::CatalogItems
