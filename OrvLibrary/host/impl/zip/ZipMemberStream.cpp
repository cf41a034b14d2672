// Reads a member in pieces, so that its size does not matter for the memory.
#include <algorithm>
#include <array>
#include <new>

#include <libdeflate.h>
#include <zlib.h>

#include "OrvLibrary/host/impl/zip/ZipMember_p.h"

namespace ZipUtils {

bool isReadable(const ZipEntry& entry)
{
    return !entry.isEncrypted() && (entry.method == kMethodStored || entry.method == kMethodDeflated);
}

/// Inflates one deflate stream of the archive.
class ZipMemberStream::Inflater
{
public:
    Inflater(const ZipArchive& archive, const ZipEntry& entry)
        : mArchive(archive), mEntry(entry), mOffset(entry.dataOffset)
    {
        constexpr int kRawDeflate = -15;
        if (inflateInit2(&mStream, kRawDeflate) != Z_OK)
            throw std::bad_alloc();
    }
    ~Inflater() { inflateEnd(&mStream); }
    Inflater(const Inflater&) = delete;
    Inflater& operator=(const Inflater&) = delete;

    void read(unsigned char* buffer, std::size_t size)
    {
        while (size > 0) {
            const std::size_t got = step(buffer, size);
            if (got == 0 && mEnded)
                mArchive.fail(mEntry, "its stream is too short");
            buffer += got;
            size -= got;
        }
    }

    /// Called after the last content. The stream must end with the last compressed byte.
    void verifyEnd()
    {
        unsigned char spare = 0;
        while (!mEnded) {
            if (step(&spare, 1) != 0)
                mArchive.fail(mEntry, "its stream is too long");
        }
        if (mStream.avail_in != 0 || mOffset != mEntry.dataEnd())
            mArchive.fail(mEntry, "its stream ends too early");
    }

private:
    std::size_t step(unsigned char* buffer, std::size_t size)
    {
        if (mStream.avail_in == 0)
            refill();
        const auto room = static_cast<uInt>(std::min<std::size_t>(size, 1U << 30U));
        mStream.next_out = buffer;
        mStream.avail_out = room;
        const int result = inflate(&mStream, Z_NO_FLUSH);
        if (result == Z_MEM_ERROR)
            throw std::bad_alloc();
        // If the compressed bytes end before the stream, there is nothing left to do, which is an error, too.
        if (result != Z_OK && result != Z_STREAM_END)
            mArchive.fail(mEntry, "its stream is broken");
        mEnded = result == Z_STREAM_END;
        return room - mStream.avail_out;
    }

    void refill()
    {
        const std::uint64_t left = mEntry.dataEnd() - mOffset;
        const auto size = static_cast<std::size_t>(std::min<std::uint64_t>(left, mInput.size()));
        mArchive.readAt(mOffset, reinterpret_cast<char*>(mInput.data()), size);
        mOffset += size;
        mStream.next_in = mInput.data();
        mStream.avail_in = static_cast<uInt>(size);
    }

    const ZipArchive& mArchive;
    const ZipEntry& mEntry;
    std::uint64_t mOffset; ///< the next compressed byte, as an offset in the file
    bool mEnded = false;
    z_stream mStream = {};
    std::array<unsigned char, 256U << 10U> mInput;
};

ZipMemberStream::ZipMemberStream(const ZipArchive& archive, const ZipEntry& entry)
    : mArchive(archive), mEntry(entry), mRemaining(entry.size), mStoredOffset(entry.dataOffset)
{
    if (entry.isEncrypted())
        archive.fail(entry, "is encrypted");
    if (!isReadable(entry))
        archive.fail(entry, "uses the unknown compression method " + std::to_string(entry.method));
    if (entry.method == kMethodDeflated)
        mInflater = std::make_unique<Inflater>(archive, entry);
    if (mRemaining == 0)
        verifyEnd();
}

ZipMemberStream::~ZipMemberStream() = default;

void ZipMemberStream::read(unsigned char* buffer, std::size_t size)
{
    if (size == 0)
        return;
    if (mInflater)
        mInflater->read(buffer, size);
    else
        readStored(buffer, size);
    mChecksum = libdeflate_crc32(mChecksum, buffer, size);
    mRemaining -= size;
    if (mRemaining == 0)
        verifyEnd();
}

void ZipMemberStream::readStored(unsigned char* buffer, std::size_t size)
{
    mArchive.readAt(mStoredOffset, reinterpret_cast<char*>(buffer), size);
    mStoredOffset += size;
}

void ZipMemberStream::verifyEnd()
{
    if (mInflater)
        mInflater->verifyEnd();
    if (mChecksum != mEntry.checksum)
        mArchive.fail(mEntry, "its checksum is wrong");
}

} // namespace ZipUtils
