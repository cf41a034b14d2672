#include "OrvLibrary/host/impl/zip/ZipOutput_p.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <stdexcept>

#include <fcntl.h>
#include <unistd.h>

#include "OrvLibrary/host/ZipUtils.h"

namespace ZipUtils {

namespace {

constexpr std::size_t kPiece = 1U << 20U;
constexpr std::uint64_t kSmall = 32U << 10U; ///< below it, copying through memory is cheaper
constexpr std::uint64_t kWriteBackStep = 32U << 20U;

} // namespace

ZipOutput::ZipOutput(const fileString& target, ZipPatience& patience, ZipMeter& meter,
                     host::ReplacementFile::Mode mode)
    : mTarget(target), mMeter(meter), mFile(patience.open(target, mode))
{
    if (!mFile)
        fail();
    mReplaces = target.pathExists();
}

void ZipOutput::append(std::string_view bytes)
{
    if (mPending.size() + bytes.size() > kPiece)
        flush();
    mPending.append(bytes);
}

void ZipOutput::appendRange(int file, std::uint64_t offset, std::uint64_t size, const fileString& source)
{
    if (size <= kSmall) {
        appendSmall(file, offset, size, source);
        return;
    }
    flush();
    const std::uint64_t copied = copyInKernel(file, offset, size);
    copyThroughMemory(file, offset + copied, size - copied, source);
}

void ZipOutput::appendSmall(int file, std::uint64_t offset, std::size_t size, const fileString& source)
{
    if (mPending.size() + size > kPiece)
        flush();
    const std::size_t before = mPending.size();
    mPending.resize(before + size);
    for (std::size_t done = 0; done < size;) {
        const ssize_t got =
            pread(file, &mPending[before + done], size - done, static_cast<off_t>(offset + done));
        if (got < 0 && errno == EINTR)
            continue;
        if (got <= 0)
            throw std::runtime_error(source.toNativeString() + ": " +
                                     (got == 0 ? "cut short" : std::strerror(errno)));
        done += static_cast<std::size_t>(got);
    }
}

/// Some pairs of file systems do not support this. The rest is then copied through memory, and an error is
/// reported there.
std::uint64_t ZipOutput::copyInKernel(int file, std::uint64_t offset, std::uint64_t size)
{
    std::uint64_t copied = 0;
    while (copied < size) {
        auto from = static_cast<off64_t>(offset + copied);
        auto to = static_cast<off64_t>(mPosition);
        const std::uint64_t piece = std::min(size - copied, kPortion);
        const ssize_t got = copy_file_range(file, &from, mFile->descriptor(), &to, piece, 0);
        if (got < 0 && errno == EINTR)
            continue;
        if (got <= 0)
            break;
        copied += static_cast<std::uint64_t>(got);
        advance(static_cast<std::uint64_t>(got));
    }
    return copied;
}

void ZipOutput::copyThroughMemory(int file, std::uint64_t offset, std::uint64_t size,
                                  const fileString& source)
{
    while (size > 0) {
        const auto piece = static_cast<std::size_t>(std::min<std::uint64_t>(size, kPiece));
        appendSmall(file, offset, piece, source);
        offset += piece;
        size -= piece;
    }
}

void ZipOutput::flush()
{
    write(mPending.data(), mPending.size());
    mPending.clear();
}

void ZipOutput::write(const char* bytes, std::size_t size)
{
    while (size > 0) {
        const ssize_t put = pwrite(mFile->descriptor(), bytes, size, static_cast<off_t>(mPosition));
        if (put < 0 && errno == EINTR)
            continue;
        if (put < 0)
            fail();
        bytes += put;
        size -= static_cast<std::size_t>(put);
        advance(static_cast<std::uint64_t>(put));
    }
}

/// Begins writing to the disk while copying goes on. Some file systems write a file back before they rename
/// it over another one; less is left to write by then.
void ZipOutput::advance(std::uint64_t written)
{
    mPosition += written;
    mMeter.addWork(written);
    if (!mReplaces || mPosition - mWrittenBack < kWriteBackStep)
        return;
    sync_file_range(mFile->descriptor(), static_cast<off64_t>(mWrittenBack),
                    static_cast<off64_t>(mPosition - mWrittenBack), SYNC_FILE_RANGE_WRITE);
    mWrittenBack = mPosition;
}

void ZipOutput::publish()
{
    if (!mFile->targetIsUnchanged())
        throw Overtaken(mTarget.toNativeString() + ": another program has replaced it meanwhile");
    if (!mFile->commit(host::ReplacementFile::Durability::Unsynced))
        fail();
}

void ZipOutput::fail() const
{
    throw std::runtime_error(mTarget.toNativeString() + ": " + std::strerror(errno));
}

} // namespace ZipUtils
