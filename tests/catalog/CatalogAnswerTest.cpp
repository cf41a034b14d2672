#include "OrvLibrary/catalog/CatalogAnswer_p.h"

#include <gtest/gtest.h>

using LibraryCatalogUpdate::CatalogUpdateData;

namespace {

CatalogUpdateData answered(const std::string& headerText, std::int64_t status = 200)
{
    CatalogUpdateData record;
    record.serverETag = "former";
    record.contentLength = 7;
    LibraryCatalogUpdate::readAnswer(headerText, status, record);
    return record;
}

} // namespace

TEST(CatalogAnswer, takesStatusTagAndLength)
{
    const CatalogUpdateData record =
        answered("HTTP/1.1 200 OK\r\netag: W/\"abc\"\r\nCONTENT-LENGTH: 123\r\n\r\n", 200);
    EXPECT_EQ(record.responseStatus, 200);
    EXPECT_EQ(record.serverETag, "abc");
    EXPECT_EQ(record.contentLength, 123U);
}

TEST(CatalogAnswer, valuesThatTheAnswerLacksStay)
{
    const CatalogUpdateData record = answered("HTTP/1.1 304 Not Modified\r\n\r\n", 304);
    EXPECT_EQ(record.responseStatus, 304);
    EXPECT_EQ(record.serverETag, "former");
    EXPECT_EQ(record.contentLength, 7U);
}

TEST(CatalogAnswer, aTagWithoutAValueIsEmptyAndALengthWithoutOneIsNone)
{
    const CatalogUpdateData record = answered("ETag:\r\nContent-Length:\r\n");
    EXPECT_EQ(record.serverETag, "");
    EXPECT_EQ(record.contentLength, 7U);
}

TEST(CatalogAnswer, aLengthThatIsNoNumberIsWhatStreamExtractionLeaves)
{
    const struct
    {
        const char* value;
        std::uint64_t length;
    } rows[] = {{"none", 0},
                {"12 bytes", 12},
                {"0x10", 0},
                {"+5", 5},
                {"-1", 18446744073709551615U},
                {"18446744073709551615", 18446744073709551615U},
                {"18446744073709551616", 18446744073709551615U}};
    for (const auto& row : rows)
        EXPECT_EQ(answered(std::string("Content-Length: ") + row.value + "\r\n").contentLength, row.length)
            << row.value;
}
