#include "OrvHost/update/CatalogSwapper.h"

#include <gmock/gmock.h>

#include "tests/orv-host/HostedTest.h"

using CatalogSwapperTest = test::HostedTest;

TEST_F(CatalogSwapperTest, failedSwapLosesItsHashLineAfterwards)
{
    folder.write("root/core/Doors.orvlib/in the way", "x");
    folder.write("root/core/catalog_hash.txt", "Doors.orvlib:new\nRoofs.orvlib:same\n");
    OrvHost::CatalogSwapper swapper;
    EXPECT_FALSE(swapper.swapIn(folder.file("root/core/Doors.orvlib"), folder.write("new", "content")));
    EXPECT_TRUE(swapper.swapIn(folder.file("root/core/Roofs.orvlib"), folder.write("roofs", "content")));
    EXPECT_THAT(swapper.failed(), testing::ElementsAre(folder.file("root/core/Doors.orvlib")));
    EXPECT_TRUE(swapper.forgetFailed().empty());
    EXPECT_EQ("Roofs.orvlib:same\n", test::readFile(folder.file("root/core/catalog_hash.txt")));
}

TEST_F(CatalogSwapperTest, recoveryKeepsATagThatIsNoChecksumOfTheFormerCatalog)
{
    const std::string former(40, 'a');
    folder.write("root/core/catalog_hash.txt", "Doors.orvlib:v17\nRoofs.orvlib:" + former + "\n");
    folder.write("root/temp/orv-library.downloads.core/Doors.orvlib", "new");
    folder.write("root/temp/orv-library.downloads.core/Roofs.orvlib", "new");
    OrvHost::CatalogSwapper swapper;
    swapper.recover();
    EXPECT_EQ(2U, swapper.swappedIn().size());
    EXPECT_EQ("Doors.orvlib:v17\n", test::readFile(folder.file("root/core/catalog_hash.txt")));
}
