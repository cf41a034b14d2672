// How it works: the history consists only of its files. The name of each file has the time and the version,
// so there is no separate list that could differ. One link keeps a version, and one rename restores it. The
// archive that belongs to a catalog is kept before it and removed after it. `settle` removes everything else.
#include "OrvHost/history/CatalogHistory.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <set>

#include "OrvHost/history/HistoryEntry.h"
#include "OrvHost/history/HistoryFolder.h"
#include "OrvHost/update/CatalogFolders.h"
#include "OrvHost/update/HashFile.h"
#include "OrvLibrary/host/FileUtils.h"
#include "OrvLibrary/host/SHA1.h"

namespace OrvHost {

namespace fs = std::filesystem;

using HistoryFolder::isRegularFile;
using HistoryFolder::isSameFile;
using HistoryFolder::namesIn;

namespace {

constexpr std::streamsize kPiece = 64 * 1024;

/// Gives a file a second name. Copies it if that is not possible.
bool linkOrCopy(const fileString& from, const fileString& to, std::string& reason)
{
    std::error_code error;
    const fs::path file = fs::canonical(from.toNativeString(), error);
    if (!error)
        fs::create_hard_link(file, to.toNativeString(), error);
    if (!error || FileUtils::copyFile(from, to, false))
        return true;
    reason = "cannot keep " + from.toNativeString() + " as " + to.toNativeString() + ": " + error.message();
    return false;
}

bool makeFolder(const fileString& folder, std::string& reason)
{
    if (FileUtils::createDirectoriesWithPerm(folder, false))
        return true;
    reason = "cannot create the folder " + folder.toNativeString();
    return false;
}

std::string whyNotRead(const fs::filesystem_error& error)
{
    return "cannot read " + error.path1().string() + ": " + error.code().message();
}

} // namespace

bool CatalogHistory::hasSameContents(const fileString& left, const fileString& right)
{
    if (isSameFile(left, right))
        return true;
    if (FileUtils::fileSize(left) < 0 || FileUtils::fileSize(left) != FileUtils::fileSize(right))
        return false;
    std::ifstream first(left.toNativeString(), std::ios_base::binary);
    std::ifstream second(right.toNativeString(), std::ios_base::binary);
    std::vector<char> a(kPiece), b(kPiece);
    while (first.is_open() && second.is_open()) {
        first.read(a.data(), kPiece);
        second.read(b.data(), kPiece);
        const auto count = first.gcount();
        if (count != second.gcount() || !std::equal(a.begin(), a.begin() + count, b.begin()))
            return false;
        if (first.eof() && second.eof())
            return true;
        if (!first || !second)
            return false;
    }
    return false;
}

fileString CatalogHistory::folder()
{
    return CatalogFolders::root() / fileString("history");
}

fileString CatalogHistory::folderOf(const CatalogPlace& place)
{
    return folder() / fileString(place.key());
}

void CatalogHistory::noteTags()
{
    for (const CatalogFolder& kind : CatalogFolders::all())
        mTags[kind.folder.toNativeString()] = HashFile::read(kind.folder);
}

std::string CatalogHistory::tagOf(const CatalogPlace& place)
{
    const fileString folder = place.hashFolder();
    const auto [tags, isNew] = mTags.try_emplace(folder.toNativeString());
    if (isNew)
        tags->second = HashFile::read(folder);
    const auto tag = tags->second.find(place.name);
    return tag == tags->second.end() ? std::string() : tag->second;
}

bool CatalogHistory::keep(const CatalogPlace& place, std::string& reason)
{
    return keep(place, tagOf(place), reason);
}

bool CatalogHistory::keep(const CatalogPlace& place, const std::string& tag, std::string& reason)
try {
    const fileString file = place.path();
    if (place.name.empty() || !isRegularFile(file))
        return true;
    const std::vector<HistoryEntry> entries = HistoryEntry::ofOrThrow(place);
    // A run that was killed or failed may have kept it already, as a copy if there are no hard links.
    const HistoryEntry* const newest = entries.empty() ? nullptr : &entries.front();
    if (newest && (newest->tag == tag ? hasSameContents(newest->file, file) : isSameFile(newest->file, file)))
        return true;
    const bool isStale = std::any_of(entries.begin(), entries.end(),
                                     [&](const HistoryEntry& entry) { return entry.tag == tag; });
    const HistoryEntry entry = HistoryEntry::next(place, isStale ? std::string() : tag);
    if (!makeFolder(folderOf(place), reason))
        return false;
    const CatalogPlace companion = place.companion();
    if (!companion.name.empty()) {
        // The first that was kept since the former version. An update that replaced the archive but not the
        // catalog is followed by one that keeps the archive again.
        fileString archive = companion.path();
        for (const HistoryEntry& kept : HistoryEntry::ofOrThrow(companion)) {
            if (!newest || kept.time > newest->time)
                archive = kept.file;
        }
        if (isRegularFile(archive) && !linkOrCopy(archive, entry.companion(), reason))
            return false;
    }
    return linkOrCopy(file, entry.file, reason);
} catch (const fs::filesystem_error& error) {
    reason = whyNotRead(error);
    return false;
}

bool CatalogHistory::add(const CatalogPlace& place, const std::string& tag, const fileString& file,
                         const fileString& companion, std::string& reason)
try {
    if (!makeFolder(folderOf(place), reason))
        return false;
    const HistoryEntry entry = HistoryEntry::next(place, tag);
    if (!companion.empty() && !FileUtils::moveFile(companion, entry.companion(), false)) {
        reason = "cannot move " + companion.toNativeString() + " to " + entry.companion().toNativeString();
        return false;
    }
    if (FileUtils::moveFile(file, entry.file, false))
        return true;
    reason = "cannot move " + file.toNativeString() + " to " + entry.file.toNativeString();
    return false;
} catch (const fs::filesystem_error& error) {
    reason = whyNotRead(error);
    return false;
}

fileString CatalogHistory::newest(const CatalogPlace& place) const
{
    const std::vector<HistoryEntry> entries = HistoryEntry::of(place);
    return entries.empty() ? fileString() : entries.front().file;
}

std::string CatalogHistory::newestTag(const CatalogPlace& place) const
{
    const std::vector<HistoryEntry> entries = HistoryEntry::of(place);
    return entries.empty() ? std::string() : entries.front().tag;
}

std::vector<FormerVersion> CatalogHistory::versions(const CatalogPlace& place) const
{
    std::vector<FormerVersion> versions;
    for (const HistoryEntry& entry : HistoryEntry::of(place)) {
        if (hasSameContents(entry.file, place.path()))
            continue;
        FormerVersion version;
        version.version = entry.tag.empty() ? SHA1::fileContentsToSHA1Hex(entry.file) : entry.tag;
        version.bytes = FileUtils::fileSize(entry.file);
        version.replaced = entry.time;
        version.file = entry.file;
        if (entry.companion() != entry.file && isRegularFile(entry.companion()))
            version.companion = entry.companion();
        versions.push_back(version);
    }
    return versions;
}

std::vector<CatalogPlace> CatalogHistory::places() const
{
    std::vector<CatalogPlace> places;
    for (const fileString& category : namesIn(folder())) {
        for (const fileString& place : namesIn(category)) {
            const CatalogPlace found = CatalogPlaces::ofKey(category.stemWithExtension().toNativeString() +
                                                            "/" + place.stemWithExtension().toNativeString());
            if (!found.name.empty())
                places.push_back(found);
        }
    }
    std::sort(places.begin(), places.end());
    return places;
}

std::vector<CatalogPlace> CatalogHistory::knownPlaces() const
{
    const std::vector<CatalogPlace> installed = CatalogPlaces::installed(), former = places();
    std::set<CatalogPlace> known(installed.begin(), installed.end());
    known.insert(former.begin(), former.end());
    return {known.begin(), known.end()};
}

} // namespace OrvHost
