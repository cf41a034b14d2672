#include "OrvLibrary/host/impl/http/AheadList_p.h"

#include <memory>

#include <gmock/gmock.h>

#include "OrvLibrary/host/impl/http/AheadPolicy_p.h"
#include "tests/support/TempFolder.h"

namespace {

class AheadListTest : public testing::Test
{
protected:
    /// A body that is fetched ahead and was announced with this size.
    std::unique_ptr<FileBody> bodyOf(std::int64_t size) const
    {
        return std::make_unique<FileBody>(AheadPolicy::limitsAhead(mLimits, size), mFolder.file("a.orvlib"));
    }

    test::TempFolder mFolder;
    HttpLimits mLimits;
};

TEST_F(AheadListTest, takesNoMoreThanWasAnnouncedUntilItsTurn)
{
    const auto body = bodyOf(10);
    ASSERT_TRUE(body->begin(200, ""));
    EXPECT_TRUE(body->receive("0123456789", 10));
    EXPECT_FALSE(body->receive("a", 1));
    EXPECT_EQ(body->failure().reason, "file too large");
    body->beginTurn(mLimits, nullptr, nullptr);
    EXPECT_TRUE(body->receive("a", 1));
}

TEST_F(AheadListTest, takesNoMoreThanAnyFileMayHave)
{
    mLimits.fileBytes = 5;
    const auto body = bodyOf(10);
    ASSERT_TRUE(body->begin(200, ""));
    EXPECT_TRUE(body->receive("01234", 5));
    EXPECT_FALSE(body->receive("a", 1));
}

TEST_F(AheadListTest, leavesRoomOnTheDiskForAllOthersThatAreAhead)
{
    constexpr std::int64_t kMoreThanAnyDisk = std::int64_t{1} << 60;
    mLimits.fileBytes = kMoreThanAnyDisk;
    mLimits.spare.bytes = 0;
    const auto body = bodyOf(kMoreThanAnyDisk);
    EXPECT_FALSE(body->begin(200, "Content-Length: " + std::to_string(kMoreThanAnyDisk - 1) + "\r\n"));
    EXPECT_THAT(body->failure().reason, testing::EndsWith(" free, 64 MB kept free"));
}

} // namespace
