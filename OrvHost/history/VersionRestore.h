#pragma once

#include <string>

#include "OrvHost/OrvHostExport.h"
#include "OrvHost/history/CatalogHistory.h"

namespace OrvHost {

/// Restores former versions of catalogs. docs/formats/catalog-pins.md describes how they stay in place.
namespace VersionRestore {

/// The restored version and the one it replaced.
struct ORVHOST_EXPORT Result
{
    CatalogPlace place;
    std::string restored;
    std::string former; ///< the version before; empty if there was no file
};

/// Puts a former version into place by one rename. The replaced file becomes the newest former version. For a
/// bonus or manufacturer catalog, its archive of referenced files is restored, too. Updates leave the version
/// in place until the service has one that the user has not left. Needs the host's services; reads the file
/// once.
/// @param root the folder of the pins
/// @param name as for `CatalogPlaces::find`
/// @param version if empty, the newest former one
/// @throws std::runtime_error with a text for people: there is no such catalog or version, an update is
/// running, or a file cannot be written. The catalog is then unchanged.
ORVHOST_EXPORT Result restore(const fileString& root, const std::string& name, const std::string& version,
                              const CatalogHistory::Bounds& bounds = {});
/// The version of the file in place: its tag or, without one, the SHA-1 of its content; empty if there is no
/// file.
/// @throws std::runtime_error if the file cannot be read
ORVHOST_EXPORT std::string versionInPlace(const CatalogPlace& place);

} // namespace VersionRestore

} // namespace OrvHost
