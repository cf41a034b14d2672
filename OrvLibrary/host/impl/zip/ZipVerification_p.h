#pragma once

#include <condition_variable>
#include <deque>
#include <exception>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include "OrvLibrary/host/impl/zip/ZipArchive_p.h"

namespace ZipUtils {

/// Verifies the streams and checksums of an archive's members while the walk goes on: small amounts at its
/// end, large ones on threads of their own meanwhile. Members that are not readable pass. Used by one thread;
/// an object that is destroyed early stops its threads.
class ZipVerification
{
public:
    explicit ZipVerification(std::shared_ptr<const ZipArchive> archive);
    ~ZipVerification();
    ZipVerification(const ZipVerification&) = delete;
    ZipVerification& operator=(const ZipVerification&) = delete;

    /// One more member to verify.
    void add(std::size_t index);
    /// Helps until every member is verified.
    /// @throws std::runtime_error for a member that is not sound
    void finish();

private:
    void handOver();
    void startThread();
    void work() noexcept;
    bool takeNext(std::vector<std::size_t>& portion);
    void stop();

    std::shared_ptr<const ZipArchive> mArchive;
    std::vector<std::size_t> mGathered; ///< not handed over yet
    std::uint64_t mGatheredBytes = 0;   ///< of content
    std::uint64_t mBytes = 0;           ///< of content, in all that was handed over
    std::vector<std::thread> mThreads;

    std::mutex mMutex; ///< guards what follows
    std::condition_variable mChanged;
    std::deque<std::vector<std::size_t>> mPortions; ///< that nobody has taken
    bool mIsComplete = false;
    std::exception_ptr mFailure;
};

} // namespace ZipUtils
