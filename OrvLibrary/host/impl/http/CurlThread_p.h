#pragma once

#include <memory>
#include <optional>
#include <string>

#include "OrvLibrary/host/Curl.h"
#include "OrvLibrary/host/impl/http/AheadList_p.h"
#include "OrvLibrary/host/impl/http/HttpConnections_p.h"

/// What the download service keeps for each thread between its requests.
struct CurlThread
{
    /// That of the calling thread.
    static CurlThread& get();

    HttpConnections connections;
    /// Announced requests; null when there are none.
    std::unique_ptr<AheadList> headers;
    std::unique_ptr<AheadList> downloads;
};

/// The connections for one request: the thread's, or fresh ones when the request comes from the progress
/// function of another one.
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
/// Leaves the reason as it is when there is no memory for the text.
void noteReason(const std::string& reason) noexcept;
const Curl::Answer& get();

} // namespace LastAnswer
