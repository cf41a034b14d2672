// Compares the text encodings with simple implementations, for any bytes.
#include "OrvLibrary/Utility/StringConversion.h"
#include "OrvLibrary/host/StringUtils.h"
#include "fuzz/FuzzSandbox.h"

using fuzz::require;

namespace {

/// The rule in three steps.
std::string keptBytes(const std::string& utf8)
{
    std::string kept;
    std::size_t i = 0;
    while (i < utf8.size()) {
        const unsigned lead = static_cast<unsigned char>(utf8[i]);
        const unsigned next = i + 1 < utf8.size() ? static_cast<unsigned char>(utf8[i + 1]) : 0U;
        if (lead < 0x80) {
            kept.push_back(utf8[i]);
            i += 1;
        } else if (lead >> 5U == 6 && next >> 6U == 2) {
            kept.push_back(static_cast<char>(lead * 64 + next % 64));
            i += 2;
        } else {
            i += 1;
        }
    }
    return kept;
}

void appendUtf8(std::string& text, unsigned character)
{
    if (character < 0x80) {
        text.push_back(static_cast<char>(character));
    } else if (character < 0x800) {
        text.push_back(static_cast<char>(0xC0 + character / 64));
        text.push_back(static_cast<char>(0x80 + character % 64));
    } else {
        text.push_back(static_cast<char>(0xE0 + character / 4096));
        text.push_back(static_cast<char>(0x80 + character / 64 % 64));
        text.push_back(static_cast<char>(0x80 + character % 64));
    }
}

/// Windows-1252 from 0x80 to 0x9F. The five undefined bytes stand for control characters.
const unsigned kUpperControls[32] = {0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                     0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
                                     0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                     0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

unsigned characterOf(unsigned char byte)
{
    return byte >= 0x80 && byte < 0xA0 ? kUpperControls[byte - 0x80] : byte;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string bytes = fuzz::textOf(data, size);
    require(Library::toWindows1252(bytes) == keptBytes(bytes), "the fixed rule is kept");

    std::string utf8;
    for (const char c : bytes)
        appendUtf8(utf8, characterOf(static_cast<unsigned char>(c)));
    require(Library::toUTF8(bytes) == utf8, "database text is Windows-1252");
    require(StringUtils::toWin1252(utf8) == bytes, "the code page is undone");
    // Characters outside the code page become question marks, at most one per byte.
    require(StringUtils::toWin1252(bytes).size() <= bytes.size(), "a character becomes one byte");
    return 0;
}
