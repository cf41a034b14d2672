#include "OrvLibrary/host/impl/http/CurlService_p.h"

#include <algorithm>
#include <exception>
#include <new>
#include <optional>

#include "OrvLibrary/host/impl/http/DownloadPrefetch_p.h"
#include "OrvLibrary/host/impl/http/HeaderPrefetch_p.h"
#include "OrvLibrary/host/impl/http/HttpAddress_p.h"

namespace {

using TimePoint = HttpLimits::Clock::time_point;

constexpr std::int64_t kOk = 200;
constexpr std::int64_t kFirstErrorStatus = 400;

/// The thread's connections, or fresh ones for a request from within another one's progress function.
class Connections
{
public:
    Connections()
    {
        if (HttpConnections::ofThisThread().busy())
            mOwn.emplace();
    }
    HttpConnections& get() { return mOwn ? *mOwn : HttpConnections::ofThisThread(); }

private:
    std::optional<HttpConnections> mOwn;
};

/// For an address that only matters for where it leads: its body is not waited for.
class NoBody : public HttpBody
{
public:
    using HttpBody::HttpBody;

    bool begin(std::int64_t status, const std::string& headerText) override
    {
        mAnswered = HttpLimits::Clock::now();
        return HttpBody::begin(status, headerText);
    }
    Verdict watch(TimePoint now) override
    {
        const bool isEnough = mAnswered != TimePoint() && now - mAnswered >= mLimits.progressSilence;
        return isEnough ? Verdict::TooSlow : Verdict::GoOn;
    }

private:
    TimePoint mAnswered;
};

/// Gives the file its name when all went well; otherwise tells why not.
bool conclude(HttpConnections& connections, const HttpAnswer& answer, FileBody& body,
              const ProgressPacer& pacer, std::string& reason, int& errorNumber)
{
    const HttpConnections::Work work(connections); // the progress function may be called once more
    const bool arrived = answer.error == CURLE_OK && answer.status == kOk;
    if (arrived && body.finish())
        return true;
    if (pacer.aborted()) {
        reason = "Callback aborted";
        errorNumber = Curl::kAbortedByCallback;
    } else if (!body.reason().empty()) {
        reason = body.reason();
        errorNumber = body.diskFailed() ? CURLE_WRITE_ERROR : CURLE_WEIRD_SERVER_REPLY;
    } else if (answer.status != 0 && answer.status != kOk) {
        reason = "HTTP " + std::to_string(answer.status);
        errorNumber = CURLE_HTTP_RETURNED_ERROR;
    } else {
        reason = answer.errorText;
        errorNumber = answer.error;
    }
    return false;
}

std::unique_ptr<DownloadAhead> takeAhead(HttpConnections& connections, const HttpRequest& request,
                                         const fileString& target, Curl::ProgressFunction progress,
                                         void* context)
{
    if (!connections.downloads())
        return nullptr;
    const BrokenPipeBlock block;
    return connections.downloads()->take(request, target, progress, context);
}

} // namespace

CurlService::CurlService(const HttpLimits& limits) : mLimits(limits), mGuard(limits) {}

void CurlService::setProxy(const std::string& proxy)
{
    const std::lock_guard<std::mutex> lock(mSettingsMutex);
    mProxy = proxy;
}

void CurlService::setConnectionLimit(int connections)
{
    const std::lock_guard<std::mutex> lock(mSettingsMutex);
    mConnectionLimit = std::clamp(connections, 1, kMostConnections);
}

int CurlService::connectionLimit()
{
    const std::lock_guard<std::mutex> lock(mSettingsMutex);
    return mConnectionLimit;
}

HttpRequest CurlService::request(const std::string& url, const std::vector<std::string>& headerLines)
{
    HttpRequest request;
    request.url = url;
    request.headerLines = headerLines;
    const std::lock_guard<std::mutex> lock(mSettingsMutex);
    request.proxy = mProxy;
    return request;
}

bool CurlService::downloadable(const std::string& url)
{
    return HttpAddress::isWebAddress(url);
}

fileString CurlService::download(const std::string& url)
{
    fileString target;
    target.generateAsTempName(".download");
    std::string reason;
    return download_to_location(url, target, reason) ? target : fileString();
}

bool CurlService::download_to_location(const std::string& url, const fileString& target, std::string& reason)
{
    int errorNumber = 0;
    return download_to_location(url, target, {}, nullptr, nullptr, reason, errorNumber);
}

bool CurlService::download_to_location(const std::string& url, const fileString& target,
                                       const std::vector<std::string>& headerLines, void* context,
                                       ProgressFunction progress, std::string& reason, int& errorNumber)
{
    try {
        Connections connections;
        const HttpRequest asked = request(url, headerLines);
        if (const auto ahead = takeAhead(connections.get(), asked, target, progress, context)) {
            if (ahead->answer.answered)
                mGuard.answered(HttpAddress::hostAndPort(url));
            return conclude(connections.get(), ahead->answer, ahead->body, ahead->pacer, reason, errorNumber);
        }
        const TimePoint start = HttpLimits::Clock::now();
        ProgressPacer pacer(mLimits, progress, context, start);
        FileBody body(mLimits, target, pacer, start);
        HttpChain chain(connections.get(), mGuard, mLimits, TimePoint::max());
        const HttpAnswer answer = chain.run(asked, body, true);
        return conclude(connections.get(), answer, body, pacer, reason, errorNumber);
    } catch (const std::bad_alloc& error) {
        reason = error.what();
        errorNumber = CURLE_OUT_OF_MEMORY;
    } catch (const std::exception& error) {
        // The progress function did not say that the transfer should go on.
        reason = error.what();
        errorNumber = kAbortedByCallback;
    } catch (...) {
        reason = "Callback aborted";
        errorNumber = kAbortedByCallback;
    }
    return false;
}

bool CurlService::getURLHeader(const std::string& url, const std::vector<std::string>& headerLines,
                               std::string& headerText, std::int64_t& status)
{
    try {
        Connections connections;
        HttpBody body(mLimits);
        HttpChain chain(connections.get(), mGuard, mLimits, HttpLimits::Clock::now() + mLimits.totalTimeout);
        HttpRequest header = request(url, headerLines);
        header.headerOnly = true;
        HttpAnswer answer = chain.run(header, body, true);
        if (answer.status == 0)
            return false;
        headerText = std::move(answer.headerText);
        status = answer.status;
        return true;
    } catch (const std::exception&) {
        return false;
    }
}

void CurlService::prefetchHeaders(const std::vector<HeaderRequest>& requests)
{
    try {
        HttpConnections& connections = HttpConnections::ofThisThread();
        // From within a progress function: the connections that would be needed are at work.
        if (connections.busy())
            return;
        const BrokenPipeBlock block;
        connections.setPrefetch(nullptr);
        std::vector<HttpRequest> list;
        for (const HeaderRequest& header : requests) {
            if (!HttpAddress::isWebAddress(header.url))
                continue;
            list.push_back(request(header.url, header.headerLines));
            list.back().headerOnly = true;
        }
        if (list.empty())
            return;
        connections.setPrefetch(
            std::make_unique<HeaderPrefetch>(connections, mLimits, list, connectionLimit()));
        connections.step(); // on their way at once
    } catch (const std::exception&) {
        // Then each is asked for when its turn comes.
    }
}

/// Whether fetching the body before its turn is likely to gain anything.
bool CurlService::paysAhead(const HttpConnections& connections, const DownloadRequest& request)
{
    if (!HttpAddress::isWebAddress(request.url))
        return false;
    const std::string address = HttpAddress::hostAndPort(request.url);
    return connections.latency(address) >= kFarAddress && mGuard.isOpen(address);
}

void CurlService::prefetchDownloads(const std::vector<DownloadRequest>& requests)
{
    try {
        HttpConnections& connections = HttpConnections::ofThisThread();
        // From within a progress function: the connections that would be needed are at work.
        if (connections.busy())
            return;
        const BrokenPipeBlock block;
        connections.setDownloads(nullptr);
        if (requests.size() < kFewestAhead)
            return;
        std::vector<DownloadAnnouncement> list;
        for (const DownloadRequest& download : requests) {
            if (paysAhead(connections, download))
                list.push_back({request(download.url, download.headerLines), download.target, download.size});
        }
        if (list.empty())
            return;
        connections.setDownloads(
            std::make_unique<DownloadPrefetch>(connections, mLimits, list, connectionLimit()));
        connections.step(); // on their way at once
    } catch (const std::exception&) {
        // Then each is asked for when its turn comes.
    }
}

bool CurlService::browseURL(const std::string& url, const std::vector<std::string>& headerLines,
                            std::string& body, bool followRedirects, int timeoutSeconds)
{
    try {
        Connections connections;
        body.clear();
        PageBody page(mLimits, body);
        HttpLimits::Milliseconds timeout = mLimits.totalTimeout;
        if (timeoutSeconds > 0)
            timeout = std::min<HttpLimits::Milliseconds>(timeout, std::chrono::seconds(timeoutSeconds));
        HttpChain chain(connections.get(), mGuard, mLimits, HttpLimits::Clock::now() + timeout);
        const HttpAnswer answer = chain.run(request(url, headerLines), page, followRedirects);
        return answer.error == CURLE_OK && answer.status < kFirstErrorStatus;
    } catch (const std::exception&) {
        return false;
    }
}

std::string CurlService::urlAfterRedirects(const std::string& url)
{
    try {
        Connections connections;
        NoBody body(mLimits);
        HttpChain chain(connections.get(), mGuard, mLimits, HttpLimits::Clock::now() + mLimits.totalTimeout);
        const HttpAnswer answer = chain.run(request(url, {}), body, true);
        return answer.status == 0 ? std::string() : chain.finalUrl();
    } catch (const std::exception&) {
        return {};
    }
}
