#pragma once

#include <functional>
#include <string>
#include <vector>

#include "OrvHost/OrvHostExport.h"
#include "OrvHost/history/VersionKeeper.h"

namespace OrvHost {

/// Newer versions of held catalogs: they are fetched into the history, each once, so that the user can have
/// them at any time.
namespace HeldVersions {

/// A newer version of a held catalog that could not be fetched.
struct ORVHOST_EXPORT Failure
{
    CatalogPlace place;
    std::string reason; ///< for people
};

/// Fetches what is not in the history yet. To be called under the lock of an update.
/// @param service makes the downloads
/// @param checksDatabases refuses catalogs that are no databases
/// @param isCancelled asked all the time, on the calling thread; true ends the work
/// @return what could not be fetched; nothing after a cancel
ORVHOST_EXPORT std::vector<Failure> fetch(Curl& service, const std::vector<VersionKeeper::Offer>& offers,
                                          bool checksDatabases, const std::function<bool()>& isCancelled);

/// Remembers which of the offers wait in the history for the user.
/// @return whether the pins changed and have to be saved
ORVHOST_EXPORT bool note(CatalogPins& pins, const std::vector<VersionKeeper::Offer>& offers);

} // namespace HeldVersions

} // namespace OrvHost
