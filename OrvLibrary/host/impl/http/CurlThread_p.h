#pragma once

#include <memory>
#include <optional>
#include <string>

#include "OrvLibrary/host/Curl.h"
#include "OrvLibrary/host/impl/http/AheadList_p.h"
#include "OrvLibrary/host/impl/http/HttpConnections_p.h"

/// The part of the download service that each thread has for itself.
struct CurlThread
{
    /// The object of the calling thread.
    static CurlThread& get();

    HttpConnections connections;
    /// Lists of announced requests; null if there are none.
    std::unique_ptr<AheadList> headers;
    std::unique_ptr<AheadList> downloads;
};

/// The connections for one request. Usually these are the thread's. If a progress function makes a request,
/// the thread's connections are in use, and the request gets fresh ones.
class RequestConnections
{
public:
    RequestConnections()
    {
        if (CurlThread::get().connections.busy())
            mOwn.emplace();
    }

    HttpConnections& get() { return mOwn ? *mOwn : CurlThread::get().connections; }
    AheadList* headers() { return mOwn ? nullptr : CurlThread::get().headers.get(); }
    AheadList* downloads() { return mOwn ? nullptr : CurlThread::get().downloads.get(); }

private:
    std::optional<HttpConnections> mOwn;
};

/// The answer to the calling thread's last request.
namespace LastAnswer {

void clear();
void note(const HttpAnswer& answer, const std::string& url);
/// Changes nothing if there is no memory for the text.
void noteReason(const std::string& reason) noexcept;
const Curl::Answer& get();

} // namespace LastAnswer
