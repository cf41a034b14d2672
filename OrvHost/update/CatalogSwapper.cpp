#include "OrvHost/update/CatalogSwapper.h"

#include "OrvHost/health/DatabaseCheck.h"
#include "OrvHost/update/HashFile.h"
#include "OrvHost/update/Sha1Tag.h"
#include "OrvLibrary/host/FileUtils.h"
#include "OrvLibrary/host/SHA1.h"

namespace OrvHost {

namespace {

/// Makes `FileUtils::removePath` remove read-only files, too.
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

/// @return whether the hash file has no line for the catalog any more
bool forget(const fileString& catalog)
try {
    return HashFile::remove(folderOf(catalog), nameOf(catalog)) ||
           HashFile::readOrThrow(folderOf(catalog)).count(nameOf(catalog)) == 0;
} catch (const std::exception&) {
    return false; // unknown
}

} // namespace

void CatalogSwapper::recover(const std::set<CatalogPlace>& held)
{
    for (const CatalogFolder& folder : CatalogFolders::all()) {
        // The library gives a file this extension when it is complete. Before that it ends with ".download".
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
    // If the update was killed before it wrote its hash files, the line belongs to the former catalog;
    // otherwise to the new one. Comparing the checksum tells which.
    const std::string former = destination.pathExists() ? SHA1::fileContentsToSHA1Hex(destination) : "";
    const bool swapped = swapIn(destination, Sha1Tag::equal(tag, former) ? tag : "", newFile);
    // Without a line, the next check uses the checksum of the new file.
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

void CatalogSwapper::examine(const fileString& newFile)
{
    if (!mChecksDatabases)
        return;
    const std::string problem = DatabaseCheck::problemOf(newFile);
    const std::lock_guard<std::mutex> lock(mMutex);
    mExamined[newFile] = problem;
}

std::string CatalogSwapper::problemOf(const fileString& newFile)
{
    if (!mChecksDatabases)
        return {};
    {
        const std::lock_guard<std::mutex> lock(mMutex);
        const auto examined = mExamined.extract(newFile);
        if (!examined.empty())
            return examined.mapped();
    }
    return DatabaseCheck::problemOf(newFile);
}

/// @return the problem, for people; empty if there is none
std::string CatalogSwapper::replace(const fileString& destination, const std::string& formerTag,
                                    const fileString& newFile)
{
    std::string problem = problemOf(newFile);
    if (!problem.empty()) {
        FileUtils::removePath(newFile, kRemoveReadOnly);
        return "the new file " + problem;
    }
    // If an update was killed before it wrote its hash files, the same file comes again; that is not a new
    // version.
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
