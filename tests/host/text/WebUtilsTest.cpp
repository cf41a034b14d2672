#include "OrvLibrary/host/WebUtils.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/StubServices.h"

using testing::ElementsAre;

namespace {

WebUtils::HeaderMap parsed(const std::string& text)
{
    WebUtils::HeaderMap map;
    WebUtils::parseReturnHeader(text, map);
    return map;
}

} // namespace

TEST(WebUtils, headerNamesAreFoundInAnyLetterCase)
{
    const auto map = parsed("HTTP/1.1 200 OK\r\netag: \"a\"\r\nCONTENT-LENGTH: 12\r\n\r\n");
    EXPECT_EQ(map.size(), 2u);
    EXPECT_THAT(map.at("ETag"), ElementsAre("\"a\""));
    EXPECT_THAT(map.at("Content-Length"), ElementsAre("12"));
}

TEST(WebUtils, valuesOfOneNameKeepTheirOrder)
{
    EXPECT_THAT(parsed("A: 1\r\nB: x\r\na: 2\r\nA: 0\r\n").at("A"), ElementsAre("1", "2", "0"));
}

TEST(WebUtils, valuesLoseTheBlanksAroundThem)
{
    const auto map = parsed("A:1\r\nB:  \t 2 3 \t\r\nC:\r\nD: \n E: x:y\nno colon here\n: nameless\n");
    EXPECT_THAT(map.at("A"), ElementsAre("1"));
    EXPECT_THAT(map.at("B"), ElementsAre("2 3"));
    EXPECT_THAT(map.at("C"), ElementsAre(""));
    EXPECT_THAT(map.at("D"), ElementsAre("E: x:y"));
    EXPECT_EQ(map.size(), 4u);
}

TEST(WebUtils, statusLinesAreNoHeaders)
{
    EXPECT_TRUE(parsed("HTTP/1.1 200 OK: fine\r\n\r\n").empty());
    EXPECT_TRUE(parsed("").empty());
}

TEST(WebUtils, parsingAddsToTheMap)
{
    WebUtils::HeaderMap map = parsed("A: 1\n");
    WebUtils::parseReturnHeader("a: 2\n", map);
    EXPECT_THAT(map.at("A"), ElementsAre("1", "2"));
}

TEST(WebUtils, foldedValueIsOneValue)
{
    EXPECT_THAT(parsed("ETag:\r\n  \"a\"\r\nB: 1\r\n\t2\r\n").at("ETag"), ElementsAre("\"a\""));
    EXPECT_THAT(parsed("B: 1\r\n\t2\r\n").at("B"), ElementsAre("1 2"));
    EXPECT_TRUE(parsed(" folded from nothing\r\n").empty());
    EXPECT_THAT(parsed("B: 1\r\nno colon\r\n\t2\r\n").at("B"), ElementsAre("1"));
}

TEST(WebUtils, finalAddressIsAskedOfTheInstalledService)
{
    struct Service : test::DeadCurl
    {
        std::string urlAfterRedirects(const std::string& url) override { return url + "!"; }
    } service;
    EXPECT_EQ(WebUtils::getUrlAfterRedirects("http://h/"), "http://h/!");
    EXPECT_EQ(Curl::install(nullptr), &service);
    EXPECT_EQ(Curl::install(&service), nullptr);
}
