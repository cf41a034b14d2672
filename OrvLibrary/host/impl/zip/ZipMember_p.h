#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <vector>

#include "OrvLibrary/host/impl/zip/ZipArchive_p.h"

namespace ZipUtils {

/// The most that is delivered in one piece, in bytes: 512 MiB. Tests lower it to provoke the way in chunks.
extern std::atomic<std::uint64_t> onePieceLimit;

/// Whether the content can be had at all, and so its checksum: neither encrypted nor of a foreign method.
bool isReadable(const ZipEntry& entry);

/// The whole content of a member, its checksum verified.
/// @throws std::bad_alloc over `onePieceLimit` or when memory is short; std::runtime_error for what is not
/// sound
std::vector<unsigned char> readWholeMember(const ZipArchive& archive, const ZipEntry& entry);

/// Reads one member from front to end in pieces of any size. The archive must outlive it.
class ZipMemberStream
{
public:
    /// @throws std::runtime_error when the member is not readable, or is empty and not sound
    ZipMemberStream(const ZipArchive& archive, const ZipEntry& entry);
    ~ZipMemberStream();
    ZipMemberStream(const ZipMemberStream&) = delete;
    ZipMemberStream& operator=(const ZipMemberStream&) = delete;

    /// Bytes still to come.
    std::uint64_t remaining() const { return mRemaining; }
    /// Fills the buffer with the next `size` bytes, at most `remaining()`. With the last byte the stream's
    /// end and the checksum are verified.
    /// @throws std::runtime_error for what is not sound
    void read(unsigned char* buffer, std::size_t size);

private:
    class Inflater;

    void readStored(unsigned char* buffer, std::size_t size);
    void verifyEnd();

    const ZipArchive& mArchive;
    const ZipEntry& mEntry;
    std::uint64_t mRemaining;
    std::uint64_t mStoredOffset; ///< of the next stored byte, from the start of the file
    std::uint32_t mChecksum = 0;
    std::unique_ptr<Inflater> mInflater; ///< null for a stored member
};

} // namespace ZipUtils
