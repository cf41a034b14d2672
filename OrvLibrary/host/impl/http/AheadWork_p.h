#pragma once

/// Requests that are under way beside the one that somebody waits for. The transfer loop moves them on and
/// knows nothing else of them.
class AheadWork
{
public:
    AheadWork() = default;
    virtual ~AheadWork() = default;
    AheadWork(const AheadWork&) = delete;
    AheadWork& operator=(const AheadWork&) = delete;

    /// Ends what is finished and starts what is due. Called at each step of the loop. Throws nothing.
    virtual void advance() = 0;
    /// Starts nothing more.
    virtual void stop() = 0;
    /// Called before a request is sent in turn. After `stop`, the request must be alone: what is under way
    /// ends within a second or is given up. Otherwise nothing happens.
    virtual void makeRoom() = 0;
    virtual bool isRunning() const = 0;
};
