#pragma once

#include <memory>

#include "OrvLibrary/host/impl/zip/ZipArchive_p.h"

struct libdeflate_decompressor;

namespace ZipUtils {

/// A decompressor for whole deflated members, and the memory that it needs again and again.
class WholeInflater
{
public:
    /// @throws std::bad_alloc
    WholeInflater();
    ~WholeInflater();
    WholeInflater(const WholeInflater&) = delete;
    WholeInflater& operator=(const WholeInflater&) = delete;

    /// Fills `content`, which has room for the whole member, and verifies stream and checksum.
    /// @throws std::runtime_error for what is not sound
    void read(const ZipArchive& archive, const ZipEntry& entry, unsigned char* content);

private:
    libdeflate_decompressor* mDecompressor;
    std::unique_ptr<char[]> mCompressed;
    std::uint64_t mRoom = 0; ///< bytes of it
};

} // namespace ZipUtils
