#pragma once

#include <set>
#include <vector>

#include "OrvHost/OrvHostExport.h"
#include "OrvLibrary/host/fileString.h"

namespace OrvHost {

/// The folder of one kind of catalogs, as the library determines it from the host's services.
struct ORVHOST_EXPORT CatalogFolder
{
    fileString folder;         ///< with a separator at the end
    fileString downloadFolder; ///< where new files wait; the library empties it when an update begins

    /// The path of "catalog_hash.txt" in the folder.
    fileString hashFile() const;
    /// The full path of a catalog. Joined without a separator, as the library does it.
    fileString path(const fileString& name) const { return folder + name; }
    /// The full paths of all ".orvlib" files in the folder; empty if it cannot be read.
    std::set<fileString> catalogs() const;
};

/// Finds the folders of the three kinds. Needs the host's services; may be used from any thread.
namespace CatalogFolders {

ORVHOST_EXPORT CatalogFolder core();
/// The parent folder of the core catalogs, where a host keeps its own files. Without a separator at the end.
ORVHOST_EXPORT fileString root();
ORVHOST_EXPORT CatalogFolder bonus();
ORVHOST_EXPORT CatalogFolder manufacturer();
/// In the order in which an update empties their download folders: core, bonus, manufacturer.
ORVHOST_EXPORT std::vector<CatalogFolder> all();

/// The regular files directly in `folder` that end with ".orvlib".
ORVHOST_EXPORT std::set<fileString> catalogsIn(const fileString& folder);
/// The same for any extension, compared with letter case. Names may have any bytes.
ORVHOST_EXPORT std::set<fileString> filesIn(const fileString& folder, const fileString& extension);

} // namespace CatalogFolders

} // namespace OrvHost
