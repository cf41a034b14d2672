#pragma once

#include <vector>

#include <curl/curl.h>

#include "OrvLibrary/host/impl/HttpTransfer_p.h"

/// The connections of one thread, kept open between requests, and the handles that are used over and over.
/// Two threads never share one.
class HttpConnections
{
public:
    HttpConnections();
    ~HttpConnections();
    HttpConnections(const HttpConnections&) = delete;
    HttpConnections& operator=(const HttpConnections&) = delete;

    /// The calling thread's; closed when the thread ends.
    static HttpConnections& ofThisThread();

    /// Whether a transfer is running, so that this one is asked from within its progress function. Another
    /// object must serve then.
    bool busy() const { return mBusy; }

    /// Sends a request and waits for the end of its answer.
    /// @throws what the body throws
    HttpAnswer perform(const HttpRequest& request, HttpBody& body, const HttpLimits& limits,
                       HttpLimits::Clock::time_point deadline);

private:
    CURL* acquire();
    void release(CURL* handle);
    void run(HttpTransfer& transfer);
    void collectResults();

    CURLM* mMulti;
    std::vector<CURL*> mIdle;
    bool mBusy = false;
};
