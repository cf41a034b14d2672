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

/// A list of announced requests (header requests or downloads). They are sent before the calls that need
/// their answers, in the order in which those calls will come. Whenever the thread waits for any transfer,
/// the list moves on. `AheadPolicy` says how many requests run at once.
///
/// The results must be the same as without the list; only the time may differ. Therefore the list follows no
/// redirects, does not record addresses that fail to answer, and leaves each failed request to its call,
/// which makes the request again. After the first refusal, missing answer or stall, the list sends nothing
/// more.
class AheadList : public AheadWork
{
public:
    using TimePoint = HttpLimits::Clock::time_point;

    /// @param connectionLimit how many connections may be open at once
    AheadList(HttpConnections& connections, std::shared_ptr<AddressMemory> memory, const HttpLimits& limits,
              std::vector<AheadRequest> requests, int connectionLimit);
    /// Ends the transfers that are still running and removes the files that no call has asked for.
    ~AheadList() override;

    /// Sends the first requests.
    void begin();
    /// Hands out the answer to a header request, once. Waits for the answer if the request is under way.
    /// @return false if the caller must make the request itself
    bool takeAnswer(const HttpRequest& request, HttpAnswer& answer);
    /// Hands out the answer and the body of a download, once. Waits for the end if the download is under way,
    /// and calls `progress` meanwhile. If another request was announced for the same target, its body is
    /// thrown away.
    /// @return null if the caller must make the request itself
    /// @throws whatever `progress` throws
    std::unique_ptr<FileBody> takeDownload(const HttpRequest& request, const fileString& target,
                                           Curl::ProgressFunction progress, void* context,
                                           HttpAnswer& answer);

    void advance() override;
    void stop() override { mCourse.isStopped = true; }
    void makeWay() override;
    std::size_t running() const override { return mRunning.size(); }

private:
    using State = AheadEntry::State;
    /// How far the list has got.
    struct Course
    {
        /// All entries before this index have been started or dropped.
        std::size_t next = 0;
        TimePoint lastEnd{};
        int failuresInRow = 0;
        bool isStopped = false;
    };

    // These answer the calls: AheadList.cpp.
    AheadEntry* claim(const std::string& key);
    void waitForEnd(AheadEntry& entry);
    bool isStalled(const AheadEntry& entry, TimePoint turn) const;
    bool mayBeUntaken(const AheadEntry& entry) const;
    void giveUpUntaken();
    void discard(AheadEntry& entry);
    bool isInTheWay() const;

    // These send requests ahead: AheadListAdvance.cpp.
    void startWaiting(TimePoint now);
    bool mayStart(const AheadEntry& entry) const;
    AheadPolicy::Situation situationOf(const AheadEntry& entry) const;
    AheadPolicy::Load load() const;
    void start(AheadEntry& entry, TimePoint now);
    void finish(AheadEntry& entry);
    bool isOfUse(AheadEntry& entry);
    void end(AheadEntry& entry);

    HttpConnections& mConnections;
    const std::shared_ptr<AddressMemory> mMemory;
    const HttpLimits mLimits;
    const std::size_t mConnectionLimit;
    /// The body object of all header requests. Their answers have no body, but every transfer needs an
    /// object.
    HttpBody mNoBody;
    std::vector<AheadEntry> mEntries;
    /// Maps the key of a request to its index in `mEntries`. An entry leaves the map when its call comes. The
    /// key is the address with its header lines, or the target of a download.
    std::multimap<std::string, std::size_t> mByKey;
    std::vector<AheadEntry*> mRunning;
    /// The download that a call is waiting for; otherwise null.
    const AheadEntry* mTurn = nullptr;
    Course mCourse;
};
