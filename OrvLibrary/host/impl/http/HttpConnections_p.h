#pragma once

#include <csignal>
#include <vector>

#include <curl/curl.h>

#include "OrvLibrary/host/impl/http/AheadWork_p.h"
#include "OrvLibrary/host/impl/http/HttpTransfer_p.h"

/// The connections of one thread, which stay open between requests, and the handles of the transfer library,
/// which are used again. Each thread has its own.
class HttpConnections
{
public:
    using TimePoint = HttpLimits::Clock::time_point;

    HttpConnections();
    ~HttpConnections();
    HttpConnections(const HttpConnections&) = delete;
    HttpConnections& operator=(const HttpConnections&) = delete;

    /// Whether a transfer is running. A request that is made meanwhile comes from that transfer's progress
    /// function, and needs another object.
    bool busy() const { return mBusy; }
    /// Makes the connections busy for the life of a block.
    class Work
    {
    public:
        explicit Work(HttpConnections& connections) : mBusy(connections.mBusy) { mBusy = true; }
        ~Work() { mBusy = false; }
        Work(const Work&) = delete;
        Work& operator=(const Work&) = delete;

    private:
        bool& mBusy;
    };

    /// Sends a request and waits for the end of its answer.
    /// @throws what the body throws
    HttpAnswer perform(const HttpRequest& request, HttpBody& body, TimePoint deadline);

    /// Work that moves on beside the transfers that somebody waits for. Not owned.
    void addAhead(AheadWork& work) { mAhead.push_back(&work); }
    void removeAhead(AheadWork& work);
    /// Ends what is asked for ahead, and asks for nothing more ahead: the server serves only so many at a
    /// time.
    void stopAhead();

    /// Lends a fresh or reset handle.
    CURL* lend();
    /// Ends the transfer of a handle, if there is one, and resets the handle.
    void takeBack(CURL* handle) noexcept;

    /// The parts of `perform`, for work that runs several transfers.
    void start(HttpTransfer& transfer);
    /// Moves every transfer on. False when the transfer library cannot, for lack of memory.
    bool step();
    /// Sleeps until there may be more to do.
    void wait();

private:
    bool hasCompany() const;
    void collectResults();

    CURLM* mMulti;
    std::vector<CURL*> mIdle;
    bool mBusy = false;
    std::vector<AheadWork*> mAhead;
};

/// Blocks SIGPIPE for the life of a block: otherwise a write on a closed TLS connection would end the
/// process. The host's signal handlers stay as they are. Needed around all calls that let connections move.
class BrokenPipeBlock
{
public:
    BrokenPipeBlock();
    ~BrokenPipeBlock();
    BrokenPipeBlock(const BrokenPipeBlock&) = delete;
    BrokenPipeBlock& operator=(const BrokenPipeBlock&) = delete;

private:
    sigset_t mSignals;
    sigset_t mFormer;
    bool mWasPending = false;
};
