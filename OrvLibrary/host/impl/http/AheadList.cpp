// How it works: `advance` is called at each step of the transfer loop. It ends the transfers that are
// finished and starts as many of those that wait, in their order, as the policy allows. A call takes its
// entry: it waits while the entry is running, and otherwise makes the request itself, in its turn. The first
// sign of trouble stops the list: whatever waits then is asked in turn, and `makeRoom` sees to it that such a
// request is alone.
#include "OrvLibrary/host/impl/http/AheadList_p.h"

#include <algorithm>
#include <new>
#include <utility>

#include "OrvLibrary/host/impl/http/CancelQuestion_p.h"
#include "OrvLibrary/host/impl/http/HttpAddress_p.h"

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

void AheadList::begin()
{
    const BrokenPipeBlock block;
    advance();
    mConnections.step();
}

AheadList::~AheadList()
{
    const BrokenPipeBlock block;
    mConnections.removeAhead(*this);
    for (Entry& entry : mEntries)
        discard(entry);
}

AheadList::Entry* AheadList::claim(const std::string& key)
{
    const auto found = mByKey.find(key);
    if (found == mByKey.end())
        return nullptr;
    Entry& entry = mEntries[found->second];
    mByKey.erase(found);
    // Also when the answer is there: the others must move on.
    mConnections.step();
    return &entry;
}

bool AheadList::takeAnswer(const HttpRequest& request, HttpAnswer& answer)
{
    const BrokenPipeBlock block;
    Entry* const entry = claim(keyOf(request));
    if (!entry)
        return false;
    const AtEnd leave{[&] { discard(*entry); }};
    waitForEnd(*entry);
    if (entry->state != State::Arrived)
        return false;
    answer = std::move(entry->answer);
    return true;
}

std::unique_ptr<DownloadAhead> AheadList::takeDownload(const HttpRequest& request, const fileString& target,
                                                       Curl::ProgressFunction progress, void* context)
{
    const BrokenPipeBlock block;
    Entry* const entry = claim(target.toNativeString());
    if (!entry)
        return nullptr;
    const AtEnd leave{[&] { discard(*entry); }};
    const bool isRequest = keyOf(entry->asked.request) == keyOf(request);
    if (!isRequest || (entry->state != State::Running && entry->state != State::Arrived))
        return nullptr;
    mTurn = entry;
    const AtEnd endOfTurn{[&] { mTurn = nullptr; }};
    const HttpConnections::Work work(mConnections);
    DownloadAhead& download = *entry->download;
    download.beginTurn(mLimits, progress, context);
    if (!download.body.isAborted())
        waitForEnd(*entry);
    if (download.exception)
        std::rethrow_exception(download.exception);
    if (entry->state != State::Arrived && !download.isTold())
        return nullptr;
    if (entry->state == State::Running)
        end(*entry);
    return std::move(entry->download);
}

/// Ends early, with the entry running, after a cancel, and when the server has not taken the connection.
void AheadList::waitForEnd(Entry& entry)
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
            (entry.download ? entry.download->answer : entry.answer) = HttpAnswer::cancelled();
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

bool AheadList::isStalled(const Entry& entry, TimePoint turn) const
{
    const TimePoint since = std::max(turn, mCourse.arrivals.last);
    const auto stall = AheadPolicy::stallTime(situationOf(entry).latency);
    return HttpLimits::Clock::now() - since >= stall && mayBeUntaken(entry);
}

/// Whether the server may not have taken the entry's connection. On a connection that was served before, or
/// that others share, the answer is only late.
bool AheadList::mayBeUntaken(const Entry& entry) const
{
    const HttpTransfer& transfer = *entry.transfer;
    return !transfer.isAnswered() &&
           (transfer.hasNewConnection() || (!transfer.isConnected() && !situationOf(entry).isMultiplexing));
}

AheadPolicy::Situation AheadList::situationOf(const Entry& entry) const
{
    const std::string address = HttpAddress::hostAndPort(entry.asked.request.url);
    AheadPolicy::Situation situation;
    situation.requests = entry.asked.isDownload() ? 0 : mEntries.size();
    situation.latency = mMemory->latency(address);
    situation.isMultiplexing = mMemory->isMultiplexing(address);
    situation.connectionLimit = mConnectionLimit;
    return situation;
}

void AheadList::advance()
{
    // The transfer that is waited for must not fail because there is no memory for one that is sent ahead.
    try {
        const TimePoint now = HttpLimits::Clock::now();
        noteArrivals(now);
        const std::vector<std::size_t> running = mRunning;
        for (const std::size_t index : running) {
            Entry& entry = mEntries[index];
            if (entry.transfer->finished() || !entry.transfer->watch(now))
                finish(entry);
            else if (entry.isOpening && entry.transfer->isConnectedSecurely())
                noteOpened(entry);
        }
        startWaiting(now);
    } catch (const std::bad_alloc&) {
        mCourse.isStopped = true;
    }
}

void AheadList::noteArrivals(TimePoint now)
{
    std::int64_t bytes = mCourse.arrivals.bytesOfEnded;
    for (const std::size_t index : mRunning)
        bytes += mEntries[index].transfer->received();
    if (bytes != mCourse.arrivals.bytes)
        mCourse.arrivals.last = now;
    mCourse.arrivals.bytes = bytes;
}

/// Other requests can be sent on a connection as soon as it stands.
void AheadList::noteOpened(Entry& entry)
{
    if (!entry.isOpening)
        return;
    entry.isOpening = false;
    --mCourse.lanes.opening;
    ++mCourse.lanes.open;
}

void AheadList::startWaiting(TimePoint now)
{
    for (; mNext < mEntries.size() && !mCourse.isStopped; ++mNext) {
        Entry& entry = mEntries[mNext];
        if (entry.state != State::Waiting)
            continue;
        if (!mayStart(entry))
            return;
        start(entry, now);
        if (mRunning.size() % AheadPolicy::kBurst == 0)
            mConnections.send();
    }
}

bool AheadList::mayStart(Entry& entry)
{
    Lanes& lanes = mCourse.lanes;
    if (entry.asked.isDownload() && !AheadPolicy::hasRoom(mCourse.load, entry.asked.size))
        return false;
    const AheadPolicy::Situation situation = situationOf(entry);
    if (mRunning.size() < AheadPolicy::width(situation, lanes.open, lanes.opening))
        return true;
    if (lanes.made >= AheadPolicy::connections(situation))
        return false;
    entry.isOpening = true;
    ++lanes.made;
    ++lanes.opening;
    return true;
}

void AheadList::start(Entry& entry, TimePoint now)
{
    // Memory is needed first: a call would wait for ever for an entry that is marked as running and is not.
    mRunning.reserve(mRunning.size() + 1);
    const AheadRequest& asked = entry.asked;
    entry.asked.request.onNewConnection = entry.isOpening;
    TimePoint deadline = TimePoint::max();
    if (asked.isDownload()) {
        entry.download = std::make_unique<DownloadAhead>(mLimits, asked.target, asked.size);
    } else {
        entry.noBody = std::make_unique<HttpBody>(mLimits);
        deadline = now + std::min<HttpLimits::Milliseconds>(mLimits.totalTimeout, AheadPolicy::kLongestWait);
    }
    HttpBody& body = entry.download ? entry.download->body : *entry.noBody;
    entry.transfer = std::make_unique<HttpTransfer>(mConnections, asked.request, body, deadline);
    entry.state = State::Running;
    entry.hadCompany = isRunning();
    for (const std::size_t index : mRunning)
        mEntries[index].hadCompany = true;
    mRunning.push_back(static_cast<std::size_t>(&entry - mEntries.data()));
    entry.isLoad = asked.isDownload();
    mCourse.load.bodies += entry.isLoad ? 1 : 0;
    mCourse.load.bytes += asked.size;
    mCourse.load.largeRunning += asked.size > AheadPolicy::kLarge ? 1 : 0;
    mConnections.start(*entry.transfer);
}

/// The transfer has come to its end. An answer is kept when it would be the same in its turn.
void AheadList::finish(Entry& entry)
{
    const bool isKept = entry.asked.isDownload() ? finishDownload(entry) : finishHeader(entry);
    end(entry);
    mCourse.failuresInRow = isKept ? 0 : mCourse.failuresInRow + 1;
    if (isKept)
        entry.state = State::Arrived;
    else if (mTurn != &entry)
        discard(entry);
    if (mCourse.failuresInRow >= mLimits.unansweredRequests)
        stop();
}

bool AheadList::finishHeader(Entry& entry)
{
    try {
        entry.answer = entry.transfer->answer();
    } catch (const std::bad_alloc&) {
        return false;
    }
    if (entry.answer.answered)
        noteOpened(entry);
    entry.answer.hadCompany = entry.hadCompany;
    // An answer that took too long here may still come when its request is made in turn.
    if (entry.answer.isRefusedInCompany() || entry.answer.error == CURLE_OPERATION_TIMEDOUT) {
        stop();
        return false;
    }
    return true;
}

bool AheadList::finishDownload(Entry& entry)
{
    DownloadAhead& download = *entry.download;
    bool isWhole = false;
    try {
        download.answer = entry.transfer->answer();
        isWhole = download.answer.error == CURLE_OK && download.body.isTaken();
        // When its turn has come, the caller finds out.
        isWhole = isWhole && (mTurn == &entry || download.body.isSound());
    } catch (...) {
        download.exception = std::current_exception();
    }
    if (isWhole)
        download.body.restAtEnd();
    // Nothing can be said of company here: the call that asks again is alone after this.
    download.answer.hadCompany = true;
    if (download.answer.isRefusedInCompany())
        stop();
    return isWhole;
}

/// Takes the transfer away, whatever became of it. The body that has arrived stays.
void AheadList::end(Entry& entry)
{
    if (std::exchange(entry.isOpening, false))
        --mCourse.lanes.opening;
    mCourse.arrivals.bytesOfEnded += entry.transfer->received();
    mCourse.load.largeRunning -= entry.asked.size > AheadPolicy::kLarge ? 1 : 0;
    entry.transfer.reset();
    entry.noBody.reset();
    mRunning.erase(std::find(mRunning.begin(), mRunning.end(), &entry - mEntries.data()));
    entry.state = State::Gone;
}

void AheadList::discard(Entry& entry)
{
    if (entry.state == State::Running)
        end(entry);
    entry.state = State::Gone;
    entry.download.reset();
    if (!std::exchange(entry.isLoad, false))
        return;
    --mCourse.load.bodies;
    mCourse.load.bytes -= entry.asked.size;
}

/// The server has fewer workers than there are connections. Each keeps to a connection that has nothing more
/// to ask, while the others wait.
void AheadList::giveUpUntaken()
{
    const std::vector<std::size_t> running = mRunning;
    for (const std::size_t index : running) {
        Entry& entry = mEntries[index];
        if (&entry != mTurn && mayBeUntaken(entry))
            discard(entry);
    }
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
        discard(mEntries[mRunning.back()]);
}
