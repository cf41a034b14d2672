#include "OrvLibrary/host/impl/text/HttpHeaders_p.h"

#include <gmock/gmock.h>

namespace {

WebUtils::HeaderMap headersOf(const std::string& text)
{
    WebUtils::HeaderMap headers;
    WebUtils::parseReturnHeader(text, headers);
    return headers;
}

} // namespace

TEST(HttpHeaders, contentLengthIsANumberAndNothingElse)
{
    const std::pair<const char*, std::int64_t> rows[] = {
        {"", -1},
        {"Content-Length: 0", 0},
        {"Content-Length: 12", 12},
        {"Content-Length: 1\nContent-Length: 12", 12},
        {"Content-Length:", -1},
        {"Content-Length: -1", -1},
        {"Content-Length: -5", -1},
        {"Content-Length: 12 bytes", -1},
        {"Content-Length: 99999999999999999999", -1},
    };
    for (const auto& [text, length] : rows)
        EXPECT_EQ(HttpHeaders::contentLength(headersOf(text)), length) << text;
}

TEST(HttpHeaders, restMustBeginAtTheByteAskedForAndEndWithTheFile)
{
    const std::pair<const char*, std::int64_t> rows[] = {
        {"", -1},
        {"Content-Range: bytes 5-9/10", 10},
        {"Content-Range: bytes 5-8/10", -1},
        {"Content-Range: bytes 4-9/10", -1},
        {"Content-Range: bytes 5-9/*", -1},
        {"Content-Range: bytes 5-9/10 and more", -1},
        {"Content-Range: bytes 5", -1},
        {"Content-Range: bytes 5--1/0", -1},
        {"Content-Range: lines 5-9/10", -1},
    };
    for (const auto& [text, length] : rows)
        EXPECT_EQ(HttpHeaders::lengthOfRest(headersOf(text), 5), length) << text;
}

TEST(HttpHeaders, validatorIsComparedWithTheFieldOfItsKind)
{
    const WebUtils::HeaderMap headers =
        headersOf("ETag: \"a\"\nLast-Modified: Sun, 22 Nov 2026 10:00:00 GMT");
    EXPECT_TRUE(HttpHeaders::isOfVersion(headers, "\"a\""));
    EXPECT_FALSE(HttpHeaders::isOfVersion(headers, "\"b\""));
    EXPECT_TRUE(HttpHeaders::isOfVersion(headers, "Sun, 22 Nov 2026 10:00:00 GMT"));
    EXPECT_FALSE(HttpHeaders::isOfVersion(headers, "Sun, 22 Nov 2026 10:00:01 GMT"));
    EXPECT_TRUE(HttpHeaders::isOfVersion({}, "\"a\""));
}

TEST(HttpHeaders, encodedBodyIsNamedWithItsEncoding)
{
    EXPECT_EQ(HttpHeaders::encodingProblem({}), "");
    EXPECT_EQ(HttpHeaders::encodingProblem(headersOf("Content-Encoding: Identity\nContent-Encoding:")), "");
    EXPECT_EQ(HttpHeaders::encodingProblem(headersOf("Content-Encoding: identity\nContent-Encoding: gzip")),
              "the body is encoded (Content-Encoding: gzip)");
}

TEST(HttpHeaders, linesOnTheWireHaveNoControlBytes)
{
    EXPECT_THAT(
        HttpHeaders::wireLines({"If-None-Match: \"ab\r\n\tc\x7f\x1f\"", std::string("A: \0\x80\xff~ ", 8)}),
        testing::ElementsAre("If-None-Match: \"abc\"", "A: \x80\xff~ ", "Cache-Control: no-cache"));
}

TEST(HttpHeaders, lineForCachesIsAddedIfThereIsNone)
{
    EXPECT_THAT(HttpHeaders::wireLines({}), testing::ElementsAre("Cache-Control: no-cache"));
    EXPECT_THAT(HttpHeaders::wireLines({"cache-control: max-age=0", "A: b"}),
                testing::ElementsAre("cache-control: max-age=0", "A: b"));
}
