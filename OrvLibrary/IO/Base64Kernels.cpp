#include "OrvLibrary/IO/Base64Kernels_p.h"

#include <array>
#include <cstdint>
#include <cstring>

#include "OrvLibrary/IO/Base64Ssse3_p.h"

namespace base64 {

namespace {

constexpr char kAlphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr std::uint32_t kNoCharacter = 0x80000000u;

/// A table with two characters for every twelve bits.
constexpr std::array<char, 4096 * 2> makePairs()
{
    std::array<char, 4096 * 2> pairs = {};
    for (std::size_t bits = 0; bits < 4096; ++bits) {
        pairs[bits * 2] = kAlphabet[bits >> 6];
        pairs[bits * 2 + 1] = kAlphabet[bits & 0x3F];
    }
    return pairs;
}

/// A table with the bits of each character, for each of the four places in a group.
constexpr std::array<std::array<std::uint32_t, 256>, 4> makeBits()
{
    std::array<std::array<std::uint32_t, 256>, 4> bits = {};
    for (std::size_t place = 0; place < 4; ++place) {
        for (std::uint32_t& entry : bits[place])
            entry = kNoCharacter;
        for (std::uint32_t value = 0; value < 64; ++value)
            bits[place][static_cast<unsigned char>(kAlphabet[value])] = value << (18 - 6 * place);
    }
    return bits;
}

constexpr auto kPairs = makePairs();
constexpr auto kBits = makeBits();

void encodeScalar(const unsigned char* bytes, std::size_t count, char* text)
{
    for (const unsigned char* const end = bytes + count; bytes != end; bytes += 3, text += 4) {
        const unsigned high = static_cast<unsigned>(bytes[0]) << 4 | bytes[1] >> 4;
        const unsigned low = (bytes[1] & 0x0Fu) << 8 | bytes[2];
        std::memcpy(text, &kPairs[high * 2], 2);
        std::memcpy(text + 2, &kPairs[low * 2], 2);
    }
}

std::uint32_t bitsAt(std::size_t place, char c)
{
    return kBits[place][static_cast<unsigned char>(c)];
}

std::size_t decodeScalar(const char* text, std::size_t count, unsigned char* bytes)
{
    std::size_t at = 0;
    for (; at < count; at += 4, bytes += 3) {
        const std::uint32_t group =
            bitsAt(0, text[at]) | bitsAt(1, text[at + 1]) | bitsAt(2, text[at + 2]) | bitsAt(3, text[at + 3]);
        if (group & kNoCharacter)
            break;
        bytes[0] = static_cast<unsigned char>(group >> 16);
        bytes[1] = static_cast<unsigned char>(group >> 8);
        bytes[2] = static_cast<unsigned char>(group);
    }
    return at;
}

} // namespace

const Kernels& scalarKernels()
{
    static constexpr Kernels kScalar = {"scalar", encodeScalar, decodeScalar};
    return kScalar;
}

const Kernels& bestKernels()
{
    static const Kernels sBest = runnableKernels().back();
    return sBest;
}

std::vector<Kernels> runnableKernels()
{
    std::vector<Kernels> kernels = {scalarKernels()};
    if (const Kernels* const ssse3 = ssse3Kernels())
        kernels.push_back(*ssse3);
    return kernels;
}

} // namespace base64
