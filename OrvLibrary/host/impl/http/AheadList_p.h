#pragma once

#include <cstddef>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "OrvLibrary/host/impl/http/AddressMemory_p.h"
#include "OrvLibrary/host/impl/http/AheadPolicy_p.h"
#include "OrvLibrary/host/impl/http/AheadWork_p.h"
#include "OrvLibrary/host/impl/http/DownloadAhead_p.h"
#include "OrvLibrary/host/impl/http/HttpConnections_p.h"

/// A request that will be made, as it was announced.
struct AheadRequest
{
    HttpRequest request;
    /// Of a download; empty for a header request.
    fileString target;
    /// Of the body, in bytes; 0 for a header request. A body that turns out longer is not fetched ahead.
    std::int64_t size = 0;

    bool isDownload() const { return !target.empty(); }
};

/// A list of requests, header requests or downloads, that are sent ahead of the calls that want their
/// answers, in the order of those calls. They move on whenever their thread waits for any transfer.
/// `AheadPolicy` says how many are under way at once.
///
/// Asking ahead must not be told from asking in turn, except by time. So redirects are not followed here,
/// nothing is noted of addresses that do not answer, and a request that fails here is simply made again by
/// its call. After the first refusal, missing answer or stall no further request is sent ahead.
class AheadList : public AheadWork
{
public:
    using TimePoint = HttpLimits::Clock::time_point;

    /// @param connectionLimit how many connections may be open at once, one for what is asked in turn among
    /// them
    AheadList(HttpConnections& connections, std::shared_ptr<AddressMemory> memory, const HttpLimits& limits,
              std::vector<AheadRequest> requests, int connectionLimit);
    /// Ends what is under way and removes the files that were not taken.
    ~AheadList() override;

    /// Sends the first requests.
    void begin();
    /// Hands out the answer to a header request, once, and waits for it if it is under way.
    /// @return false when the request is to be made in its turn
    bool takeAnswer(const HttpRequest& request, HttpAnswer& answer);
    /// Hands out the download for a target, once. Waits for its end if it is under way, and tells `progress`
    /// meanwhile. What stands ahead for the target is discarded when the request is another one.
    /// @return null when the download is to be made in its turn
    /// @throws what `progress` throws
    std::unique_ptr<DownloadAhead> takeDownload(const HttpRequest& request, const fileString& target,
                                                Curl::ProgressFunction progress, void* context);

    void advance() override;
    void stop() override { mCourse.isStopped = true; }
    void makeRoom() override;
    bool isRunning() const override { return !mRunning.empty(); }

private:
    enum class State
    {
        Waiting,
        Running,
        Arrived,
        Gone ///< failed, discarded or handed out: the call makes the request itself
    };
    struct Entry
    {
        AheadRequest asked;
        State state = State::Waiting;
        /// Takes the body of a header answer, of which there is none.
        std::unique_ptr<HttpBody> noBody;
        std::unique_ptr<DownloadAhead> download;
        std::unique_ptr<HttpTransfer> transfer;
        HttpAnswer answer;
        /// Others were under way at the same time.
        bool hadCompany = false;
        /// Sent on an HTTP/2 connection of its own that does not stand yet.
        bool isOpening = false;
        /// Counts in the load.
        bool isLoad = false;
    };
    /// HTTP/2 connections. The first one stands already.
    struct Lanes
    {
        std::size_t open = 1;
        std::size_t opening = 0;
        std::size_t made = 1;
    };
    /// What arrives, to find out when the service has fallen silent.
    struct Arrivals
    {
        std::int64_t bytesOfEnded = 0;
        std::int64_t bytes = 0;
        TimePoint last{};
    };

    // The turn of a call.
    Entry* claim(const std::string& key);
    void waitForEnd(Entry& entry);
    bool isStalled(const Entry& entry, TimePoint turn) const;
    bool mayBeUntaken(const Entry& entry) const;
    void giveUpUntaken();

    // The life of an entry.
    void startWaiting(TimePoint now);
    bool mayStart(Entry& entry);
    void start(Entry& entry, TimePoint now);
    void finish(Entry& entry);
    bool finishHeader(Entry& entry);
    bool finishDownload(Entry& entry);
    void end(Entry& entry);
    void discard(Entry& entry);

    void noteArrivals(TimePoint now);
    void noteOpened(Entry& entry);
    AheadPolicy::Situation situationOf(const Entry& entry) const;

    HttpConnections& mConnections;
    const std::shared_ptr<AddressMemory> mMemory;
    const HttpLimits mLimits;
    const std::size_t mConnectionLimit;
    std::vector<Entry> mEntries;
    /// Entries whose turn has not come, by what identifies a request.
    std::multimap<std::string, std::size_t> mByKey;
    std::vector<std::size_t> mRunning;
    /// No entry before this one is waiting.
    std::size_t mNext = 0;
    /// The entry whose turn it is; null between the calls.
    const Entry* mTurn = nullptr;
    struct
    {
        AheadPolicy::Load load;
        Lanes lanes;
        Arrivals arrivals;
        int failuresInRow = 0;
        bool isStopped = false;
    } mCourse;
};
