#include "OrvHost/history/HeldVersions.h"

#include <algorithm>
#include <exception>

#include "OrvHost/health/DatabaseCheck.h"
#include "OrvHost/history/CatalogAddress.h"
#include "OrvHost/history/CatalogPins.h"
#include "OrvLibrary/IO/LibraryImport.h"
#include "OrvLibrary/host/FileUtils.h"
#include "OrvLibrary/host/PathUtils.h"

namespace OrvHost {

namespace {

/// A new folder for this run, removed at its end.
class WorkFolder
{
public:
    WorkFolder() : mPath(PathUtils::getObject().getTempPath() / fileString("held-versions"))
    {
        FileUtils::removeDirectoryAndFiles(mPath, 1);
        FileUtils::createDirectoriesWithPerm(mPath, true);
    }
    ~WorkFolder() { FileUtils::removeDirectoryAndFiles(mPath, 1); }
    WorkFolder(const WorkFolder&) = delete;
    WorkFolder& operator=(const WorkFolder&) = delete;

    const fileString& path() const { return mPath; }

private:
    fileString mPath;
};

int askCancelled(void* context, double, double, double, double)
{
    return (*static_cast<const std::function<bool()>*>(context))() ? 1 : 0;
}

bool isThere(const CatalogHistory& history, const VersionKeeper::Offer& offer)
{
    const std::vector<FormerVersion> versions = history.versions(offer.place);
    return std::any_of(versions.begin(), versions.end(),
                       [&](const FormerVersion& version) { return version.version == offer.version; });
}

/// Moves a download into the history. A packed catalog is unpacked first.
/// @return the problem; empty if there is none
std::string install(const VersionKeeper::Offer& offer, const fileString& file, bool checksDatabases)
{
    fileString catalog = file, companion;
    if (!offer.place.companion().name.empty()) {
        const auto [library, referenced] = LibraryImport::unpack(file, false, nullptr);
        if (!library.first)
            return "no catalog is in the archive";
        catalog = library.second;
        companion = referenced.second;
    }
    const bool isCatalog = offer.place.category != CatalogCategory::Referenced;
    const std::string problem =
        checksDatabases && isCatalog ? DatabaseCheck::problemOf(catalog) : std::string();
    if (!problem.empty())
        return "the new file " + problem;
    std::string reason;
    CatalogHistory().add(offer.place, offer.version, catalog, companion, reason);
    return reason;
}

std::string fetchOne(Curl& service, const VersionKeeper::Offer& offer, bool checksDatabases,
                     const std::function<bool()>& isCancelled)
{
    const WorkFolder folder;
    const fileString target = folder.path() / fileString(CatalogAddress::nameIn(offer.url));
    std::string reason;
    int errorNumber = 0;
    try {
        if (!service.download_to_location(offer.url, target, offer.headerLines,
                                          const_cast<std::function<bool()>*>(&isCancelled), askCancelled,
                                          reason, errorNumber))
            return reason.empty() ? "the download failed" : reason;
        return install(offer, target, checksDatabases);
    } catch (const std::exception& error) {
        return error.what();
    }
}

} // namespace

std::vector<HeldVersions::Failure> HeldVersions::fetch(Curl& service,
                                                       const std::vector<VersionKeeper::Offer>& offers,
                                                       bool checksDatabases,
                                                       const std::function<bool()>& isCancelled)
{
    std::vector<Failure> failures;
    const CatalogHistory history;
    for (const VersionKeeper::Offer& offer : offers) {
        if (isCancelled())
            return {};
        if (isThere(history, offer))
            continue;
        const std::string problem = fetchOne(service, offer, checksDatabases, isCancelled);
        if (!problem.empty() && !isCancelled())
            failures.push_back({offer.place, problem});
    }
    return failures;
}

bool HeldVersions::note(CatalogPins& pins, const std::vector<VersionKeeper::Offer>& offers)
{
    bool isChanged = false;
    const CatalogHistory history;
    for (const VersionKeeper::Offer& offer : offers) {
        const auto held = pins.held().find(offer.place);
        if (held == pins.held().end() || held->second.newer == offer.version || !isThere(history, offer))
            continue;
        pins.hold(offer.place, {held->second.version, offer.version});
        isChanged = true;
    }
    return isChanged;
}

} // namespace OrvHost
