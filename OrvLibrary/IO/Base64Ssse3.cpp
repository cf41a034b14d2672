#include "OrvLibrary/IO/Base64Ssse3_p.h"

#if defined(__x86_64__) || defined(__i386__)

#include <tmmintrin.h>

#define ORV_SSSE3 __attribute__((target("ssse3")))

namespace base64 {

namespace {

constexpr std::size_t kVector = 16;
constexpr std::size_t kVectorBytes = 12; ///< the bytes for sixteen characters

ORV_SSSE3 __m128i load(const void* from)
{
    return _mm_loadu_si128(static_cast<const __m128i*>(from));
}

ORV_SSSE3 void store(void* to, __m128i value)
{
    _mm_storeu_si128(static_cast<__m128i*>(to), value);
}

/// Splits twelve bytes into sixteen values of six bits.
ORV_SSSE3 __m128i spread(__m128i bytes)
{
    // Each lane of 32 bits gets its three bytes as two overlapping words: b0 b1 and b1 b2.
    const __m128i words =
        _mm_shuffle_epi8(bytes, _mm_setr_epi8(1, 0, 2, 1, 4, 3, 5, 4, 7, 6, 8, 7, 10, 9, 11, 10));
    // A multiplication shifts the two words of a lane by different numbers of bits.
    const __m128i even =
        _mm_mulhi_epu16(_mm_and_si128(words, _mm_set1_epi32(0x0FC0FC00)), _mm_set1_epi32(0x04000040));
    const __m128i odd =
        _mm_mullo_epi16(_mm_and_si128(words, _mm_set1_epi32(0x003F03F0)), _mm_set1_epi32(0x01000010));
    return _mm_or_si128(even, odd);
}

/// Converts values of six bits to characters. Within each range of the alphabet, both differ by a constant.
ORV_SSSE3 __m128i toCharacters(__m128i values)
{
    const __m128i upper = _mm_and_si128(_mm_cmpgt_epi8(_mm_set1_epi8(26), values), _mm_set1_epi8(13));
    const __m128i range = _mm_or_si128(_mm_subs_epu8(values, _mm_set1_epi8(51)), upper);
    const char digit = '0' - 52;
    const __m128i distances = _mm_setr_epi8('a' - 26, digit, digit, digit, digit, digit, digit, digit, digit,
                                            digit, digit, '+' - 62, '/' - 63, 'A', 0, 0);
    return _mm_add_epi8(values, _mm_shuffle_epi8(distances, range));
}

ORV_SSSE3 void encodeSsse3(const unsigned char* bytes, std::size_t count, char* text)
{
    // The load reads four bytes more than it uses.
    for (; count >= kVector; bytes += kVectorBytes, count -= kVectorBytes, text += kVector)
        store(text, toCharacters(spread(load(bytes))));
    scalarKernels().encode(bytes, count, text);
}

/// The two halves of each byte. Together they tell whether it is a character of the alphabet.
struct Nibbles
{
    __m128i high;
    __m128i low;
};

ORV_SSSE3 Nibbles nibbles(__m128i characters)
{
    const __m128i mask = _mm_set1_epi8(0x0F);
    return {_mm_and_si128(_mm_srli_epi32(characters, 4), mask), _mm_and_si128(characters, mask)};
}

/// Each bit stands for a group of high halves (1: "+/", 2: digits, 4: first half of the letters, 8: second
/// half, 16: never in the alphabet). The table of low halves has the groups in which this low half does not
/// occur.
ORV_SSSE3 bool areCharacters(const Nibbles& halves)
{
    const __m128i kinds = _mm_setr_epi8(16, 16, 1, 2, 4, 8, 4, 8, 16, 16, 16, 16, 16, 16, 16, 16);
    const __m128i missing = _mm_setr_epi8(0x15, 0x11, 0x11, 0x11, 0x11, 0x11, 0x11, 0x11, 0x11, 0x11, 0x13,
                                          0x1A, 0x1B, 0x1B, 0x1B, 0x1A);
    const __m128i wrong =
        _mm_and_si128(_mm_shuffle_epi8(kinds, halves.high), _mm_shuffle_epi8(missing, halves.low));
    return _mm_movemask_epi8(_mm_cmpeq_epi8(wrong, _mm_setzero_si128())) == 0xFFFF;
}

ORV_SSSE3 __m128i toValues(__m128i characters, const Nibbles& halves)
{
    // "/" has the same high half as "+", so it uses the entry before.
    const __m128i slash = _mm_cmpeq_epi8(characters, _mm_set1_epi8('/'));
    const __m128i distances = _mm_setr_epi8(0, 63 - '/', 62 - '+', 52 - '0', -'A', -'A', 26 - 'a', 26 - 'a',
                                            0, 0, 0, 0, 0, 0, 0, 0);
    return _mm_add_epi8(characters, _mm_shuffle_epi8(distances, _mm_add_epi8(halves.high, slash)));
}

/// Joins sixteen values of six bits to twelve bytes, followed by four zeros.
ORV_SSSE3 __m128i gather(__m128i values)
{
    const __m128i pairs = _mm_maddubs_epi16(values, _mm_set1_epi32(0x01400140));
    const __m128i groups = _mm_madd_epi16(pairs, _mm_set1_epi32(0x00011000));
    return _mm_shuffle_epi8(groups, _mm_setr_epi8(2, 1, 0, 6, 5, 4, 10, 9, 8, 14, 13, 12, -1, -1, -1, -1));
}

ORV_SSSE3 std::size_t decodeSsse3(const char* text, std::size_t count, unsigned char* bytes)
{
    // The store writes four bytes more than needed, so the last groups are left to the table version.
    constexpr std::size_t kReserve = 8;
    std::size_t at = 0;
    for (; at + kVector + kReserve <= count; at += kVector, bytes += kVectorBytes) {
        const __m128i characters = load(text + at);
        const Nibbles halves = nibbles(characters);
        if (!areCharacters(halves))
            break;
        store(bytes, gather(toValues(characters, halves)));
    }
    return at + scalarKernels().decode(text + at, count - at, bytes);
}

} // namespace

const Kernels* ssse3Kernels()
{
    static constexpr Kernels kSsse3 = {"ssse3", encodeSsse3, decodeSsse3};
    return __builtin_cpu_supports("ssse3") ? &kSsse3 : nullptr;
}

} // namespace base64

#else

const base64::Kernels* base64::ssse3Kernels()
{
    return nullptr;
}

#endif
