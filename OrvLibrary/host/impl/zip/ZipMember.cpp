// Reads a member in one piece. This is several times as fast as in pieces (ZipMemberStream.cpp).
#include "OrvLibrary/host/impl/zip/ZipMember_p.h"

#include <algorithm>
#include <new>

#include <libdeflate.h>
#include <sys/mman.h>

#include "OrvLibrary/host/impl/zip/ZipWholeInflater_p.h"

namespace ZipUtils {

namespace {

/// Asks for large memory pages, which save most of the system's time for large blocks. If the system has
/// none, nothing changes.
void askForLargePages(const void* memory, std::size_t size)
{
    constexpr std::size_t kLargePage = 2U << 20U;
    const auto start = (reinterpret_cast<std::uintptr_t>(memory) + kLargePage - 1) & ~(kLargePage - 1);
    const auto end = (reinterpret_cast<std::uintptr_t>(memory) + size) & ~(kLargePage - 1);
    if (start < end)
        madvise(reinterpret_cast<void*>(start), end - start, MADV_HUGEPAGE);
}

/// A buffer for the content of a large member.
std::vector<unsigned char> makeRoom(std::size_t size)
{
    std::vector<unsigned char> content;
    content.reserve(size);
    askForLargePages(content.data(), size);
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
    if (mRoom < entry.compressedSize) {
        mCompressed.reset(new char[entry.compressedSize]); // not set to zero: the file's bytes replace it all
        mRoom = entry.compressedSize;
        askForLargePages(mCompressed.get(), mRoom);
    }
    archive.readAt(entry.dataOffset, mCompressed.get(), entry.compressedSize);
    std::size_t used = 0;
    const libdeflate_result result = libdeflate_deflate_decompress_ex(
        mDecompressor, mCompressed.get(), entry.compressedSize, content, entry.size, &used, nullptr);
    if (result != LIBDEFLATE_SUCCESS)
        archive.fail(entry, result == LIBDEFLATE_INSUFFICIENT_SPACE ? "its stream is too long"
                                                                    : "its stream is broken");
    if (used != entry.compressedSize)
        archive.fail(entry, "its stream ends too early");
    if (libdeflate_crc32(0, content, entry.size) != entry.checksum)
        archive.fail(entry, "its checksum is wrong");
}

std::uint64_t sizeOfContent(const ZipArchive& archive)
{
    std::uint64_t total = 0;
    for (const ZipEntry& entry : archive.entries())
        total += std::min(entry.size, UINT64_MAX - total);
    return total;
}

std::vector<unsigned char> readWholeMember(const ZipArchive& archive, const ZipEntry& entry)
{
    if (isReadable(entry) && std::max(entry.size, entry.compressedSize) > kOnePieceLimit)
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
