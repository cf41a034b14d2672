#include "OrvHost/update/Sha1Tag.h"

#include <gmock/gmock.h>

TEST(Sha1Tag, onlyFortyHexadecimalDigitsAreOne)
{
    EXPECT_TRUE(OrvHost::Sha1Tag::isSha1("0123456789abcdefABCDEF0123456789abcdef01"));
    EXPECT_FALSE(OrvHost::Sha1Tag::isSha1("0123456789abcdefABCDEF0123456789abcdef0"));
    EXPECT_FALSE(OrvHost::Sha1Tag::isSha1("g123456789abcdefABCDEF0123456789abcdef01"));
    EXPECT_FALSE(OrvHost::Sha1Tag::isSha1(""));
    EXPECT_TRUE(OrvHost::Sha1Tag::equal("abC", "ABc"));
    EXPECT_FALSE(OrvHost::Sha1Tag::equal("ab", "abc"));
}

TEST(Sha1Tag, hexadecimalDigitsEndAtNineAndF)
{
    for (const char digit : std::string("09afAF"))
        EXPECT_TRUE(OrvHost::Sha1Tag::isSha1(std::string(40, digit))) << digit;
    for (const char other : std::string("/:`g@G"))
        EXPECT_FALSE(OrvHost::Sha1Tag::isSha1(std::string(40, other))) << other;
    EXPECT_TRUE(OrvHost::Sha1Tag::equal("0af9", "0AF9"));
}
