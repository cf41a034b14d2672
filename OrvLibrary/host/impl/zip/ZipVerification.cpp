// How members are verified: the walk gathers members into portions of about a megabyte of content and queues
// them. Threads take portions from the queue. Each 4 MB added starts another thread, up to the number of
// processors. The walk's thread verifies a portion itself when more than 32 MB wait, and at the end it helps
// until the queue is empty. The first failure stops all threads, and the walk's thread throws it.
#include "OrvLibrary/host/impl/zip/ZipVerification_p.h"

#include <algorithm>
#include <system_error>

#include "OrvLibrary/host/impl/zip/ZipMember_p.h"
#include "OrvLibrary/host/impl/zip/ZipVerifier_p.h"

namespace ZipUtils {

namespace {

/// Thrown in a thread that has to end.
struct Stopped
{
};

} // namespace

ZipVerification::ZipVerification(ZipMeter& meter) : mMeter(meter) {}

ZipVerification::~ZipVerification()
{
    stop();
}

void ZipVerification::add(const std::shared_ptr<const ZipArchive>& archive, std::size_t index)
{
    constexpr std::uint64_t kPortionSize = 1U << 20U;
    constexpr std::uint64_t kMostWaiting = 32U << 20U;
    const ZipEntry& entry = archive->entries()[index];
    if (!isReadable(entry)) {
        mMeter.addContent(entry.size);
        return;
    }
    if (mGathered.archive != archive)
        handOver();
    mGathered.archive = archive;
    mGathered.members.push_back(index);
    mGatheredBytes += entry.size;
    mAdded += entry.size;
    if (mGatheredBytes >= kPortionSize)
        handOver();
    while (waiting() > kMostWaiting && !isIdle())
        help();
    tell();
}

/// Queues a portion. With single members the threads would spend their time waking each other.
void ZipVerification::handOver()
{
    constexpr std::uint64_t kWorthAThread = 4U << 20U;
    if (mGathered.members.empty())
        return;
    {
        const std::lock_guard<std::mutex> lock(mMutex);
        mPortions.push_back(std::move(mGathered));
    }
    mChanged.notify_one();
    mGathered = {};
    mGatheredBytes = 0;
    if (mAdded > kWorthAThread * (mThreads.size() + 1))
        startThread();
}

void ZipVerification::startThread()
{
    constexpr unsigned kMostThreads = 4;
    static const unsigned useful = std::min(kMostThreads, std::thread::hardware_concurrency());
    if (mThreads.size() >= useful)
        return;
    try {
        mThreads.emplace_back([this] { work(); });
    } catch (const std::system_error&) {
        // The system gave us no more threads. Those that run, and the walk's thread, do the work.
    }
}

void ZipVerification::tell()
{
    const std::uint64_t done = mDone;
    mMeter.addContent(done - mTold);
    mTold = done;
}

void ZipVerification::finish()
{
    handOver();
    while (!isIdle())
        help();
    tell();
}

/// Verifies a portion. If the queue is empty, waits a moment for the threads that have the last portions.
void ZipVerification::help()
{
    constexpr std::chrono::milliseconds kMoment(20);
    Portion portion;
    if (!mOwnVerifier) {
        mOwnVerifier = std::make_unique<ZipVerifier>([this](std::uint64_t bytes) {
            mDone += bytes;
            tell();
        });
    }
    if (takeNext(portion, false)) {
        verify(*mOwnVerifier, portion);
    } else {
        std::unique_lock<std::mutex> lock(mMutex);
        mChanged.wait_for(lock, kMoment, [this] { return mTaken == 0 || mFailure; });
        lock.unlock();
        mMeter.waited(kMoment);
    }
    tell();
    throwFailure();
}

bool ZipVerification::isIdle()
{
    const std::lock_guard<std::mutex> lock(mMutex);
    return mPortions.empty() && mTaken == 0 && !mFailure;
}

void ZipVerification::throwFailure()
{
    const std::lock_guard<std::mutex> lock(mMutex);
    if (mFailure)
        std::rethrow_exception(mFailure);
}

void ZipVerification::work() noexcept
{
    try {
        ZipVerifier verifier([this](std::uint64_t bytes) {
            mDone += bytes;
            if (mIsStopped)
                throw Stopped();
        });
        Portion portion;
        while (takeNext(portion, true))
            verify(verifier, portion);
    } catch (...) {
        // This thread has no memory to begin. Another one, or the walk's thread, does the work.
    }
}

/// @return false if the queue is empty
bool ZipVerification::takeNext(Portion& portion, bool mayWait)
{
    std::unique_lock<std::mutex> lock(mMutex);
    if (mayWait)
        mChanged.wait(lock, [this] { return mIsStopped || mFailure || !mPortions.empty(); });
    if (mIsStopped || mFailure || mPortions.empty())
        return false;
    portion = std::move(mPortions.front());
    mPortions.pop_front();
    ++mTaken;
    return true;
}

void ZipVerification::verify(ZipVerifier& verifier, const Portion& portion)
{
    try {
        for (const std::size_t index : portion.members)
            verifier.verify(*portion.archive, portion.archive->entries()[index]);
        endPortion(nullptr);
    } catch (...) {
        endPortion(std::current_exception());
        throw;
    }
}

void ZipVerification::endPortion(std::exception_ptr failure)
{
    {
        const std::lock_guard<std::mutex> lock(mMutex);
        --mTaken;
        if (failure && !mFailure)
            mFailure = std::move(failure);
    }
    mChanged.notify_all();
}

void ZipVerification::stop()
{
    {
        const std::lock_guard<std::mutex> lock(mMutex);
        mIsStopped = true;
        mPortions.clear();
    }
    mChanged.notify_all();
    for (std::thread& thread : mThreads)
        thread.join();
    mThreads.clear();
}

} // namespace ZipUtils
