// How it works: the files are a list of entries, and `mNext` is the first one that may be waiting. Both
// threads take the next waiting entry, mark it as in hand, hash it without the lock, and store the result.
// `hashOf` hashes its file if it is waiting. If the other thread has it in hand, `hashOf` hashes others until
// the result is there.
#include "OrvLibrary/catalog/CatalogHashesAhead_p.h"

#include <algorithm>
#include <exception>
#include <utility>

#include "OrvLibrary/host/SHA1.h"

namespace LibraryCatalogUpdate {

CatalogHashesAhead::CatalogHashesAhead(std::vector<fileString> files)
{
    if (files.size() < 2)
        return;
    try {
        for (fileString& file : files)
            mEntries.push_back({std::move(file), State::Waiting, {}});
        mThread = std::thread([this] { runAhead(); });
    } catch (const std::exception&) {
        // There is no memory, or the system gave us no thread: each file is hashed when it is asked for.
    }
}

CatalogHashesAhead::~CatalogHashesAhead()
{
    {
        const Lock lock(mMutex);
        mIsStopping = true;
    }
    if (mThread.joinable())
        mThread.join();
}

std::string CatalogHashesAhead::hashOf(const fileString& file)
{
    Lock lock(mMutex);
    Entry* const entry = find(file);
    if (entry && entry->state == State::Waiting)
        hash(*entry, lock);
    while (entry && entry->state == State::InHand) {
        if (Entry* const other = nextWaiting())
            hash(*other, lock);
        else
            mChanged.wait(lock);
    }
    if (entry && entry->state == State::Done)
        return entry->hash;
    lock.unlock();
    return SHA1::fileContentsToSHA1Hex(file);
}

void CatalogHashesAhead::runAhead()
{
    Lock lock(mMutex);
    while (Entry* const entry = mIsStopping ? nullptr : nextWaiting())
        hash(*entry, lock);
}

CatalogHashesAhead::Entry* CatalogHashesAhead::find(const fileString& file)
{
    const auto found =
        std::lower_bound(mEntries.begin(), mEntries.end(), file,
                         [](const Entry& entry, const fileString& name) { return entry.file < name; });
    return found != mEntries.end() && found->file == file ? &*found : nullptr;
}

CatalogHashesAhead::Entry* CatalogHashesAhead::nextWaiting()
{
    while (mNext < mEntries.size() && mEntries[mNext].state != State::Waiting)
        ++mNext;
    return mNext < mEntries.size() ? &mEntries[mNext] : nullptr;
}

/// Releases the lock while it hashes. Throws nothing.
void CatalogHashesAhead::hash(Entry& entry, Lock& lock)
{
    entry.state = State::InHand;
    lock.unlock();
    std::string hash;
    State state = State::Done;
    try {
        hash = SHA1::fileContentsToSHA1Hex(entry.file);
    } catch (...) {
        state = State::Failed;
    }
    lock.lock();
    entry.hash = std::move(hash);
    entry.state = state;
    mChanged.notify_all();
}

} // namespace LibraryCatalogUpdate
