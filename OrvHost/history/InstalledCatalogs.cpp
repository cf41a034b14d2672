#include "OrvHost/history/InstalledCatalogs.h"

#include <exception>

#include "OrvHost/health/LibraryHealth.h"
#include "OrvHost/history/CatalogItems.h"
#include "OrvHost/history/CatalogPins.h"
#include "OrvHost/update/CheckHistory.h"
#include "OrvLibrary/host/FileUtils.h"

namespace OrvHost {

namespace {

/// The name in requests. Bonus and manufacturer catalogs are requested as packed archives.
std::string askedName(const CatalogPlace& place)
{
    if (place.category == CatalogCategory::Bonus || place.category == CatalogCategory::Manufacturer)
        return fileString(place.name).stem().toNativeString() + ".orvlibz";
    return place.name;
}

bool isDamaged(const CatalogPlace& place, const std::string& tag)
{
    switch (place.category) {
    case CatalogCategory::Core:
        return !LibraryHealth::catalogDamage(place.path(), tag).empty();
    case CatalogCategory::Referenced:
        return !LibraryHealth::archiveDamage(place.path()).empty();
    case CatalogCategory::Bonus:
    case CatalogCategory::Manufacturer:
        break;
    }
    return false; // the tag is that of the packed archive, not of the catalog
}

InstalledCatalog describe(const CatalogPlace& place, const CheckHistory& history, const CatalogPins& pins)
{
    InstalledCatalog catalog;
    catalog.place = place;
    catalog.version = place.tag();
    catalog.bytes = FileUtils::fileSize(place.path());
    catalog.modified = QDateTime::fromSecsSinceEpoch(place.path().modificationTime(), Qt::UTC);
    if (place.category != CatalogCategory::Referenced)
        catalog.items = CatalogItems::count(place.path());
    const auto answer = history.answers().find(askedName(place));
    if (answer != history.answers().end() && answer->second.status != 0)
        catalog.lastChecked = answer->second.time;
    catalog.isHeld = pins.isHeld(place);
    if (isDamaged(place, catalog.version))
        catalog.state = InstalledCatalog::State::Damaged;
    else if (catalog.isHeld)
        catalog.state = InstalledCatalog::State::Held;
    return catalog;
}

} // namespace

std::vector<InstalledCatalog> InstalledCatalogs::list(const fileString& root)
{
    const CheckHistory history(root);
    const CatalogPins pins(root);
    std::vector<InstalledCatalog> catalogs;
    for (const CatalogPlace& place : CatalogPlaces::installed())
        catalogs.push_back(describe(place, history, pins));
    return catalogs;
}

InstalledCatalog InstalledCatalogs::info(const fileString& root, const std::string& name)
{
    return describe(CatalogPlaces::find(name, CatalogPlaces::installed()), CheckHistory(root),
                    CatalogPins(root));
}

const char* InstalledCatalogs::stateName(InstalledCatalog::State state)
{
    switch (state) {
    case InstalledCatalog::State::Damaged:
        return "damaged";
    case InstalledCatalog::State::Held:
        return "held";
    case InstalledCatalog::State::Sound:
        break;
    }
    return "sound";
}

} // namespace OrvHost
