#pragma once

#include <set>
#include <vector>

#include "OrvLibrary/host/fileString.h"

/// Where the catalogs of one kind live, as the library computes it from the installed host services.
struct CatalogFolder
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

CatalogFolder core();
CatalogFolder bonus();
CatalogFolder manufacturer();
/// In the order in which an update empties their download folders: core, bonus, manufacturer.
std::vector<CatalogFolder> all();

/// The regular files with the extension ".orvlib" directly in `folder`.
std::set<fileString> catalogsIn(const fileString& folder);
/// The same for any extension, letter case included; names may be of any bytes.
std::set<fileString> filesIn(const fileString& folder, const fileString& extension);

} // namespace CatalogFolders
