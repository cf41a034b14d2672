#pragma once

#include <string>

#include "OrvHost/OrvHostExport.h"
#include "OrvHost/history/CatalogHistory.h"

namespace OrvHost {

/// Puts a former version of a catalog back. docs/formats/catalog-pins.md says how it stays there.
namespace VersionRestore {

/// The version that was put back, and the one that it replaced.
struct ORVHOST_EXPORT Result
{
    CatalogPlace place;
    std::string restored;
    std::string former; ///< the version that was in the place; empty when it was empty
};

/// Puts a former version in its place by one rename; what was there becomes the newest former version. A
/// bonus or manufacturer catalog takes along the archive of referenced files that came with it. The next
/// update leaves the version until the service has one that the user has not gone back from. Needs the host's
/// services; reads the file once.
/// @param root where the pins are kept
/// @param name as for `CatalogPlaces::find`
/// @param version empty for the newest former one
/// @throws std::runtime_error with a text for people: no such catalog or version, an update is running, a
/// file cannot be written. The catalog is then as it was.
ORVHOST_EXPORT Result restore(const fileString& root, const std::string& name, const std::string& version,
                              const CatalogHistory::Bounds& bounds = {});
/// The version of the file in a place: its tag, else the SHA-1 of its contents; empty
/// when there is no file.
/// @throws std::runtime_error when the file cannot be read
ORVHOST_EXPORT std::string versionInPlace(const CatalogPlace& place);

} // namespace VersionRestore

} // namespace OrvHost
