#include "OrvLibrary/catalog/CatalogIndex_p.h"

#include <sstream>

#include "OrvLibrary/catalog/CatalogSources_p.h"
#include "OrvLibrary/host/PathUtils.h"
#include "OrvLibrary/host/StringUtils.h"

namespace LibraryCatalogUpdate {

namespace {

bool isCatalogName(const fileString& name)
{
    const std::string extension = name.extension().toNativeString();
    return extension == ".orvlib" || extension == ".orvlibz" || extension == ".zip";
}

} // namespace

void addIndexEntries(const std::string& index, std::set<fileString>& coreFiles)
{
    const fileString coreFolder = PathUtils::getObject().getCoreLibraryDatabasePath();
    std::istringstream lines(index);
    lines.exceptions(std::ios_base::badbit); // for lack of memory getline would just stop; now it throws
    for (std::string line; std::getline(lines, line);) {
        const fileString name(StringUtils::removeAllOf(line, "\r"));
        if (!name.empty() && isCatalogName(name))
            coreFiles.insert(catalogFolder(name, coreFolder) + name);
    }
}

} // namespace LibraryCatalogUpdate
