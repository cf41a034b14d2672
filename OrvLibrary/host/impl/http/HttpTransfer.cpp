// How it works: the constructor makes a handle of the transfer library and sets its options. The transfer
// library calls `onHeader` for each header line and `onBody` for each piece of the body. Both pass the data
// to the body object, which decides whether the transfer goes on. `watch` asks the body object at each step,
// too, and checks the deadline. The transfer ends with `fail` for our own reasons and with `finish` for those
// of the transfer library; the first reason counts. Exceptions must not pass through the transfer library, so
// they are kept until `answer` throws them.
#include "OrvLibrary/host/impl/http/HttpTransfer_p.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <new>
#include <utility>

#include "OrvLibrary/host/impl/http/HttpConnections_p.h"
#include "OrvLibrary/host/impl/http/RateLimit_p.h"
#include "OrvLibrary/host/impl/text/HttpAddress_p.h"
#include "OrvLibrary/host/impl/text/HttpHeaders_p.h"
#include "OrvLibrary/host/impl/text/HttpRedirect_p.h"

namespace {

constexpr std::int64_t kBodyBuffer = 256 * 1024;
constexpr std::int64_t kHeaderBuffer = 16 * 1024;
const char* const kHeaderTooLarge = "header too large";

/// A header line in the transfer library's notation. It takes "Name:" as an order to omit the header; "Name;"
/// sends the header with an empty value.
std::string listForm(const std::string& line)
{
    const std::size_t colon = line.find(':');
    const bool isEmptyValue =
        colon != std::string::npos && line.find_first_not_of(' ', colon + 1) == std::string::npos;
    return isEmptyValue ? line.substr(0, colon) + ";" : line;
}

/// A number that the transfer library keeps for a transfer; 0 if it has none.
template <class Number>
Number info(CURL* handle, CURLINFO what)
{
    Number number = 0;
    curl_easy_getinfo(handle, what, &number);
    return number;
}

} // namespace

HttpAnswer HttpAnswer::failure(CURLcode error, const std::string& text, const std::string& url)
{
    HttpAnswer answer;
    answer.error = error;
    answer.errorText = text;
    answer.url = url;
    return answer;
}

void HttpTransfer::HandleEnd::operator()(CURL* handle) const
{
    connections->end(handle);
}

HttpTransfer::HttpTransfer(HttpConnections& connections, const HttpRequest& request, HttpBody& body)
    : mRequest(request), mBody(body), mDeadline(request.deadline), mHandle(curl_easy_init(), {&connections})
{
    if (!mHandle)
        throw std::bad_alloc();
    setOptions();
    setCertificates();
    setHeaderLines();
}

void HttpTransfer::setOptions()
{
    curl_easy_setopt(handle(), CURLOPT_URL, HttpAddress::wireText(mRequest.url).c_str());
    curl_easy_setopt(handle(), CURLOPT_PROTOCOLS_STR, "http,https");
    curl_easy_setopt(handle(), CURLOPT_PATH_AS_IS, 1L);
    curl_easy_setopt(handle(), CURLOPT_FOLLOWLOCATION, 0L);
    curl_easy_setopt(handle(), CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(handle(), CURLOPT_CONNECTTIMEOUT_MS,
                     static_cast<long>(mBody.limits().connectTimeout.count()));
    curl_easy_setopt(handle(), CURLOPT_USERAGENT, "libOrvLibrary");
    curl_easy_setopt(
        handle(), CURLOPT_BUFFERSIZE,
        static_cast<long>(RateLimit::ofProcess().piece(mRequest.headerOnly ? kHeaderBuffer : kBodyBuffer)));
    // Without this option one call of the transfer library may go on as long as bytes arrive.
    curl_easy_setopt(handle(), CURLOPT_MAX_RECV_SPEED_LARGE,
                     static_cast<curl_off_t>(RateLimit::ofProcess().bytesPerSecond()));
    if (!mRequest.proxy.empty())
        curl_easy_setopt(handle(), CURLOPT_PROXY, mRequest.proxy.c_str());
    // A proxy's answer to CONNECT is not the server's answer.
    curl_easy_setopt(handle(), CURLOPT_SUPPRESS_CONNECT_HEADERS, 1L);
    // Downloads share a connection over HTTP/2: they wait for one that is being made.
    const bool isShared = HttpAddress::scheme(mRequest.url) == "https" && !mRequest.headerOnly;
    curl_easy_setopt(handle(), CURLOPT_PIPEWAIT, isShared ? 1L : 0L);
    if (mRequest.headerOnly) {
        curl_easy_setopt(handle(), CURLOPT_NOBODY, 1L);
        // There is no body. The caller reads the length from the header, even if it is not a number.
        curl_easy_setopt(handle(), CURLOPT_IGNORE_CONTENT_LENGTH, 1L);
    }
    curl_easy_setopt(handle(), CURLOPT_ERRORBUFFER, mErrorText);
    curl_easy_setopt(handle(), CURLOPT_HEADERFUNCTION, &HttpTransfer::onHeader);
    curl_easy_setopt(handle(), CURLOPT_HEADERDATA, this);
    curl_easy_setopt(handle(), CURLOPT_WRITEFUNCTION, &HttpTransfer::onBody);
    curl_easy_setopt(handle(), CURLOPT_WRITEDATA, this);
    curl_easy_setopt(handle(), CURLOPT_PRIVATE, this);
}

/// A path set by the host replaces everything else. Without it, SSL_CERT_FILE and SSL_CERT_DIR replace the
/// system's certificates.
void HttpTransfer::setCertificates()
{
    const std::string& own = mRequest.certificates;
    std::error_code error;
    const bool isFolder = std::filesystem::is_directory(own, error);
    const char* const ownFile = isFolder ? nullptr : own.c_str();
    const char* const ownFolder = isFolder ? own.c_str() : nullptr;
    const char* const file = own.empty() ? std::getenv("SSL_CERT_FILE") : ownFile;
    const char* const folder = own.empty() ? std::getenv("SSL_CERT_DIR") : ownFolder;
    const std::pair<CURLoption, const char*> options[] = {{CURLOPT_CAINFO, file},
                                                          {CURLOPT_PROXY_CAINFO, file},
                                                          {CURLOPT_CAPATH, folder},
                                                          {CURLOPT_PROXY_CAPATH, folder}};
    for (const auto& [option, path] : options) {
        if ((path && *path) || !own.empty())
            curl_easy_setopt(handle(), option, path);
    }
}

void HttpTransfer::setHeaderLines()
{
    for (const std::string& line : HttpHeaders::wireLines(mRequest.headerLines)) {
        curl_slist* const list = curl_slist_append(mHeaderList.get(), listForm(line).c_str());
        if (!list)
            throw std::bad_alloc();
        if (!mHeaderList)
            mHeaderList.reset(list);
    }
    curl_easy_setopt(handle(), CURLOPT_HTTPHEADER, mHeaderList.get());
}

std::size_t HttpTransfer::onHeader(char* data, std::size_t size, std::size_t count, void* self)
{
    auto* transfer = static_cast<HttpTransfer*>(self);
    return transfer->receive(size * count,
                             [&] { return transfer->takeHeader(std::string(data, size * count)); });
}

std::size_t HttpTransfer::onBody(char* data, std::size_t size, std::size_t count, void* self)
{
    auto* transfer = static_cast<HttpTransfer*>(self);
    return transfer->receive(size * count, [&] { return transfer->mBody.receive(data, size * count); });
}

/// @return `size` when the transfer goes on, otherwise 0. Exceptions must not pass through the transfer
/// library.
template <class Take>
std::size_t HttpTransfer::receive(std::size_t size, const Take& take)
try {
    mLastArrival = HttpLimits::Clock::now();
    if (RateLimit::ofProcess().keep(static_cast<std::int64_t>(size), mLastArrival))
        return take() ? size : 0;
    cancel();
    return 0;
} catch (...) {
    mException = std::current_exception();
    return 0;
}

bool HttpTransfer::takeHeader(const std::string& line)
{
    // A header that is too large must not become complete: it would be taken for an answer.
    if (mHeader.bytes() + line.size() > mBody.limits().headerBytes)
        return fail(CURLE_WEIRD_SERVER_REPLY, kHeaderTooLarge);
    const bool hadStatus = mHeader.status() != 0;
    mHeader.addLine(line);
    mBody.headerReceived(line.size());
    const std::int64_t status = mHeader.status();
    if (hadStatus || status == 0)
        return true;
    const bool isFollowed = mRequest.isFollowed && HttpRedirect::isStatus(status);
    if (isFollowed || !mRequest.wantsBody)
        mDeadline = std::min(mDeadline, HttpLimits::Clock::now() + mBody.limits().progressSilence);
    return mBody.begin(status, mHeader.text());
}

bool HttpTransfer::fail(CURLcode error, const char* text)
{
    mResult = error;
    curl_easy_setopt(handle(), CURLOPT_ERRORBUFFER, nullptr);
    std::snprintf(mErrorText, sizeof mErrorText, "%s", text);
    // Without this option, removing the transfer would wait for an unanswered name look-up.
    curl_easy_setopt(handle(), CURLOPT_QUICK_EXIT, 1L);
    return false;
}

bool HttpTransfer::watch(TimePoint now)
{
    if (now >= mDeadline)
        return fail(CURLE_OPERATION_TIMEDOUT, "Operation timed out");
    try {
        const CURLcode end = mBody.watch(now);
        if (end == CURLE_OK)
            return true;
        if (end == CURLE_OPERATION_TIMEDOUT)
            return fail(end, "Operation too slow");
    } catch (...) {
        mException = std::current_exception();
    }
    cancel();
    return false;
}

bool HttpTransfer::hasNewConnection() const
{
    return info<long>(handle(), CURLINFO_NUM_CONNECTS) > 0;
}

bool HttpTransfer::isConnected() const
{
    return info<curl_off_t>(handle(), CURLINFO_PRETRANSFER_TIME_T) > 0;
}

void HttpTransfer::finish(CURLcode result)
{
    if (mResult)
        return;
    mResult = result;
    if (mHeader.status() != 0)
        return;
    // The transfer library reports success even if the header was cut off, and a lack of memory if a line is
    // longer than it allows. Then some of the line has arrived.
    if (result == CURLE_OK)
        fail(CURLE_RECV_ERROR, "connection closed within the header");
    else if (result == CURLE_OUT_OF_MEMORY && info<curl_off_t>(handle(), CURLINFO_STARTTRANSFER_TIME_T) > 0)
        fail(CURLE_WEIRD_SERVER_REPLY, kHeaderTooLarge);
}

HttpAnswer HttpTransfer::answer() const
{
    if (mException)
        std::rethrow_exception(mException);
    HttpAnswer answer;
    answer.error = mResult.value_or(CURLE_OK);
    if (answer.error != CURLE_OK)
        answer.errorText = *mErrorText ? mErrorText : curl_easy_strerror(*mResult);
    answer.status = mHeader.status();
    answer.headerText = mHeader.text();
    answer.answered = isAnswered();
    if (answer.answered)
        readTimes(answer);
    return answer;
}

void HttpTransfer::readTimes(HttpAnswer& answer) const
{
    const auto connected = info<curl_off_t>(handle(), CURLINFO_CONNECT_TIME_T);
    const auto sent = info<curl_off_t>(handle(), CURLINFO_PRETRANSFER_TIME_T);
    const auto answered = info<curl_off_t>(handle(), CURLINFO_STARTTRANSFER_TIME_T);
    // Some links delay data but not the making of connections, so the larger time counts.
    answer.latency = std::chrono::microseconds(std::max(connected, answered - sent));
    answer.isMultiplexed = info<long>(handle(), CURLINFO_HTTP_VERSION) == CURL_HTTP_VERSION_2_0;
}
