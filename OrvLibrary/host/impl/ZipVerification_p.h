#pragma once

#include <condition_variable>
#include <exception>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include "OrvLibrary/host/impl/ZipArchive_p.h"

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
    void startThread();
    void work() noexcept;
    bool takeNext(std::size_t& index);
    void stop();

    std::shared_ptr<const ZipArchive> mArchive;
    std::uint64_t mBytes = 0; ///< of content, in all that was added
    std::vector<std::thread> mThreads;

    std::mutex mMutex; ///< guards what follows
    std::condition_variable mChanged;
    std::vector<std::size_t> mMembers;
    std::size_t mNext = 0; ///< the first of mMembers that nobody has taken
    bool mIsComplete = false;
    std::exception_ptr mFailure;
};

} // namespace ZipUtils
