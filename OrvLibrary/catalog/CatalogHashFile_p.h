#pragma once

#include "OrvLibrary/CatalogUpdateData.h"

/// The file "catalog_hash.txt" keeps the tags of a category's catalogs between runs, one line "name:tag" for
/// each. docs/formats/catalog_hash.md describes it byte by byte.
namespace LibraryCatalogUpdate {

/// The path of a category's hash file.
fileString catalogHashFile(Library::LibraryCategory category);

/// Adds a record to `catalogs` for every line whose file exists. If the hash file cannot be opened, it counts
/// as empty.
void readCatalogHashMap(CatalogMap& catalogs, Library::LibraryCategory category);

/// Writes the hash file of one category. If this fails, the old file stays, and nothing is reported.
void saveCatalogHashMap(const CatalogMap& catalogs, Library::LibraryCategory category);

} // namespace LibraryCatalogUpdate
