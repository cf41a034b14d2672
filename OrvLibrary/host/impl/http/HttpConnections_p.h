#pragma once

#include <chrono>
#include <csignal>
#include <deque>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include <curl/curl.h>

#include "OrvLibrary/host/impl/http/HttpTransfer_p.h"

class DownloadPrefetch;
class HeaderPrefetch;

/// The connections of one thread, kept open between requests, and the handles that are used over and over.
/// Two threads never share one.
class HttpConnections
{
public:
    using TimePoint = HttpLimits::Clock::time_point;

    HttpConnections();
    ~HttpConnections();
    HttpConnections(const HttpConnections&) = delete;
    HttpConnections& operator=(const HttpConnections&) = delete;

    /// The calling thread's; closed when the thread ends.
    static HttpConnections& ofThisThread();

    /// Whether a transfer is running, so that this one is asked from within its progress function. Another
    /// object must serve then.
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
    HttpAnswer perform(const HttpRequest& request, HttpBody& body, const HttpLimits& limits,
                       TimePoint deadline);

    /// The header requests sent ahead; null when there are none.
    HeaderPrefetch* prefetch() const { return mPrefetch.get(); }
    void setPrefetch(std::unique_ptr<HeaderPrefetch> prefetch);
    /// The bodies fetched ahead; null when there are none.
    DownloadPrefetch* downloads() const { return mDownloads.get(); }
    void setDownloads(std::unique_ptr<DownloadPrefetch> downloads);

    /// How long an address takes to answer when nothing else is asked of it: the shortest of the last few
    /// times. Negative when it is not known.
    std::chrono::microseconds latency(const std::string& address) const;
    /// Whether one connection to the address carries many requests at once; false when it is not known.
    bool isMultiplexing(const std::string& address) const;
    /// Whether a running transfer without an answer may be one whose connection the server has not taken. On
    /// a connection that was served before, the answer is only late.
    bool mayBeUntaken(const HttpTransfer& transfer, const std::string& address) const;
    /// Notes the time, and the kind of connection, of a transfer that has just been answered; not where
    /// memory runs out.
    void noteAnswer(const HttpTransfer& transfer) noexcept;

    /// Ends what is asked for ahead, and asks for nothing more ahead: the server serves only so many at a
    /// time.
    void stopAhead();

    /// The pieces of `perform`, for those who run several transfers.
    CURL* acquire();
    void release(CURL* handle) noexcept;
    void start(HttpTransfer& transfer);
    void stop(HttpTransfer& transfer);
    /// Moves what goes on by itself. Ends and failures are left to the next step.
    bool send();
    /// Moves every transfer on. False when the transfer library cannot, for lack of memory.
    bool step();
    /// Sleeps until there may be more to do.
    void wait();

private:
    void makeRoom();
    bool hasCompany() const;
    void run(HttpTransfer& transfer);
    void collectResults();

    CURLM* mMulti;
    std::vector<CURL*> mIdle;
    bool mBusy = false;
    std::unique_ptr<HeaderPrefetch> mPrefetch;
    std::unique_ptr<DownloadPrefetch> mDownloads;
    struct Experience
    {
        std::deque<std::chrono::microseconds> latencies;
        bool isMultiplexing = false;
    };
    /// Of the last few answers, by "host:port".
    std::map<std::string, Experience> mExperiences;
};

/// Keeps a write on a closed TLS connection from ending the process, without touching the host's handlers. To
/// stand around everything that lets connections move.
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
