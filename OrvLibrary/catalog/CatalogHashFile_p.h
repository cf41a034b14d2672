#pragma once

#include "OrvLibrary/CatalogUpdateData.h"

/// "catalog_hash.txt" remembers the tags of a category's catalogs from run to run, one line "name:tag" for
/// each. docs/formats/catalog_hash.md describes the bytes.
namespace LibraryCatalogUpdate {

/// Path of the hash file of a category.
fileString catalogHashFile(Library::LibraryCategory category);

/// Sets a record in `catalogs` for every line whose file exists. A hash file that does not open counts as
/// empty.
void readCatalogHashMap(CatalogMap& catalogs, Library::LibraryCategory category);

/// Writes the hash file of one category anew. A file that does not open or cannot be written stays as it was;
/// nothing is reported.
void saveCatalogHashMap(const CatalogMap& catalogs, Library::LibraryCategory category);

} // namespace LibraryCatalogUpdate
