#pragma once

#include <condition_variable>
#include <cstddef>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "OrvLibrary/host/fileString.h"

namespace LibraryCatalogUpdate {

/// Computes the SHA-1 of files that are asked for one after the other. A second thread hashes files ahead.
/// While the asking thread waits for a file that the second thread is hashing, it hashes others. All
/// operations are for one thread, that of the update.
class CatalogHashesAhead
{
public:
    /// Starts at once.
    /// @param files ascending; nothing is started for less than two
    explicit CatalogHashesAhead(std::vector<fileString> files);
    /// Waits for the file that the second thread is hashing. Further files are not hashed.
    ~CatalogHashesAhead();
    CatalogHashesAhead(const CatalogHashesAhead&) = delete;
    CatalogHashesAhead& operator=(const CatalogHashesAhead&) = delete;

    /// The hash of `file`, which need not be one of the announced files; empty when it cannot be read.
    std::string hashOf(const fileString& file);

private:
    enum class State
    {
        Waiting,
        InHand,
        Done,
        Failed ///< by an exception: the call for the file hashes it again, and meets the exception
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

    std::mutex mMutex; ///< guards the members below, except the thread
    std::condition_variable mChanged;
    std::vector<Entry> mEntries;
    std::size_t mNext = 0; ///< no entry before this one is waiting
    bool mIsStopping = false;

    std::thread mThread;
};

} // namespace LibraryCatalogUpdate
