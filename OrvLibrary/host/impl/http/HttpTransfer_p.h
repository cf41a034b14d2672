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
#include "OrvLibrary/host/impl/http/HttpHeaderBlock_p.h"
#include "OrvLibrary/host/impl/http/HttpLimits_p.h"

class HttpConnections;

/// A request to a server.
struct HttpRequest
{
    /// The address as the caller built it. It is encoded for the wire when it is sent.
    std::string url;
    std::vector<std::string> headerLines;
    bool headerOnly = false;
    /// Whether the request opens a connection of its own even if another connection could carry it.
    bool onNewConnection = false;
    /// Whether an answer that redirects is followed.
    bool isFollowed = false;
    /// Whether the body matters. The body of a redirect that is followed never matters. The service waits a
    /// second for the end of such a body, so that its connection can be kept, and then gives it up.
    bool wantsBody = true;
    /// Proxy address; empty for what the environment says.
    std::string proxy;
    /// File or folder of the authorities to trust; empty for what the environment says.
    std::string certificates;
};

/// Whether a status says that the answer is somewhere else.
constexpr bool isRedirectStatus(std::int64_t status)
{
    return status == 301 || status == 302 || status == 303 || status == 307 || status == 308;
}

constexpr std::int64_t kTooManyRequests = 429;
constexpr std::int64_t kServiceUnavailable = 503;

/// The outcome of a request.
struct HttpAnswer
{
    static HttpAnswer failure(CURLcode error, const std::string& text);
    /// The caller has cancelled the request.
    static HttpAnswer cancelled() { return failure(CURLE_ABORTED_BY_CALLBACK, "Callback aborted"); }

    /// The transfer library's number; 0 when the answer is whole.
    int error = 0;
    /// Its text, or one of ours.
    std::string errorText;
    /// Status and header block of the final answer; 0 when no whole block came.
    std::int64_t status = 0;
    std::string headerText;
    /// Whether the server said anything in HTTP at all.
    bool answered = false;
    /// How long the answer took, counted from the sent request, or the connection if that took longer.
    std::chrono::microseconds latency{0};
    /// Whether its connection carries many requests at once.
    bool isMultiplexed = false;
    /// Whether other requests of ours were under way at the same time.
    bool hadCompany = false;

    /// Whether the server may have refused the request because of the others, so that it is to be asked again
    /// alone.
    bool isRefusedInCompany() const
    {
        const bool isRefused = !answered && error != CURLE_ABORTED_BY_CALLBACK;
        return hadCompany && (isRefused || status == kTooManyRequests || status == kServiceUnavailable);
    }
};

/// One request on one handle of the transfer library. Redirects are not followed. The constructor sets it up,
/// `HttpConnections` runs it, and `answer` tells the outcome. The destructor ends it, whatever became of it.
/// Belongs to one thread.
class HttpTransfer
{
public:
    using TimePoint = HttpLimits::Clock::time_point;

    /// @param connections lend a handle; borrowed like `request` and `body`
    /// @param deadline when the transfer fails for lack of time; `TimePoint::max()` for never
    HttpTransfer(HttpConnections& connections, const HttpRequest& request, HttpBody& body,
                 TimePoint deadline);
    ~HttpTransfer();
    HttpTransfer(const HttpTransfer&) = delete;
    HttpTransfer& operator=(const HttpTransfer&) = delete;

    CURL* handle() const { return mHandle.get(); }
    /// Called at each step of the transfer loop. False when the transfer must end; the reason is kept.
    bool watch(TimePoint now);
    /// Ends the transfer because the caller has cancelled it.
    void cancel() { fail(CURLE_ABORTED_BY_CALLBACK, "Callback aborted"); }
    /// The transfer library is done with the transfer.
    void finish(CURLcode result);
    bool finished() const { return mResult.has_value(); }
    /// Whether the server said anything in HTTP yet.
    bool isAnswered() const { return mHeader.bytes() > 0; }
    /// When the last byte came; long ago when none has come.
    TimePoint lastArrival() const { return mLastArrival; }
    /// Whether a connection was opened for it. Otherwise its connection has carried requests before.
    bool hasNewConnection() const;
    /// Whether it has a connection that stands.
    bool isConnected() const;
    /// Whether its protected connection stands.
    bool isConnectedSecurely() const;

    /// @throws what the body threw while the transfer ran
    HttpAnswer answer() const;

private:
    struct HandleEnd
    {
        void operator()(CURL* handle) const;
        HttpConnections* lender;
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
    bool keepToRate(std::size_t bytes);
    void readTimes(HttpAnswer& answer) const;
    /// Ends the transfer for a reason of ours. It counts more than a later one of the transfer library.
    bool fail(CURLcode error, const char* text);

    const HttpRequest& mRequest;
    HttpBody& mBody;
    TimePoint mDeadline;
    std::unique_ptr<curl_slist, ListEnd> mHeaderList;
    /// Why the transfer failed, in the transfer library's words or ours. No memory is needed for it.
    char mErrorText[CURL_ERROR_SIZE] = "";
    HttpHeaderBlock mHeader;
    TimePoint mLastArrival{};
    /// None while the transfer runs.
    std::optional<CURLcode> mResult;
    std::exception_ptr mException;
    /// The last member, because the transfer library uses the others until it is returned.
    std::unique_ptr<CURL, HandleEnd> mHandle;
};
