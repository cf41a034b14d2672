#pragma once

#include <memory>

#include "OrvLibrary/host/impl/zip/ZipArchive_p.h"

struct libdeflate_decompressor;

namespace ZipUtils {

/// Inflates whole members. Keeps its decompressor and its buffer for the next one.
class WholeInflater
{
public:
    /// @throws std::bad_alloc
    WholeInflater();
    ~WholeInflater();
    WholeInflater(const WholeInflater&) = delete;
    WholeInflater& operator=(const WholeInflater&) = delete;

    /// Fills `content`, which must have room for the whole member, and verifies the stream and the checksum.
    /// @throws std::runtime_error if the member is damaged
    void read(const ZipArchive& archive, const ZipEntry& entry, unsigned char* content);

private:
    libdeflate_decompressor* mDecompressor;
    std::unique_ptr<char[]> mCompressed;
    std::uint64_t mRoom = 0; ///< size of the buffer
};

} // namespace ZipUtils
