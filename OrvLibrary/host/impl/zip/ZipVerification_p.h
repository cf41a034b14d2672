#pragma once

#include <atomic>
#include <condition_variable>
#include <deque>
#include <exception>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include "OrvLibrary/host/impl/zip/ZipArchive_p.h"
#include "OrvLibrary/host/impl/zip/ZipMeter_p.h"

namespace ZipUtils {

class ZipVerifier;

/// Verifies members while a walk goes on. Small amounts are verified at its end, large ones on other threads
/// meanwhile. If these fall behind, the walk's thread helps, so that at most 32 MB of content wait. Encrypted
/// members and unknown methods cannot be verified and count as sound. The destructor stops the threads within
/// a megabyte of work.
class ZipVerification
{
public:
    explicit ZipVerification(ZipMeter& meter);
    ~ZipVerification();
    ZipVerification(const ZipVerification&) = delete;
    ZipVerification& operator=(const ZipVerification&) = delete;

    /// Adds a member. Its bytes are reported as content when they are verified.
    /// @throws std::runtime_error if this or an earlier member is damaged; Cancelled
    void add(const std::shared_ptr<const ZipArchive>& archive, std::size_t index);
    /// Reports the content verified since the last call.
    /// @throws Cancelled
    void tell();
    /// The content that was added and is not verified yet.
    std::uint64_t waiting() const { return mAdded - mDone; }
    /// Helps until every member is verified.
    /// @throws what `add` throws
    void finish();
    /// Ends the threads. Members not yet verified stay unverified.
    void stop();

private:
    struct Portion
    {
        std::shared_ptr<const ZipArchive> archive;
        std::vector<std::size_t> members;
    };

    void handOver();
    void startThread();
    void work() noexcept;
    bool takeNext(Portion& portion, bool mayWait);
    void verify(ZipVerifier& verifier, const Portion& portion);
    void endPortion(std::exception_ptr failure);
    void help();
    bool isIdle();
    void throwFailure();

    ZipMeter& mMeter;
    Portion mGathered;                ///< not yet in the queue
    std::uint64_t mGatheredBytes = 0; ///< of content
    std::uint64_t mAdded = 0;         ///< all content added
    std::uint64_t mTold = 0;          ///< the part of it reported to the meter
    std::vector<std::thread> mThreads;
    std::unique_ptr<ZipVerifier> mOwnVerifier; ///< for the walk's thread; null until it helps
    std::atomic<std::uint64_t> mDone{0};       ///< bytes of content
    std::atomic<bool> mIsStopped{false};

    std::mutex mMutex; ///< guards the members below
    std::condition_variable mChanged;
    std::deque<Portion> mPortions; ///< the queue
    std::size_t mTaken = 0;        ///< portions that are being verified
    std::exception_ptr mFailure;
};

} // namespace ZipUtils
