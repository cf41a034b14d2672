#pragma once

#include <chrono>
#include <functional>
#include <optional>

#include "OrvHost/OrvHostExport.h"

namespace OrvHost {

/// Decides whether a failed request is sent again, and waits before that. The pauses grow and vary at random,
/// so that clients that failed together do not all return at the same moment. If three requests in a row
/// failed at every try, the service is down, not busy: from then on each request is sent only once, until one
/// succeeds. One object belongs to one thread.
class ORVHOST_EXPORT Retries
{
public:
    /// How often and how soon a request is repeated.
    struct Settings
    {
        int retries = 3; ///< after the first try; 0 for no repetition
        std::chrono::milliseconds firstPause{500};
        std::chrono::seconds longestRetryAfter{30};
        std::function<bool()> isCancelled; ///< called all the time during a pause; may be empty
    };

    explicit Retries(Settings settings) : mSettings(std::move(settings)) {}

    /// Call it before the first try of a request.
    void begin() { mTries = 0; }
    /// Call it after a try whose failure may pass.
    /// @param retryAfter how long the service wants us to wait
    /// @return true, after the pause, if the request should be sent again
    bool shouldTryAgain(std::optional<std::chrono::seconds> retryAfter);
    /// Call it when a request has succeeded.
    void succeeded() { mFailuresInRow = 0; }

    /// Whether the run was cancelled.
    bool isCancelled() const { return mSettings.isCancelled && mSettings.isCancelled(); }

private:
    bool pause(std::chrono::milliseconds time) const;

    Settings mSettings;
    int mTries = 0;
    int mFailuresInRow = 0; ///< requests in a row that failed at every try
};

} // namespace OrvHost
