#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include <QDateTime>

#include "OrvHost/OrvHostExport.h"
#include "OrvHost/history/CatalogPlace.h"

namespace OrvHost {

/// One catalog, or one archive of referenced files, that is there.
struct ORVHOST_EXPORT InstalledCatalog
{
    enum class State
    {
        Sound,
        Damaged, ///< other contents than its SHA-1 tag says, or an archive that cannot be read to its end
        Held     ///< sound, and kept at its version
    };

    CatalogPlace place;
    std::string version; ///< the tag in the hash file; empty when there is none
    std::int64_t bytes = 0;
    QDateTime modified;                ///< UTC
    std::optional<std::int64_t> items; ///< none for what is no catalog database that can be read
    QDateTime lastChecked;             ///< UTC; invalid when the service never answered for it
    State state = State::Sound;
    bool isHeld = false;
};

/// The installed catalogs, read from the folders of the installed path service; nothing is changed. The
/// functions read every file to its end, so they may take a second for each gigabyte. May be used from any
/// thread.
namespace InstalledCatalogs {

/// Everything that is there: core, bonus and manufacturer catalogs, archives of referenced files.
ORVHOST_EXPORT std::vector<InstalledCatalog> list(const fileString& root);
/// One of them, as `CatalogPlaces::find` finds it.
/// @throws std::runtime_error with a text for people when none, or more than one, has the name
ORVHOST_EXPORT InstalledCatalog info(const fileString& root, const std::string& name);
/// "sound", "damaged" or "held".
ORVHOST_EXPORT const char* stateName(InstalledCatalog::State state);

} // namespace InstalledCatalogs

} // namespace OrvHost
