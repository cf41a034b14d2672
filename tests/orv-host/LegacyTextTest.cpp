#include "OrvHost/LegacyText.h"

#include <utility>

#include <gmock/gmock.h>

TEST(LegacyText, keepsUtf8AndTakesTheRestForWindows1252)
{
    const std::pair<const char*, const char*> table[] = {
        {"", ""},      {"plain", "plain"}, {"Prüfe T\xFCren", "Prüfe Türen"},      {"\x80 100", "€ 100"},
        {"\xC3", "Ã"}, {"\xE2\x82", "â‚"}, {"日本 \U0001F600", "日本 \U0001F600"},
    };
    for (const auto& [text, expected] : table)
        EXPECT_EQ(expected, OrvHost::LegacyText::toUtf8(text));
}
