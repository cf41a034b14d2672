#include "OrvLibrary/host/impl/ZipVerification_p.h"

#include <algorithm>
#include <system_error>

#include "OrvLibrary/host/impl/ZipMember_p.h"
#include "OrvLibrary/host/impl/ZipWholeInflater_p.h"

namespace ZipUtils {

namespace {

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
    constexpr std::uint64_t kWorthAThread = 4U << 20U;
    const ZipEntry& entry = mArchive->entries()[index];
    if (!isReadable(entry))
        return;
    {
        const std::lock_guard<std::mutex> lock(mMutex);
        mMembers.push_back(index);
    }
    mChanged.notify_one();
    mBytes += entry.size;
    if (mBytes > kWorthAThread * (mThreads.size() + 1))
        startThread();
}

void ZipVerification::startThread()
{
    constexpr unsigned kMostThreads = 4;
    const unsigned useful = std::min(kMostThreads, std::thread::hardware_concurrency());
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
        std::size_t index = 0;
        while (takeNext(index))
            verifier.verify(mArchive->entries()[index]);
    } catch (...) {
        const std::lock_guard<std::mutex> lock(mMutex);
        mFailure = std::current_exception();
    }
}

/// @return false when there will be no more, or it does not matter any more
bool ZipVerification::takeNext(std::size_t& index)
{
    std::unique_lock<std::mutex> lock(mMutex);
    mChanged.wait(lock, [this] { return mIsComplete || mFailure || mNext < mMembers.size(); });
    if (mFailure || mNext == mMembers.size())
        return false;
    index = mMembers[mNext++];
    return true;
}

void ZipVerification::stop()
{
    {
        const std::lock_guard<std::mutex> lock(mMutex);
        mIsComplete = true;
        mMembers.resize(std::min(mMembers.size(), mNext));
    }
    mChanged.notify_all();
    for (std::thread& thread : mThreads)
        thread.join();
    mThreads.clear();
}

} // namespace ZipUtils
