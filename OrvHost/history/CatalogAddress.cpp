#include "OrvHost/history/CatalogAddress.h"

namespace OrvHost {

std::string CatalogAddress::nameIn(const std::string& url)
{
    const std::string before = "&library=", after = "&product=";
    const std::size_t begin = url.find(before);
    const std::size_t end = url.rfind(after);
    if (begin == std::string::npos || end == std::string::npos || end < begin + before.size())
        return {};
    return url.substr(begin + before.size(), end - begin - before.size());
}

CatalogPlace CatalogAddress::placeOf(const std::string& url)
{
    const fileString name(nameIn(url));
    const std::string extension = name.extension().toNativeString();
    std::vector<CatalogPlace> candidates;
    if (extension == ".orvlibz") {
        const std::string catalog = name.stem().toNativeString() + ".orvlib";
        candidates = {{CatalogCategory::Manufacturer, catalog}, {CatalogCategory::Bonus, catalog}};
    } else if (extension == ".zip") {
        candidates = {{CatalogCategory::Referenced, name.toNativeString()}};
    } else if (extension == ".orvlib") {
        candidates = {{CatalogCategory::Core, name.toNativeString()}};
    }
    for (const CatalogPlace& place : candidates) {
        if (place.path().pathExists())
            return place;
    }
    return {};
}

CatalogPlace CatalogAddress::archiveOf(const std::string& url)
{
    const fileString name(nameIn(url));
    const std::string extension = name.extension().toNativeString();
    if (extension != ".zip" && extension != ".orvlibz")
        return {};
    return {CatalogCategory::Referenced, name.stem().toNativeString() + ".zip"};
}

} // namespace OrvHost
