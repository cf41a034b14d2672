#include "OrvHost/update/CatalogSwapper.h"

#include "OrvHost/health/DatabaseCheck.h"
#include "OrvHost/update/HashFile.h"
#include "OrvHost/update/Sha1Tag.h"
#include "OrvLibrary/host/FileUtils.h"
#include "OrvLibrary/host/SHA1.h"

namespace OrvHost {

namespace {

/// `FileUtils::removePath` also removes a read-only file.
constexpr int kRemoveReadOnly = 1;

fileString folderOf(const fileString& catalog)
{
    return catalog.parentPathWithSeparator();
}

std::string nameOf(const fileString& catalog)
{
    return catalog.stemWithExtension().toNativeString();
}

std::string storedTag(const fileString& catalog)
{
    const std::map<std::string, std::string> tags = HashFile::read(folderOf(catalog));
    const auto tag = tags.find(nameOf(catalog));
    return tag == tags.end() ? std::string() : tag->second;
}

/// @return whether no line of the hash file speaks of the catalog any more
bool forget(const fileString& catalog)
try {
    return HashFile::remove(folderOf(catalog), nameOf(catalog)) ||
           HashFile::readOrThrow(folderOf(catalog)).count(nameOf(catalog)) == 0;
} catch (const std::exception&) {
    return false; // it cannot be told
}

} // namespace

void CatalogSwapper::recover(const std::set<CatalogPlace>& held)
{
    for (const CatalogFolder& folder : CatalogFolders::all()) {
        // The library gives a file this extension when it is complete; until then it is a ".download".
        for (const fileString& newFile : CatalogFolders::catalogsIn(folder.downloadFolder)) {
            const fileString destination = folder.path(newFile.stemWithExtension());
            if (held.count(CatalogPlaces::ofPath(destination)) == 0)
                recoverCatalog(destination, newFile);
        }
    }
    mHistory.noteTags();
}

void CatalogSwapper::recoverCatalog(const fileString& destination, const fileString& newFile)
{
    if (FileUtils::fileSize(newFile) < 1)
        return;
    const std::string tag = storedTag(destination);
    const std::string checksum = SHA1::fileContentsToSHA1Hex(newFile);
    // The line may be of the former catalog, when the update died before it wrote its hash files, or already
    // of the new one. A checksum tells which.
    const std::string former = destination.pathExists() ? SHA1::fileContentsToSHA1Hex(destination) : "";
    const bool swapped = swapIn(destination, Sha1Tag::equal(tag, former) ? tag : "", newFile);
    // Without a line the next check asks with the new file's own checksum.
    if (!swapped || (Sha1Tag::isSha1(tag) && !Sha1Tag::equal(tag, checksum)))
        forget(destination);
}

bool CatalogSwapper::swapIn(const fileString& destination, const fileString& newFile)
{
    return swapIn(destination, mHistory.tagOf(CatalogPlaces::ofPath(destination)), newFile);
}

bool CatalogSwapper::swapIn(const fileString& destination, const std::string& formerTag,
                            const fileString& newFile)
{
    const std::string problem = replace(destination, formerTag, newFile);
    if (problem.empty())
        mSwappedIn.push_back(destination);
    else
        mFailed.push_back({destination, problem});
    return problem.empty();
}

/// @return what went wrong, for people; empty when nothing did
std::string CatalogSwapper::replace(const fileString& destination, const std::string& formerTag,
                                    const fileString& newFile)
{
    std::string problem = mChecksDatabases ? DatabaseCheck::problemOf(newFile) : std::string();
    if (!problem.empty()) {
        FileUtils::removePath(newFile, kRemoveReadOnly);
        return "the new file " + problem;
    }
    // The same once more, where an update died before it wrote its hash files, is no new version.
    const bool isNew = !destination.pathExists();
    const bool isSame = CatalogHistory::hasSameContents(newFile, destination);
    const CatalogPlace place = CatalogPlaces::ofPath(destination);
    if (!isSame && !mHistory.keep(place, formerTag, problem))
        return problem;
    if (!FileUtils::moveFile(newFile, destination, false))
        return "cannot replace " + destination.toNativeString();
    if (!isSame && !place.name.empty())
        mNews.compare(place, isNew ? fileString() : mHistory.newest(place));
    return {};
}

std::vector<fileString> CatalogSwapper::forgetFailed() const
{
    std::vector<fileString> remaining;
    for (const Failure& failure : mFailed) {
        if (!forget(failure.destination))
            remaining.push_back(failure.destination);
    }
    return remaining;
}

} // namespace OrvHost
