#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "OrvLibrary/host/impl/zip/ZipWholeInflater_p.h"

namespace ZipUtils {

/// Verifies members, one after the other. Its memory does not grow with the size of the members. One object
/// belongs to one thread.
class ZipVerifier
{
public:
    /// @param onPiece called with the number of bytes verified so far, for at most 8 MB at a time. Whatever
    /// it throws ends the work.
    explicit ZipVerifier(std::function<void(std::uint64_t bytes)> onPiece);

    /// @throws std::runtime_error if the member is damaged
    void verify(const ZipArchive& archive, const ZipEntry& entry);

private:
    void verifyInPieces(const ZipArchive& archive, const ZipEntry& entry);

    std::function<void(std::uint64_t)> mOnPiece;
    WholeInflater mInflater;
    std::vector<unsigned char> mContent;
};

} // namespace ZipUtils
