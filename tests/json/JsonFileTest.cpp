#include "OrvLibrary/json/json_file.h"

#include <algorithm>
#include <cerrno>
#include <ios>
#include <stdexcept>

#include <dlfcn.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QtGlobal>
#include <gtest/gtest.h>

#include "tests/support/ChildProcess.h"
#include "tests/support/TempFolder.h"

namespace {

/// How many bytes `read` still delivers before it fails; negative if it never fails.
ssize_t gBytesLeft = -1;
/// Whether the file ends there instead.
bool gIsShort = false;

} // namespace

/// Takes precedence over the function of the C library. It is visible, because the stream library calls it.
extern "C" Q_DECL_EXPORT ssize_t read(int file, void* buffer, size_t size)
{
    static auto* const own = reinterpret_cast<decltype(&read)>(dlsym(RTLD_NEXT, "read"));
    if (gBytesLeft < 0)
        return own(file, buffer, size);
    if (gBytesLeft > 0) {
        const ssize_t got = own(file, buffer, std::min(size, static_cast<size_t>(gBytesLeft)));
        gBytesLeft -= got;
        return got;
    }
    errno = EIO;
    return gIsShort ? 0 : -1;
}

TEST(JsonFile, foldersAndDevicesThrow)
{
    const test::TempFolder folder;
    for (const std::string& name : {folder.path(), folder.path() + "/missing", std::string("/dev/zero"),
                                    std::string(), folder.path() + std::string("/a\0b", 4)})
        EXPECT_THROW(json::readFile(fileString(name)), std::runtime_error) << name;
}

TEST(JsonFile, unreadableFileThrows)
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

TEST(JsonFile, fileThatShrinksMeanwhileIsReadToItsNewEnd)
{
    const test::TempFolder folder;
    const fileString path = folder.write("a.json", R"({"first":"1"})" + std::string(200'000, ' '));
    gBytesLeft = 100'000;
    gIsShort = true;
    EXPECT_FALSE(json::readFile(path)->empty());
    gBytesLeft = -1;
    gIsShort = false;
}

TEST(JsonFile, fileThatCannotBeReadToItsEndThrows)
{
    const test::TempFolder folder;
    const fileString path =
        folder.write("a.json", R"({"first":"1","large":")" + std::string(200'000, 'x') + R"(","last":"2"})");
    EXPECT_FALSE(json::readFile(path)->empty());
    for (const ssize_t bytes : {0, 100'000}) {
        gBytesLeft = bytes;
        EXPECT_THROW(json::readFile(path), std::ios_base::failure) << bytes;
        gBytesLeft = -1;
    }
}

TEST(JsonFile, filesOverTheLimitAreNotRead)
{
    const test::TempFolder folder;
    const fileString path = folder.write("a.json", "{}");
    ASSERT_EQ(truncate(path.toNativeString().c_str(), json::kLargestFile), 0);
    EXPECT_TRUE(json::readFile(path)->empty()) << "read, but the rest is no JSON";
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
