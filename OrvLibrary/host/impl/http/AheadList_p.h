#pragma once

#include <cstddef>
#include <exception>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "OrvLibrary/host/impl/http/AddressMemory_p.h"
#include "OrvLibrary/host/impl/http/AheadPolicy_p.h"
#include "OrvLibrary/host/impl/http/HttpConnections_p.h"

/// A request that the caller has announced: the call for it will come later.
struct AheadRequest
{
    HttpRequest request;
    /// Where a download goes. Empty for a header request.
    fileString target;
    /// The announced size of the body in bytes; 0 for a header request. A body that proves to be longer is
    /// not fetched ahead.
    std::int64_t size = 0;

    bool isDownload() const { return !target.empty(); }
};

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

    /// The first requests are sent at the next step of the connections.
    /// @param requests at least one
    /// @param connectionLimit how many connections the host allows
    AheadList(HttpConnections& connections, std::shared_ptr<AddressMemory> memory, const HttpLimits& limits,
              std::vector<AheadRequest> requests, std::size_t connectionLimit);
    /// Ends the transfers that are still running and removes the files that no call has asked for.
    ~AheadList() override;

    /// Hands out the answer to a header request, once. Waits for the answer if the request is under way. The
    /// answer of a request that the caller cancels meanwhile is that of a cancel.
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
    bool makeWay() override;
    std::size_t running() const override { return mRunning.size(); }

private:
    /// An announced request and how far it is.
    struct Entry
    {
        enum class State
        {
            Waiting,
            Running,
            Arrived,
            Gone ///< it failed, was given up or handed out; a call that comes later makes the request itself
        };

        AheadRequest asked;
        State state = State::Waiting;
        /// The body of a download; null for a header request. Its private file beside the target is removed
        /// with it, unless the call for the download has given it the target's name.
        std::unique_ptr<FileBody> body;
        /// Set while the request is under way.
        std::unique_ptr<HttpTransfer> transfer;
        HttpAnswer answer;
        /// An exception of the progress function, kept until the call can throw it.
        std::exception_ptr exception;
        /// Whether other requests ran at the same time.
        bool hadCompany = false;
    };
    using State = Entry::State;
    /// How far the list has got.
    struct Course
    {
        /// All entries before this index have been started or dropped.
        std::size_t next = 0;
        TimePoint lastEnd{};
        int failuresInRow = 0;
        bool isStopped = false;
    };

    /// Ends the use of an entry that a call has asked for.
    struct ClaimEnd
    {
        void operator()(Entry* entry) const;
        AheadList* list;
    };
    using Claim = std::unique_ptr<Entry, ClaimEnd>;

    // These answer the calls: AheadList.cpp.
    Claim claim(const std::string& key);
    void waitForEnd(Entry& entry);
    bool isStalled(const Entry& entry, TimePoint turn) const;
    bool mayBeUntaken(const Entry& entry) const;
    void giveUpUntaken();
    void discard(Entry& entry);
    bool isInTheWay() const;

    // These send requests ahead: AheadListAdvance.cpp.
    void startWaiting(TimePoint now);
    bool mayStart(const Entry& entry) const;
    AddressMemory::Known serverOf(const Entry& entry) const;
    AheadPolicy::Load load() const;
    void start(Entry& entry, TimePoint now);
    void finish(Entry& entry);
    bool isOfUse(Entry& entry);
    void end(Entry& entry);

    HttpConnections& mConnections;
    const std::shared_ptr<AddressMemory> mMemory;
    const HttpLimits mLimits;
    const AheadPolicy::Allowance mAllowance;
    /// The body object of all header requests: every transfer needs one.
    HttpBody mNoBody;
    std::vector<Entry> mEntries;
    /// Maps the key of a request to its index in `mEntries`. An entry leaves the map when its call comes. The
    /// key is the address with its header lines, or the target of a download.
    std::multimap<std::string, std::size_t> mByKey;
    std::vector<Entry*> mRunning;
    /// The download that a call is waiting for; otherwise null.
    const Entry* mTurn = nullptr;
    Course mCourse;
};
