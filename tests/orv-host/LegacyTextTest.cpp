#include "OrvHost/LegacyText.h"

#include <utility>

#include <gmock/gmock.h>

using OrvHost::LegacyText::toUtf8;

TEST(LegacyText, keepsUtf8AndTakesTheRestForWindows1252)
{
    const std::pair<const char*, const char*> table[] = {
        {"", ""},      {"plain", "plain"}, {"Prüfe T\xFCren", "Prüfe Türen"},      {"\x80 100", "€ 100"},
        {"\xC3", "Ã"}, {"\xE2\x82", "â‚"}, {"日本 \U0001F600", "日本 \U0001F600"},
    };
    for (const auto& [text, expected] : table)
        EXPECT_EQ(expected, toUtf8(text));
}

TEST(LegacyText, firstAndLastCharacterOfEachLengthStay)
{
    for (const char* const text : {"\x7F", "\xC2\x80", "\xDF\xBF", "\xE0\xA0\x80", "\xED\x9F\xBF",
                                   "\xEE\x80\x80", "\xEF\xBF\xBF", "\xF0\x90\x80\x80", "\xF4\x8F\xBF\xBF"})
        EXPECT_EQ(text, toUtf8(text));
    const std::string zeros("a\0b\0", 4);
    EXPECT_EQ(zeros, toUtf8(zeros));
}

TEST(LegacyText, almostACharacterIsConvertedByteByByte)
{
    const std::pair<const char*, const char*> table[] = {
        {"\xC1\xBF", "Á¿"},
        {"\xF5\xA0\xA0\xA0", "õ\u00A0\u00A0\u00A0"},
        {"\xE0\x9F\xBF", "àŸ¿"},
        {"\xED\xA0\xA0", "í\u00A0\u00A0"},
        {"\xF0\x8F\xBF\xBF", "ð\u008F¿¿"},
        {"\xF4\x90\xA0\xA0", "ô\u0090\u00A0\u00A0"},
        {"\xF0\xA0\xA0", "ð\u00A0\u00A0"},
        {"\xC3\xC3\xA4", "Ãä"},
        {"a\x80", "a€"},
    };
    for (const auto& [text, expected] : table)
        EXPECT_EQ(expected, toUtf8(text));
}
