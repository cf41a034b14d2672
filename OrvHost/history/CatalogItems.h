#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "OrvHost/OrvHostExport.h"
#include "OrvLibrary/host/fileString.h"

/// The items in a catalog database. docs/formats/catalog-database.md describes it. The database is opened
/// read-only and as one that nobody changes, so that nothing appears beside it. May be used from any thread
/// while there is an application object of Qt's.
namespace OrvHost::CatalogItems {

/// How many items a catalog holds; none when it cannot be read.
ORVHOST_EXPORT std::optional<std::int64_t> count(const fileString& catalog);

/// An item of a catalog's database.
struct ORVHOST_EXPORT Item
{
    std::int64_t id = 0;
    std::string name; ///< UTF-8
};

/// The differences between two versions of a catalog. Items are told apart by their ids.
struct ORVHOST_EXPORT Changes
{
    std::vector<Item> added;
    std::vector<Item> changed; ///< with their new names
    std::vector<Item> gone;

    bool empty() const { return added.empty() && changed.empty() && gone.empty(); }
};

/// Compares two versions, each list in the order of the ids. An item has changed when a column that both
/// versions have says something else.
/// @param former empty when the catalog is there for the first time: all its items are added then
/// @return none when one of them cannot be read
ORVHOST_EXPORT std::optional<Changes> compare(const fileString& former, const fileString& current);

} // namespace OrvHost::CatalogItems
