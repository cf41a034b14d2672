#pragma once

#include <condition_variable>
#include <cstddef>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "OrvLibrary/host/fileString.h"

namespace LibraryCatalogUpdate {

/// SHA-1 of files that are asked for one after the other. A second thread hashes ahead of the one that asks,
/// and that one helps while it waits for a file that the other has in hand. The operations are for one
/// thread, that of the update.
class CatalogHashesAhead
{
public:
    /// Starts at once.
    /// @param files ascending; nothing is started for less than two
    explicit CatalogHashesAhead(std::vector<fileString> files);
    /// Waits for the file that the second thread has in hand; what was not asked for is not hashed any more.
    ~CatalogHashesAhead();
    CatalogHashesAhead(const CatalogHashesAhead&) = delete;
    CatalogHashesAhead& operator=(const CatalogHashesAhead&) = delete;

    /// The hash of `file`, which need not be one of the files; empty for what cannot be read.
    std::string hashOf(const fileString& file);

private:
    enum class State
    {
        Waiting,
        InHand,
        Done,
        Failed ///< by an exception: whoever asks for it tries again, and meets that
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

    std::mutex mMutex; ///< guards what follows
    std::condition_variable mChanged;
    std::vector<Entry> mEntries;
    std::size_t mNext = 0; ///< before this one none is waiting
    bool mIsStopping = false;

    std::thread mThread;
};

} // namespace LibraryCatalogUpdate
