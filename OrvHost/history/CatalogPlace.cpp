#include "OrvHost/history/CatalogPlace.h"

#include <algorithm>
#include <functional>
#include <stdexcept>

#include "OrvHost/update/CatalogFolders.h"
#include "OrvHost/update/HashFile.h"
#include "OrvLibrary/host/PathUtils.h"

namespace OrvHost {

namespace {

const char* const kArchive = ".zip";

constexpr CatalogCategory kCategories[] = {CatalogCategory::Core, CatalogCategory::Bonus,
                                           CatalogCategory::Manufacturer, CatalogCategory::Referenced};

std::string nameOfCategory(CatalogCategory category)
{
    switch (category) {
    case CatalogCategory::Core:
        return "core";
    case CatalogCategory::Bonus:
        return "bonus";
    case CatalogCategory::Manufacturer:
        return "manufacturer";
    case CatalogCategory::Referenced:
        break;
    }
    return "referenced";
}

std::vector<CatalogPlace> matches(const std::vector<CatalogPlace>& places,
                                  const std::function<bool(const CatalogPlace&)>& isMeant)
{
    std::vector<CatalogPlace> found;
    std::copy_if(places.begin(), places.end(), std::back_inserter(found), isMeant);
    return found;
}

[[noreturn]] void failAmbiguous(const std::string& name, const std::vector<CatalogPlace>& found)
{
    std::string text = "'" + name + "' can be ";
    for (std::size_t i = 0; i < found.size(); ++i)
        text += (i == 0 ? "" : i + 1 == found.size() ? " or " : ", ") + found[i].key();
    throw std::runtime_error(text);
}

} // namespace

std::string CatalogPlace::categoryName() const
{
    return nameOfCategory(category);
}

fileString CatalogPlace::folder() const
{
    const PathUtils& paths = PathUtils::getObject();
    switch (category) {
    case CatalogCategory::Core:
        return paths.getCoreLibraryDatabasePath();
    case CatalogCategory::Bonus:
        return paths.getBonusLibraryDatabasePath();
    case CatalogCategory::Manufacturer:
        return paths.getManufacturerLibraryPath();
    case CatalogCategory::Referenced:
        break;
    }
    return paths.getProprietaryLibraryReferencedFilesPath();
}

fileString CatalogPlace::hashFolder() const
{
    return category == CatalogCategory::Referenced ? CatalogFolders::core().folder : folder();
}

std::string CatalogPlace::tag() const
try {
    return tagOrThrow();
} catch (const std::exception&) {
    return {};
}

std::string CatalogPlace::tagOrThrow() const
{
    const auto tags = HashFile::readOrThrow(hashFolder());
    const auto tag = tags.find(name);
    return tag == tags.end() ? std::string() : tag->second;
}

CatalogPlace CatalogPlace::companion() const
{
    if (category != CatalogCategory::Bonus && category != CatalogCategory::Manufacturer)
        return {};
    return {CatalogCategory::Referenced, fileString(name).stem().toNativeString() + kArchive};
}

CatalogPlace CatalogPlaces::ofPath(const fileString& path)
{
    for (const CatalogCategory category : kCategories) {
        const CatalogPlace place{category, path.stemWithExtension().toNativeString()};
        if (place.path() == path)
            return place;
    }
    return {};
}

CatalogPlace CatalogPlaces::ofKey(const std::string& key)
{
    const std::size_t slash = key.find('/');
    for (const CatalogCategory category : kCategories) {
        if (slash != std::string::npos && key.substr(0, slash) == nameOfCategory(category) &&
            key.find('/', slash + 1) == std::string::npos)
            return {category, key.substr(slash + 1)};
    }
    return {};
}

std::vector<CatalogPlace> CatalogPlaces::installed()
{
    std::vector<CatalogPlace> places;
    for (const CatalogCategory category : kCategories) {
        const fileString folder = CatalogPlace{category, {}}.folder();
        for (const fileString& file : category == CatalogCategory::Referenced
                                          ? CatalogFolders::filesIn(folder, fileString(kArchive))
                                          : CatalogFolders::catalogsIn(folder))
            places.push_back({category, file.stemWithExtension().toNativeString()});
    }
    return places;
}

CatalogPlace CatalogPlaces::find(const std::string& name, const std::vector<CatalogPlace>& places)
{
    // A key takes precedence over a file name, and a file name over a name without extension.
    const std::function<bool(const CatalogPlace&)> ways[] = {
        [&](const CatalogPlace& place) { return place.key() == name; },
        [&](const CatalogPlace& place) { return place.name == name; },
        [&](const CatalogPlace& place) { return fileString(place.name).stem().toNativeString() == name; }};
    for (const auto& way : ways) {
        const std::vector<CatalogPlace> found = matches(places, way);
        if (found.size() > 1)
            failAmbiguous(name, found);
        if (found.size() == 1)
            return found.front();
    }
    throw std::runtime_error("no catalog is called '" + name + "'");
}

} // namespace OrvHost
