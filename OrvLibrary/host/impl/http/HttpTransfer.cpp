#include "OrvLibrary/host/impl/http/HttpTransfer_p.h"

#include <algorithm>
#include <new>

#include "OrvLibrary/host/impl/http/HttpAddress_p.h"

namespace {

constexpr long kReceiveBuffer = 256 * 1024;
constexpr long kSmallReceiveBuffer = 64 * 1024;
constexpr long kHeaderReceiveBuffer = 16 * 1024;
constexpr std::int64_t kFirstFinalStatus = 200;

/// The form in which the transfer library sends a line: it takes a name without a value as an order to leave
/// the header out, and the name with a semicolon as the empty value.
std::string listForm(const std::string& line)
{
    const std::size_t colon = line.find(':');
    const bool isEmptyValue =
        colon != std::string::npos && line.find_first_not_of(' ', colon + 1) == std::string::npos;
    return isEmptyValue ? line.substr(0, colon) + ";" : line;
}

} // namespace

HttpTransfer::HttpTransfer(CURL* handle, const HttpRequest& request, HttpBody& body, const HttpLimits& limits,
                           TimePoint deadline)
    : mHandle(handle), mBody(body), mLimits(limits), mDeadline(deadline)
{
    setOptions(request);
    setHeaderLines(request.headerLines);
}

HttpTransfer::~HttpTransfer() = default;

void HttpTransfer::setOptions(const HttpRequest& request)
{
    curl_easy_setopt(mHandle, CURLOPT_URL, HttpAddress::wireText(request.url).c_str());
    curl_easy_setopt(mHandle, CURLOPT_PROTOCOLS_STR, "http,https");
    curl_easy_setopt(mHandle, CURLOPT_PATH_AS_IS, 1L);
    curl_easy_setopt(mHandle, CURLOPT_FOLLOWLOCATION, 0L);
    curl_easy_setopt(mHandle, CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(mHandle, CURLOPT_CONNECTTIMEOUT_MS, static_cast<long>(mLimits.connectTimeout.count()));
    curl_easy_setopt(mHandle, CURLOPT_USERAGENT, "libOrvLibrary");
    const long buffer = request.isOneOfMany ? kSmallReceiveBuffer : kReceiveBuffer;
    curl_easy_setopt(mHandle, CURLOPT_BUFFERSIZE, request.headerOnly ? kHeaderReceiveBuffer : buffer);
    if (!request.proxy.empty())
        curl_easy_setopt(mHandle, CURLOPT_PROXY, request.proxy.c_str());
    // Requests at the same time share a connection that can carry them.
    curl_easy_setopt(mHandle, CURLOPT_PIPEWAIT, HttpAddress::scheme(request.url) == "https" ? 1L : 0L);
    if (request.onNewConnection)
        curl_easy_setopt(mHandle, CURLOPT_FRESH_CONNECT, 1L);
    if (request.headerOnly) {
        curl_easy_setopt(mHandle, CURLOPT_NOBODY, 1L);
        // A length that is no number is for the caller to read; there is no body to measure with it.
        curl_easy_setopt(mHandle, CURLOPT_IGNORE_CONTENT_LENGTH, 1L);
    }
    curl_easy_setopt(mHandle, CURLOPT_ERRORBUFFER, mErrorText);
    curl_easy_setopt(mHandle, CURLOPT_HEADERFUNCTION, &HttpTransfer::onHeader);
    curl_easy_setopt(mHandle, CURLOPT_HEADERDATA, this);
    curl_easy_setopt(mHandle, CURLOPT_WRITEFUNCTION, &HttpTransfer::onBody);
    curl_easy_setopt(mHandle, CURLOPT_WRITEDATA, this);
    curl_easy_setopt(mHandle, CURLOPT_PRIVATE, this);
}

void HttpTransfer::setHeaderLines(const std::vector<std::string>& lines)
{
    for (const std::string& line : lines) {
        curl_slist* const list =
            curl_slist_append(mHeaderList.get(), listForm(HttpAddress::wireHeaderLine(line)).c_str());
        if (!list)
            throw std::bad_alloc();
        if (!mHeaderList)
            mHeaderList.reset(list);
    }
    curl_easy_setopt(mHandle, CURLOPT_HTTPHEADER, mHeaderList.get());
}

std::size_t HttpTransfer::onHeader(char* data, std::size_t size, std::size_t count, void* self)
{
    auto* transfer = static_cast<HttpTransfer*>(self);
    // Nothing may be thrown through the transfer library.
    try {
        return transfer->takeHeader(std::string(data, size * count)) ? size * count : 0;
    } catch (...) {
        transfer->mException = std::current_exception();
        return 0;
    }
}

std::size_t HttpTransfer::onBody(char* data, std::size_t size, std::size_t count, void* self)
{
    auto* transfer = static_cast<HttpTransfer*>(self);
    try {
        return transfer->mBody.take(data, size * count) ? size * count : 0;
    } catch (...) {
        transfer->mException = std::current_exception();
        return 0;
    }
}

bool HttpTransfer::takeHeader(const std::string& line)
{
    mHeaderBytes += static_cast<std::int64_t>(line.size());
    mBody.headerReceived(line.size());
    if (mHeaderBytes > mLimits.headerBytes)
        return fail(CURLE_WEIRD_SERVER_REPLY, "header too large");
    const bool wasFinal = mStatus != 0;
    mHeader.addLine(line);
    if (wasFinal || !mHeader.complete())
        return true;
    long status = 0;
    curl_easy_getinfo(mHandle, CURLINFO_RESPONSE_CODE, &status);
    if (status < kFirstFinalStatus)
        return true;
    mStatus = status;
    return mBody.begin(mStatus, mHeader.text());
}

bool HttpTransfer::fail(CURLcode error, const char* text)
{
    mFinished = true;
    mError = error;
    mFailure = text;
    return false;
}

bool HttpTransfer::watch(TimePoint now)
{
    if (now >= mDeadline)
        return fail(CURLE_OPERATION_TIMEDOUT, "Operation timed out");
    try {
        return heed(mBody.watch(now));
    } catch (...) {
        mException = std::current_exception();
        return fail(CURLE_ABORTED_BY_CALLBACK, "Callback aborted");
    }
}

bool HttpTransfer::heed(HttpBody::Verdict verdict)
{
    switch (verdict) {
    case HttpBody::Verdict::Aborted:
        return fail(CURLE_ABORTED_BY_CALLBACK, "Callback aborted");
    case HttpBody::Verdict::TooSlow:
        return fail(CURLE_OPERATION_TIMEDOUT, "Operation too slow");
    case HttpBody::Verdict::GoOn:
        break;
    }
    return true;
}

bool HttpTransfer::hasNewConnection() const
{
    long count = 0;
    return curl_easy_getinfo(mHandle, CURLINFO_NUM_CONNECTS, &count) == CURLE_OK && count > 0;
}

long HttpTransfer::localPort() const
{
    long port = 0;
    return curl_easy_getinfo(mHandle, CURLINFO_LOCAL_PORT, &port) == CURLE_OK ? port : 0;
}

bool HttpTransfer::isConnected() const
{
    curl_off_t time = 0;
    return curl_easy_getinfo(mHandle, CURLINFO_PRETRANSFER_TIME_T, &time) == CURLE_OK && time > 0;
}

bool HttpTransfer::isConnectedSecurely() const
{
    curl_off_t time = 0;
    return curl_easy_getinfo(mHandle, CURLINFO_APPCONNECT_TIME_T, &time) == CURLE_OK && time > 0;
}

void HttpTransfer::finish(CURLcode result)
{
    mFinished = true;
    if (mError != CURLE_OK)
        return;
    mError = result;
    // The transfer library takes a header block that was cut for a whole answer.
    if (result == CURLE_OK && mStatus == 0)
        fail(CURLE_RECV_ERROR, "connection closed within the header");
}

HttpAnswer HttpTransfer::answer() const
{
    if (mException)
        std::rethrow_exception(mException);
    HttpAnswer answer;
    answer.error = mError;
    if (mFailure)
        answer.errorText = mFailure;
    else if (mError != CURLE_OK)
        answer.errorText = *mErrorText ? mErrorText : curl_easy_strerror(mError);
    answer.status = mStatus;
    answer.headerText = mHeader.text();
    answer.answered = isAnswered();
    return answer;
}
