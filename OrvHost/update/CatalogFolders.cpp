#include "OrvHost/update/CatalogFolders.h"

#include <filesystem>

#include "OrvLibrary/host/Application.h"
#include "OrvLibrary/host/PathUtils.h"
#include "OrvLibrary/host/StringUtils.h"

namespace OrvHost {

namespace fs = std::filesystem;

namespace {

const fileString kExtension(".orvlib");

/// The download folder is in the temporary folder. Its name is the application's name, ".downloads." and the
/// name of the category's folder.
CatalogFolder catalogFolder(const fileString& folder)
{
    const Application* application = gApp;
    const std::string name = application ? application->name() : std::string();
    const std::string stem = folder.parentPath().stem().toNativeString();
    return {folder, PathUtils::getObject().getTempPath() / fileString(name + xl8(".downloads.") + stem)};
}

} // namespace

fileString CatalogFolder::hashFile() const
{
    return folder / fileString("catalog_hash.txt");
}

std::set<fileString> CatalogFolder::catalogs() const
{
    return CatalogFolders::catalogsIn(folder);
}

CatalogFolder CatalogFolders::core()
{
    return catalogFolder(PathUtils::getObject().getCoreLibraryDatabasePath());
}

fileString CatalogFolders::root()
{
    return PathUtils::getObject().getCoreLibraryDatabasePath().parentPath().parentPath();
}

CatalogFolder CatalogFolders::bonus()
{
    return catalogFolder(PathUtils::getObject().getBonusLibraryDatabasePath());
}

CatalogFolder CatalogFolders::manufacturer()
{
    return catalogFolder(PathUtils::getObject().getManufacturerLibraryPath());
}

std::vector<CatalogFolder> CatalogFolders::all()
{
    return {core(), bonus(), manufacturer()};
}

std::set<fileString> CatalogFolders::catalogsIn(const fileString& folder)
{
    return filesIn(folder, kExtension);
}

std::set<fileString> CatalogFolders::filesIn(const fileString& folder, const fileString& extension)
{
    std::set<fileString> files;
    std::error_code error;
    fs::directory_iterator entry(folder.toNativeString(), error);
    for (; !error && entry != fs::directory_iterator(); entry.increment(error)) {
        std::error_code unreadable;
        const fileString path(entry->path().native());
        if (path.extension() == extension && entry->is_regular_file(unreadable))
            files.insert(path);
    }
    return files;
}

} // namespace OrvHost
