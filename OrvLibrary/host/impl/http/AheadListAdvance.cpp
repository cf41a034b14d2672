// How it works: this part of the list sends requests before their calls. `advance` is called at each step of
// the transfer loop. It ends transfers that have finished, and starts waiting entries, in their order, until
// the policy says that enough are running. An answer is kept only if the call would have got the same one.
// The calls are in AheadList.cpp.
#include <algorithm>
#include <new>

#include "OrvLibrary/host/impl/http/AheadList_p.h"
#include "OrvLibrary/host/impl/text/HttpAddress_p.h"

/// Ends finished transfers, then starts waiting entries, in their order, as far as `AheadPolicy` allows.
void AheadList::advance()
{
    // No memory for a request that is sent ahead must not fail the transfer that a call waits for.
    try {
        const TimePoint now = HttpLimits::Clock::now();
        const std::vector<Entry*> running = mRunning;
        for (Entry* const entry : running) {
            if (entry->transfer->finished() || !entry->transfer->watch(now))
                finish(*entry);
        }
        startWaiting(now);
    } catch (const std::bad_alloc&) {
        stop();
    }
}

void AheadList::startWaiting(TimePoint now)
{
    for (; mCourse.next < mEntries.size() && !mCourse.isStopped; ++mCourse.next) {
        Entry& entry = mEntries[mCourse.next];
        if (entry.state != State::Waiting)
            continue;
        if (!mayStart(entry))
            return;
        start(entry, now);
    }
}

/// Whether the entry may be sent now.
bool AheadList::mayStart(const Entry& entry) const
{
    if (entry.asked.isDownload() && !AheadPolicy::allowsBody(load(), entry.asked.size, mAllowance.bodies))
        return false;
    return mConnections.aheadCount() < AheadPolicy::width(serverOf(entry), entry.asked.isDownload(),
                                                          mAllowance.connections, mConnections.isInTurn());
}

AddressMemory::Known AheadList::serverOf(const Entry& entry) const
{
    return mMemory->known(HttpAddress::hostAndPort(entry.asked.request.url));
}

AheadPolicy::Load AheadList::load() const
{
    AheadPolicy::Load load;
    for (const Entry& entry : mEntries) {
        if (!entry.body)
            continue;
        ++load.bodies;
        load.bytes += entry.asked.size;
        load.largeRunning += entry.transfer && entry.asked.size > AheadPolicy::kLarge ? 1 : 0;
    }
    return load;
}

void AheadList::start(Entry& entry, TimePoint now)
{
    // Reserve first. Without memory for `mRunning`, the entry would be marked as running although nothing
    // runs it, and its call would wait for ever.
    mRunning.reserve(mRunning.size() + 1);
    if (entry.asked.isDownload()) {
        entry.body = std::make_unique<FileBody>(AheadPolicy::limitsAhead(mLimits, entry.asked.size),
                                                entry.asked.target);
    } else {
        entry.asked.request.deadline =
            now + std::min<HttpLimits::Milliseconds>(mLimits.totalTimeout, AheadPolicy::kLongestWait);
    }
    HttpBody& body = entry.body ? *entry.body : mNoBody;
    entry.transfer = std::make_unique<HttpTransfer>(mConnections, entry.asked.request, body);
    entry.state = State::Running;
    entry.hadCompany = !mRunning.empty();
    for (Entry* const other : mRunning)
        other->hadCompany = true;
    mRunning.push_back(&entry);
    mConnections.start(*entry.transfer);
}

/// Called when the transfer has ended. Keeps the answer only if the call would have got the same one.
void AheadList::finish(Entry& entry)
{
    const bool isKept = isOfUse(entry);
    end(entry);
    mCourse.failuresInRow = isKept ? 0 : mCourse.failuresInRow + 1;
    if (isKept)
        entry.state = State::Arrived;
    else if (mTurn != &entry)
        discard(entry);
    if (mCourse.failuresInRow >= mLimits.unansweredRequests)
        stop();
}

bool AheadList::isOfUse(Entry& entry)
{
    HttpAnswer& answer = entry.answer;
    try {
        answer = entry.transfer->answer();
        answer.hadCompany = entry.hadCompany;
        // Our limit for the answer is shorter here than in a call, so the call may still get an answer.
        if (answer.isRefusedInCompany() || answer.error == CURLE_OPERATION_TIMEDOUT) {
            stop();
            return false;
        }
        if (!entry.body)
            return true;
        FileBody& file = *entry.body;
        // If a call is waiting, `FileBody::complete` makes these checks and reports the failure.
        const bool isWhole =
            answer.error == CURLE_OK && file.bringsFile() && (mTurn == &entry || file.isSound());
        if (isWhole)
            file.restAtEnd();
        return isWhole;
    } catch (const std::bad_alloc&) {
        return false;
    } catch (...) {
        entry.exception = std::current_exception();
        return false;
    }
}

/// Removes the transfer. A body that has arrived stays.
void AheadList::end(Entry& entry)
{
    entry.transfer.reset();
    entry.state = State::Gone;
    mRunning.erase(std::find(mRunning.begin(), mRunning.end(), &entry));
    mCourse.lastEnd = HttpLimits::Clock::now();
}
