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
    /// The body of a download; null for a header request. Its private file beside the target is removed with
    /// it, unless the call for the download has given it the target's name.
    std::unique_ptr<FileBody> body;
    /// Set while the request is under way.
    std::unique_ptr<HttpTransfer> transfer;
    HttpAnswer answer;
    /// An exception of the progress function, kept until the call can throw it.
    std::exception_ptr exception;
    /// Whether other requests ran at the same time.
    bool hadCompany = false;
};
