// How it works: `advance` (AheadListAdvance.cpp) is called at each step of the transfer loop, and sends
// requests ahead. Here are the turns of the calls. A call claims its entry. It waits while the entry is
// running, and takes what has arrived; otherwise it makes the request itself. The first sign of trouble stops
// the list: whatever waits then is asked in turn, and `makeRoom` sees to it that such a request is alone.
#include "OrvLibrary/host/impl/http/AheadList_p.h"

#include <algorithm>
#include <utility>

#include "OrvLibrary/host/impl/http/CancelQuestion_p.h"

namespace {

std::string keyOf(const HttpRequest& request)
{
    std::string key = request.url;
    for (const std::string& line : request.headerLines)
        key += '\n' + line;
    return key;
}

/// Done at the end of a block, also when an exception ends it.
template <class Action>
struct AtEnd
{
    ~AtEnd() { action(); }
    Action action;
};
template <class Action>
AtEnd(Action) -> AtEnd<Action>;

} // namespace

AheadList::AheadList(HttpConnections& connections, std::shared_ptr<AddressMemory> memory,
                     const HttpLimits& limits, std::vector<AheadRequest> requests, int connectionLimit)
    : mConnections(connections),
      mMemory(std::move(memory)),
      mLimits(limits),
      mConnectionLimit(static_cast<std::size_t>(std::max(connectionLimit, 1))),
      mEntries(requests.size())
{
    for (std::size_t i = 0; i < requests.size(); ++i) {
        AheadRequest& asked = mEntries[i].asked;
        asked = std::move(requests[i]);
        if (!asked.isDownload()) {
            mByKey.emplace(keyOf(asked.request), i); // equal ones stay in their order
            continue;
        }
        const std::string target = asked.target.toNativeString();
        // Two downloads to one target would be in each other's way.
        const bool isFirst = mByKey.count(target) == 0;
        mByKey.emplace(target, i);
        if (!isFirst || asked.size < 1 || asked.size > AheadPolicy::kMostBytes)
            mEntries[i].state = State::Gone;
    }
    mConnections.addAhead(*this);
}

AheadList::~AheadList()
{
    const BrokenPipeBlock block;
    mConnections.removeAhead(*this);
    mEntries.clear();
}

void AheadList::begin()
{
    const BrokenPipeBlock block;
    advance();
    mConnections.step();
}

AheadEntry* AheadList::claim(const std::string& key)
{
    const auto found = mByKey.find(key);
    if (found == mByKey.end())
        return nullptr;
    AheadEntry& entry = mEntries[found->second];
    mByKey.erase(found);
    // Also when the answer is there: the others must move on.
    mConnections.step();
    return &entry;
}

bool AheadList::takeAnswer(const HttpRequest& request, HttpAnswer& answer)
{
    const BrokenPipeBlock block;
    AheadEntry* const entry = claim(keyOf(request));
    if (!entry)
        return false;
    const AtEnd leave{[&] { discard(*entry); }};
    waitForEnd(*entry);
    if (entry->state != State::Arrived)
        return false;
    answer = std::move(entry->answer);
    return true;
}

std::unique_ptr<BodyAhead> AheadList::takeDownload(const HttpRequest& request, const fileString& target,
                                                   Curl::ProgressFunction progress, void* context,
                                                   HttpAnswer& answer)
{
    const BrokenPipeBlock block;
    AheadEntry* const entry = claim(target.toNativeString());
    if (!entry)
        return nullptr;
    const AtEnd leave{[&] { discard(*entry); }};
    const bool isRequest = keyOf(entry->asked.request) == keyOf(request);
    if (!isRequest || (entry->state != State::Running && entry->state != State::Arrived))
        return nullptr;
    mTurn = entry;
    const AtEnd endOfTurn{[&] { mTurn = nullptr; }};
    const HttpConnections::Work work(mConnections);
    entry->body->beginTurn(mLimits, progress, context);
    const FileBody& file = entry->body->file();
    if (!file.isAborted())
        waitForEnd(*entry);
    if (entry->exception)
        std::rethrow_exception(entry->exception);
    // A progress function that has heard of the download must hear its end, too.
    const bool isHeard =
        file.isTold() || file.isAborted() || entry->answer.error == CURLE_ABORTED_BY_CALLBACK;
    if (entry->state != State::Arrived && !isHeard)
        return nullptr;
    if (entry->state == State::Running)
        end(*entry);
    answer = std::move(entry->answer);
    return std::move(entry->body);
}

/// Ends early, with the entry running, after a cancel, and when the server has not taken the connection.
void AheadList::waitForEnd(AheadEntry& entry)
{
    const TimePoint turn = HttpLimits::Clock::now();
    while (entry.state == State::Running) {
        if (!mConnections.step() && entry.state == State::Running) {
            entry.transfer->finish(CURLE_OUT_OF_MEMORY);
            finish(entry);
        }
        if (entry.state != State::Running)
            return;
        if (CancelQuestion::isCancelled()) {
            entry.answer = HttpAnswer::cancelled();
            return;
        }
        if (isStalled(entry, turn)) {
            stop();
            giveUpUntaken();
            return;
        }
        mConnections.wait();
    }
}

/// Whether the service has been silent for long, and may not have taken the entry's connection.
bool AheadList::isStalled(const AheadEntry& entry, TimePoint turn) const
{
    TimePoint since = std::max(turn, mCourse.lastEnd);
    for (const AheadEntry* const running : mRunning)
        since = std::max(since, running->transfer->lastArrival());
    const auto stall = AheadPolicy::stallTime(situationOf(entry).latency);
    return HttpLimits::Clock::now() - since >= stall && mayBeUntaken(entry);
}

/// Whether the server may not have taken the entry's connection. On a connection that was served before, or
/// that others share, the answer is only late.
bool AheadList::mayBeUntaken(const AheadEntry& entry) const
{
    const HttpTransfer& transfer = *entry.transfer;
    return !transfer.isAnswered() &&
           (transfer.hasNewConnection() || (!transfer.isConnected() && !situationOf(entry).isMultiplexing));
}

/// The server has fewer workers than there are connections. Each keeps to a connection that has nothing more
/// to ask, while the others wait.
void AheadList::giveUpUntaken()
{
    const std::vector<AheadEntry*> running = mRunning;
    for (AheadEntry* const entry : running) {
        if (entry != mTurn && mayBeUntaken(*entry))
            discard(*entry);
    }
}

void AheadList::discard(AheadEntry& entry)
{
    if (entry.state == State::Running)
        end(entry);
    entry.state = State::Gone;
    entry.body.reset();
}

void AheadList::makeRoom()
{
    if (!mCourse.isStopped)
        return;
    const TimePoint latest = HttpLimits::Clock::now() + AheadPolicy::kLongestHold;
    while (isRunning() && HttpLimits::Clock::now() < latest && mConnections.step() &&
           !CancelQuestion::isCancelled()) {
        if (isRunning())
            mConnections.wait();
    }
    while (isRunning())
        discard(*mRunning.back());
}
