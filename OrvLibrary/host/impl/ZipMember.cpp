// The way in one piece, several times as fast, and the verification of many members.
#include "OrvLibrary/host/impl/ZipMember_p.h"

#include <algorithm>
#include <exception>
#include <mutex>
#include <new>
#include <system_error>
#include <thread>

#include <libdeflate.h>

namespace ZipUtils {

std::atomic<std::uint64_t> onePieceLimit{512U << 20U};

namespace {

/// A decompressor for whole members, and the memory that it needs again and again.
class WholeInflater
{
public:
    WholeInflater() : mDecompressor(libdeflate_alloc_decompressor())
    {
        if (!mDecompressor)
            throw std::bad_alloc();
    }
    ~WholeInflater() { libdeflate_free_decompressor(mDecompressor); }
    WholeInflater(const WholeInflater&) = delete;
    WholeInflater& operator=(const WholeInflater&) = delete;

    /// Fills `content`, which has room for the whole member.
    void read(const ZipArchive& archive, const ZipEntry& entry, unsigned char* content)
    {
        if (mCompressed.size() < entry.compressedSize)
            mCompressed = std::vector<char>(entry.compressedSize);
        archive.readAt(entry.dataOffset, mCompressed.data(), entry.compressedSize);
        std::size_t used = 0;
        const libdeflate_result result = libdeflate_deflate_decompress_ex(
            mDecompressor, mCompressed.data(), entry.compressedSize, content, entry.size, &used, nullptr);
        if (result != LIBDEFLATE_SUCCESS)
            archive.fail(entry, result == LIBDEFLATE_INSUFFICIENT_SPACE ? "its stream is too long"
                                                                        : "its stream is broken");
        if (used != entry.compressedSize)
            archive.fail(entry, "its stream ends too early");
        if (libdeflate_crc32(0, content, entry.size) != entry.checksum)
            archive.fail(entry, "its checksum is wrong");
    }

private:
    libdeflate_decompressor* mDecompressor;
    std::vector<char> mCompressed;
};

/// Verifies members one after the other, in memory that does not grow with their sizes.
class Verifier
{
public:
    explicit Verifier(const ZipArchive& archive) : mArchive(archive) {}

    void verify(const ZipEntry& entry)
    {
        constexpr std::uint64_t kWholeUpTo = 8U << 20U;
        const bool isSmall = entry.size <= kWholeUpTo && entry.compressedSize <= kWholeUpTo;
        if (entry.method == kMethodDeflated && isSmall) {
            if (mContent.size() < entry.size)
                mContent.resize(entry.size);
            mInflater.read(mArchive, entry, mContent.data());
        } else {
            verifyInPieces(entry);
        }
    }

private:
    void verifyInPieces(const ZipEntry& entry)
    {
        mContent.resize(std::max<std::size_t>(mContent.size(), 1U << 20U));
        ZipMemberStream stream(mArchive, entry);
        while (stream.remaining() > 0)
            stream.read(mContent.data(), std::min<std::uint64_t>(stream.remaining(), 1U << 20U));
    }

    const ZipArchive& mArchive;
    WholeInflater mInflater;
    std::vector<unsigned char> mContent;
};

/// A list of members that several threads verify together.
class Verification
{
public:
    Verification(const ZipArchive& archive, const std::vector<std::size_t>& members)
        : mArchive(archive), mMembers(members)
    {
    }

    void run(unsigned threadCount)
    {
        std::vector<std::thread> helpers;
        helpers.reserve(threadCount);
        try {
            while (helpers.size() + 1 < threadCount)
                helpers.emplace_back([this] { work(); });
        } catch (const std::system_error&) {
            // No more threads to be had: those that run, and this one, do it.
        }
        work();
        for (std::thread& helper : helpers)
            helper.join();
        if (mFailure)
            std::rethrow_exception(mFailure);
    }

private:
    void work() noexcept
    {
        try {
            Verifier verifier(mArchive);
            for (std::size_t i = mNext++; i < mMembers.size(); i = mNext++)
                verifier.verify(mArchive.entries()[mMembers[i]]);
        } catch (...) {
            mNext = mMembers.size();
            const std::lock_guard<std::mutex> lock(mMutex);
            mFailure = std::current_exception();
        }
    }

    const ZipArchive& mArchive;
    const std::vector<std::size_t>& mMembers;
    std::atomic<std::size_t> mNext{0};
    std::mutex mMutex;
    std::exception_ptr mFailure; ///< guarded by mMutex while threads run
};

} // namespace

std::vector<unsigned char> readWholeMember(const ZipArchive& archive, const ZipEntry& entry)
{
    if (isReadable(entry) && std::max(entry.size, entry.compressedSize) > onePieceLimit)
        throw std::bad_alloc();
    if (!isReadable(entry) || entry.method != kMethodDeflated) {
        ZipMemberStream stream(archive, entry);
        std::vector<unsigned char> content(entry.size);
        stream.read(content.data(), content.size());
        return content;
    }
    std::vector<unsigned char> content(entry.size);
    WholeInflater().read(archive, entry, content.data());
    return content;
}

void verifyMembers(const ZipArchive& archive, const std::vector<std::size_t>& members)
{
    std::vector<std::size_t> readable;
    std::uint64_t bytes = 0;
    for (const std::size_t index : members) {
        const ZipEntry& entry = archive.entries()[index];
        if (isReadable(entry)) {
            readable.push_back(index);
            bytes += entry.size;
        }
    }
    constexpr std::uint64_t kWorthAThread = 4U << 20U;
    constexpr std::uint64_t kMostThreads = 4;
    const std::uint64_t useful = std::min<std::uint64_t>(kMostThreads, 1 + bytes / kWorthAThread);
    const unsigned available = std::max(1U, std::thread::hardware_concurrency());
    Verification(archive, readable).run(static_cast<unsigned>(std::min<std::uint64_t>(useful, available)));
}

} // namespace ZipUtils
