#pragma once

#include <chrono>
#include <functional>
#include <optional>

#include "OrvHost/OrvHostExport.h"

namespace OrvHost {

/// Decides whether a request that failed is made again, and waits before that. The pauses grow and are
/// jittered, so that many clients that failed together do not come back together. Where three requests in a
/// row failed for good, the service is down rather than busy: each further request is then made once, until
/// one goes well. One object belongs to one thread.
class ORVHOST_EXPORT Retries
{
public:
    /// How often and how soon a request is made again.
    struct Settings
    {
        int retries = 3; ///< after the first try; 0 for none
        std::chrono::milliseconds firstPause{500};
        std::chrono::seconds longestRetryAfter{30};
        std::function<bool()> isCancelled; ///< asked all the time during a pause; may be empty
    };

    explicit Retries(Settings settings) : mSettings(std::move(settings)) {}

    /// To be called before a request's first try.
    void begin() { mTries = 0; }
    /// To be called when a try failed in a way that may pass.
    /// @param retryAfter how long the service asked to be left alone
    /// @return true, after the pause, when the request should be made again
    bool shouldTryAgain(std::optional<std::chrono::seconds> retryAfter);
    /// To be called when a request went well.
    void succeeded() { mGivenUp = 0; }

    /// Whether the run was cancelled.
    bool isCancelled() const { return mSettings.isCancelled && mSettings.isCancelled(); }

private:
    bool pause(std::chrono::milliseconds time) const;

    Settings mSettings;
    int mTries = 0;
    int mGivenUp = 0; ///< requests in a row that failed at every try
};

} // namespace OrvHost
