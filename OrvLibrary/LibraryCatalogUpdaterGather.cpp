// Gathering: finds the catalogs and the tag of each installed copy.
#include "OrvLibrary/LibraryCatalogUpdater.h"

#include <new>
#include <vector>

#include "OrvLibrary/IO/ErrorLog.h"
#include "OrvLibrary/catalog/CatalogEvents_p.h"
#include "OrvLibrary/catalog/CatalogHashFile_p.h"
#include "OrvLibrary/catalog/CatalogHashesAhead_p.h"
#include "OrvLibrary/catalog/CatalogIndex_p.h"
#include "OrvLibrary/catalog/CatalogSources_p.h"
#include "OrvLibrary/catalog/CatalogUpdaterState_p.h"
#include "OrvLibrary/host/Application.h"
#include "OrvLibrary/host/Curl.h"
#include "OrvLibrary/host/PreferenceEngine.h"
#include "OrvLibrary/host/StringTable.h"
#include "OrvLibrary/host/StringUtils.h"

namespace LibraryCatalogUpdate {

namespace {

/// The files that need a hash, each name once. Leaves out paths that may lead out of their folder; they are
/// checked later. Empty if memory runs out; then each file is hashed when it is needed.
std::vector<fileString> filesToHash(const std::set<fileString>& files, const CatalogMap& catalogs)
try {
    std::vector<fileString> unknown;
    std::set<fileString> names;
    for (const fileString& file : files) {
        const fileString name = file.stemWithExtension();
        const bool isPlain = file.toNativeString().find("/../") == std::string::npos;
        if (isPlain && catalogs.count(name) == 0 && names.insert(name).second)
            unknown.push_back(file);
    }
    return unknown;
} catch (const std::bad_alloc&) {
    return {};
}

} // namespace

bool LibraryCatalogUpdater::isCoreExcluded()
try {
    return PreferenceEngine::getThePrefs().getPrefAs<bool>(PrefId::kExcludeCoreContent);
} catch (...) {
    noteException("Unable to read a preference");
    return false;
}

void LibraryCatalogUpdater::gatherCoreCatalogs(std::set<fileString>& coreFiles)
{
    std::string url;
    try {
        std::string index;
        url = sourceUrl(hostApplication().contentIndexName(), Library::kCoreLibrary, mProduct, mVersion);
        if (!url.empty() && Curl::get().browseURL(url, {}, index, true, 0)) {
            addIndexEntries(index, coreFiles);
            return;
        }
    } catch (...) {
        rethrowMissingApplication();
    }
    mHadError = true;
    Library::ErrorLog() << "Failed to Download Core Library Index File:  " << url << "\n";
}

void LibraryCatalogUpdater::gatherLibraryCatalogs(const std::set<fileString>& files,
                                                  Library::LibraryCategory category)
{
    if (isDownloadKilled() || files.empty())
        return;
    mHostObject->setText(hostText(TextId::kLookingForCatalogs));
    loadHashFile(category);
    mHostObject->setRangeInGauge(files.size());
    const std::string prefix = hostText(TextId::kFound);
    CatalogHashesAhead hashes(filesToHash(files, mCatalogs));
    for (const fileString& file : files) {
        if (isDownloadKilled())
            break;
        gatherCatalog(file, category, prefix, hashes);
        mHostObject->updateInGauge();
    }
}

void LibraryCatalogUpdater::loadHashFile(Library::LibraryCategory category)
try {
    readCatalogHashMap(mCatalogs, category);
} catch (...) {
    noteException("Unable to read a hash file");
}

void LibraryCatalogUpdater::gatherCatalog(const fileString& file, Library::LibraryCategory category,
                                          const std::string& prefix, CatalogHashesAhead& hashes)
try {
    const fileString name = file.stemWithExtension();
    // Deliberate: the name is in Windows-1252, after a translated prefix in UTF-8.
    // Kept by: LibraryCatalogUpdaterGather.gatheringTellsHeadingRangeAndEachCatalog
    mHostObject->setText(prefix + StringUtils::toWin1252(name.unicodeString()));
    const auto known = mCatalogs.find(name);
    if (known != mCatalogs.end()) {
        known->second.category = category;
        return;
    }
    CatalogUpdateData record;
    record.category = category;
    // A missing file has no hash, so the web service sends it. The same goes for a path that leads out of its
    // folder, because the service must not learn what is there.
    if (isInstalledPath(file, category))
        record.localHash = hashes.hashOf(file);
    mCatalogs.emplace(name, record);
} catch (...) {
    noteException("Unable to gather:  ", file);
}

} // namespace LibraryCatalogUpdate
