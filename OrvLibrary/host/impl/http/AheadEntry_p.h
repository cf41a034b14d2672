#pragma once

#include <exception>
#include <memory>

#include "OrvLibrary/host/Curl.h"
#include "OrvLibrary/host/impl/http/HttpTransfer_p.h"

/// A request that will be made, as it was announced.
struct AheadRequest
{
    HttpRequest request;
    /// Of a download; empty for a header request.
    fileString target;
    /// Of the body, in bytes; 0 for a header request. A body that turns out longer is not fetched ahead.
    std::int64_t size = 0;

    bool isDownload() const { return !target.empty(); }
};

/// The body of a download that is fetched ahead of its call. Its file lies beside the target, and is removed
/// with this object unless the body was finished.
class BodyAhead
{
public:
    /// Takes no more than the size that was announced, and leaves room on the disk for all others that are
    /// fetched ahead.
    /// @param limits those of ordinary downloads
    BodyAhead(const HttpLimits& limits, const AheadRequest& asked);

    /// The call for this download has come: the limits are those of ordinary downloads from now on, and
    /// `progress` is told.
    /// @throws what `progress` throws
    void beginTurn(const HttpLimits& limits, Curl::ProgressFunction progress, void* context);
    FileBody& file() { return mFile; }

private:
    HttpLimits mLimits;
    FileBody mFile;
};

/// An announced request and what became of it.
struct AheadEntry
{
    enum class State
    {
        Waiting,
        Running,
        Arrived,
        Gone ///< failed, discarded or handed out: the call makes the request itself
    };

    AheadRequest asked;
    State state = State::Waiting;
    /// Takes the body of a header answer, of which there is none.
    std::unique_ptr<HttpBody> noBody;
    std::unique_ptr<BodyAhead> body;
    /// While it runs.
    std::unique_ptr<HttpTransfer> transfer;
    HttpAnswer answer;
    /// What the progress function threw while the body came.
    std::exception_ptr exception;
    /// Others were under way at the same time.
    bool hadCompany = false;
    /// Sent on an HTTP/2 connection of its own that does not stand yet.
    bool isOpening = false;
};
