#include "OrvLibrary/host/FileReaper.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "tests/support/TempFolder.h"

namespace {

using Names = std::vector<std::string>;

TEST(FileReaper, deletesTheFileAtTheEndOfTheBlock)
{
    const test::TempFolder folder;
    const fileString file = folder.write("file", "x");
    ASSERT_EQ(chmod(file.toNativeString().c_str(), 0444), 0);
    {
        const FileReaper reaper(file);
        EXPECT_TRUE(file.pathExists());
    }
    EXPECT_EQ(test::listTree(folder.path()), Names{});
}

TEST(FileReaper, deletesWhenAnExceptionPasses)
{
    const test::TempFolder folder;
    const fileString file = folder.write("file", "x");
    EXPECT_THROW(
        {
            const FileReaper reaper(file);
            throw 1;
        },
        int);
    EXPECT_FALSE(file.pathExists());
}

TEST(FileReaper, keepsTheFileWhenCancelled)
{
    const test::TempFolder folder;
    const fileString file = folder.write("file", "x");
    {
        FileReaper reaper(file);
        reaper.cancel();
    }
    EXPECT_TRUE(file.pathExists());
}

TEST(FileReaper, doesNotMindAMissingFileAndLeavesAFolder)
{
    const test::TempFolder folder;
    folder.write("folder/file", "x");
    {
        const FileReaper missing(folder.file("none"));
        const FileReaper empty{fileString()};
        const FileReaper notAFile(folder.file("folder"));
    }
    EXPECT_EQ(test::listTree(folder.path()), (Names{"folder/", "folder/file"}));
}

} // namespace
