#pragma once

#include <condition_variable>
#include <cstddef>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "OrvLibrary/host/fileString.h"

namespace LibraryCatalogUpdate {

/// Computes the SHA-1 of files on two threads. The updater asks for one file after the other, while a second
/// thread hashes further files ahead. If the file asked for is the one being hashed there, the asking thread
/// hashes others until it is ready. Only the thread of the update uses this object.
class CatalogHashesAhead
{
public:
    /// Starts at once.
    /// @param files in ascending order; with fewer than two, no thread is started
    explicit CatalogHashesAhead(std::vector<fileString> files);
    /// Waits until the second thread has finished its current file. No further files are hashed.
    ~CatalogHashesAhead();
    CatalogHashesAhead(const CatalogHashesAhead&) = delete;
    CatalogHashesAhead& operator=(const CatalogHashesAhead&) = delete;

    /// The hash of `file`, which need not be in the list. Empty if the file cannot be read.
    std::string hashOf(const fileString& file);

private:
    enum class State
    {
        Waiting,
        InHand,
        Done,
        Failed ///< by an exception; `hashOf` then hashes the file again, and throws
    };
    struct Entry
    {
        fileString file;
        State state = State::Waiting;
        std::string hash;
    };
    using Lock = std::unique_lock<std::mutex>;

    void runAhead();
    Entry* find(const fileString& file);
    Entry* nextWaiting();
    void hash(Entry& entry, Lock& lock);

    std::mutex mMutex; ///< guards the members below, except for the thread
    std::condition_variable mChanged;
    std::vector<Entry> mEntries;
    std::size_t mNext = 0; ///< the entries before this index are not waiting
    bool mIsStopping = false;

    std::thread mThread;
};

} // namespace LibraryCatalogUpdate
