#include "OrvLibrary/host/UnicodeString.h"

#include <sstream>
#include <utility>

#include <gtest/gtest.h>

using marl::unicode::String;

namespace {

TEST(UnicodeString, givesBackTheBytesItWasBuiltFrom)
{
    for (const std::string text : {"", "plain", u8"\u00e4\u6241\U0001F600", "\xFF\xFE not utf-8"})
        EXPECT_EQ(String(text).toUTF8String(), text);
    EXPECT_EQ(String(std::string("a\0b", 3)).toUTF8String().size(), 3u);
}

TEST(UnicodeString, nullIsTheEmptyText)
{
    EXPECT_TRUE(String(static_cast<const char*>(nullptr)).empty());
    EXPECT_TRUE(String().empty());
    EXPECT_FALSE(String("a").empty());
}

TEST(UnicodeString, concatenatesAndCompares)
{
    String text = String("a") + "b";
    text += "c";
    EXPECT_EQ(text, String("abc"));
    EXPECT_TRUE(text != String("abd"));
    EXPECT_FALSE(text != String("abc"));
    EXPECT_LT(text, String("abd"));
}

TEST(UnicodeString, movesItsText)
{
    String from("abc");
    String to("before");
    to = std::move(from);
    EXPECT_EQ(to, String("abc"));
}

TEST(UnicodeString, isInTheOrderOfItsBytes)
{
    EXPECT_TRUE(String("a") < String("b"));
    EXPECT_FALSE(String("b") < String("a"));
    EXPECT_FALSE(String("a") < String("a"));
}

TEST(UnicodeString, printsItsBytes)
{
    std::ostringstream stream;
    stream << String(u8"\u00e4");
    EXPECT_EQ(stream.str(), u8"\u00e4");
}

} // namespace
