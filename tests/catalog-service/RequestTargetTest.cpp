#include "apps/catalog-service/RequestTarget.h"

#include <gtest/gtest.h>

TEST(RequestTarget, percentDecodingLeavesPlusAndBrokenTextsAlone)
{
    EXPECT_EQ(percentDecoded("a%20b+c%2B"), "a b+c+");
    EXPECT_EQ(percentDecoded("T%C3%bcr"), "T\xc3\xbcr");
    EXPECT_EQ(percentDecoded("100%"), "100%");
    EXPECT_EQ(percentDecoded("%2"), "%2");
    EXPECT_EQ(percentDecoded("%g0%%41"), "%g0%A");
    EXPECT_EQ(percentDecoded("%00"), std::string(1, '\0'));
    EXPECT_EQ(percentDecoded("%2541"), "%41");
}

TEST(RequestTarget, parametersAreFoundWhereverTheyStand)
{
    const RequestTarget target("/content?&library=A%20b.orvlib&product=P&empty=&library=second&bare");
    EXPECT_EQ(target.path(), "/content");
    std::string value = "untouched";
    EXPECT_TRUE(target.parameter("library", value));
    EXPECT_EQ(value, "A%20b.orvlib");
    EXPECT_TRUE(target.parameter("empty", value));
    EXPECT_EQ(value, "");
    EXPECT_FALSE(target.parameter("bare", value));
    EXPECT_FALSE(target.parameter("version", value));
    EXPECT_TRUE(RequestTarget("/x?a=1=2").parameter("a", value));
    EXPECT_EQ(value, "1=2");
    EXPECT_TRUE(RequestTarget("/x?%6cibrary=y").parameter("library", value));
    EXPECT_FALSE(RequestTarget("/x").parameter("a", value));
    EXPECT_EQ(RequestTarget("/x").path(), "/x");
}
