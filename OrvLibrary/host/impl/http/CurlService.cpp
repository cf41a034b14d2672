#include "OrvLibrary/host/impl/http/CurlService_p.h"

#include <algorithm>
#include <exception>
#include <new>
#include <optional>

#include "OrvLibrary/host/FileUtils.h"
#include "OrvLibrary/host/impl/http/CancelQuestion_p.h"
#include "OrvLibrary/host/impl/http/HttpAddress_p.h"

/// The connections and announced requests of a thread.
struct ThreadState
{
    ~ThreadState()
    {
        const BrokenPipeBlock block; // closing a TLS connection writes to it
        headers.reset();
        downloads.reset();
    }

    HttpConnections connections;
    /// Announced requests; null when there are none.
    std::unique_ptr<AheadList> headers;
    std::unique_ptr<AheadList> downloads;
};

namespace {

using TimePoint = HttpLimits::Clock::time_point;

constexpr std::int64_t kFirstErrorStatus = 400;

ThreadState& stateOfThread()
{
    static thread_local ThreadState state;
    return state;
}

/// The thread's connections, or fresh ones for a request from within another one's progress function.
class Connections
{
public:
    Connections()
    {
        if (stateOfThread().connections.busy())
            mOwn.emplace();
    }
    HttpConnections& get() { return mOwn ? *mOwn : stateOfThread().connections; }
    AheadList* headers() { return mOwn ? nullptr : stateOfThread().headers.get(); }
    AheadList* downloads() { return mOwn ? nullptr : stateOfThread().downloads.get(); }

private:
    std::optional<HttpConnections> mOwn;
};

/// The answer to the calling thread's last request.
thread_local Curl::Answer lastAnswerOfThread;

void noteAnswer(const HttpAnswer& answer, const std::string& url)
{
    lastAnswerOfThread = {answer.status, answer.headerText, answer.errorText, url};
}

/// Sets the reason of the last answer. Leaves it as it is when there is no memory for the text.
void noteReason(const std::string& reason) noexcept
try {
    lastAnswerOfThread.reason = reason;
} catch (const std::bad_alloc&) {
}

/// Downloads with `download` and turns what it throws into a reason and a number.
template <class Download>
bool withoutException(std::string& reason, int& errorNumber, Download download)
{
    lastAnswerOfThread = {};
    bool isWhole = false;
    try {
        isWhole = download();
    } catch (const std::bad_alloc& error) {
        reason = error.what();
        errorNumber = CURLE_OUT_OF_MEMORY;
    } catch (const std::exception& error) {
        // The progress function did not say that the transfer should go on.
        reason = error.what();
        errorNumber = Curl::kAbortedByCallback;
    } catch (...) {
        reason = "Callback aborted";
        errorNumber = Curl::kAbortedByCallback;
    }
    noteReason(isWhole ? std::string() : reason);
    return isWhole;
}

/// Why a download failed, and the number for it.
void explain(const HttpAnswer& answer, const FileBody& body, const ProgressPacer& pacer, std::string& reason,
             int& errorNumber)
{
    if (pacer.aborted()) {
        reason = "Callback aborted";
        errorNumber = Curl::kAbortedByCallback;
    } else if (!body.reason().empty()) {
        reason = body.reason();
        errorNumber = body.diskFailed() ? CURLE_WRITE_ERROR : CURLE_WEIRD_SERVER_REPLY;
    } else if (answer.status != 0 && !body.isTaken()) {
        reason = "HTTP " + std::to_string(answer.status);
        errorNumber = CURLE_HTTP_RETURNED_ERROR;
    } else {
        reason = answer.errorText;
        errorNumber = answer.error;
    }
}

/// Gives the file its name when all went well; otherwise tells why not.
bool conclude(HttpConnections& connections, const HttpAnswer& answer, FileBody& body,
              const ProgressPacer& pacer, std::string& reason, int& errorNumber)
{
    const HttpConnections::Work work(connections); // the progress function may be called once more
    if (answer.error == CURLE_OK && body.isTaken() && body.finish())
        return true;
    explain(answer, body, pacer, reason, errorNumber);
    return false;
}

/// Whether a part of the file is there that a download can go on from.
bool hasBytes(const Curl::ResumableDownload& download)
{
    return !download.partial.empty() && !download.validator.empty() &&
           FileUtils::fileSize(download.partial) > 0;
}

/// The request for what the partial file of `body` lacks, as far as the validator tells that its bytes can be
/// used.
HttpRequest requestForRest(HttpRequest request, FileBody& body, const std::string& validator)
{
    const std::int64_t size = body.resume(validator);
    if (size > 0) {
        request.headerLines.push_back("Range: bytes=" + std::to_string(size) + "-");
        request.headerLines.push_back("If-Range: " + validator);
    }
    return request;
}

std::unique_ptr<DownloadAhead> takeAhead(AheadList* downloads, const HttpRequest& request,
                                         const fileString& target, Curl::ProgressFunction progress,
                                         void* context)
{
    const BrokenPipeBlock block;
    return downloads ? downloads->takeDownload(request, target, progress, context) : nullptr;
}

} // namespace

CurlService::CurlService(const HttpLimits& limits)
    : mLimits(limits), mMemory(std::make_shared<AddressMemory>(limits))
{
}

void CurlService::setProxy(const std::string& proxy)
{
    const std::lock_guard<std::mutex> lock(mSettingsMutex);
    mProxy = proxy;
}

void CurlService::setCertificates(const std::string& fileOrFolder)
{
    const std::lock_guard<std::mutex> lock(mSettingsMutex);
    mCertificates = fileOrFolder;
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
    request.certificates = mCertificates;
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
    return withoutException(reason, errorNumber, [&] {
        ResumableDownload download;
        download.url = url;
        download.headerLines = headerLines;
        download.target = target;
        return downloadOrThrow(download, context, progress, reason, errorNumber);
    });
}

bool CurlService::downloadResumable(const ResumableDownload& request, void* context,
                                    ProgressFunction progress, std::string& reason, int& errorNumber)
{
    return withoutException(reason, errorNumber,
                            [&] { return downloadOrThrow(request, context, progress, reason, errorNumber); });
}

/// @throws what the progress function throws
bool CurlService::downloadOrThrow(const ResumableDownload& download, void* context, ProgressFunction progress,
                                  std::string& reason, int& errorNumber)
{
    if (::CancelQuestion::isCancelled()) {
        reason = "Callback aborted";
        errorNumber = kAbortedByCallback;
        return false;
    }
    Connections connections;
    const HttpRequest asked = request(download.url, download.headerLines);
    const auto ahead = hasBytes(download)
                           ? nullptr
                           : takeAhead(connections.downloads(), asked, download.target, progress, context);
    if (ahead) {
        mMemory->note(HttpAddress::hostAndPort(download.url), ahead->answer);
        noteAnswer(ahead->answer, download.url);
        return conclude(connections.get(), ahead->answer, ahead->body, ahead->pacer, reason, errorNumber);
    }
    bool mustStartAnew = false;
    do {
        const TimePoint start = HttpLimits::Clock::now();
        ProgressPacer pacer(mLimits, progress, context, start);
        FileBody body(mLimits, download.target, pacer, start, download.partial);
        HttpChain chain(connections.get(), connections.headers(), *mMemory, mLimits, TimePoint::max());
        HttpAnswer answer;
        const HttpRequest rest =
            requestForRest(asked, body, mustStartAnew ? std::string() : download.validator);
        if (body.reason().empty())
            answer = chain.run(rest, body, true);
        noteAnswer(answer, chain.finalUrl());
        if (conclude(connections.get(), answer, body, pacer, reason, errorNumber))
            return true;
        mustStartAnew = body.mustStartAnew() && !pacer.aborted();
    } while (mustStartAnew);
    return false;
}

bool CurlService::getURLHeader(const std::string& url, const std::vector<std::string>& headerLines,
                               std::string& headerText, std::int64_t& status)
{
    lastAnswerOfThread = {};
    try {
        Connections connections;
        HttpBody body(mLimits);
        HttpChain chain(connections.get(), connections.headers(), *mMemory, mLimits,
                        HttpLimits::Clock::now() + mLimits.totalTimeout);
        HttpRequest header = request(url, headerLines);
        header.headerOnly = true;
        HttpAnswer answer = chain.run(header, body, true);
        noteAnswer(answer, chain.finalUrl());
        if (answer.status == 0)
            return false;
        headerText = std::move(answer.headerText);
        status = answer.status;
        return true;
    } catch (const std::exception& error) {
        noteReason(error.what());
        return false;
    }
}

void CurlService::prefetchHeaders(const std::vector<HeaderRequest>& requests)
{
    std::vector<AheadRequest> list;
    try {
        for (const HeaderRequest& header : requests) {
            if (!HttpAddress::isWebAddress(header.url))
                continue;
            list.push_back({request(header.url, header.headerLines), {}, 0});
            list.back().request.headerOnly = true;
        }
    } catch (const std::exception&) {
        list.clear(); // each is asked for when its turn comes
    }
    announce(&ThreadState::headers, std::move(list));
}

void CurlService::prefetchDownloads(const std::vector<DownloadRequest>& requests)
{
    std::vector<AheadRequest> list;
    try {
        for (const DownloadRequest& download : requests) {
            if (requests.size() < AheadPolicy::kFewestBodies || !isFar(download.url))
                continue;
            list.push_back({request(download.url, download.headerLines), download.target, download.size});
            list.back().request.isOneOfMany = true;
        }
    } catch (const std::exception&) {
        list.clear();
    }
    announce(&ThreadState::downloads, std::move(list));
}

/// Whether fetching a body before its turn is likely to gain anything.
bool CurlService::isFar(const std::string& url)
{
    const std::string address = HttpAddress::hostAndPort(url);
    return !address.empty() && !AheadPolicy::isNear(mMemory->latency(address)) && mMemory->isOpen(address);
}

/// Puts a list in the place of the former one and sends the first requests.
void CurlService::announce(std::unique_ptr<AheadList> ThreadState::*place, std::vector<AheadRequest> requests)
{
    try {
        ThreadState& state = stateOfThread();
        // From within a progress function: the connections that would be needed are at work.
        if (state.connections.busy())
            return;
        const BrokenPipeBlock block;
        (state.*place).reset();
        if (requests.empty())
            return;
        state.*place = std::make_unique<AheadList>(state.connections, mMemory, mLimits, std::move(requests),
                                                   connectionLimit());
        (state.*place)->advance();
        state.connections.step();
    } catch (const std::exception&) {
        // Then each is asked for when its turn comes.
    }
}

bool CurlService::browseURL(const std::string& url, const std::vector<std::string>& headerLines,
                            std::string& body, bool followRedirects, int timeoutSeconds)
{
    lastAnswerOfThread = {};
    try {
        Connections connections;
        body.clear();
        PageBody page(mLimits, body);
        HttpLimits::Milliseconds timeout = mLimits.totalTimeout;
        if (timeoutSeconds > 0)
            timeout = std::min<HttpLimits::Milliseconds>(timeout, std::chrono::seconds(timeoutSeconds));
        HttpChain chain(connections.get(), connections.headers(), *mMemory, mLimits,
                        HttpLimits::Clock::now() + timeout);
        const HttpAnswer answer = chain.run(request(url, headerLines), page, followRedirects);
        noteAnswer(answer, chain.finalUrl());
        if (!page.reason().empty())
            noteReason(page.reason());
        return answer.error == CURLE_OK && answer.status < kFirstErrorStatus;
    } catch (const std::exception& error) {
        noteReason(error.what());
        return false;
    }
}

std::string CurlService::urlAfterRedirects(const std::string& url)
{
    lastAnswerOfThread = {};
    try {
        Connections connections;
        HttpBody body(mLimits);
        HttpChain chain(connections.get(), connections.headers(), *mMemory, mLimits,
                        HttpLimits::Clock::now() + mLimits.totalTimeout);
        HttpRequest walk = request(url, {});
        walk.wantsBody = false;
        HttpAnswer answer = chain.run(walk, body, true);
        if (answer.status != 0)
            answer.errorText.clear(); // what became of the body does not matter
        noteAnswer(answer, chain.finalUrl());
        return answer.status == 0 ? std::string() : HttpAddress::withoutFragment(chain.finalUrl());
    } catch (const std::exception& error) {
        noteReason(error.what());
        return {};
    }
}

Curl::Answer CurlService::lastAnswer()
{
    return lastAnswerOfThread;
}
