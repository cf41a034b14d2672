#pragma once

#include <set>
#include <string>

#include "OrvLibrary/host/fileString.h"

namespace LibraryCatalogUpdate {

/// Adds the paths of all files listed in a core content index, one on each line. Catalogs are in the core
/// folder, archives of referenced files in their own. Ignores lines without a catalog.
void addIndexEntries(const std::string& index, std::set<fileString>& coreFiles);

} // namespace LibraryCatalogUpdate
