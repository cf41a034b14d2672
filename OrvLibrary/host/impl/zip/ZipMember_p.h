#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "OrvLibrary/host/impl/zip/ZipArchive_p.h"

namespace ZipUtils {

/// The most that is delivered in one piece, in bytes.
constexpr std::uint64_t kOnePieceLimit = 512U << 20U;

/// Whether the content can be had at all, and so its checksum: neither encrypted nor of a foreign method.
bool isReadable(const ZipEntry& entry);

/// Bytes of content in all members; the largest number when there are more.
std::uint64_t sizeOfContent(const ZipArchive& archive);

/// The whole content of a member, its checksum verified.
/// @throws std::bad_alloc over 512 MiB or when memory is short; std::runtime_error for what is not
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
