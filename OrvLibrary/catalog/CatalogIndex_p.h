#pragma once

#include <set>
#include <string>

#include "OrvLibrary/host/fileString.h"

namespace LibraryCatalogUpdate {

/// Adds the files that a core content index names, one on each line, as paths: in the core folder, archives
/// of referenced files in theirs. Lines that name no catalog are passed over.
void addIndexEntries(const std::string& index, std::set<fileString>& coreFiles);

} // namespace LibraryCatalogUpdate
