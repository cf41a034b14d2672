#pragma once

#include <exception>

#include "OrvLibrary/host/Curl.h"
#include "OrvLibrary/host/impl/http/HttpTransfer_p.h"

/// A download that is fetched ahead of its call. Its file lies beside the target, and is removed with this
/// object unless the body was finished.
struct DownloadAhead
{
    /// Takes no more than `size` bytes, and leaves room on the disk for all others that are fetched ahead.
    /// @param serviceLimits those of ordinary downloads
    DownloadAhead(const HttpLimits& serviceLimits, const fileString& target, std::int64_t size);

    /// The call for this download has come: the limits are those of ordinary downloads from now on, and
    /// `progress` is told.
    /// @throws what `progress` throws
    void beginTurn(const HttpLimits& serviceLimits, Curl::ProgressFunction progress, void* context);
    /// Whether the caller must hear of what became of the download, because the progress function has heard
    /// of its bytes or has ended it. Otherwise the download can be asked for anew.
    bool isTold() const;

    HttpLimits limits;
    FileBody body;
    HttpAnswer answer;
    /// What the body threw while it came.
    std::exception_ptr exception;
};
