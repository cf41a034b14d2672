#pragma once

#include <cstddef>
#include <cstdint>
#include <exception>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "OrvLibrary/host/impl/http/HttpConnections_p.h"

/// A download that is going to be asked for.
struct DownloadAnnouncement
{
    HttpRequest request;
    fileString target;
    /// Of the body, in bytes. One that turns out longer is not fetched ahead.
    std::int64_t size = 0;
};

/// What a download fetched ahead is made of. Its file lies beside the target and is removed with this, unless
/// the body was finished.
struct DownloadAhead
{
    using TimePoint = HttpLimits::Clock::time_point;

    /// @param serviceLimits those of ordinary downloads
    DownloadAhead(const HttpLimits& serviceLimits, const DownloadAnnouncement& announcement, TimePoint now);

    /// Its turn has come: the limits are those of ordinary downloads from now on, and `progress` is told.
    /// @throws what `progress` throws
    void beginTurn(const HttpLimits& serviceLimits, Curl::ProgressFunction progress, void* context);

    HttpLimits limits;
    ProgressPacer pacer;
    FileBody body;
    HttpAnswer answer;
    /// What the body threw while it came.
    std::exception_ptr exception;
};

/// Downloads that are sent ahead of the calls that ask for them, in the order of those calls. They move on
/// whenever their thread waits for any transfer. What fails here fails in silence: its call asks anew.
///
/// As with header requests, a server may have fewer workers than it has connections: when nothing comes any
/// more while a call waits for an answer on a new connection, nothing more is fetched ahead.
class DownloadPrefetch
{
public:
    using TimePoint = HttpLimits::Clock::time_point;

    /// What stands ahead of its turn in all, in flight or on the disk.
    static constexpr std::int64_t kMostBytes = 64 * 1000 * 1000;
    /// Of files larger than `kLarge`, at most `kMostLarge` are in flight at a time.
    static constexpr std::int64_t kLarge = 8 * 1000 * 1000;
    static constexpr std::size_t kMostLarge = 2;

    /// @param connectionLimit how many connections may be open at once, one for who asks in turn among them
    DownloadPrefetch(HttpConnections& connections, const HttpLimits& limits,
                     const std::vector<DownloadAnnouncement>& announcements, int connectionLimit);
    /// Ends what is under way and removes the files that were not taken.
    ~DownloadPrefetch();
    DownloadPrefetch(const DownloadPrefetch&) = delete;
    DownloadPrefetch& operator=(const DownloadPrefetch&) = delete;

    /// The turn of a target has come: waits for the end of its transfer and tells `progress` meanwhile. Each
    /// is handed out once. What stands ahead for the target is discarded when the request is another one.
    /// @return null when the download is to be asked for anew
    /// @throws what `progress` throws
    std::unique_ptr<DownloadAhead> take(const HttpRequest& request, const fileString& target,
                                        Curl::ProgressFunction progress, void* context);
    /// Starts and ends what is due. Called at each step of the connections.
    void advance();
    /// Called before a request is sent in turn. A server that has refused a request may serve only so many at
    /// a time, and must not refuse this one because of those sent ahead: they end first, within a second, or
    /// are discarded, and nothing more is fetched ahead.
    void makeRoom();
    /// Fetches nothing more ahead.
    void stop() { mIsStopped = true; }
    bool isRunning() const { return !mRunning.empty(); }

private:
    enum class State
    {
        Waiting,
        Running,
        Arrived,
        Gone ///< failed, discarded or handed out
    };
    struct Entry
    {
        DownloadAnnouncement announcement;
        State state = State::Waiting;
        std::unique_ptr<DownloadAhead> download;
        std::unique_ptr<HttpTransfer> transfer;
        bool countsAsAhead = false;
    };

    void startWaiting(TimePoint now);
    bool mayStart(const Entry& entry) const;
    std::size_t width(const Entry& next) const;
    void start(Entry& entry, TimePoint now);
    void waitForEnd(Entry& entry);
    void finish(Entry& entry);
    void end(Entry& entry);
    void discard(Entry& entry);
    void noteArrivals(TimePoint now);
    bool isStuck(const Entry& entry, TimePoint turn) const;
    void giveUp();

    HttpConnections& mConnections;
    const HttpLimits mLimits;
    const std::size_t mConnectionLimit;
    std::vector<Entry> mEntries;
    /// Entries whose turn has not come, by their targets.
    std::map<std::string, std::size_t> mByTarget;
    std::vector<std::size_t> mRunning;
    /// Before this one none is waiting.
    std::size_t mNext = 0;
    /// The one whose turn it is; null between the calls.
    const Entry* mTurn = nullptr;
    /// Of what is running or has arrived: announced bytes, and how many.
    std::int64_t mBytesAhead = 0;
    std::size_t mAhead = 0;
    std::size_t mLargeRunning = 0;
    /// Bytes of all that is running at the last look, and when they last changed.
    std::int64_t mBytesSeen = 0;
    TimePoint mLastArrival{};
    int mFailuresInRow = 0;
    /// Nothing more is fetched ahead.
    bool mIsStopped = false;
};
