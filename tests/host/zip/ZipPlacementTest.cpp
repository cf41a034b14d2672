#include <cerrno>
#include <cstring>

#include <sys/stat.h>

#include <gmock/gmock.h>

#include "OrvLibrary/host/ZipUtils.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/TempFolder.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(ZipPlacement, anArchiveIsMovedToANameThatNothingHas)
{
    const test::TempFolder folder;
    const fileString source = folder.write("temp/new.zip", "archive");
    EXPECT_TRUE(ZipUtils::moveToNewArchive(source, folder.file("placed.zip"), nullptr));
    EXPECT_THAT(test::listTree(folder.path()), ElementsAre("placed.zip", "temp/"));
    EXPECT_EQ(test::readFile(folder.file("placed.zip")), "archive");
}

TEST(ZipPlacement, anArchiveIsMovedToAnotherDiskToo)
{
    const test::TempFolder folder;
    const test::OtherDevice other;
    if (other.path().empty())
        GTEST_SKIP() << "needs a second disk";
    for (const std::size_t size : {7U, 100'000U}) {
        const fileString source = folder.write("new.zip", std::string(size, 'a'));
        const fileString target(other.path() + "/placed-" + std::to_string(size) + ".zip");
        EXPECT_TRUE(ZipUtils::moveToNewArchive(source, target, nullptr));
        EXPECT_THAT(test::listTree(folder.path()), IsEmpty());
        EXPECT_EQ(test::readFile(target), std::string(size, 'a'));
    }
}

TEST(ZipPlacement, nothingIsReplacedOnEitherDisk)
{
    const test::TempFolder folder;
    const test::OtherDevice other;
    const fileString source = folder.write("new.zip", "archive");
    for (const std::string& where : {folder.path(), other.path()}) {
        if (where.empty())
            continue; // the machine has no second disk
        const fileString target(where + "/taken.zip");
        test::writeFile(target.toNativeString(), "somebody's");
        EXPECT_FALSE(ZipUtils::moveToNewArchive(source, target, nullptr));
        EXPECT_EQ(test::readFile(target), "somebody's");
        EXPECT_EQ(test::readFile(source), "archive");
    }
}

TEST(ZipPlacement, foldersAndUnwritablePlacesAreReported)
{
    const test::TempFolder folder;
    const fileString source = folder.write("new.zip", "archive");
    EXPECT_THAT(
        [&] { ZipUtils::moveToNewArchive(folder.file("none.zip"), folder.file("a.zip"), nullptr); },
        testing::ThrowsMessage<std::runtime_error>(folder.path() + "/none.zip: " + std::strerror(ENOENT)));
    EXPECT_THROW(ZipUtils::moveToNewArchive(fileString(folder.path()), folder.file("a.zip"), nullptr),
                 std::runtime_error);
    EXPECT_THROW(ZipUtils::moveToNewArchive(source, folder.file("missing/a.zip"), nullptr),
                 std::runtime_error);
    EXPECT_EQ(test::readFile(source), "archive");
}

} // namespace
