#pragma once

#include <cstddef>

/// Requests that run beside the one that a call waits for. The transfer loop moves them on through this
/// interface and knows nothing else about them.
class AheadWork
{
public:
    AheadWork() = default;
    virtual ~AheadWork() = default;
    AheadWork(const AheadWork&) = delete;
    AheadWork& operator=(const AheadWork&) = delete;

    /// Ends requests that are finished and starts new ones. Called at each step of the transfer loop. Throws
    /// nothing.
    virtual void advance() = 0;
    /// From now on no request is started.
    virtual void stop() = 0;
    /// Called before a request is sent that was not sent ahead. It needs one of the connections that the host
    /// allows, and if `stop` was called, it must run alone. Requests in its way get a second to end, then the
    /// latest ones are given up.
    virtual void makeWay() = 0;
    /// The number of requests that are running.
    virtual std::size_t running() const = 0;
};
