// The way in one piece, several times as fast as the one in pieces.
#include "OrvLibrary/host/impl/zip/ZipMember_p.h"

#include <algorithm>
#include <new>

#include <libdeflate.h>
#include <sys/mman.h>

#include "OrvLibrary/host/impl/zip/ZipWholeInflater_p.h"

namespace ZipUtils {

std::atomic<std::uint64_t> onePieceLimit{512U << 20U};

namespace {

/// Room for the content of a large member. Large pages spare most of the time that the system takes to hand
/// out so much memory; where there are none, nothing is lost.
std::vector<unsigned char> makeRoom(std::size_t size)
{
    constexpr std::size_t kLargePage = 2U << 20U;
    std::vector<unsigned char> content;
    content.reserve(size);
    const auto start =
        (reinterpret_cast<std::uintptr_t>(content.data()) + kLargePage - 1) & ~(kLargePage - 1);
    const auto end = (reinterpret_cast<std::uintptr_t>(content.data()) + size) & ~(kLargePage - 1);
    if (start < end)
        madvise(reinterpret_cast<void*>(start), end - start, MADV_HUGEPAGE);
    content.resize(size);
    return content;
}

} // namespace

WholeInflater::WholeInflater() : mDecompressor(libdeflate_alloc_decompressor())
{
    if (!mDecompressor)
        throw std::bad_alloc();
}

WholeInflater::~WholeInflater()
{
    libdeflate_free_decompressor(mDecompressor);
}

void WholeInflater::read(const ZipArchive& archive, const ZipEntry& entry, unsigned char* content)
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

std::vector<unsigned char> readWholeMember(const ZipArchive& archive, const ZipEntry& entry)
{
    if (isReadable(entry) && std::max(entry.size, entry.compressedSize) > onePieceLimit)
        throw std::bad_alloc();
    if (isReadable(entry) && entry.method == kMethodDeflated) {
        std::vector<unsigned char> content = makeRoom(entry.size);
        WholeInflater().read(archive, entry, content.data());
        return content;
    }
    ZipMemberStream stream(archive, entry);
    std::vector<unsigned char> content = makeRoom(entry.size);
    stream.read(content.data(), content.size());
    return content;
}

} // namespace ZipUtils
