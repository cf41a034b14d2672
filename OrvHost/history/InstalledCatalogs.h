#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include <QDateTime>

#include "OrvHost/OrvHostExport.h"
#include "OrvHost/history/CatalogPlace.h"

namespace OrvHost {

/// An installed catalog or archive of referenced files.
struct ORVHOST_EXPORT InstalledCatalog
{
    enum class State
    {
        Sound,
        Damaged, ///< its SHA-1 differs from the tag, or it is an archive that is damaged
        Held     ///< sound, and not replaced by updates
    };

    CatalogPlace place;
    std::string version; ///< the tag in the hash file; empty if there is none
    std::int64_t bytes = 0;
    QDateTime modified;                ///< UTC
    std::optional<std::int64_t> items; ///< empty if it is not a readable catalog database
    QDateTime lastChecked;             ///< UTC; invalid if the service never answered for it
    State state = State::Sound;
    bool isHeld = false;
};

/// Lists what is installed in the folders of the installed path service. Changes nothing. Every file is read
/// completely, which takes about a second per gigabyte. May be used from any thread.
namespace InstalledCatalogs {

/// All installed files: core, bonus and manufacturer catalogs, then archives of referenced files.
ORVHOST_EXPORT std::vector<InstalledCatalog> list(const fileString& root);
/// One of them, found like `CatalogPlaces::find`.
/// @throws std::runtime_error with a text for people if no file or more than one has the name
ORVHOST_EXPORT InstalledCatalog info(const fileString& root, const std::string& name);
/// "sound", "damaged" or "held".
ORVHOST_EXPORT const char* stateName(InstalledCatalog::State state);

} // namespace InstalledCatalogs

} // namespace OrvHost
