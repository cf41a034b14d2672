#include "OrvLibrary/Utility/StringConversion.h"

#include <string>

#include <gtest/gtest.h>

#include "OrvLibrary/host/SQL.h"

using Library::toWindows1252;

TEST(StringConversionToWindows1252, convertsByItsFixedRule)
{
    const struct
    {
        std::string utf8;
        std::string bytes;
    } cases[] = {
        {"", ""},
        {"Doors", "Doors"},
        {std::string("a\0b", 3), std::string("a\0b", 3)},
        {"\x7F", "\x7F"},
        {"\xC3\xA9", "\xE9"},
        {"\xC2\x80", "\x80"},
        {"\xC3\xBF", "\xFF"},
        {"\xC4\x80", std::string(1, '\0')}, // U+0100 keeps its low eight bits
        {"\xCE\xA9", "\xA9"},               // U+03A9
        {"\xDF\xBF", "\xFF"},               // U+07FF
        {"\xC0\xAF", "\x2F"},               // overlong
        {"\xE2\x82\xAC", ""},               // three-byte characters are dropped
        {"x\xF0\x9F\x8F\xA0y", "xy"},       // four-byte characters are dropped
        {"\xC3", ""},                       // a lead byte at the end
        {"\xC3z", "z"},                     // a lead byte without a continuation byte
        {"\xC3\xC3\xA9", "\xE9"},           // the second lead byte starts a character
        {"\x80\xBF", ""},                   // continuation bytes without a lead byte
        {"\xE2\xC3\xA9", "\xE9"},           // after a dropped byte
        {"\xFF\xFE\xC3\xA9", "\xE9"},
        {"Gr\xC3\xB6\xC3\x9F"
         "e",
         "Gr\xF6\xDF"
         "e"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(toWindows1252(c.utf8), c.bytes) << testing::PrintToString(c.utf8);
}

TEST(StringConversionToWindows1252, everyLatin1CharacterBecomesItsByte)
{
    for (unsigned code = 0x80; code <= 0xFF; ++code) {
        const std::string utf8 = {static_cast<char>(0xC0 | code >> 6),
                                  static_cast<char>(0x80 | (code & 0x3F))};
        EXPECT_EQ(toWindows1252(utf8), std::string(1, static_cast<char>(code))) << code;
    }
}

TEST(StringConversionToWindows1252, everyPairOfBytesFollowsTheRule)
{
    for (unsigned first = 0; first < 256; ++first) {
        for (unsigned second = 0; second < 256; ++second) {
            std::string expected;
            if (first >= 0xC0 && first < 0xE0 && second >= 0x80 && second < 0xC0) {
                expected = static_cast<char>((first & 3) * 64 + (second - 0x80));
            } else {
                expected += first < 128 ? std::string(1, static_cast<char>(first)) : "";
                expected += second < 128 ? std::string(1, static_cast<char>(second)) : "";
            }
            const std::string utf8 = {static_cast<char>(first), static_cast<char>(second)};
            ASSERT_EQ(toWindows1252(utf8), expected) << first << ' ' << second;
        }
    }
}

TEST(StringConversionToUTF8, isTheDatabaseLibrarysConversion)
{
    for (unsigned code = 0; code < 256; ++code) {
        const std::string text = {'a', static_cast<char>(code)};
        EXPECT_EQ(Library::toUTF8(text), SQL::to_utf8(text)) << code;
    }
    EXPECT_EQ(Library::toUTF8("\xE9"), "\xC3\xA9");
}
