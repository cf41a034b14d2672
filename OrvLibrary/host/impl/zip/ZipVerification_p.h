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

/// Verifies the streams and checksums of members while a walk goes on: small amounts at its end, large ones
/// on threads of their own meanwhile. The thread that owns the object helps when the others fall behind, so
/// that at most 32 MB of content wait. Members that are neither stored nor deflated, or are encrypted, pass.
/// An object that is destroyed early stops its threads within a megabyte of work.
class ZipVerification
{
public:
    explicit ZipVerification(ZipMeter& meter);
    ~ZipVerification();
    ZipVerification(const ZipVerification&) = delete;
    ZipVerification& operator=(const ZipVerification&) = delete;

    /// One more member to verify; its size is told as content as it is done.
    /// @throws std::runtime_error for a member, this or a former one, that is not sound; Cancelled
    void add(const std::shared_ptr<const ZipArchive>& archive, std::size_t index);
    /// Tells what was done since the last call.
    /// @throws Cancelled
    void tell();
    /// Bytes of content that were added and are not verified.
    std::uint64_t waiting() const { return mAdded - mDone; }
    /// Helps until every member is verified.
    /// @throws as `add`
    void finish();
    /// Ends the threads. Members that were not verified yet never will be.
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
    Portion mGathered;                ///< not handed over yet
    std::uint64_t mGatheredBytes = 0; ///< of content
    std::uint64_t mAdded = 0;         ///< bytes of content in all
    std::uint64_t mTold = 0;          ///< of them, told to the meter
    std::vector<std::thread> mThreads;
    std::unique_ptr<ZipVerifier> mOwnVerifier; ///< of the walk's thread; null until it helps
    std::atomic<std::uint64_t> mDone{0};       ///< bytes of content
    std::atomic<bool> mIsStopped{false};

    std::mutex mMutex; ///< guards what follows
    std::condition_variable mChanged;
    std::deque<Portion> mPortions; ///< that nobody has taken
    std::size_t mTaken = 0;        ///< portions that are being verified
    std::exception_ptr mFailure;
};

} // namespace ZipUtils
