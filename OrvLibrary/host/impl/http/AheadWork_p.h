#pragma once

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
    /// Called before a request is sent that was not sent ahead. If `stop` was called, this request must run
    /// alone: the others get a second to end, and the rest is given up. Without `stop` nothing happens.
    virtual void letRunAlone() = 0;
    virtual bool isRunning() const = 0;
};
