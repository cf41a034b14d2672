#include "OrvLibrary/host/impl/http/DownloadPrefetch_p.h"

#include <algorithm>
#include <new>
#include <utility>

#include "OrvLibrary/host/impl/http/CancelQuestion_p.h"
#include "OrvLibrary/host/impl/http/HttpAddress_p.h"

using namespace std::chrono_literals;

namespace {

/// Connections that are opened for bodies, of the 96 that header requests may have.
constexpr std::size_t kConnections = 64;
/// Of requests that one connection carries at once; servers allow a hundred or more.
constexpr std::size_t kStreams = 100;
/// Each keeps a descriptor open until its turn.
constexpr std::size_t kMostAhead = 128;
constexpr std::chrono::microseconds kShortestStall = 1s;
constexpr int kStallLatencies = 8;
constexpr std::chrono::seconds kLongestHold = 1s;

/// An ahead download takes no more than announced, and leaves the room that all of them together may take.
HttpLimits limitsAhead(const HttpLimits& limits, std::int64_t size)
{
    HttpLimits ahead = limits;
    ahead.fileBytes = std::min(limits.fileBytes, size);
    ahead.spareForOthers = DownloadPrefetch::kMostBytes;
    return ahead;
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

DownloadAhead::DownloadAhead(const HttpLimits& serviceLimits, const DownloadAnnouncement& announcement,
                             TimePoint now)
    : limits(limitsAhead(serviceLimits, announcement.size)),
      pacer(limits, nullptr, nullptr, now),
      body(limits, announcement.target, pacer, now)
{
}

void DownloadAhead::beginTurn(const HttpLimits& serviceLimits, Curl::ProgressFunction progress, void* context)
{
    limits = serviceLimits;
    body.limitsChanged();
    pacer.attach(progress, context, HttpLimits::Clock::now());
}

DownloadPrefetch::DownloadPrefetch(HttpConnections& connections, const HttpLimits& limits,
                                   const std::vector<DownloadAnnouncement>& announcements,
                                   int connectionLimit)
    : mConnections(connections),
      mLimits(limits),
      mConnectionLimit(static_cast<std::size_t>(std::max(connectionLimit, 1))),
      mEntries(announcements.size())
{
    for (std::size_t i = 0; i < announcements.size(); ++i) {
        const DownloadAnnouncement& announcement = announcements[i];
        mEntries[i].announcement = announcement;
        mEntries[i].announcement.request.isOneOfMany = true;
        // Two downloads to one target would be in each other's way.
        const bool isFirst = mByTarget.emplace(announcement.target.toNativeString(), i).second;
        if (!isFirst || announcement.size < 1 || announcement.size > kMostBytes)
            mEntries[i].state = State::Gone;
    }
}

DownloadPrefetch::~DownloadPrefetch()
{
    for (Entry& entry : mEntries)
        discard(entry);
}

std::unique_ptr<DownloadAhead> DownloadPrefetch::take(const HttpRequest& request, const fileString& target,
                                                      Curl::ProgressFunction progress, void* context)
{
    const auto found = mByTarget.find(target.toNativeString());
    if (found == mByTarget.end())
        return nullptr;
    Entry& entry = mEntries[found->second];
    const HttpRequest& announced = entry.announcement.request;
    mByTarget.erase(found);
    const AtEnd leave{[&] {
        mTurn = nullptr;
        discard(entry);
    }};
    if (announced.url != request.url || announced.headerLines != request.headerLines)
        return nullptr;
    // Also when the body is there: the others must move on.
    mConnections.step();
    if (entry.state != State::Running && entry.state != State::Arrived)
        return nullptr;
    mTurn = &entry;
    const HttpConnections::Work work(mConnections);
    DownloadAhead& download = *entry.download;
    download.beginTurn(mLimits, progress, context);
    if (!download.pacer.aborted())
        waitForEnd(entry);
    if (download.exception)
        std::rethrow_exception(download.exception);
    const bool isEnded = download.pacer.aborted() || download.answer.error == CURLE_ABORTED_BY_CALLBACK;
    // The progress function has heard of no byte yet, and alone the download may go well.
    if (entry.state != State::Arrived && !isEnded && !download.pacer.toldOfBytes())
        return nullptr;
    if (entry.state == State::Running)
        end(entry);
    return std::move(entry.download);
}

void DownloadPrefetch::waitForEnd(Entry& entry)
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
            entry.download->answer = HttpAnswer::cancelled();
            return;
        }
        if (isStuck(entry, turn)) {
            giveUp();
            return;
        }
        mConnections.wait();
    }
}

void DownloadPrefetch::advance()
{
    // Whatever transfer is waited for here must not fail because there is no memory for one sent ahead.
    try {
        const TimePoint now = HttpLimits::Clock::now();
        const std::vector<std::size_t> running = mRunning;
        noteArrivals(now);
        for (const std::size_t index : running) {
            Entry& entry = mEntries[index];
            if (entry.transfer->finished() || !entry.transfer->watch(now))
                finish(entry);
        }
        startWaiting(now);
    } catch (const std::bad_alloc&) {
        mIsStopped = true;
    }
}

void DownloadPrefetch::makeRoom()
{
    if (!mIsStopped)
        return;
    const TimePoint latest = HttpLimits::Clock::now() + kLongestHold;
    while (!mRunning.empty() && HttpLimits::Clock::now() < latest && mConnections.step() &&
           !CancelQuestion::isCancelled()) {
        if (!mRunning.empty())
            mConnections.wait();
    }
    while (!mRunning.empty())
        discard(mEntries[mRunning.back()]);
}

void DownloadPrefetch::noteArrivals(TimePoint now)
{
    std::int64_t bytes = 0;
    for (const std::size_t index : mRunning)
        bytes += mEntries[index].download->body.size();
    if (bytes != mBytesSeen)
        mLastArrival = now;
    mBytesSeen = bytes;
}

void DownloadPrefetch::startWaiting(TimePoint now)
{
    for (; mNext < mEntries.size(); ++mNext) {
        Entry& entry = mEntries[mNext];
        if (entry.state != State::Waiting)
            continue;
        if (!mayStart(entry))
            return;
        start(entry, now);
    }
}

bool DownloadPrefetch::mayStart(const Entry& entry) const
{
    const std::int64_t size = entry.announcement.size;
    return !mIsStopped && mAhead < kMostAhead && mBytesAhead + size <= kMostBytes &&
           (size <= kLarge || mLargeRunning < kMostLarge) && mRunning.size() < width(entry);
}

/// How many may be under way, as seen from the one that would be next. One connection is left to who asks in
/// turn.
std::size_t DownloadPrefetch::width(const Entry& next) const
{
    const std::string address = HttpAddress::hostAndPort(next.announcement.request.url);
    return mConnections.isMultiplexing(address) ? kStreams : std::min(kConnections, mConnectionLimit - 1);
}

void DownloadPrefetch::start(Entry& entry, TimePoint now)
{
    // What needs memory comes first: an entry that is said to run and does not would be waited for for ever.
    mRunning.reserve(mRunning.size() + 1);
    auto download = std::make_unique<DownloadAhead>(mLimits, entry.announcement, now);
    CURL* const handle = mConnections.acquire();
    try {
        entry.transfer = std::make_unique<HttpTransfer>(handle, entry.announcement.request, download->body,
                                                        download->limits, TimePoint::max());
    } catch (...) {
        mConnections.release(handle);
        throw;
    }
    entry.download = std::move(download);
    entry.state = State::Running;
    mRunning.push_back(static_cast<std::size_t>(&entry - mEntries.data()));
    entry.countsAsAhead = true;
    ++mAhead;
    mBytesAhead += entry.announcement.size;
    mLargeRunning += entry.announcement.size > kLarge ? 1 : 0;
    mConnections.start(*entry.transfer);
}

/// The transfer has come to its end: keeps what arrived whole, or what somebody was told of.
void DownloadPrefetch::finish(Entry& entry)
{
    DownloadAhead& download = *entry.download;
    const bool isTurn = mTurn == &entry;
    bool isWhole = false;
    try {
        download.answer = entry.transfer->answer();
        isWhole = download.answer.error == CURLE_OK && download.body.isTaken();
        // In its turn, the caller finds out.
        isWhole = isWhole && (isTurn || download.body.isSound());
    } catch (...) {
        download.exception = std::current_exception();
    }
    end(entry);
    const std::int64_t status = download.answer.status;
    const bool isRefused =
        !download.answer.answered || status == kTooManyRequests || status == kServiceUnavailable;
    mFailuresInRow = isWhole ? 0 : mFailuresInRow + 1;
    mIsStopped = mIsStopped || isRefused || mFailuresInRow >= mLimits.unansweredRequests;
    if (isWhole) {
        entry.state = State::Arrived;
        download.body.restAtEnd();
    } else if (!isTurn) {
        discard(entry);
    }
}

/// Takes the transfer away, whatever became of it. What was downloaded stays.
void DownloadPrefetch::end(Entry& entry)
{
    mConnections.stop(*entry.transfer);
    CURL* const handle = entry.transfer->handle();
    mConnections.release(handle);
    entry.transfer.reset();
    mRunning.erase(std::find(mRunning.begin(), mRunning.end(), &entry - mEntries.data()));
    mLargeRunning -= entry.announcement.size > kLarge ? 1 : 0;
    entry.state = State::Gone;
}

void DownloadPrefetch::discard(Entry& entry)
{
    if (entry.state == State::Running)
        end(entry);
    entry.state = State::Gone;
    entry.download.reset();
    if (!std::exchange(entry.countsAsAhead, false))
        return;
    --mAhead;
    mBytesAhead -= entry.announcement.size;
}

bool DownloadPrefetch::isStuck(const Entry& entry, TimePoint turn) const
{
    const std::string address = HttpAddress::hostAndPort(entry.announcement.request.url);
    const auto stall = std::max(kShortestStall, mConnections.latency(address) * kStallLatencies);
    const TimePoint since = std::max(turn, mLastArrival);
    return HttpLimits::Clock::now() - since >= stall && mConnections.mayBeUntaken(*entry.transfer, address);
}

/// Lets go of the connections that wait for a worker of the server.
void DownloadPrefetch::giveUp()
{
    mIsStopped = true;
    const std::vector<std::size_t> running = mRunning;
    for (const std::size_t index : running) {
        Entry& entry = mEntries[index];
        const std::string address = HttpAddress::hostAndPort(entry.announcement.request.url);
        if (mConnections.mayBeUntaken(*entry.transfer, address) && &entry != mTurn)
            discard(entry);
    }
}
