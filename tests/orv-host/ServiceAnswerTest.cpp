#include "OrvHost/update/ServiceAnswer.h"

#include <utility>

#include <gmock/gmock.h>

namespace ServiceAnswer = OrvHost::ServiceAnswer;

namespace {

Curl::Answer answered(std::int64_t status, const std::string& headerText = "")
{
    return {status, headerText, "", ""};
}

Curl::Answer failed(const std::string& reason)
{
    return {0, "", reason, ""};
}

} // namespace

TEST(ServiceAnswer, theTagThatWasSentStandsBetweenTheQuotesOfItsLine)
{
    EXPECT_EQ("old", ServiceAnswer::sentTag({"Accept: */*", "If-None-Match: \"old\""}));
    EXPECT_EQ("", ServiceAnswer::sentTag({"If-None-Match: \"\""}));
    EXPECT_EQ("", ServiceAnswer::sentTag({"If-None-Match: \""}));
    EXPECT_EQ("", ServiceAnswer::sentTag({"X-If-None-Match: \"old\""}));
    EXPECT_EQ("", ServiceAnswer::sentTag({}));
}

TEST(ServiceAnswer, lengthIsAWholeNumberOrNone)
{
    using ServiceAnswer::length;
    EXPECT_EQ(0, length("Content-Length: 0\r\n"));
    EXPECT_EQ(5, length("Content-Length: 4\r\nContent-Length: 5\r\n"));
    for (const char* text : {"", "Content-Length: -1\r\n", "Content-Length: 5x\r\n", "Content-Length:\r\n",
                             "Content-Length: 99999999999999999999\r\n"})
        EXPECT_EQ(std::nullopt, length(text)) << text;
}

TEST(ServiceAnswer, tagIsReadAsTheLibraryReadsIt)
{
    const std::pair<const char*, const char*> table[] = {
        {"\"a\"", "a"}, {"W/\"a\"", "a"}, {"a", "a"}, {"\"a", "a"}, {"\"\"b", "\"b"}, {"\"a\"b\"", "a\"b"}};
    for (const auto& [value, tag] : table)
        EXPECT_EQ(tag, ServiceAnswer::tag(std::string("ETag: ") + value + "\r\n")) << value;
    EXPECT_EQ(std::nullopt, ServiceAnswer::tag(""));
}

TEST(ServiceAnswer, aValidatorHasSomethingBetweenItsQuotes)
{
    EXPECT_EQ("then", ServiceAnswer::validator("ETag: \"\"\r\nLast-Modified: then\r\n"));
    EXPECT_EQ("then", ServiceAnswer::validator("ETag: abc\r\nLast-Modified: then\r\n"));
    EXPECT_EQ("then", ServiceAnswer::validator("ETag: \"ab\r\nLast-Modified: then\r\n"));
    EXPECT_EQ("\"x\"", ServiceAnswer::validator("ETag: \"x\"\r\n"));
}

TEST(ServiceAnswer, retryAfterHasABound)
{
    EXPECT_EQ(std::chrono::seconds(1'000'000), ServiceAnswer::retryAfter("Retry-After: 1000001\r\n"));
    EXPECT_EQ(std::chrono::seconds(999'999), ServiceAnswer::retryAfter("Retry-After: 999999\r\n"));
    EXPECT_EQ(std::nullopt, ServiceAnswer::retryAfter("Retry-After: -1\r\n"));
}

TEST(ServiceAnswer, aGoodAnswerOfMarkupIsAWebPage)
{
    for (const char* type : {"text/html", "TEXT/HTML; charset=utf-8", "application/xhtml+xml"}) {
        const std::string header = std::string("Content-Type: ") + type + "\r\n";
        EXPECT_TRUE(ServiceAnswer::isWebPage(answered(200, header))) << type;
        EXPECT_FALSE(ServiceAnswer::isWebPage(answered(404, header))) << type;
    }
    EXPECT_FALSE(ServiceAnswer::isWebPage(answered(200, "Content-Type: text/plain\r\n")));
    EXPECT_FALSE(ServiceAnswer::isWebPage(answered(200)));
    EXPECT_TRUE(ServiceAnswer::isMarkup("\xef\xbb\xbf\r\n\t <html>"));
    EXPECT_TRUE(ServiceAnswer::isMarkup("<"));
    for (const char* text : {"", " ", "\xef\xbb\xbf", "Doors.orvlib\n<html>"})
        EXPECT_FALSE(ServiceAnswer::isMarkup(text)) << text;
}

TEST(ServiceAnswer, onlyWhatMayBeOverSoonPasses)
{
    for (const int status : {429, 503}) {
        EXPECT_TRUE(ServiceAnswer::isPassing(answered(status)));
        EXPECT_TRUE(ServiceAnswer::isPassing(answered(status), 22));
    }
    for (const int status : {200, 304, 404, 430, 500, 502, 504}) {
        EXPECT_FALSE(ServiceAnswer::isPassing(answered(status))) << status;
        EXPECT_FALSE(ServiceAnswer::isPassing(answered(status), 22)) << status;
    }
    for (const char* reason :
         {"Connection timed out", "Operation too slow", "Connection reset by peer", "Empty reply from server",
          "transfer closed", "Recv failure", "Send failure", "HTTP/2 stream 1 was not closed",
          "Connection refused", "Failed to connect", "no answer"})
        EXPECT_TRUE(ServiceAnswer::isPassing(failed(reason))) << reason;
    EXPECT_FALSE(ServiceAnswer::isPassing(failed("Could not resolve host")));
    EXPECT_FALSE(ServiceAnswer::isPassing(failed("no answer from x:80 a moment ago: timed out")));
    EXPECT_FALSE(ServiceAnswer::isPassing({404, "", "timed out", ""})) << "it did answer";
}

TEST(ServiceAnswer, theTransferLibrarysNumbersSayTheSame)
{
    for (const int number : {7, 16, 18, 28, 52, 55, 56, 92})
        EXPECT_TRUE(ServiceAnswer::isPassing(failed("some text"), number)) << number;
    for (const int number : {0, 6, 22, 23, 42, 60})
        EXPECT_FALSE(ServiceAnswer::isPassing(failed("timed out"), number)) << number;
    EXPECT_FALSE(ServiceAnswer::isPassing(failed("no answer from x:80 a moment ago: refused"), 7));
}
