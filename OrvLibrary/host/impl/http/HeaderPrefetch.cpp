#include "OrvLibrary/host/impl/http/HeaderPrefetch_p.h"

#include <algorithm>
#include <new>

#include "OrvLibrary/host/impl/http/CancelQuestion_p.h"
#include "OrvLibrary/host/impl/http/HttpAddress_p.h"

using namespace std::chrono_literals;

namespace {

/// Below this time to an answer there is little to gain, and the server sees the requests in turn.
constexpr std::chrono::microseconds kNear = 5ms;
/// Below this one the address is in the same house.
constexpr std::chrono::microseconds kNotFar = 8ms;
constexpr std::size_t kNotFarConnections = 8;
/// So many are sent while the next ones are made, so that their answers are on the way.
constexpr std::size_t kBurst = 8;
/// Of requests that one connection carries at once; servers allow a hundred or more.
constexpr std::size_t kStreams = 100;
/// More connections that carry many requests pay from this many requests and this time to an answer on.
constexpr std::size_t kSpreadRequests = 65;
constexpr std::chrono::microseconds kSpreadLatency = 50ms;
constexpr std::size_t kSpreadConnections = 8;
constexpr std::chrono::microseconds kShortestStall = 500ms;
constexpr int kStallLatencies = 8;
constexpr std::chrono::seconds kLongestHold = 1s;
constexpr std::chrono::seconds kLongestWaitAhead = 10s;
constexpr std::int64_t kOk = 200;
constexpr std::int64_t kNotModified = 304;

/// Whether the answer is unlikely to make the caller ask for something else before its next header request,
/// as a redirect, an error page or a lost answer may.
bool isLastWord(const HttpAnswer& answer)
{
    return answer.answered && (answer.status == kOk || answer.status == kNotModified);
}

std::string keyOf(const HttpRequest& request)
{
    std::string key = request.url;
    for (const std::string& line : request.headerLines)
        key += '\n' + line;
    return key;
}

} // namespace

HeaderPrefetch::HeaderPrefetch(HttpConnections& connections, const HttpLimits& limits,
                               const std::vector<HttpRequest>& requests, int connectionLimit)
    : mConnections(connections),
      mLimits(limits),
      mConnectionLimit(static_cast<std::size_t>(std::max(connectionLimit, 1))),
      mEntries(requests.size())
{
    for (std::size_t i = 0; i < requests.size(); ++i) {
        mEntries[i].request = requests[i];
        mByKey.emplace(keyOf(requests[i]), i); // equal ones stay in their order
    }
}

HeaderPrefetch::~HeaderPrefetch()
{
    for (const std::size_t index : mRunning)
        end(mEntries[index]);
}

bool HeaderPrefetch::take(const HttpRequest& request, HttpAnswer& answer)
{
    const auto found = mByKey.find(keyOf(request));
    if (found == mByKey.end())
        return false;
    Entry& entry = mEntries[found->second];
    if (entry.state != State::Done)
        mLastWord = true; // what the former answer led to is over
    // Also when the answer is there: the others must move on.
    mConnections.step();
    if (entry.state == State::Waiting && mIsStopped)
        makeRoom();
    while (entry.state != State::Done) {
        if (entry.state == State::Waiting) {
            entry.isInTurn = !isRunning();
            start(entry);
        }
        mConnections.step();
        if (entry.state == State::Done)
            break;
        if (CancelQuestion::isCancelled()) {
            answer = HttpAnswer::cancelled();
            return true;
        }
        mConnections.wait();
    }
    mByKey.erase(found);
    answer = std::move(entry.answer);
    return !entry.isLost;
}

void HeaderPrefetch::advance()
{
    // Whatever transfer is waited for here must not fail because there is no memory for one sent ahead.
    try {
        const TimePoint now = HttpLimits::Clock::now();
        const std::vector<std::size_t> running = mRunning;
        for (const std::size_t index : running) {
            Entry& entry = mEntries[index];
            if (entry.transfer->finished() || !entry.transfer->watch(now))
                finish(entry);
        }
        countConnections();
        repeatStalled(now);
        startWaiting();
    } catch (const std::bad_alloc&) {
        mIsStopped = true;
    }
}

void HeaderPrefetch::start(Entry& entry)
{
    const TimePoint now = HttpLimits::Clock::now();
    entry.started = now;
    if (entry.startedFirst == TimePoint())
        entry.startedFirst = now;
    // What needs memory comes first: an entry that is said to run and does not would be waited for for ever.
    mRunning.reserve(mRunning.size() + 1);
    entry.body = std::make_unique<HttpBody>(mLimits);
    entry.request.onNewConnection = entry.isOpening;
    CURL* const handle = mConnections.acquire();
    try {
        entry.transfer = std::make_unique<HttpTransfer>(handle, entry.request, *entry.body, mLimits,
                                                        entry.startedFirst + longestWait(entry));
    } catch (...) {
        mConnections.release(handle);
        throw;
    }
    entry.state = State::Running;
    entry.isAlone = mRunning.empty();
    for (const std::size_t index : mRunning)
        mEntries[index].isAlone = false;
    mRunning.push_back(static_cast<std::size_t>(&entry - mEntries.data()));
    mConnections.start(*entry.transfer);
}

/// Takes the transfer away, whatever became of it.
void HeaderPrefetch::end(Entry& entry)
{
    mOpening -= entry.isOpening ? 1 : 0;
    entry.isOpening = false;
    mConnections.stop(*entry.transfer);
    CURL* const handle = entry.transfer->handle();
    mConnections.release(handle);
    entry.transfer.reset();
    entry.body.reset();
}

void HeaderPrefetch::finish(Entry& entry)
{
    try {
        entry.answer = entry.transfer->answer();
    } catch (const std::bad_alloc&) {
        entry.isLost = true;
    }
    if (entry.answer.answered) {
        noteOpened(entry);
        noteServed(*entry.transfer);
        mLastAnswer = HttpLimits::Clock::now();
        if (mRunning.size() == 1)
            mConnections.noteAnswer(*entry.transfer);
    }
    entry.answer.hadCompany =
        !entry.isAlone || (!entry.isInTurn && entry.answer.error == CURLE_OPERATION_TIMEDOUT);
    mIsStopped = mIsStopped || !entry.answer.answered || entry.answer.isRefusedInCompany();
    mLastWord = isLastWord(entry.answer);
    mRunning.erase(std::find(mRunning.begin(), mRunning.end(), &entry - mEntries.data()));
    end(entry);
    entry.state = State::Done;
}

void HeaderPrefetch::makeRoom()
{
    if (!mIsStopped)
        return;
    const TimePoint latest = HttpLimits::Clock::now() + kLongestHold;
    while (isRunning() && HttpLimits::Clock::now() < latest && mConnections.step() &&
           !CancelQuestion::isCancelled()) {
        if (isRunning())
            mConnections.wait();
    }
    while (isRunning()) {
        Entry& entry = mEntries[mRunning.back()];
        mRunning.pop_back();
        end(entry);
        entry.state = State::Waiting; // its turn is still to come
    }
}

void HeaderPrefetch::startWaiting()
{
    while (mNext < mEntries.size()) {
        Entry& entry = mEntries[mNext];
        if (entry.state != State::Waiting) {
            ++mNext;
            continue;
        }
        if (mRunning.size() >= width(entry)) {
            if (!mayOpen(entry))
                return;
            entry.isOpening = true;
            ++mOpened;
            ++mOpening;
        }
        start(entry);
        if (mRunning.size() % kBurst == 0)
            mConnections.send();
    }
}

/// How many may be under way, as seen from the one that would be next.
std::size_t HeaderPrefetch::width(const Entry& next) const
{
    if (mIsStopped)
        return 0;
    if (mHasStalled)
        return mKeepsConnections ? std::max<std::size_t>(mServed.size(), 1) : 1;
    const std::string address = HttpAddress::hostAndPort(next.request.url);
    if (mConnections.isMultiplexing(address))
        return mReady * kStreams + mOpening;
    const auto latency = mConnections.latency(address);
    if (latency < kNear || mConnectionLimit == 1)
        return mLastWord && !mConnections.busy() ? 1 : 0;
    // One connection is left to what is asked in turn.
    const std::size_t most = mConnectionLimit - 1;
    return latency < kNotFar ? std::min(kNotFarConnections, most) : most;
}

/// Whether the next one opens a further connection because those that there are carry all they can.
bool HeaderPrefetch::mayOpen(const Entry& next) const
{
    const std::string address = HttpAddress::hostAndPort(next.request.url);
    const bool isFarAndLong = mEntries.size() >= kSpreadRequests && mConnections.isMultiplexing(address) &&
                              mConnections.latency(address) >= kSpreadLatency;
    return isFarAndLong && !mHasStalled && !mIsStopped &&
           mOpened + 1 < std::min(kSpreadConnections, mConnectionLimit);
}

/// Other requests may be sent on a connection as soon as it stands.
void HeaderPrefetch::noteOpened(Entry& entry)
{
    if (!entry.isOpening)
        return;
    entry.isOpening = false;
    --mOpening;
    ++mReady;
}

void HeaderPrefetch::noteServed(const HttpTransfer& transfer) noexcept
try {
    mKeepsConnections = mKeepsConnections || !transfer.hasNewConnection();
    mServed.insert(transfer.localPort());
} catch (const std::bad_alloc&) {
}

void HeaderPrefetch::countConnections()
{
    for (const std::size_t index : mRunning) {
        Entry& entry = mEntries[index];
        if (entry.isOpening && entry.transfer->isConnectedSecurely())
            noteOpened(entry);
    }
}

/// A request that got no answer in this time is asked again alone, and then has all the time that there is.
HttpLimits::Milliseconds HeaderPrefetch::longestWait(const Entry& entry) const
{
    const HttpLimits::Milliseconds ahead = kLongestWaitAhead;
    return entry.isInTurn ? mLimits.totalTimeout : std::min(mLimits.totalTimeout, ahead);
}

std::chrono::microseconds HeaderPrefetch::stallTime(const Entry& entry) const
{
    const auto latency = mConnections.latency(HttpAddress::hostAndPort(entry.request.url));
    return std::max<std::chrono::microseconds>(kShortestStall, latency * kStallLatencies);
}

/// Whether the entry has waited too long for a server that may not have taken its connection.
bool HeaderPrefetch::isStalled(const Entry& entry, TimePoint now) const
{
    return !entry.repeated && !entry.isAlone &&
           now - std::max(entry.started, mLastAnswer) >= stallTime(entry) &&
           mConnections.mayBeUntaken(*entry.transfer, HttpAddress::hostAndPort(entry.request.url));
}

/// A server with few workers keeps each at a connection that has nothing more to ask, while the others wait.
void HeaderPrefetch::repeatStalled(TimePoint now)
{
    if (mLastAnswer == TimePoint())
        return;
    const std::vector<std::size_t> running = mRunning;
    for (const std::size_t index : running) {
        Entry& entry = mEntries[index];
        if (!isStalled(entry, now))
            continue;
        mHasStalled = true;
        mRunning.erase(std::find(mRunning.begin(), mRunning.end(), index));
        end(entry);
        entry.repeated = true;
        entry.state = State::Waiting;
        mNext = std::min(mNext, index);
    }
}
