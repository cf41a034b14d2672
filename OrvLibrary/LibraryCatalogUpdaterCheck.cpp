// The check: asks the web service about each catalog and adds up what must be downloaded.
#include "OrvLibrary/LibraryCatalogUpdater.h"

#include <vector>

#include "OrvLibrary/catalog/CatalogAnswer_p.h"
#include "OrvLibrary/catalog/CatalogEvents_p.h"
#include "OrvLibrary/catalog/CatalogSources_p.h"
#include "OrvLibrary/catalog/CatalogUpdaterState_p.h"
#include "OrvLibrary/host/Curl.h"
#include "OrvLibrary/host/StringTable.h"
#include "OrvLibrary/host/StringUtils.h"

namespace LibraryCatalogUpdate {

namespace {

constexpr std::int64_t kHttpForbidden = 403;
constexpr std::int64_t kHttpNotFound = 404;
constexpr std::uint64_t kBytesPerKilobyte = 1000;

/// Announces the header requests, so that the download service may send them ahead. If it throws, the
/// requests are sent one by one.
void announce(const std::vector<Curl::HeaderRequest>& requests)
try {
    Curl::get().prefetchHeaders(requests);
} catch (...) {
}

/// The requests for the records from `first` on, exactly as they will be sent.
std::vector<Curl::HeaderRequest> requestsFrom(CatalogMap::const_iterator first, const CatalogMap& catalogs,
                                              const std::string& product, const std::string& version)
{
    std::vector<Curl::HeaderRequest> requests;
    for (; first != catalogs.end(); ++first)
        requests.push_back(requestFor(first->first, first->second, product, version));
    return requests;
}

} // namespace

// Deliberate: the cancel flag is not checked here. Every record gets its answer, so that the hash files of a
// cancelled run are complete.
// Kept by: LibraryCatalogUpdaterCheck.aCancelWhileCheckingFinishesTheChecksAndSavesAllHashFiles
void LibraryCatalogUpdater::checkForUpdates()
{
    mHostObject->setRangeInGauge(mCatalogs.size());
    const std::string prefix = hostText(TextId::kCheckingForUpdates);
    bool isAnnounced = false;
    for (auto next = mCatalogs.begin(); next != mCatalogs.end(); ++next) {
        // Only if the endpoint is known. Looking for it here would log its failure twice.
        if (!isAnnounced && !kApiEndpoint.empty()) {
            announce(requestsFrom(next, mCatalogs, mProduct, mVersion));
            isAnnounced = true;
        }
        checkForUpdate(next->first, next->second, prefix);
        mHostObject->updateInGauge();
    }
    if (isAnnounced)
        announce({});
}

void LibraryCatalogUpdater::checkForUpdate(const fileString& name, CatalogUpdateData& record,
                                           const std::string& prefix)
try {
    mHostObject->setText(prefix + StringUtils::toWin1252(name.unicodeString()));
    const Curl::HeaderRequest request = requestFor(name, record, mProduct, mVersion);
    std::string headerText;
    std::int64_t status = 0;
    if (request.url.empty() ||
        !Curl::get().getURLHeader(request.url, request.headerLines, headerText, status)) {
        mHadError = true;
        return;
    }
    readAnswer(headerText, status, record);
    if (status == kHttpForbidden || status == kHttpNotFound)
        fetchErrorPage(name, record);
} catch (...) {
    noteException("Unable to check:  ", name);
}

void LibraryCatalogUpdater::fetchErrorPage(const fileString& name, CatalogUpdateData& record)
{
    const Curl::HeaderRequest request = requestFor(name, record, mProduct, mVersion);
    std::string page;
    // An error page counts as a failed request, but its text is needed here.
    if (!request.url.empty())
        Curl::get().browseURL(request.url, request.headerLines, page, true, 0);
    record.errorText = page;
}

void LibraryCatalogUpdater::updateTotalDownloadSize()
{
    if (isDownloadKilled())
        return;
    kbytes_to_read = 0;
    for (const auto& [name, record] : mCatalogs) {
        // Deliberate: kilobytes are rounded down for each file, so a file below 1000 bytes counts as 0.
        // Kept by: LibraryCatalogUpdaterCheck.theTotalIsTheSumOfWholeKilobytes
        if (record.needsUpdate())
            kbytes_to_read = addSaturating(kbytes_to_read, record.contentLength / kBytesPerKilobyte);
    }
    if (kbytes_to_read == 0)
        return;
    mHostObject->setRangeInGauge(kbytes_to_read);
    mHostObject->setUnits(hostText(TextId::kKilobytes));
}

} // namespace LibraryCatalogUpdate
