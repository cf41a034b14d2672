#pragma once

#include <chrono>
#include <cstdint>
#include <exception>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <curl/curl.h>

#include "OrvLibrary/host/impl/http/HttpBody_p.h"
#include "OrvLibrary/host/impl/http/HttpLimits_p.h"
#include "OrvLibrary/host/impl/text/HttpHeaderBlock_p.h"

class HttpConnections;

/// A request to a server, as an `HttpTransfer` sends it.
struct HttpRequest
{
    /// The address as the caller built it. It is encoded when it is sent.
    std::string url;
    std::vector<std::string> headerLines;
    bool headerOnly = false;
    /// Whether a redirect is followed.
    bool isFollowed = true;
    /// Whether the caller needs the body. If not, and for each redirect that will be followed, the transfer
    /// ends `HttpLimits::progressSilence` after the header. If the body arrives within this time, its
    /// connection can be used again.
    bool wantsBody = true;
    /// After this time the request fails.
    HttpLimits::Clock::time_point deadline = HttpLimits::Clock::time_point::max();
    /// The proxy's address. If empty, the environment decides.
    std::string proxy;
    /// File or folder of trusted certificates. If empty, the environment decides.
    std::string certificates;
};

constexpr std::int64_t kTooManyRequests = 429;
constexpr std::int64_t kServiceUnavailable = 503;

/// The outcome of a request.
struct HttpAnswer
{
    static HttpAnswer failure(CURLcode error, const std::string& text, const std::string& url = {});
    /// The answer for a request that the caller has cancelled.
    static HttpAnswer cancelled() { return failure(CURLE_ABORTED_BY_CALLBACK, "Callback aborted"); }

    /// A number of the transfer library; 0 if the answer is complete.
    int error = 0;
    /// The text for this number, from the transfer library or from us.
    std::string errorText;
    /// The status and header of the final answer; 0 if no complete header arrived.
    std::int64_t status = 0;
    std::string headerText;
    /// The address that was asked, after redirects; empty if none was.
    std::string url;
    /// Whether the server sent anything in HTTP.
    bool answered = false;
    /// How long the server took: from sending the request to the first byte, or the time to connect if that
    /// was longer.
    std::chrono::microseconds latency{0};
    /// Whether the connection carries many requests at once (HTTP/2).
    bool isMultiplexed = false;
    /// Whether other requests of the same thread ran at the same time.
    bool hadCompany = false;

    /// Whether the server may have refused this request only because others ran at the same time. If so, it
    /// is sent again alone.
    bool isRefusedInCompany() const
    {
        const bool isRefused = !answered && error != CURLE_ABORTED_BY_CALLBACK;
        return hadCompany && (isRefused || status == kTooManyRequests || status == kServiceUnavailable);
    }
};

/// One request on one handle of the transfer library. Does not follow redirects. The constructor sets the
/// options, `HttpConnections` runs the transfer, `answer` returns its result, and the destructor ends it at
/// any stage. Belongs to one thread.
class HttpTransfer
{
public:
    using TimePoint = HttpLimits::Clock::time_point;

    /// @param connections must outlive the transfer, like `request` and `body`
    HttpTransfer(HttpConnections& connections, const HttpRequest& request, HttpBody& body);
    HttpTransfer(const HttpTransfer&) = delete;
    HttpTransfer& operator=(const HttpTransfer&) = delete;

    CURL* handle() const { return mHandle.get(); }
    /// Called at each step of the transfer loop. False if the transfer must end; `answer` tells the reason.
    bool watch(TimePoint now);
    /// Ends the transfer because the caller cancelled it.
    void cancel() { fail(CURLE_ABORTED_BY_CALLBACK, "Callback aborted"); }
    /// Called when the transfer library has ended the transfer.
    void finish(CURLcode result);
    bool finished() const { return mResult.has_value(); }
    /// Whether the server has sent anything in HTTP.
    bool isAnswered() const { return mHeader.bytes() > 0; }
    /// When the last bytes arrived. If none have, a time long ago.
    TimePoint lastArrival() const { return mLastArrival; }
    /// Whether a new connection was opened for it. If not, the connection has served earlier requests.
    bool hasNewConnection() const;
    /// Whether it has a connection that is ready.
    bool isConnected() const;

    /// @throws whatever the body threw during the transfer
    HttpAnswer answer() const;

private:
    struct HandleEnd
    {
        void operator()(CURL* handle) const;
        HttpConnections* connections;
    };
    struct ListEnd
    {
        void operator()(curl_slist* list) const { curl_slist_free_all(list); }
    };

    static std::size_t onHeader(char* data, std::size_t size, std::size_t count, void* self);
    static std::size_t onBody(char* data, std::size_t size, std::size_t count, void* self);

    void setOptions();
    void setCertificates();
    void setHeaderLines();
    bool takeHeader(const std::string& line);
    template <class Take>
    std::size_t receive(std::size_t size, const Take& take);
    void readTimes(HttpAnswer& answer) const;
    /// Ends the transfer for a reason of our own. A later reason of the transfer library is ignored.
    bool fail(CURLcode error, const char* text);

    const HttpRequest& mRequest;
    HttpBody& mBody;
    TimePoint mDeadline;
    std::unique_ptr<curl_slist, ListEnd> mHeaderList;
    /// Text of the failure. A fixed array, so that it needs no memory.
    char mErrorText[CURL_ERROR_SIZE] = "";
    HttpHeaderBlock mHeader;
    TimePoint mLastArrival{};
    /// Empty while the transfer runs.
    std::optional<CURLcode> mResult;
    std::exception_ptr mException;
    /// Last, because the transfer library uses the other members until the handle is closed.
    std::unique_ptr<CURL, HandleEnd> mHandle;
};
