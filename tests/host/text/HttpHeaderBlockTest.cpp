#include "OrvLibrary/host/impl/text/HttpHeaderBlock_p.h"

#include <vector>

#include <gtest/gtest.h>

namespace {

std::string block(const std::vector<std::string>& lines)
{
    HttpHeaderBlock header;
    for (const std::string& line : lines)
        header.addLine(line);
    return header.status() != 0 ? header.text() : "cut";
}

} // namespace

TEST(HttpHeaderBlock, onlyTheFinalBlockRemains)
{
    EXPECT_EQ(
        block({"HTTP/1.1 100 Continue\r\n", "A: 1\r\n", "\r\n", "HTTP/1.1 200 OK\r\n", "B: 2\r\n", "\r\n"}),
        "HTTP/1.1 200 OK\r\nB: 2\r\n\r\n");
}

TEST(HttpHeaderBlock, foldedLinesAreUnfolded)
{
    EXPECT_EQ(block({"HTTP/1.1 200 OK\r\n", "A: 1,\r\n", " \t 2\r\n", "\t3\r\n", "\r\n"}),
              "HTTP/1.1 200 OK\r\nA: 1, 2 3\r\n\r\n");
}

TEST(HttpHeaderBlock, linesAfterTheBodyAreNoHeaders)
{
    EXPECT_EQ(block({"HTTP/1.1 200 OK\r\n", "\r\n", "Trailer: 1\r\n", "\r\n"}), "HTTP/1.1 200 OK\r\n\r\n");
}

TEST(HttpHeaderBlock, blockWithoutItsBlankLineIsCut)
{
    EXPECT_EQ(block({"HTTP/1.1 200 OK\r\n", "A: 1\r\n"}), "cut");
    EXPECT_EQ(block({"HTTP/1.1 100 Continue\r\n", "\r\n", "HTTP/1.1 200 OK\r\n"}), "cut");
}

TEST(HttpHeaderBlock, onlyAFinalBlockHasAStatus)
{
    HttpHeaderBlock header;
    EXPECT_EQ(header.status(), 0);
    for (const char* const line : {"HTTP/1.1 199 Wait\r\n", "\r\n"})
        header.addLine(line);
    EXPECT_EQ(header.status(), 0);
    for (const char* const line : {"HTTP/1.1 200 OK\r\n", "\r\n"})
        header.addLine(line);
    EXPECT_EQ(header.status(), 200);
}

TEST(HttpHeaderBlock, bytesOfAllLinesCount)
{
    HttpHeaderBlock header;
    EXPECT_EQ(header.bytes(), 0U);
    for (const char* const line : {"HTTP/1.1 100 Continue\r\n", "\r\n", "HTTP/1.1 200 OK\r\n"})
        header.addLine(line);
    EXPECT_EQ(header.bytes(), 23U + 2U + 17U);
}
