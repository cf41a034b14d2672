#pragma once

#include <cstddef>
#include <vector>

/// The inner loops of Base64, one pair per kind of processor. They read and write nothing beyond the given
/// counts.
namespace base64 {

struct Kernels
{
    const char* name;
    /// Encodes `count` bytes, a multiple of three, into `count / 3 * 4` characters.
    void (*encode)(const unsigned char* bytes, std::size_t count, char* text);
    /// Decodes groups of four characters, of `count` characters in all, a multiple of four, up to the first
    /// group that holds a character outside the alphabet.
    /// @return the number of characters decoded, a multiple of four
    std::size_t (*decode)(const char* text, std::size_t count, unsigned char* bytes);
};

/// By tables; works on every processor.
const Kernels& scalarKernels();
/// The fastest that this processor runs.
const Kernels& bestKernels();
/// All that this processor runs.
std::vector<Kernels> runnableKernels();

} // namespace base64
