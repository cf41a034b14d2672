#pragma once

#include <cstddef>
#include <vector>

/// The inner loops of Base64, one pair for each kind of processor. They never read or write outside of the
/// given ranges.
namespace base64 {

struct Kernels
{
    const char* name;
    /// Encodes `count` bytes, a multiple of three, into `count / 3 * 4` characters.
    void (*encode)(const unsigned char* bytes, std::size_t count, char* text);
    /// Decodes groups of four characters; `count` is a multiple of four. Stops before the first group with a
    /// character that is not in the alphabet.
    /// @return the number of characters decoded, a multiple of four
    std::size_t (*decode)(const char* text, std::size_t count, unsigned char* bytes);
};

/// Uses tables; works on every processor.
const Kernels& scalarKernels();
/// The fastest pair that this processor can run.
const Kernels& bestKernels();
/// All pairs that this processor can run.
std::vector<Kernels> runnableKernels();

} // namespace base64
