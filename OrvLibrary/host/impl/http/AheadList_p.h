#pragma once

#include <cstddef>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "OrvLibrary/host/impl/http/AddressMemory_p.h"
#include "OrvLibrary/host/impl/http/AheadEntry_p.h"
#include "OrvLibrary/host/impl/http/AheadPolicy_p.h"
#include "OrvLibrary/host/impl/http/AheadWork_p.h"
#include "OrvLibrary/host/impl/http/HttpConnections_p.h"

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
    /// Hands out the answer and the body of the download for a target, once. Waits for its end if it is under
    /// way, and tells `progress` meanwhile. What stands ahead for the target is discarded when the request is
    /// another one.
    /// @return null when the download is to be made in its turn
    /// @throws what `progress` throws
    std::unique_ptr<BodyAhead> takeDownload(const HttpRequest& request, const fileString& target,
                                            Curl::ProgressFunction progress, void* context,
                                            HttpAnswer& answer);

    void advance() override;
    void stop() override { mCourse.isStopped = true; }
    void makeRoom() override;
    bool isRunning() const override { return !mRunning.empty(); }

private:
    using State = AheadEntry::State;
    /// How far the list is.
    struct Course
    {
        /// No entry before this one is waiting.
        std::size_t next = 0;
        /// HTTP/2 connections that stand. The first one stands already.
        std::size_t open = 1;
        TimePoint lastEnd{};
        int failuresInRow = 0;
        bool isStopped = false;
    };

    // The turn of a call: AheadList.cpp.
    AheadEntry* claim(const std::string& key);
    void waitForEnd(AheadEntry& entry);
    bool isStalled(const AheadEntry& entry, TimePoint turn) const;
    bool mayBeUntaken(const AheadEntry& entry) const;
    void giveUpUntaken();
    void discard(AheadEntry& entry);

    // What happens ahead of it: AheadListAdvance.cpp.
    void startWaiting(TimePoint now);
    bool mayStart(AheadEntry& entry) const;
    AheadPolicy::Situation situationOf(const AheadEntry& entry) const;
    AheadPolicy::Load load() const;
    void start(AheadEntry& entry, TimePoint now);
    void finish(AheadEntry& entry);
    bool isOfUse(AheadEntry& entry);
    void noteOpened(AheadEntry& entry);
    void end(AheadEntry& entry);

    HttpConnections& mConnections;
    const std::shared_ptr<AddressMemory> mMemory;
    const HttpLimits mLimits;
    const std::size_t mConnectionLimit;
    std::vector<AheadEntry> mEntries;
    /// Entries whose turn has not come, by what identifies a request.
    std::multimap<std::string, std::size_t> mByKey;
    std::vector<AheadEntry*> mRunning;
    /// The entry whose turn it is; null between the calls.
    const AheadEntry* mTurn = nullptr;
    Course mCourse;
};
