#pragma once

#include <exception>
#include <memory>

#include "OrvLibrary/host/Curl.h"
#include "OrvLibrary/host/impl/http/HttpTransfer_p.h"

/// A request that the caller has announced: the call for it will come later.
struct AheadRequest
{
    HttpRequest request;
    /// Where a download goes. Empty for a header request.
    fileString target;
    /// The announced size of the body in bytes; 0 for a header request. A body that proves to be longer is
    /// not fetched ahead.
    std::int64_t size = 0;

    bool isDownload() const { return !target.empty(); }
};

/// The body of a download that is fetched before its call comes. It is written to a private file beside the
/// target. The destructor removes this file unless `FileBody::finish` gave it the target's name.
class BodyAhead
{
public:
    /// The body may not be larger than announced. It leaves enough free space on the disk for all other
    /// bodies that are fetched ahead.
    /// @param limits the limits of ordinary downloads
    BodyAhead(const HttpLimits& limits, const AheadRequest& asked);

    /// The call for this download has come. From now on the limits of ordinary downloads hold, and `progress`
    /// is called for the bytes that are there and for those that follow.
    /// @throws whatever `progress` throws
    void beginTurn(const HttpLimits& limits, Curl::ProgressFunction progress, void* context);
    FileBody& file() { return mFile; }

private:
    HttpLimits mLimits;
    FileBody mFile;
};

/// An announced request and how far it is.
struct AheadEntry
{
    enum class State
    {
        Waiting,
        Running,
        Arrived,
        Gone ///< it failed, was given up or handed out; a call that comes later makes the request itself
    };

    AheadRequest asked;
    State state = State::Waiting;
    /// The body object of a header request. Such an answer has no body, but every transfer needs an object.
    std::unique_ptr<HttpBody> noBody;
    std::unique_ptr<BodyAhead> body;
    /// Set while the request is under way.
    std::unique_ptr<HttpTransfer> transfer;
    HttpAnswer answer;
    /// An exception of the progress function, kept until the call can throw it.
    std::exception_ptr exception;
    /// Whether other requests ran at the same time.
    bool hadCompany = false;
    /// Whether the request waits for a new HTTP/2 connection that is still being made.
    bool isOpening = false;
};
