#pragma once

#include <functional>
#include <string>
#include <vector>

#include "OrvHost/OrvHostExport.h"
#include "OrvHost/history/VersionKeeper.h"

namespace OrvHost {

/// Downloads newer versions of held catalogs into the history, each one once, so that the user can take them
/// at any time.
namespace HeldVersions {

/// A newer version of a held catalog that could not be downloaded.
struct ORVHOST_EXPORT Failure
{
    CatalogPlace place;
    std::string reason; ///< for people
};

/// Downloads all versions that are not in the history. Needs the lock of an update.
/// @param service makes the downloads
/// @param checksDatabases whether catalogs that are not databases are refused
/// @param isCancelled called all the time, on the calling thread; true ends the work
/// @return the versions that could not be downloaded; empty after a cancel
ORVHOST_EXPORT std::vector<Failure> fetch(Curl& service, const std::vector<VersionKeeper::Offer>& offers,
                                          bool checksDatabases, const std::function<bool()>& isCancelled);

/// Notes which of the offered versions are now in the history.
/// @return whether the pins have changed and must be saved
ORVHOST_EXPORT bool note(CatalogPins& pins, const std::vector<VersionKeeper::Offer>& offers);

} // namespace HeldVersions

} // namespace OrvHost
