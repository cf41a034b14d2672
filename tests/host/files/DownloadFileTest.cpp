#include <cerrno>
#include <cstring>
#include <filesystem>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "OrvLibrary/host/impl/files/DownloadFile_p.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/FileSizeLimit.h"
#include "tests/support/TempFolder.h"

namespace test {

using testing::ElementsAre;

class DownloadFileTest : public testing::Test
{
protected:
    void SetUp() override
    {
        folder.write("a.orvlib", "old");
        ASSERT_TRUE(file.open(reason)) << reason;
    }

    /// How many bytes are on the disk so far.
    std::uintmax_t written() const
    {
        const std::string target = folder.file("a.orvlib").toNativeString();
        return std::filesystem::file_size(host::ReplacementFile::besideName(target));
    }

    TempFolder folder;
    host::DownloadFile file{folder.file("a.orvlib")};
    std::string reason;
    const std::string piece = std::string(16 * 1024, 'x');
};

TEST_F(DownloadFileTest, piecesReachTheDiskTogether)
{
    std::string content;
    for (int i = 0; i < 16; ++i, content += piece)
        ASSERT_TRUE(file.write(piece.data(), piece.size(), reason));
    EXPECT_EQ(written(), 0u);
    EXPECT_EQ(file.size(), 256 * 1024);
    ASSERT_TRUE(file.write("end", 3, reason));
    EXPECT_EQ(written(), 256u * 1024);
    EXPECT_EQ(readFile(folder.file("a.orvlib")), "old");
    ASSERT_TRUE(file.commit(reason));
    EXPECT_EQ(readFile(folder.file("a.orvlib")), content + "end");
}

TEST_F(DownloadFileTest, onePieceMayBeLargerThanWhatIsGathered)
{
    const std::string large(3'000'000, 'y');
    ASSERT_TRUE(file.write("begin ", 6, reason));
    ASSERT_TRUE(file.write(large.data(), large.size(), reason));
    ASSERT_TRUE(file.commit(reason));
    EXPECT_EQ(readFile(folder.file("a.orvlib")), "begin " + large);
}

TEST_F(DownloadFileTest, remainingBytesAreOnTheirWayToTheDisk)
{
    ASSERT_TRUE(file.write("new", 3, reason));
    file.restAtEnd();
    EXPECT_EQ(written(), 3u);
    ASSERT_TRUE(file.commit(reason));
    EXPECT_EQ(readFile(folder.file("a.orvlib")), "new");
}

TEST_F(DownloadFileTest, emptyOneTakesTheTargetsName)
{
    file.restAtEnd();
    ASSERT_TRUE(file.commit(reason));
    EXPECT_EQ(readFile(folder.file("a.orvlib")), "");
}

TEST_F(DownloadFileTest, failureOfTheDiskIsReportedByALaterWrite)
{
    const FileSizeLimit limit(100'000);
    int taken = 0;
    while (taken < 100 && file.write(piece.data(), piece.size(), reason))
        ++taken;
    EXPECT_EQ(taken, 16);
    EXPECT_EQ(reason, std::string("write error: ") + std::strerror(EFBIG));
}

TEST(DownloadFile, lastWriteThatFailsFailsTheCommitAndKeepsTheOldFile)
{
    TempFolder folder;
    folder.write("a.orvlib", "old");
    {
        const FileSizeLimit limit(100'000);
        host::DownloadFile file(folder.file("a.orvlib"));
        std::string reason;
        const std::string content(200'000, 'x');
        ASSERT_TRUE(file.open(reason)) << reason;
        ASSERT_TRUE(file.write(content.data(), content.size(), reason));
        file.restAtEnd();
        EXPECT_FALSE(file.commit(reason));
        EXPECT_EQ(reason, std::string("write error: ") + std::strerror(EFBIG));
    }
    EXPECT_EQ(readFile(folder.file("a.orvlib")), "old");
    EXPECT_THAT(listTree(folder.path()), ElementsAre("a.orvlib"));
}

TEST_F(DownloadFileTest, spaceOfTheDiskIsKnownWhileTheFileIsOpen)
{
    constexpr std::int64_t kMoreThanAnyDisk = std::int64_t{1} << 60;
    const host::SizeLimit limit = file.limit(kMoreThanAnyDisk, {0, 20, 0});
    EXPECT_FALSE(limit.allows(kMoreThanAnyDisk));
    EXPECT_THAT(limit.reason(1), testing::MatchesRegex("disk full: 1 bytes needed, [0-9]+ [A-Za-z]+ free, "
                                                       "0 bytes kept free"));
    const host::DownloadFile closed(folder.file("b.orvlib"));
    EXPECT_TRUE(closed.limit(kMoreThanAnyDisk, {}).allows(kMoreThanAnyDisk));
}

TEST_F(DownloadFileTest, readingEndsWhenTheTakerSaysSo)
{
    const std::string large(600'000, 'y');
    ASSERT_TRUE(file.write(large.data(), large.size(), reason));
    file.restAtEnd();
    int pieces = 0;
    const auto takeUntil = [&](int last) {
        pieces = 0;
        return file.read([&](const char*, std::size_t) { return ++pieces < last; }, reason);
    };
    EXPECT_FALSE(takeUntil(2));
    EXPECT_EQ(pieces, 2);
    EXPECT_TRUE(takeUntil(4));
    EXPECT_EQ(pieces, 3);
    EXPECT_EQ(reason, "");
}

TEST(DownloadFile, earlierErrorDoesNotKeepItFromGoingOn)
{
    const TempFolder folder;
    const fileString partial = folder.write("partial", "half");
    const fileString target = folder.file("a.orvlib");
    std::string reason;
    host::DownloadFile file(target, partial);
    errno = EIO;
    EXPECT_TRUE(file.resume(reason));
    EXPECT_EQ(reason, "");
    EXPECT_EQ(file.size(), 4);
    host::DownloadFile withoutPartial(target);
    errno = EIO;
    EXPECT_TRUE(withoutPartial.resume(reason));
    EXPECT_EQ(reason, "");
    EXPECT_FALSE(withoutPartial.isOpen());
}

TEST(DownloadFile, partialFileOnAnotherDiskLeavesItsPlaceForTheTarget)
{
    const OtherDevice other;
    if (other.path().empty())
        GTEST_SKIP() << "needs a second disk";
    const TempFolder folder;
    const fileString partial(other.path() + "/partial");
    host::DownloadFile file(folder.file("a.orvlib"), partial);
    std::string reason;
    ASSERT_TRUE(file.open(reason)) << reason;
    ASSERT_TRUE(file.write("whole", 5, reason));
    EXPECT_TRUE(file.commit(reason)) << reason;
    EXPECT_EQ(readFile(folder.file("a.orvlib")), "whole");
    EXPECT_FALSE(partial.pathExists());
}

} // namespace test
