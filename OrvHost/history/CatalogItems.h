#pragma once

#include <cstdint>
#include <optional>

#include "OrvHost/OrvHostExport.h"
#include "OrvLibrary/host/fileString.h"

/// The items in a catalog database. docs/formats/catalog-database.md describes it. The database is opened
/// read-only and as one that nobody changes, so that nothing appears beside it. May be used from any thread
/// while there is an application object of Qt's.
namespace OrvHost::CatalogItems {

/// How many items a catalog holds; none when it cannot be read.
ORVHOST_EXPORT std::optional<std::int64_t> count(const fileString& catalog);

} // namespace OrvHost::CatalogItems
