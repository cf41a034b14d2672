#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "OrvLibrary/host/impl/zip/ZipArchive_p.h"

namespace ZipUtils {

/// The largest content that is delivered in one piece.
constexpr std::uint64_t kOnePieceLimit = 512U << 20U;

/// Whether the content, and so its checksum, can be read: the member is not encrypted, and its method is
/// known.
bool isReadable(const ZipEntry& entry);

/// The sum of the sizes of all members. If it overflows, the largest number.
std::uint64_t sizeOfContent(const ZipArchive& archive);

/// Reads the whole content of a member and verifies its checksum.
/// @throws std::bad_alloc over 512 MiB or if memory runs out; std::runtime_error if the member is damaged
std::vector<unsigned char> readWholeMember(const ZipArchive& archive, const ZipEntry& entry);

/// Reads one member from start to end, in pieces of any size. The archive must live longer.
class ZipMemberStream
{
public:
    /// @throws std::runtime_error if the member is not readable, or if it is empty and damaged
    ZipMemberStream(const ZipArchive& archive, const ZipEntry& entry);
    ~ZipMemberStream();
    ZipMemberStream(const ZipMemberStream&) = delete;
    ZipMemberStream& operator=(const ZipMemberStream&) = delete;

    /// The bytes still to be read.
    std::uint64_t remaining() const { return mRemaining; }
    /// Reads the next `size` bytes; at most `remaining()`. The last byte completes the check of the checksum
    /// and of the end of the stream.
    /// @throws std::runtime_error if the member is damaged
    void read(unsigned char* buffer, std::size_t size);

private:
    class Inflater;

    void readStored(unsigned char* buffer, std::size_t size);
    void verifyEnd();

    const ZipArchive& mArchive;
    const ZipEntry& mEntry;
    std::uint64_t mRemaining;
    std::uint64_t mStoredOffset; ///< the next stored byte, as an offset in the file
    std::uint32_t mChecksum = 0;
    std::unique_ptr<Inflater> mInflater; ///< null for a stored member
};

} // namespace ZipUtils
