#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "OrvLibrary/host/impl/zip/ZipWholeInflater_p.h"

namespace ZipUtils {

/// Verifies streams and checksums of members, one after the other, in memory that does not grow with their
/// sizes. One object belongs to one thread.
class ZipVerifier
{
public:
    /// @param onPiece is told of content that was read and found sound so far, at most 8 MB at a time; what
    /// it throws ends the work
    explicit ZipVerifier(std::function<void(std::uint64_t bytes)> onPiece);

    /// @throws std::runtime_error for a member that is not sound
    void verify(const ZipArchive& archive, const ZipEntry& entry);

private:
    void verifyInPieces(const ZipArchive& archive, const ZipEntry& entry);

    std::function<void(std::uint64_t)> mOnPiece;
    WholeInflater mInflater;
    std::vector<unsigned char> mContent;
};

} // namespace ZipUtils
