// How it works: at each step of the transfer loop `advance` (AheadListAdvance.cpp) sends requests ahead. This
// file holds the other side, the calls that want the answers. A call claims its entry. If the entry is
// running, the call waits for it; if the answer has arrived, the call takes it. In all other cases the caller
// makes the request itself. The first sign of trouble stops the list. From then on each request is sent by
// its own call, and `makeWay` makes sure that it runs alone, because the server may refuse several at once.
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

} // namespace

AheadList::AheadList(HttpConnections& connections, std::shared_ptr<AddressMemory> memory,
                     const HttpLimits& limits, std::vector<AheadRequest> requests,
                     std::size_t connectionLimit)
    : mConnections(connections),
      mMemory(std::move(memory)),
      mLimits(limits),
      mAllowance(AheadPolicy::allowance(connectionLimit, host::descriptorUse())),
      mNoBody(limits),
      mEntries(requests.size())
{
    for (std::size_t i = 0; i < requests.size(); ++i) {
        AheadRequest& asked = mEntries[i].asked;
        asked = std::move(requests[i]);
        if (!asked.isDownload()) {
            mByKey.emplace(keyOf(asked.request), i); // equal requests are claimed in this order
            continue;
        }
        const std::string target = asked.target.toNativeString();
        // Two downloads to one target would overwrite each other.
        const bool isFirst = mByKey.count(target) == 0;
        mByKey.emplace(target, i);
        if (!isFirst || asked.size < 1 || asked.size > AheadPolicy::kMostBytes)
            mEntries[i].state = State::Gone;
    }
    mConnections.addAhead(*this, mAllowance.connections);
}

AheadList::~AheadList()
{
    mConnections.removeAhead(*this);
}

void AheadList::ClaimEnd::operator()(Entry* entry) const
{
    list->mTurn = nullptr;
    list->discard(*entry);
}

AheadList::Claim AheadList::claim(const std::string& key)
{
    const auto found = mByKey.find(key);
    if (found == mByKey.end())
        return Claim(nullptr, {this});
    Claim entry(&mEntries[found->second], {this});
    mByKey.erase(found);
    // Even if the answer has arrived: without this step the other requests would not move on.
    mConnections.step();
    return entry;
}

bool AheadList::takeAnswer(const HttpRequest& request, HttpAnswer& answer)
{
    const Claim entry = claim(keyOf(request));
    if (!entry)
        return false;
    waitForEnd(*entry);
    if (entry->state != State::Arrived && entry->answer.error != CURLE_ABORTED_BY_CALLBACK)
        return false;
    answer = std::move(entry->answer);
    return true;
}

std::unique_ptr<FileBody> AheadList::takeDownload(const HttpRequest& request, const fileString& target,
                                                  Curl::ProgressFunction progress, void* context,
                                                  HttpAnswer& answer)
{
    const Claim entry = claim(target.toNativeString());
    if (!entry)
        return nullptr;
    const bool isRequest = keyOf(entry->asked.request) == keyOf(request);
    if (!isRequest || (entry->state != State::Running && entry->state != State::Arrived))
        return nullptr;
    mTurn = entry.get();
    const HttpConnections::Work work(mConnections);
    entry->body->beginTurn(mLimits, progress, context);
    const FileBody& file = *entry->body;
    if (!file.isAborted())
        waitForEnd(*entry);
    if (entry->exception)
        std::rethrow_exception(entry->exception);
    // If the progress function has seen part of this download, it must also see its end. So a failed download
    // is then handed out, and not started again.
    const bool isHeard = file.isTold() || entry->answer.error == CURLE_ABORTED_BY_CALLBACK;
    if (entry->state != State::Arrived && !isHeard)
        return nullptr;
    answer = std::move(entry->answer);
    return std::move(entry->body); // the end of the claim ends the transfer
}

/// Returns while the entry is still running in two cases: the caller cancelled, or the server has left our
/// connection in its queue.
void AheadList::waitForEnd(Entry& entry)
{
    const TimePoint turn = HttpLimits::Clock::now();
    while (entry.state == State::Running) {
        // The next step ends the entry.
        if (!mConnections.step() && entry.state == State::Running)
            entry.transfer->finish(CURLE_OUT_OF_MEMORY);
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

/// Whether nothing has arrived for so long that the server has probably left the entry's connection in its
/// queue.
bool AheadList::isStalled(const Entry& entry, TimePoint turn) const
{
    TimePoint since = std::max(turn, mCourse.lastEnd);
    for (const Entry* const running : mRunning)
        since = std::max(since, running->transfer->lastArrival());
    const auto stall = AheadPolicy::stallTime(serverOf(entry).latency) * mLimits.aheadPatience;
    return HttpLimits::Clock::now() - since >= stall && mayBeUntaken(entry);
}

/// Whether the entry's connection may still be in the server's queue. If the connection was used before, or
/// if it is shared with other requests, the server has taken it and is only slow.
bool AheadList::mayBeUntaken(const Entry& entry) const
{
    const HttpTransfer& transfer = *entry.transfer;
    return !transfer.isAnswered() &&
           (transfer.hasNewConnection() || (!transfer.isConnected() && !serverOf(entry).isMultiplexing));
}

/// Gives up all requests whose connections are in the server's queue. A server with few workers keeps each
/// worker on one connection until it closes. A worker may thus wait on an idle connection while ours are in
/// the queue.
void AheadList::giveUpUntaken()
{
    const std::vector<Entry*> running = mRunning;
    for (Entry* const entry : running) {
        if (entry != mTurn && mayBeUntaken(*entry))
            discard(*entry);
    }
}

void AheadList::discard(Entry& entry)
{
    if (entry.state == State::Running)
        end(entry);
    entry.state = State::Gone;
    entry.body.reset();
}

bool AheadList::makeWay()
{
    const TimePoint latest = HttpLimits::Clock::now() + AheadPolicy::kLongestHold * mLimits.aheadPatience;
    while (isInTheWay() && HttpLimits::Clock::now() < latest && mConnections.step()) {
        if (CancelQuestion::isCancelled())
            return false;
        if (isInTheWay())
            mConnections.wait();
    }
    while (isInTheWay())
        discard(*mRunning.back());
    return true;
}

/// Whether a request in its turn must wait for one of these: because it must run alone, or because they have
/// all connections.
bool AheadList::isInTheWay() const
{
    if (mRunning.empty() || mCourse.isStopped)
        return !mRunning.empty();
    return !serverOf(*mRunning.back()).isMultiplexing && mConnections.aheadCount() >= mAllowance.connections;
}
