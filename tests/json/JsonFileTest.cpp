#include "OrvLibrary/json/json_file.h"

#include <stdexcept>

#include <sys/stat.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "tests/support/ChildProcess.h"
#include "tests/support/TempFolder.h"

TEST(JsonFile, whatIsNoRegularFileThrows)
{
    const test::TempFolder folder;
    for (const std::string& name : {folder.path(), folder.path() + "/missing", std::string("/dev/zero"),
                                    std::string(), folder.path() + std::string("/a\0b", 4)})
        EXPECT_THROW(json::readFile(fileString(name)), std::runtime_error) << name;
}

TEST(JsonFile, whatMayNotBeReadThrows)
{
    const test::TempFolder folder;
    const fileString path = folder.write("a.json", "{}");
    ASSERT_EQ(chmod(folder.path().c_str(), 0755), 0);
    ASSERT_EQ(chmod(path.toNativeString().c_str(), 0), 0);
    const auto end = test::runWithoutRights([&] {
        try {
            json::readFile(path);
        } catch (const std::runtime_error& error) {
            return error.what() == "cannot open " + path.toNativeString() ? 0 : 1;
        }
        return 2;
    });
    EXPECT_EQ(end.status, 0);
}

TEST(JsonFile, filesOverTheLimitAreNotRead)
{
    const test::TempFolder folder;
    const fileString path = folder.write("a.json", "{}");
    ASSERT_EQ(truncate(path.toNativeString().c_str(), json::kLargestFile + 1), 0);
    EXPECT_THROW(json::readFile(path), std::runtime_error);
}

TEST(JsonFile, emptyAndForeignFilesHoldNothing)
{
    const test::TempFolder folder;
    EXPECT_TRUE(json::readFile(folder.write("empty", ""))->empty());
    EXPECT_TRUE(json::readFile(folder.write("page", "<html>not found</html>"))->empty());
    EXPECT_TRUE(json::readFile(folder.write("array", "[1]"))->empty());
}
