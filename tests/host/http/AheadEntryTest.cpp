#include "OrvLibrary/host/impl/http/AheadEntry_p.h"

#include <gmock/gmock.h>

#include "tests/support/TempFolder.h"

namespace {

class AheadEntryTest : public testing::Test
{
protected:
    AheadRequest asked(std::int64_t size) const { return {{}, mFolder.file("a.orvlib"), size}; }

    test::TempFolder mFolder;
    HttpLimits mLimits;
};

TEST_F(AheadEntryTest, takesNoMoreThanWasAnnouncedUntilItsTurn)
{
    BodyAhead body(mLimits, asked(10));
    ASSERT_TRUE(body.file().begin(200, ""));
    EXPECT_TRUE(body.file().take("0123456789", 10));
    EXPECT_FALSE(body.file().take("a", 1));
    EXPECT_EQ(body.file().failure().reason, "file too large");
    body.beginTurn(mLimits, nullptr, nullptr);
    EXPECT_TRUE(body.file().take("a", 1));
}

TEST_F(AheadEntryTest, takesNoMoreThanAnyFileMayHave)
{
    mLimits.fileBytes = 5;
    BodyAhead body(mLimits, asked(10));
    ASSERT_TRUE(body.file().begin(200, ""));
    EXPECT_TRUE(body.file().take("01234", 5));
    EXPECT_FALSE(body.file().take("a", 1));
}

TEST_F(AheadEntryTest, leavesRoomOnTheDiskForAllOthersThatAreAhead)
{
    constexpr std::int64_t kMoreThanAnyDisk = std::int64_t{1} << 60;
    mLimits.fileBytes = kMoreThanAnyDisk;
    mLimits.spareBytes = 0;
    BodyAhead body(mLimits, asked(kMoreThanAnyDisk));
    EXPECT_FALSE(body.file().begin(200, "Content-Length: " + std::to_string(kMoreThanAnyDisk - 1) + "\r\n"));
    EXPECT_THAT(body.file().failure().reason, testing::EndsWith(" free, 64 MB kept free"));
}

} // namespace
