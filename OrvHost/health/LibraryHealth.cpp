// How it works: a core catalog is compared with its tag in the hash file, an archive with the checksums of
// its members. `note` collects the results of both. A damaged file counts as listed if a hash line makes an
// update fetch it; `bringerOf` finds that line for archives of referenced files, and `forget` removes it.
// `checkAll` does the same as the two other checks, with progress over the bytes of all files.
// `futureStamps`, `missingFiles` and `leftOvers` read only names, times and hash files.
#include "OrvHost/health/LibraryHealth.h"

#include <algorithm>
#include <cstdint>
#include <ctime>
#include <vector>

#include "OrvHost/health/FileHash_p.h"
#include "OrvHost/health/FilesProgress_p.h"
#include "OrvHost/history/CatalogPins.h"
#include "OrvHost/history/CatalogPlace.h"
#include "OrvHost/update/CatalogFolders.h"
#include "OrvHost/update/HashFile.h"
#include "OrvHost/update/PartialFiles.h"
#include "OrvHost/update/Sha1Tag.h"
#include "OrvLibrary/Manufacturer/ManufacturerManager.h"
#include "OrvLibrary/host/FileUtils.h"
#include "OrvLibrary/host/PathUtils.h"
#include "OrvLibrary/host/SHA1.h"
#include "OrvLibrary/host/TimeUtils.h"
#include "OrvLibrary/host/ZipUtils.h"

namespace OrvHost {

namespace {

const char* const kFuture = "its time stamp lies in the future";
const char* const kWrongTag = "its content does not match its SHA-1 tag";

std::string nameOf(const fileString& file)
{
    return file.stemWithExtension().toNativeString();
}

/// The path of the file for a line in a hash file. Archives are listed with the catalogs that need them, but
/// have their own folder.
fileString listedFile(const CatalogFolder& folder, const fileString& name)
{
    const bool isArchive = name.extension() == ZipUtils::getExtension();
    return isArchive ? PathUtils::getObject().getProprietaryLibraryReferencedFilesPath() + name
                     : folder.path(name);
}

/// The place whose hash line makes an update bring an archive of referenced files: the archive itself, or the
/// bonus or manufacturer catalog that it came with. The name is empty if no update brings it. A restored
/// catalog is not replaced by updates, so neither is its archive.
CatalogPlace bringerOf(const std::string& archive)
{
    const CatalogPlace place{CatalogCategory::Referenced, archive};
    if (!place.tag().empty())
        return place;
    const CatalogPins pins(CatalogFolders::root());
    for (const CatalogPlace& catalog : CatalogPlaces::installed()) {
        if (catalog.companion() == place && !catalog.tag().empty() && pins.restored().count(catalog) == 0)
            return catalog;
    }
    return {};
}

/// A core catalog whose hash line can be compared with its content.
struct TaggedFile
{
    fileString file;
    std::string tag;
};

std::vector<TaggedFile> taggedCatalogs()
{
    const CatalogFolder core = CatalogFolders::core();
    std::vector<TaggedFile> catalogs;
    for (const auto& [name, tag] : HashFile::read(core.folder)) {
        const fileString file = core.path(fileString(name));
        if (Sha1Tag::isSha1(tag) && file.extension() == fileString(".orvlib") && file.pathExists())
            catalogs.push_back({file, tag});
    }
    return catalogs;
}

/// In bytes; 0 for what has no size.
std::uint64_t sizeOf(const fileString& file)
{
    return static_cast<std::uint64_t>(std::max<std::int64_t>(FileUtils::fileSize(file), 0));
}

/// @param progress may be null
std::string firstDamage(const fileString& archive, const std::shared_ptr<ProgressSubject>& progress)
{
    std::vector<ZipUtils::DamagedMember> damaged;
    ZipUtils::verify(archive, progress, &damaged);
    return damaged.empty() ? std::string() : damaged.front().reason;
}

struct Files
{
    std::size_t count = 0;
    std::int64_t bytes = 0;

    void add(const fileString& folder, const char* extension)
    {
        for (const fileString& file : CatalogFolders::filesIn(folder, fileString(extension))) {
            ++count;
            bytes += FileUtils::fileSize(file);
        }
    }
    /// Such as "2 unfinished downloads (1500 bytes)".
    std::string text(const std::string& thing) const
    {
        return std::to_string(count) + " " + thing + (count == 1 ? "" : "s") + " (" + std::to_string(bytes) +
               " bytes)";
    }
};

} // namespace

std::vector<LibraryHealth::Damage> LibraryHealth::missingFiles()
{
    std::vector<Damage> missing;
    for (const CatalogFolder& folder : CatalogFolders::all()) {
        for (const auto& [name, tag] : HashFile::read(folder.folder)) {
            if (!listedFile(folder, fileString(name)).pathExists())
                missing.push_back(
                    {name, "it is listed, but not there; the next update fetches it", true, {}});
        }
    }
    return missing;
}

std::vector<LibraryHealth::Damage> LibraryHealth::leftOvers()
{
    Files unfinished, waiting;
    unfinished.add(PartialFiles::defaultFolder(), PartialFiles::kExtension);
    for (const CatalogFolder& folder : CatalogFolders::all()) {
        unfinished.add(folder.downloadFolder, ".download");
        waiting.add(folder.downloadFolder, ".orvlib");
    }
    std::vector<Damage> found;
    if (unfinished.count != 0)
        found.push_back({"", unfinished.text("unfinished download") + " of an earlier update", false, {}});
    if (waiting.count != 0)
        found.push_back({"",
                         waiting.text("new catalog") + " of an update that did not end; the next one" +
                             " puts them in place",
                         false,
                         {}});
    return found;
}

void LibraryHealth::checkCoreCatalogs()
{
    for (const TaggedFile& catalog : taggedCatalogs())
        note(catalog.file, catalogDamage(catalog.file, catalog.tag), true);
}

void LibraryHealth::checkArchives()
{
    checkArchivesIn(PathUtils::getObject().getProprietaryLibraryReferencedFilesPath(), true);
    checkArchivesIn(PathUtils::getObject().getUserTexturePath(), false);
}

void LibraryHealth::checkArchivesIn(const fileString& folder, bool areReferenced)
{
    FilesProgress nobody;
    checkArchivesIn(folder, areReferenced, nobody);
}

void LibraryHealth::checkAll(const std::shared_ptr<ProgressSubject>& progress)
{
    const fileString referenced = PathUtils::getObject().getProprietaryLibraryReferencedFilesPath();
    const fileString textures = PathUtils::getObject().getUserTexturePath();
    std::uint64_t bytes = 0;
    for (const TaggedFile& catalog : taggedCatalogs())
        bytes += sizeOf(catalog.file);
    for (const fileString& folder : {referenced, textures})
        for (const fileString& archive : CatalogFolders::filesIn(folder, ZipUtils::getExtension()))
            bytes += sizeOf(archive);
    FilesProgress files(progress, bytes);
    checkCoreCatalogs(files);
    checkArchivesIn(referenced, true, files);
    checkArchivesIn(textures, false, files);
}

void LibraryHealth::checkCoreCatalogs(FilesProgress& progress)
{
    for (const TaggedFile& catalog : taggedCatalogs()) {
        progress.begin(nameOf(catalog.file), sizeOf(catalog.file));
        const bool isSound = Sha1Tag::equal(catalog.tag, FileHash::sha1Hex(catalog.file, progress));
        progress.end();
        note(catalog.file, isSound ? "" : kWrongTag, true);
    }
}

void LibraryHealth::checkArchivesIn(const fileString& folder, bool areReferenced, FilesProgress& progress)
{
    // The reader wants a shared object; this one lives longer.
    const std::shared_ptr<ProgressSubject> shared(std::shared_ptr<ProgressSubject>(), &progress);
    for (const fileString& archive : CatalogFolders::filesIn(folder, ZipUtils::getExtension())) {
        const std::string name = nameOf(archive);
        progress.begin(name, sizeOf(archive));
        const std::string text = firstDamage(archive, shared);
        progress.end();
        note(archive, text, areReferenced && !text.empty() && !bringerOf(name).name.empty());
    }
}

/// One more file was compared; an empty text is a sound one.
void LibraryHealth::note(const fileString& file, const std::string& text, bool isListed)
{
    ++mChecked;
    const bool isArchive = file.extension() == ZipUtils::getExtension();
    if (!text.empty())
        mDamages.push_back({nameOf(file), text, isListed, isArchive ? file : fileString()});
}

std::string LibraryHealth::catalogDamage(const fileString& catalog, const std::string& tag)
{
    if (!Sha1Tag::isSha1(tag) || Sha1Tag::equal(tag, SHA1::fileContentsToSHA1Hex(catalog)))
        return {};
    return kWrongTag;
}

std::string LibraryHealth::archiveDamage(const fileString& archive)
{
    return firstDamage(archive, nullptr);
}

bool LibraryHealth::forget(const std::string& name)
{
    if (fileString(name).extension() != ZipUtils::getExtension())
        return HashFile::remove(CatalogFolders::core().folder, name);
    const CatalogPlace bringer = bringerOf(name);
    return !bringer.name.empty() && HashFile::remove(bringer.hashFolder(), bringer.name);
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
