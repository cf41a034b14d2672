#include "OrvLibrary/host/impl/zip/ZipVerifier_p.h"

#include <algorithm>

#include "OrvLibrary/host/impl/zip/ZipMember_p.h"

namespace ZipUtils {

ZipVerifier::ZipVerifier(std::function<void(std::uint64_t)> onPiece) : mOnPiece(std::move(onPiece)) {}

void ZipVerifier::verify(const ZipArchive& archive, const ZipEntry& entry)
{
    constexpr std::uint64_t kWholeUpTo = 8U << 20U;
    const bool isSmall = entry.size <= kWholeUpTo && entry.compressedSize <= kWholeUpTo;
    if (entry.method != kMethodDeflated || !isSmall) {
        verifyInPieces(archive, entry);
        return;
    }
    if (mContent.size() < entry.size)
        mContent.resize(entry.size);
    mInflater.read(archive, entry, mContent.data());
    mOnPiece(entry.size);
}

void ZipVerifier::verifyInPieces(const ZipArchive& archive, const ZipEntry& entry)
{
    constexpr std::size_t kPiece = 1U << 20U;
    mContent.resize(std::max(mContent.size(), kPiece));
    ZipMemberStream stream(archive, entry);
    while (stream.remaining() > 0) {
        const std::uint64_t size = std::min<std::uint64_t>(stream.remaining(), kPiece);
        stream.read(mContent.data(), size);
        mOnPiece(size);
    }
}

} // namespace ZipUtils
