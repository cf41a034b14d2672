#pragma once

#include <set>
#include <vector>

#include "OrvHost/OrvHostExport.h"
#include "OrvLibrary/host/fileString.h"

namespace OrvHost {

/// Where the catalogs of one kind live, as the library computes it from the installed host services.
struct ORVHOST_EXPORT CatalogFolder
{
    fileString folder;         ///< with its final separator
    fileString downloadFolder; ///< where new files wait; the library empties it when an update starts

    /// "catalog_hash.txt" of the folder.
    fileString hashFile() const;
    /// The full path of a catalog of the folder. Plain concatenation, as the library does it.
    fileString path(const fileString& name) const { return folder + name; }
    /// The full paths of the ".orvlib" files in the folder; none when it cannot be read.
    std::set<fileString> catalogs() const;
};

/// The folders of the three kinds. Needs the host's services; may be used from any thread.
namespace CatalogFolders {

ORVHOST_EXPORT CatalogFolder core();
/// The folder that holds the folder of the core catalogs: where a host keeps files of its own beside them.
/// Without the final separator.
ORVHOST_EXPORT fileString root();
ORVHOST_EXPORT CatalogFolder bonus();
ORVHOST_EXPORT CatalogFolder manufacturer();
/// In the order in which an update empties their download folders: core, bonus, manufacturer.
ORVHOST_EXPORT std::vector<CatalogFolder> all();

/// The regular files with the extension ".orvlib" directly in `folder`.
ORVHOST_EXPORT std::set<fileString> catalogsIn(const fileString& folder);
/// The same for any extension, letter case included; names may be of any bytes.
ORVHOST_EXPORT std::set<fileString> filesIn(const fileString& folder, const fileString& extension);

} // namespace CatalogFolders

} // namespace OrvHost
