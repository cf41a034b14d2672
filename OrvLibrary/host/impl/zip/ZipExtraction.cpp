// How a member becomes a file: the file is written beside its target by a `ReplacementFile`. The walk's
// thread inflates a small member into memory and writes it. A large member gets its own thread. This thread
// inflates directly into the mapped file (`MappedFile`), whose space on the disk is reserved.
// If the file system cannot do this, or if the member is over 256 MB, the thread inflates it in pieces of a
// megabyte. The walk's thread reports the progress, and syncs the file at the end, 8 MB at a time.
#include "OrvLibrary/host/impl/zip/ZipExtraction_p.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <ios>
#include <new>
#include <system_error>

#include <fcntl.h>
#include <unistd.h>

#include "OrvLibrary/host/impl/zip/ZipMappedFile_p.h"
#include "OrvLibrary/host/impl/zip/ZipMember_p.h"
#include "OrvLibrary/host/impl/zip/ZipWholeInflater_p.h"

namespace ZipUtils {

namespace {

/// Thrown in a thread that has to end.
struct Stopped
{
};

[[noreturn]] void failWith(const fileString& target, int reason)
{
    const std::error_code code(reason, std::generic_category());
    throw std::ios_base::failure(target.toNativeString(), code);
}

} // namespace

std::unique_ptr<ZipExtraction> ZipExtraction::begin(const fileString& target, ZipPatience& patience,
                                                    ZipMeter& meter)
{
    std::unique_ptr<host::ReplacementFile> file = patience.open(target);
    if (!file) {
        const int reason = errno;
        const std::optional<struct stat> existing = host::fileStatus(target.toNativeString());
        const bool isHeld = reason == EWOULDBLOCK || reason == EACCES || reason == EPERM || reason == EROFS;
        if (existing && S_ISREG(existing->st_mode) && isHeld)
            return nullptr;
        failWith(target, reason);
    }
    return std::unique_ptr<ZipExtraction>(new ZipExtraction(target, std::move(file), meter));
}

ZipExtraction::ZipExtraction(const fileString& target, std::unique_ptr<host::ReplacementFile> file,
                             ZipMeter& meter)
    : mTarget(target), mFile(std::move(file)), mMeter(meter)
{
}

ZipExtraction::~ZipExtraction()
{
    mIsStopped = true;
    join();
}

std::uint64_t ZipExtraction::size() const
{
    return mEntry ? mEntry->size : 0;
}

void ZipExtraction::extract(std::shared_ptr<const ZipArchive> source, const ZipEntry& entry)
{
    finish();
    if (ftruncate(mFile->descriptor(), 0) != 0)
        fail();
    mSource = std::move(source);
    mEntry = &entry;
    mDone = 0;
    mTold = 0;
    if (entry.size > kPortion) {
        mHasEnded = false;
        try {
            mThread = std::thread([this] { workOnThread(); });
            return;
        } catch (const std::system_error&) {
            mHasEnded = true; // the system gave us no thread
        }
    }
    work([this](std::uint64_t bytes) {
        mDone += bytes;
        tell();
    });
}

void ZipExtraction::workOnThread() noexcept
{
    try {
        work([this](std::uint64_t bytes) {
            mDone += bytes;
            if (mIsStopped)
                throw Stopped();
        });
    } catch (...) {
        mFailure = std::current_exception();
    }
    mHasEnded = true;
}

void ZipExtraction::work(const Piece& onPiece)
{
    constexpr std::uint64_t kWholeUpTo = 256U << 20U;
    constexpr std::uint64_t kMostCompressed = 96U << 20U;
    const bool isWhole = isReadable(*mEntry) && mEntry->method == kMethodDeflated &&
                         mEntry->size <= kWholeUpTo && mEntry->compressedSize <= kMostCompressed;
    try {
        if (isWhole && mEntry->size <= kPortion) {
            extractSmall(onPiece);
            return;
        }
        if (isWhole && extractMapped(onPiece))
            return;
    } catch (const std::bad_alloc&) {
        // There may still be enough memory to extract in pieces.
    }
    extractInPieces(onPiece);
}

void ZipExtraction::extractSmall(const Piece& onPiece)
{
    std::vector<unsigned char> content(mEntry->size);
    WholeInflater().read(*mSource, *mEntry, content.data());
    write(content.data(), content.size(), 0);
    onPiece(content.size());
}

/// @return false if the file cannot be mapped
bool ZipExtraction::extractMapped(const Piece& onPiece)
{
    const MappedFile mapped(mFile->descriptor(), mEntry->size);
    if (mapped.refusal() != 0)
        failWith(mTarget, mapped.refusal());
    if (!mapped.pages())
        return false;
    WholeInflater().read(*mSource, *mEntry, mapped.pages());
    onPiece(mEntry->size);
    return true;
}

void ZipExtraction::extractInPieces(const Piece& onPiece)
{
    constexpr std::size_t kPiece = 1U << 20U;
    ZipMemberStream stream(*mSource, *mEntry);
    std::vector<unsigned char> piece(std::min<std::uint64_t>(mEntry->size, kPiece));
    while (stream.remaining() > 0) {
        const std::uint64_t offset = mEntry->size - stream.remaining();
        const std::uint64_t size = std::min<std::uint64_t>(stream.remaining(), piece.size());
        stream.read(piece.data(), size);
        write(piece.data(), size, offset);
        onPiece(size);
    }
}

void ZipExtraction::write(const unsigned char* bytes, std::size_t size, std::uint64_t offset)
{
    while (size > 0) {
        const ssize_t put = pwrite(mFile->descriptor(), bytes, size, static_cast<off_t>(offset));
        if (put < 0 && errno == EINTR)
            continue;
        if (put < 0)
            fail();
        bytes += put;
        offset += static_cast<std::uint64_t>(put);
        size -= static_cast<std::size_t>(put);
    }
}

void ZipExtraction::tell()
{
    const std::uint64_t done = mDone;
    mMeter.addContent(done - mTold);
    mTold = done;
}

void ZipExtraction::finish()
{
    constexpr std::chrono::milliseconds kMoment(5);
    while (!mHasEnded) {
        const auto start = std::chrono::steady_clock::now();
        std::this_thread::sleep_for(kMoment);
        tell();
        mMeter.waited(std::chrono::ceil<std::chrono::milliseconds>(std::chrono::steady_clock::now() - start));
    }
    join();
    tell();
    if (mFailure)
        std::rethrow_exception(mFailure);
}

void ZipExtraction::join()
{
    if (mThread.joinable())
        mThread.join();
}

/// Syncs in portions. During one sync of the whole file a cancel would have no effect.
void ZipExtraction::sync()
{
    constexpr unsigned kThrough =
        SYNC_FILE_RANGE_WAIT_BEFORE | SYNC_FILE_RANGE_WRITE | SYNC_FILE_RANGE_WAIT_AFTER;
    for (std::uint64_t offset = 0; offset < size(); offset += kPortion) {
        const std::uint64_t bytes = std::min(size() - offset, kPortion);
        const int result = sync_file_range(mFile->descriptor(), static_cast<off64_t>(offset),
                                           static_cast<off64_t>(bytes), kThrough);
        if (result != 0 && (errno == EIO || errno == ENOSPC))
            fail();
        mMeter.addWork(bytes);
    }
}

void ZipExtraction::publish()
{
    if (!mFile->commit())
        fail();
}

void ZipExtraction::fail() const
{
    failWith(mTarget, errno);
}

} // namespace ZipUtils
