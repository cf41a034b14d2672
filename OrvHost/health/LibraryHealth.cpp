#include "OrvHost/health/LibraryHealth.h"

#include <ctime>
#include <vector>

#include "OrvHost/update/CatalogFolders.h"
#include "OrvHost/update/HashFile.h"
#include "OrvHost/update/Sha1Tag.h"
#include "OrvLibrary/Manufacturer/ManufacturerManager.h"
#include "OrvLibrary/host/PathUtils.h"
#include "OrvLibrary/host/SHA1.h"
#include "OrvLibrary/host/TimeUtils.h"
#include "OrvLibrary/host/ZipUtils.h"

namespace OrvHost {

namespace {

const char* const kFuture = "its time stamp lies in the future";

std::string nameOf(const fileString& file)
{
    return file.stemWithExtension().toNativeString();
}

} // namespace

void LibraryHealth::checkCoreCatalogs()
{
    const CatalogFolder core = CatalogFolders::core();
    for (const auto& [name, tag] : HashFile::read(core.folder)) {
        const fileString file = core.path(fileString(name));
        if (!Sha1Tag::isSha1(tag) || file.extension() != fileString(".orvlib") || !file.pathExists())
            continue;
        ++mChecked;
        const std::string text = catalogDamage(file, tag);
        if (!text.empty())
            mDamages.push_back({name, text, true, {}});
    }
}

std::string LibraryHealth::catalogDamage(const fileString& catalog, const std::string& tag)
{
    if (!Sha1Tag::isSha1(tag) || Sha1Tag::equal(tag, SHA1::fileContentsToSHA1Hex(catalog)))
        return {};
    return "its content does not match its SHA-1 tag";
}

std::string LibraryHealth::archiveDamage(const fileString& archive)
{
    std::vector<ZipUtils::DamagedMember> damaged;
    ZipUtils::verify(archive, nullptr, &damaged);
    return damaged.empty() ? std::string() : damaged.front().reason;
}

void LibraryHealth::checkArchives()
{
    checkArchivesIn(PathUtils::getObject().getProprietaryLibraryReferencedFilesPath(), true);
    checkArchivesIn(PathUtils::getObject().getUserTexturePath(), false);
}

void LibraryHealth::checkArchivesIn(const fileString& folder, bool isListed)
{
    const auto hashes = HashFile::read(CatalogFolders::core().folder);
    for (const fileString& archive : CatalogFolders::filesIn(folder, ZipUtils::getExtension())) {
        ++mChecked;
        const std::string text = archiveDamage(archive);
        const std::string name = nameOf(archive);
        if (!text.empty())
            mDamages.push_back({name, text, isListed && hashes.count(name) != 0, archive});
    }
}

bool LibraryHealth::forget(const std::string& name)
{
    return HashFile::remove(CatalogFolders::core().folder, name);
}

std::vector<LibraryHealth::Damage> LibraryHealth::futureStamps()
{
    const PathUtils& paths = PathUtils::getObject();
    std::vector<Damage> stamps;
    for (const fileString& folder : {paths.getCoreLibraryDatabasePath(), paths.getBonusLibraryDatabasePath(),
                                     paths.getManufacturerLibraryPath()})
        for (const fileString& catalog : CatalogFolders::catalogsIn(folder))
            if (catalog.modificationTime() > std::time(nullptr))
                stamps.push_back({nameOf(catalog), kFuture, false, {}});

    std::map<long, Manufacturer> records;
    boost::posix_time::ptime fileStamp;
    std::string defaultText;
    ManufacturerManager::read_manufacturer_file(paths.getManufacturerDataPath() +
                                                    fileString("manufacturer_data.json"),
                                                records, &fileStamp, &defaultText);
    const auto now = Library::getTimeNow();
    if (!fileStamp.is_special() && fileStamp > now)
        stamps.push_back({"manufacturer_data.json", kFuture, false, {}});
    for (const auto& [id, record] : records)
        if (!record.getLastModified().is_special() && record.getLastModified() > now)
            stamps.push_back({"manufacturer_data.json",
                              "the time stamp of manufacturer " + std::to_string(id) + " lies in the future",
                              false,
                              {}});
    return stamps;
}

} // namespace OrvHost
