// How it works: the steps are in an order that makes it safe to be killed at any time. First the current file
// gets a second name in the history. Then the pins are written, which keep the next update from undoing the
// change; they count only while the restored content is in place. The hash line is removed before the files
// change and is written again after that, because without a line an update uses the SHA-1 of the file it
// finds.
#include "OrvHost/history/VersionRestore.h"

#include <algorithm>
#include <stdexcept>

#include "OrvHost/history/CatalogPins.h"
#include "OrvHost/update/CatalogFolders.h"
#include "OrvHost/update/HashFile.h"
#include "OrvLibrary/host/FileSearch.h"
#include "OrvLibrary/host/FileUtils.h"
#include "OrvLibrary/host/SHA1.h"

namespace OrvHost {

namespace {

FormerVersion chosenVersion(const CatalogHistory& history, const CatalogPlace& place,
                            const std::string& version)
{
    const std::vector<FormerVersion> versions = history.versions(place);
    if (versions.empty())
        throw std::runtime_error(place.name + " has no former versions");
    const auto chosen =
        version.empty() ? versions.begin()
                        : std::find_if(versions.begin(), versions.end(), [&](const FormerVersion& former) {
                              return former.version == version;
                          });
    if (chosen == versions.end())
        throw std::runtime_error(place.name + " has no former version '" + version + "'");
    return *chosen;
}

void keep(CatalogHistory& history, const CatalogPlace& place)
{
    std::string reason;
    if (!history.keep(place, place.tagOrThrow(), reason))
        throw std::runtime_error(reason);
}

/// Removes the new file of a killed update. The next update would otherwise put it over the restored version.
void removeWaiting(const CatalogPlace& place)
{
    for (const CatalogFolder& folder : CatalogFolders::all()) {
        if (folder.folder == place.folder())
            FileUtils::removePath(folder.downloadFolder / fileString(place.name));
    }
}

/// If a restore was killed after it had removed the hash line, the version is still in the name of the link
/// in the history.
void mendTag(const CatalogHistory& history, const CatalogPlace& place)
{
    const std::string tag = history.newestTag(place);
    if (place.tagOrThrow().empty() && !tag.empty() &&
        CatalogHistory::hasSameContents(history.newest(place), place.path()))
        HashFile::set(place.hashFolder(), place.name, tag);
}

void forgetTag(const CatalogPlace& place)
{
    if (!place.tagOrThrow().empty() && !HashFile::remove(place.hashFolder(), place.name))
        throw std::runtime_error("cannot write the hash file in " + place.hashFolder().toNativeString());
}

void put(const fileString& file, const CatalogPlace& place)
{
    if (!FileUtils::renameFile(file, place.path()))
        throw std::runtime_error("cannot replace " + place.path().toNativeString());
}

void putCompanion(const fileString& file, const CatalogPlace& companion)
{
    if (file.empty())
        return;
    forgetTag(companion);
    put(file, companion);
    FileSearch::get().resetFileSearch(companion.folder());
}

/// @throws std::runtime_error if the file cannot be read
std::string contentsOf(const fileString& file)
{
    const std::string contents = SHA1::fileContentsToSHA1Hex(file);
    if (contents.empty())
        throw std::runtime_error("cannot read " + file.toNativeString());
    return contents;
}

void record(CatalogPins& pins, const CatalogPlace& place, const FormerVersion& chosen,
            const std::string& former)
{
    const auto before = pins.restored().find(place);
    CatalogPins::Restored restored;
    if (before != pins.restored().end())
        restored = before->second;
    restored.version = chosen.version;
    restored.contents = contentsOf(chosen.file);
    restored.leaves.insert(former);
    restored.leaves.erase(chosen.version);
    restored.leaves.erase("");
    pins.setRestored(place, restored);
    const auto held = pins.held().find(place);
    if (held != pins.held().end())
        pins.hold(place, {chosen.version, held->second.newer == chosen.version ? "" : held->second.newer});
    pins.save();
}

} // namespace

std::string VersionRestore::versionInPlace(const CatalogPlace& place)
{
    if (!place.path().pathExists())
        return {};
    const std::string tag = place.tagOrThrow();
    return tag.empty() ? contentsOf(place.path()) : tag;
}

VersionRestore::Result VersionRestore::restore(const fileString& root, const std::string& name,
                                               const std::string& version,
                                               const CatalogHistory::Bounds& bounds)
{
    Result result;
    CatalogPins::change(root, [&](CatalogPins& pins) {
        CatalogHistory history(bounds);
        pins.reconcile(); // after a killed restore, the hash line may be missing
        const CatalogPlace place = CatalogPlaces::find(name, history.knownPlaces());
        const FormerVersion chosen = chosenVersion(history, place, version);
        mendTag(history, place);
        result = {place, chosen.version, versionInPlace(place)};
        removeWaiting(place);
        keep(history, place.companion());
        keep(history, place);
        record(pins, place, chosen, result.former);
        // An archive that came with a bonus catalog has no line, and the service must not be asked for it.
        const bool isListed = place.category != CatalogCategory::Referenced || !place.tagOrThrow().empty();
        forgetTag(place);
        putCompanion(chosen.companion, place.companion());
        put(chosen.file, place);
        if (isListed)
            HashFile::set(place.hashFolder(), place.name, chosen.version);
        history.settle();
    });
    if (result.place.category == CatalogCategory::Referenced)
        FileSearch::get().resetFileSearch(result.place.folder());
    return result;
}

} // namespace OrvHost
