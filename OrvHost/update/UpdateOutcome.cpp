// How it works: the service's report tells what was requested, answered and downloaded. The swapper tells
// what was put into place. The hash files, as written by the run, tell what the library regards as installed.
// `Failures` compares the three for each catalog. Its list, the library's result and the report determine the
// error of a run that failed as a whole, and the kind of the outcome.
#include "OrvHost/update/UpdateOutcome.h"

#include <algorithm>

#include "OrvHost/update/CatalogFolders.h"
#include "OrvHost/update/HashFile.h"
#include "OrvLibrary/host/SQL.h"

namespace OrvHost {

using LibraryCatalogUpdate::UpdateData;

namespace {

using Failure = UpdateOutcome::Failure;
using Kind = UpdateOutcome::Kind;

constexpr std::int64_t kBytesPerKilobyte = 1000;

std::optional<std::int64_t> known(std::int64_t status)
{
    return status == 0 ? std::nullopt : std::optional<std::int64_t>(status);
}

std::string stemOf(const std::string& name)
{
    return fileString(name).stem().toNativeString();
}

bool isChecked(const CatalogReport& catalog)
{
    return catalog.isFound() || catalog.isUnchanged() || catalog.isMissing();
}

/// Finds out what failed.
class Failures
{
public:
    Failures(const ServiceReport& service, const CatalogSwapper& swapper, const UpdateOutcome& outcome)
        : mService(service), mSwapper(swapper), mOutcome(outcome)
    {
    }

    std::vector<Failure> all()
    {
        addRequest(mService.endpoint);
        if (mList.empty())
            addRequest(mService.index);
        for (const CatalogReport& catalog : mService.catalogs)
            addCatalog(catalog);
        addSwaps();
        return mList;
    }

private:
    void addRequest(const RequestReport& request)
    {
        if (request.isAsked && !request.isGood && !request.reason.empty())
            mList.push_back({std::nullopt, known(request.status), request.reason});
    }

    void addCatalog(const CatalogReport& catalog)
    {
        const auto [status, reason] = problemOf(catalog);
        if (!reason.empty())
            mList.push_back({nameOf(catalog), known(status), reason});
    }

    std::string nameOf(const CatalogReport& catalog) const
    {
        return mService.indexNames.count(catalog.asked) != 0 ? catalog.asked : installedName(catalog.asked);
    }

    /// The HTTP status and the reason. The reason is empty if there is no failure.
    std::pair<std::int64_t, std::string> problemOf(const CatalogReport& catalog) const
    {
        if (catalog.isMissing())
            return {catalog.status, mService.indexNames.count(catalog.asked) != 0 ? catalog.reason : ""};
        if (catalog.isDownloadTried && !catalog.isDownloaded)
            return {catalog.bodyStatus, catalog.reason};
        if (catalog.isNew() && !catalog.isDownloadTried && catalog.reason.empty())
            return {catalog.status, reasonNotTried(catalog)};
        // If a catalog is not new, this was the download of a held catalog's version for the history.
        if (catalog.isNew() && catalog.isDownloaded && !isInstalled(catalog))
            return {catalog.status, "it could not be installed"};
        return {catalog.status, catalog.reason};
    }

    std::string reasonNotTried(const CatalogReport& catalog) const
    {
        if (!mOutcome.result)
            return {}; // the user cancelled, so it did not fail
        if (!mService.verdict.empty())
            return mService.verdict;
        if (!catalog.length)
            return "the service did not tell its length, so that it was not fetched";
        if (!catalog.tag)
            return "the service did not tell its version, so that it was not fetched";
        const bool isTooLittle =
            std::none_of(mService.catalogs.begin(), mService.catalogs.end(), [](const CatalogReport& other) {
                return other.isNew() && other.length.value_or(0) >= kBytesPerKilobyte;
            });
        return isTooLittle ? "less than a kilobyte has changed in all, which is not fetched"
                           : "it was not fetched, because an installation before it failed";
    }

    bool isInstalled(const CatalogReport& catalog) const
    {
        const std::string name = nameOf(catalog);
        return isSwapped(name) || isRefused(name) || mOutcome.updatedCatalogs.count(stemOf(name)) != 0 ||
               isListed(name, catalog.tag);
    }

    bool isSwapped(const std::string& name) const
    {
        const std::vector<fileString>& destinations = mSwapper.swappedIn();
        return std::any_of(destinations.begin(), destinations.end(), [&name](const fileString& destination) {
            return destination.stemWithExtension().toNativeString() == name;
        });
    }

    /// Whether putting it into place failed, which is reported separately.
    bool isRefused(const std::string& name) const
    {
        return std::any_of(mSwapper.failed().begin(), mSwapper.failed().end(), [&name](const auto& failure) {
            return failure.destination.stemWithExtension().toNativeString() == name;
        });
    }

    static bool isListed(const std::string& name, const std::optional<std::string>& tag)
    {
        for (const CatalogFolder& folder : CatalogFolders::all()) {
            const auto tags = HashFile::read(folder.folder);
            const auto line = tags.find(name);
            if (tag && line != tags.end() && line->second == *tag)
                return true;
        }
        return false;
    }

    /// A catalog that was put into place in the end did not fail: a killed run left it damaged, and this run
    /// downloaded it again.
    void addSwaps()
    {
        for (const CatalogSwapper::Failure& failure : mSwapper.failed()) {
            const std::string name = failure.destination.stemWithExtension().toNativeString();
            if (!isSwapped(name))
                mList.push_back({name, statusOf(name), failure.reason});
        }
    }

    std::optional<std::int64_t> statusOf(const std::string& name) const
    {
        for (const CatalogReport& catalog : mService.catalogs) {
            if (nameOf(catalog) == name)
                return known(catalog.status);
        }
        return std::nullopt;
    }

    const ServiceReport& mService;
    const CatalogSwapper& mSwapper;
    const UpdateOutcome& mOutcome;
    std::vector<Failure> mList;
};

/// Why the run failed as a whole; empty if it did not.
std::string errorOf(const UpdateOutcome& outcome)
{
    const ServiceReport& service = outcome.service;
    if (!service.verdict.empty())
        return service.verdict;
    if (service.endpoint.isAsked && !service.endpoint.isGood)
        return "the catalog web service was not found: " + service.endpoint.reason;
    if (service.index.isAsked && !service.index.isGood)
        return "the content index could not be fetched: " + service.index.reason;
    const auto& catalogs = service.catalogs;
    if (!catalogs.empty() && std::none_of(catalogs.begin(), catalogs.end(), isChecked))
        return "no catalog could be checked: " + outcome.failedText();
    if (!outcome.result)
        return {};
    const bool hasError = *outcome.result == LibraryCatalogUpdate::kResultFailed ||
                          *outcome.result == LibraryCatalogUpdate::kResultCoreFailed;
    return hasError && outcome.failed.empty() ? "an error was written to the log" : "";
}

Kind kindOf(const UpdateOutcome& outcome)
{
    if (!outcome.result)
        return Kind::Cancelled;
    if (!outcome.error.empty())
        return Kind::Failed;
    if (!outcome.failed.empty())
        return Kind::Incomplete;
    return outcome.updatedCatalogs.empty() ? Kind::Current : Kind::Updated;
}

/// Adds what could not be checked and is not in the list yet.
void addUnknown(std::vector<Failure>& failed, const CheckOutcome& found)
{
    for (const CheckOutcome::Catalog& catalog : found.catalogs) {
        const bool isListed = std::any_of(failed.begin(), failed.end(), [&catalog](const Failure& failure) {
            return failure.catalog == catalog.place.name;
        });
        if (catalog.state == CheckOutcome::State::Unknown && !isListed)
            failed.push_back({catalog.place.name, known(catalog.status), catalog.why});
    }
}

/// The names reported by the library, without those that were refused afterwards.
std::set<std::string> updatedNames(const UpdateData& closing, const CatalogSwapper& swapper)
{
    std::set<std::string> names;
    for (const std::string& name : closing.updatedCatalogs)
        names.insert(SQL::to_utf8(name));
    const std::vector<fileString>& swappedIn = swapper.swappedIn();
    for (const CatalogSwapper::Failure& failure : swapper.failed()) {
        if (std::find(swappedIn.begin(), swappedIn.end(), failure.destination) == swappedIn.end())
            names.erase(failure.destination.stem().toNativeString());
    }
    return names;
}

} // namespace

UpdateOutcome UpdateOutcome::of(const ServiceReport& service, const CatalogSwapper& swapper,
                                const std::optional<UpdateData>& closing)
{
    UpdateOutcome outcome;
    outcome.service = service;
    outcome.swappedIn = swapper.swappedIn();
    if (closing) {
        outcome.result = closing->result;
        if (closing->messageCode != LibraryCatalogUpdate::kMessageNone)
            outcome.messageCode = closing->messageCode;
        outcome.updatedCatalogs = updatedNames(*closing, swapper);
    }
    outcome.failed = Failures(service, swapper, outcome).all();
    if (closing)
        outcome.error = errorOf(outcome);
    outcome.kind = kindOf(outcome);
    return outcome;
}

UpdateOutcome UpdateOutcome::ofPostponed(const ServiceReport& service, const CatalogSwapper& swapper,
                                         const CheckOutcome& found)
{
    UpdateOutcome outcome;
    outcome.service = service;
    outcome.swappedIn = swapper.swappedIn();
    outcome.failed = Failures(service, swapper, outcome).all();
    addUnknown(outcome.failed, found);
    for (const CheckOutcome::Catalog& catalog : found.catalogs) {
        if (catalog.waits())
            outcome.postponed.push_back({catalog.place.name, catalog.bytes});
    }
    outcome.error = errorOf(outcome);
    if (!outcome.error.empty())
        outcome.kind = Kind::Failed;
    else if (!outcome.failed.empty())
        outcome.kind = Kind::Incomplete;
    else
        outcome.kind = outcome.postponed.empty() ? Kind::Current : Kind::Waiting;
    return outcome;
}

} // namespace OrvHost
