#include "OrvLibrary/host/impl/zip/ZipVerification_p.h"

#include <algorithm>
#include <system_error>

#include "OrvLibrary/host/impl/zip/ZipMember_p.h"
#include "OrvLibrary/host/impl/zip/ZipWholeInflater_p.h"

namespace ZipUtils {

namespace {

/// How much content the threads take at a time.
constexpr std::uint64_t kPortion = 1U << 20U;

/// Verifies members one after the other, in memory that does not grow with their sizes.
class Verifier
{
public:
    explicit Verifier(const ZipArchive& archive) : mArchive(archive) {}

    void verify(const ZipEntry& entry)
    {
        constexpr std::uint64_t kWholeUpTo = 8U << 20U;
        const bool isSmall = entry.size <= kWholeUpTo && entry.compressedSize <= kWholeUpTo;
        if (entry.method != kMethodDeflated || !isSmall) {
            verifyInPieces(entry);
            return;
        }
        if (mContent.size() < entry.size)
            mContent.resize(entry.size);
        mInflater.read(mArchive, entry, mContent.data());
    }

private:
    void verifyInPieces(const ZipEntry& entry)
    {
        constexpr std::size_t kPiece = 1U << 20U;
        mContent.resize(std::max(mContent.size(), kPiece));
        ZipMemberStream stream(mArchive, entry);
        while (stream.remaining() > 0)
            stream.read(mContent.data(), std::min<std::uint64_t>(stream.remaining(), kPiece));
    }

    const ZipArchive& mArchive;
    WholeInflater mInflater;
    std::vector<unsigned char> mContent;
};

} // namespace

ZipVerification::ZipVerification(std::shared_ptr<const ZipArchive> archive) : mArchive(std::move(archive)) {}

ZipVerification::~ZipVerification()
{
    stop();
}

void ZipVerification::add(std::size_t index)
{
    const ZipEntry& entry = mArchive->entries()[index];
    if (!isReadable(entry))
        return;
    mGathered.push_back(index);
    mGatheredBytes += entry.size;
    if (mGatheredBytes >= kPortion)
        handOver();
}

/// Member by member, the threads would spend their time with waking each other.
void ZipVerification::handOver()
{
    constexpr std::uint64_t kWorthAThread = 4U << 20U;
    {
        const std::lock_guard<std::mutex> lock(mMutex);
        mPortions.push_back(std::move(mGathered));
    }
    mChanged.notify_one();
    mGathered.clear();
    mBytes += mGatheredBytes;
    mGatheredBytes = 0;
    if (mBytes > kWorthAThread * (mThreads.size() + 1))
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
        // No thread to be had: those that run, and `finish`, do it.
    }
}

void ZipVerification::finish()
{
    handOver();
    {
        const std::lock_guard<std::mutex> lock(mMutex);
        mIsComplete = true;
    }
    mChanged.notify_all();
    work();
    stop();
    if (mFailure)
        std::rethrow_exception(mFailure);
}

void ZipVerification::work() noexcept
{
    try {
        Verifier verifier(*mArchive);
        std::vector<std::size_t> portion;
        while (takeNext(portion)) {
            for (const std::size_t index : portion)
                verifier.verify(mArchive->entries()[index]);
        }
    } catch (...) {
        const std::lock_guard<std::mutex> lock(mMutex);
        mFailure = std::current_exception();
    }
}

/// @return false when there will be no more, or it does not matter any more
bool ZipVerification::takeNext(std::vector<std::size_t>& portion)
{
    std::unique_lock<std::mutex> lock(mMutex);
    mChanged.wait(lock, [this] { return mIsComplete || mFailure || !mPortions.empty(); });
    if (mFailure || mPortions.empty())
        return false;
    portion = std::move(mPortions.front());
    mPortions.pop_front();
    return true;
}

void ZipVerification::stop()
{
    {
        const std::lock_guard<std::mutex> lock(mMutex);
        mIsComplete = true;
        mPortions.clear();
    }
    mChanged.notify_all();
    for (std::thread& thread : mThreads)
        thread.join();
    mThreads.clear();
}

} // namespace ZipUtils
