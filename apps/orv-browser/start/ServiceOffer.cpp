// The addresses are those of an update. The answers are judged by the careful download service, so that a
// login page is no offer here either.
#include "apps/orv-browser/start/ServiceOffer.h"

#include <algorithm>
#include <sstream>

#include "OrvHost/update/CarefulCurl.h"
#include "OrvLibrary/host/Curl.h"

namespace {

const std::string kCatalog = ".orvlib";
const std::string kPacked = ".orvlibz";
const std::string kArchive = ".zip";
const std::string kCore = "_Core_Content_Index.txt";

/// The download service asks without an argument, on the thread of the request.
thread_local const std::atomic<bool>* tCancelled = nullptr;

bool isCancelledHere()
{
    return tCancelled && *tCancelled;
}

/// Lets the requests of this thread end when the user wants something else, until the end of the block.
class CancelScope
{
public:
    explicit CancelScope(const std::atomic<bool>& cancelled)
    {
        tCancelled = &cancelled;
        mFormer = Curl::setCancelQuestion(&isCancelledHere);
    }
    ~CancelScope()
    {
        Curl::setCancelQuestion(mFormer);
        tCancelled = nullptr;
    }
    CancelScope(const CancelScope&) = delete;
    CancelScope& operator=(const CancelScope&) = delete;

private:
    Curl::CancelQuestion mFormer = nullptr;
};

bool endsWith(const std::string& text, const std::string& end)
{
    return text.size() > end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

std::string stem(const std::string& name)
{
    return name.substr(0, name.rfind('.'));
}

/// Asks one service, step by step.
class Asking
{
public:
    Asking(Curl& next, const OrvHost::Settings::Values& settings, std::string indexName)
        : mSettings(settings), mIndexName(std::move(indexName)), mService(next, carefully())
    {
    }

    ServiceOffer ask()
    {
        mEndpoint = mService.urlAfterRedirects(mSettings.url);
        std::string index;
        if (mEndpoint.empty() || !mService.browseURL(addressOf(mIndexName), {}, index, true, 0))
            return failed();
        ServiceOffer offer;
        offer.bonus = listed("Bonus");
        offer.manufacturer = listed("Manufacturer");
        askHeaders(offer);
        offer.problem = mService.report().verdict;
        return offer;
    }

private:
    OrvHost::CarefulCurl::Settings carefully() const
    {
        OrvHost::CarefulCurl::Settings settings;
        settings.url = mSettings.url;
        settings.indexName = mIndexName;
        settings.retries.retries = 0; // the user sees the answer, and tries again by typing
        return settings;
    }

    std::string addressOf(const std::string& name) const
    {
        return mEndpoint + "&library=" + name + "&product=" + mSettings.product +
               "&version=" + mSettings.productVersion;
    }

    ServiceOffer failed() const
    {
        const OrvHost::ServiceReport report = mService.report();
        ServiceOffer offer;
        const std::string& reason = mEndpoint.empty() ? report.endpoint.reason : report.index.reason;
        offer.problem = report.verdict.empty() ? reason : report.verdict;
        if (offer.problem.empty())
            offer.problem = "no answer";
        return offer;
    }

    /// The catalogs of a list. Empty if the service has no such list.
    std::vector<ServiceOffer::Catalog> listed(const char* kind)
    {
        std::string list;
        if (!mService.browseURL(addressOf(ServiceOffer::listName(mIndexName, kind)), {}, list, true, 0))
            return {};
        std::vector<ServiceOffer::Catalog> catalogs;
        for (const std::string& name : ServiceOffer::namesIn(list))
            catalogs.push_back({name, 0});
        return catalogs;
    }

    std::int64_t lengthOf(const std::string& name)
    {
        for (const OrvHost::CatalogReport& one : mService.report().catalogs)
            if (one.asked == name && one.isFound())
                return one.length.value_or(0);
        return -1;
    }

    void askHeaders(ServiceOffer& offer)
    {
        std::vector<std::string> core;
        for (const std::string& name : mService.report().indexNames)
            if (endsWith(name, kCatalog) || endsWith(name, kArchive))
                core.push_back(name);
        std::vector<std::string> all = core;
        for (const auto* list : {&offer.bonus, &offer.manufacturer})
            for (const ServiceOffer::Catalog& one : *list)
                all.push_back(stem(one.name) + kPacked);
        std::vector<Curl::HeaderRequest> requests;
        for (const std::string& name : all)
            requests.push_back({addressOf(name), {"If-None-Match: \"\""}});
        mService.prefetchHeaders(requests);
        for (const Curl::HeaderRequest& request : requests) {
            std::string header;
            std::int64_t status = 0;
            if (isCancelledHere())
                break;
            mService.getURLHeader(request.url, request.headerLines, header, status);
        }
        mService.prefetchHeaders({});
        count(core, offer);
        for (auto* list : {&offer.bonus, &offer.manufacturer})
            keepWhatIsThere(*list);
    }

    void count(const std::vector<std::string>& core, ServiceOffer& offer)
    {
        for (const std::string& name : core) {
            const std::int64_t length = lengthOf(name);
            offer.catalogs += length >= 0 && endsWith(name, kCatalog) ? 1 : 0;
            offer.bytes += std::max<std::int64_t>(length, 0);
        }
    }

    void keepWhatIsThere(std::vector<ServiceOffer::Catalog>& list)
    {
        std::vector<ServiceOffer::Catalog> there;
        for (ServiceOffer::Catalog& one : list) {
            one.bytes = lengthOf(stem(one.name) + kPacked);
            if (one.bytes >= 0)
                there.push_back(one);
        }
        list = there;
    }

    const OrvHost::Settings::Values& mSettings;
    std::string mIndexName;
    OrvHost::CarefulCurl mService;
    std::string mEndpoint;
};

} // namespace

ServiceOffer ServiceOffer::ask(Curl& service, const OrvHost::Settings::Values& settings,
                               const std::string& indexName, const std::atomic<bool>& isCancelled)
{
    const CancelScope scope(isCancelled);
    return Asking(service, settings, indexName).ask();
}

std::string ServiceOffer::listName(std::string indexName, const std::string& kind)
{
    const std::size_t at = indexName.rfind(kCore);
    if (at == std::string::npos)
        return kind + "_Content_Index.txt";
    return indexName.replace(at, kCore.size(), "_" + kind + "_Content_Index.txt");
}

std::vector<std::string> ServiceOffer::namesIn(const std::string& list)
{
    std::vector<std::string> names;
    std::istringstream lines(list);
    for (std::string line; std::getline(lines, line);) {
        line.erase(std::remove(line.begin(), line.end(), '\r'), line.end());
        const bool isName = (endsWith(line, kCatalog) || endsWith(line, kPacked)) &&
                            line.find_first_of("/<>\"") == std::string::npos;
        const std::string name = isName ? stem(line) + kCatalog : std::string();
        if (isName && std::find(names.begin(), names.end(), name) == names.end())
            names.push_back(name);
    }
    return names;
}
