#pragma once

#include <memory>
#include <vector>

#include <curl/curl.h>

#include "OrvLibrary/host/impl/http/HttpTransfer_p.h"

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
    /// @return false if the caller cancelled meanwhile
    virtual bool makeWay() = 0;
    /// The number of requests that are running.
    virtual std::size_t running() const = 0;
};

/// The connections of one thread. They are kept between requests, because making new ones takes time.
class HttpConnections
{
public:
    HttpConnections();
    HttpConnections(const HttpConnections&) = delete;
    HttpConnections& operator=(const HttpConnections&) = delete;

    /// Whether a transfer is running. A request made at such a time comes from that transfer's progress
    /// function and needs another object.
    bool busy() const { return mBusy; }
    /// Marks the connections as busy for the duration of a block.
    class Work
    {
    public:
        explicit Work(HttpConnections& connections, bool isInTurn = false) : mConnections(connections)
        {
            mConnections.mBusy = true;
            mConnections.mIsInTurn = isInTurn;
        }
        ~Work() { mConnections.mBusy = mConnections.mIsInTurn = false; }
        Work(const Work&) = delete;
        Work& operator=(const Work&) = delete;

    private:
        HttpConnections& mConnections;
    };

    /// Sends a request and waits until the answer is complete.
    /// @throws whatever the body throws
    HttpAnswer perform(const HttpRequest& request, HttpBody& body);

    /// Adds work that moves on while `perform` waits. The caller keeps ownership.
    /// @param connectionLimit from now on, at most this many connections to each address are open
    void addAhead(AheadWork& work, std::size_t connectionLimit);
    void removeAhead(AheadWork& work);
    /// How many requests that were sent ahead are running.
    std::size_t aheadCount() const;
    /// Whether `perform` is sending a request or about to. This request needs a connection, too.
    bool isInTurn() const { return mIsInTurn; }
    /// Stops sending ahead, because the server allows only a few requests at a time.
    void stopAhead();

    /// The three parts of `perform`, for work that runs several transfers.
    void start(HttpTransfer& transfer);
    /// Ends a transfer at any stage.
    void end(CURL* handle);
    /// Moves all transfers on. False if the transfer library has no memory left.
    bool step();
    /// Sleeps until there may be something to do, at most for some milliseconds.
    void wait();

private:
    bool move();
    void collectResults();

    /// The TLS sessions of each server, so that a further connection to it needs a shorter TLS handshake.
    std::unique_ptr<CURLSH, CURLSHcode (*)(CURLSH*)> mSessions{nullptr, &curl_share_cleanup};
    std::unique_ptr<CURLM, CURLMcode (*)(CURLM*)> mMulti{nullptr, &curl_multi_cleanup};
    bool mBusy = false;
    bool mIsInTurn = false;
    /// Whether a transfer was added since the transfer library moved them on.
    bool mHasNew = false;
    std::vector<AheadWork*> mAhead;
};
