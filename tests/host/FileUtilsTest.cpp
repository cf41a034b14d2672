#include "OrvLibrary/host/FileUtils.h"

#include <gtest/gtest.h>

#include "tests/support/TempFolder.h"

namespace {

class FileUtilsTest : public testing::Test
{
protected:
    test::TempFolder mFolder;
};

TEST_F(FileUtilsTest, fileSizeIsBelowOneForEmptyAndMissing)
{
    EXPECT_EQ(FileUtils::fileSize(mFolder.write("five", "12345")), 5);
    EXPECT_EQ(FileUtils::fileSize(mFolder.write("empty", "")), 0);
    EXPECT_EQ(FileUtils::fileSize(mFolder.file("none")), -1);
    EXPECT_EQ(FileUtils::fileSize(fileString(mFolder.path())), -1);
}

TEST_F(FileUtilsTest, copyKeepsTheSourceAndRefusesAnExistingTargetUnlessTold)
{
    const fileString from = mFolder.write("from", "content");
    const fileString to = mFolder.file("to");
    EXPECT_TRUE(FileUtils::copyFile(from, to, false));
    EXPECT_EQ(test::readFile(to), "content");
    test::writeFile(from.toNativeString(), "other");
    EXPECT_FALSE(FileUtils::copyFile(from, to, false));
    EXPECT_EQ(test::readFile(to), "content");
    EXPECT_TRUE(FileUtils::copyFile(from, to, true));
    EXPECT_EQ(test::readFile(to), "other");
    EXPECT_EQ(test::readFile(from), "other");
    EXPECT_EQ(test::listTree(mFolder.path()), (std::vector<std::string>{"from", "to"}));
}

TEST_F(FileUtilsTest, moveAndRenameReplaceAnExistingTarget)
{
    const fileString target = mFolder.write("to", "old");
    EXPECT_TRUE(FileUtils::moveFile(mFolder.write("a", "first"), target, false));
    EXPECT_EQ(test::readFile(target), "first");
    EXPECT_TRUE(FileUtils::renameFile(mFolder.write("b", "second"), target));
    EXPECT_EQ(test::readFile(target), "second");
    EXPECT_EQ(test::listTree(mFolder.path()), std::vector<std::string>{"to"});
}

} // namespace
