#include "OrvLibrary/IO/Base64.h"

#include <algorithm>
#include <array>

#include "OrvLibrary/IO/Base64Kernels_p.h"
#include "OrvLibrary/IO/LargePages_p.h"

namespace {

// Pieces go through a small buffer that stays in the processor's cache. This takes less time than to clear
// the whole result before filling it.
constexpr std::size_t kGroups = 4096;
constexpr std::size_t kPieceBytes = kGroups * 3;
constexpr std::size_t kPieceText = kGroups * 4;

bool isAccepted(char c)
{
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '+' ||
           c == '/' || c == '=';
}

/// Deliberate: a position past the end counts as "A". So an incomplete last group is filled with zero bits,
/// and every length is valid.
/// Kept by: Base64.aCutGroupIsCompletedWithZeroBits
char fetch(const std::string& text, std::size_t position)
{
    if (position >= text.size())
        return 'A';
    const char c = text[position];
    if (!isAccepted(c)) {
        throw Base64::InvalidCharacterException("Invalid character '" + std::string(1, c) + "' at position " +
                                                std::to_string(position) + ".");
    }
    return c;
}

/// Deliberate: "=" counts as 63 if it is not skipped.
/// Kept by: Base64.paddingIsTakenAnywhere
unsigned sixBits(char c)
{
    if (c >= 'A' && c <= 'Z')
        return static_cast<unsigned>(c - 'A');
    if (c >= 'a' && c <= 'z')
        return static_cast<unsigned>(c - 'a') + 26;
    if (c >= '0' && c <= '9')
        return static_cast<unsigned>(c - '0') + 52;
    return c == '+' ? 62 : 63;
}

/// Decodes any group: with "=", a wrong character or the end of the text.
void decodeGroup(const std::string& text, std::size_t position, std::vector<unsigned char>& bytes)
{
    const char first = fetch(text, position);
    const char second = fetch(text, position + 1);
    const char third = fetch(text, position + 2);
    const char fourth = fetch(text, position + 3);
    const unsigned a = sixBits(first);
    const unsigned b = sixBits(second);
    const unsigned c = sixBits(third);
    const unsigned d = sixBits(fourth);
    bytes.push_back(static_cast<unsigned char>(a << 2 | b >> 4));
    // Deliberate: the two tests are independent. So "QQ=A" gives a second byte, made from its third and
    // fourth character.
    // Kept by: Base64.mutatedTextsAreReadAsTheRulesSay
    if (third != '=')
        bytes.push_back(static_cast<unsigned char>(b << 4 | c >> 2));
    if (fourth != '=')
        bytes.push_back(static_cast<unsigned char>(c << 6 | d));
}

/// Encodes the last one or two bytes.
void encodeRest(const unsigned char* bytes, std::size_t count, std::string& text)
{
    const std::array<unsigned char, 3> group = {bytes[0],
                                                count > 1 ? bytes[1] : static_cast<unsigned char>(0), 0};
    std::array<char, 4> characters = {};
    base64::scalarKernels().encode(group.data(), group.size(), characters.data());
    if (count == 1)
        characters[2] = '=';
    characters[3] = '=';
    text.append(characters.data(), characters.size());
}

} // namespace

Base64::InvalidCharacterException::InvalidCharacterException(const std::string& message) : mMessage(message)
{
}

Base64::InvalidCharacterException::~InvalidCharacterException() = default;

const char* Base64::InvalidCharacterException::what() const noexcept
{
    return mMessage.c_str();
}

std::string Base64::encode(const std::vector<unsigned char>& bytes)
{
    const base64::Kernels& kernels = base64::bestKernels();
    std::array<char, kPieceText> piece;
    std::string text;
    text.reserve((bytes.size() + 2) / 3 * 4);
    adviseLargePages(text.data(), text.capacity());
    const std::size_t whole = bytes.size() / 3 * 3;
    for (std::size_t at = 0; at < whole; at += kPieceBytes) {
        const std::size_t count = std::min(kPieceBytes, whole - at);
        kernels.encode(bytes.data() + at, count, piece.data());
        text.append(piece.data(), count / 3 * 4);
    }
    if (whole < bytes.size())
        encodeRest(bytes.data() + whole, bytes.size() - whole, text);
    return text;
}

std::vector<unsigned char> Base64::decode(const std::string& text)
{
    const base64::Kernels& kernels = base64::bestKernels();
    std::array<unsigned char, kPieceBytes> piece;
    std::vector<unsigned char> bytes;
    bytes.reserve((text.size() + 3) / 4 * 3);
    adviseLargePages(bytes.data(), bytes.capacity());
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t count = std::min(kPieceText, (text.size() - at) / 4 * 4);
        const std::size_t done = kernels.decode(text.data() + at, count, piece.data());
        bytes.insert(bytes.end(), piece.begin(), piece.begin() + static_cast<std::ptrdiff_t>(done / 4 * 3));
        at += done;
        if (done < count || count == 0) {
            decodeGroup(text, at, bytes);
            at += 4;
        }
    }
    return bytes;
}
