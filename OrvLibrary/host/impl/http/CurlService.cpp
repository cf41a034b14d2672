// How it works: each operation builds a request with the host's settings. The object of the calling thread
// (`CurlThread`) sends it and follows redirects. The answer is remembered as the thread's last answer.
// Announced requests are in a list of the thread (`AheadList`), which is asked for the answer before a header
// request is sent. No exception leaves an operation: `CurlThread::attempt` makes it a failure with a reason.
// CurlServiceDownloads.cpp holds the downloads.
#include "OrvLibrary/host/impl/http/CurlService_p.h"

#include <algorithm>
#include <exception>
#include <utility>

#include "OrvLibrary/host/impl/http/CurlThread_p.h"
#include "OrvLibrary/host/impl/text/HttpAddress_p.h"

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

/// Sends a request and follows redirects.
HttpAnswer CurlService::ask(HttpRequest request, HttpBody& body, HttpLimits::Milliseconds timeout)
{
    std::optional<CurlThread> fresh;
    CurlThread& thread = CurlThread::forRequest(fresh);
    request.deadline = HttpLimits::Clock::now() + timeout;
    HttpAnswer answer = thread.ask(*mMemory, std::move(request), body);
    CurlThread::lastAnswer = {answer.status, answer.headerText, answer.errorText, answer.url};
    return answer;
}

bool CurlService::getURLHeader(const std::string& url, const std::vector<std::string>& headerLines,
                               std::string& headerText, std::int64_t& status)
{
    FileBody::Failure failure;
    return CurlThread::attempt(failure, [&] {
        HttpBody body(mLimits);
        HttpRequest header = request(url, headerLines);
        header.headerOnly = true;
        HttpAnswer answer = ask(std::move(header), body, mLimits.totalTimeout);
        failure = {answer.error, std::move(answer.errorText)};
        if (answer.status == 0)
            return false;
        headerText = std::move(answer.headerText);
        status = answer.status;
        return true;
    });
}

bool CurlService::browseURL(const std::string& url, const std::vector<std::string>& headerLines,
                            std::string& body, bool followRedirects, int timeoutSeconds)
{
    FileBody::Failure failure;
    return CurlThread::attempt(failure, [&] {
        body.clear();
        PageBody page(mLimits, body);
        HttpLimits::Milliseconds timeout = mLimits.totalTimeout;
        if (timeoutSeconds > 0)
            timeout = std::min<HttpLimits::Milliseconds>(timeout, std::chrono::seconds(timeoutSeconds));
        HttpRequest get = request(url, headerLines);
        get.isFollowed = followRedirects;
        const HttpAnswer answer = ask(std::move(get), page, timeout);
        failure = {answer.error, page.reason().empty() ? answer.errorText : page.reason()};
        return answer.error == CURLE_OK && answer.status < kFirstErrorStatus;
    });
}

std::string CurlService::urlAfterRedirects(const std::string& url)
{
    std::string end;
    FileBody::Failure failure;
    CurlThread::attempt(failure, [&] {
        HttpBody body(mLimits);
        HttpRequest walk = request(url, {});
        walk.wantsBody = false;
        HttpAnswer answer = ask(std::move(walk), body, mLimits.totalTimeout);
        failure = {answer.error, std::move(answer.errorText)};
        if (answer.status == 0)
            return false;
        CurlThread::lastAnswer.reason.clear(); // the header is enough; a body that failed is no failure here
        end = HttpAddress::withoutFragment(answer.url);
        return true;
    });
    return end;
}

Curl::Answer CurlService::lastAnswer()
{
    return CurlThread::lastAnswer;
}

void CurlService::prefetchHeaders(const std::vector<HeaderRequest>& requests)
{
    announce(&CurlThread::headers, [&](std::vector<AheadRequest>& list) {
        for (const HeaderRequest& header : requests) {
            if (!HttpAddress::isWebAddress(header.url))
                continue;
            list.push_back({request(header.url, header.headerLines), {}});
            list.back().request.headerOnly = true;
        }
    });
}

/// Replaces the thread's list of announced requests and sends the first ones.
/// @param fill adds the requests
void CurlService::announce(std::unique_ptr<AheadList> CurlThread::*place,
                           const std::function<void(std::vector<AheadRequest>&)>& fill)
try {
    CurlThread& thread = CurlThread::get();
    // A progress function made this call, so the thread's connections are in use.
    if (thread.connections.busy())
        return;
    (thread.*place).reset();
    std::vector<AheadRequest> requests;
    fill(requests);
    if (requests.empty())
        return;
    thread.*place = std::make_unique<AheadList>(thread.connections, mMemory, mLimits, std::move(requests),
                                                static_cast<std::size_t>(mConnectionLimit));
    thread.connections.step();
} catch (const std::exception&) {
    // Each request is then made by its own call.
}
