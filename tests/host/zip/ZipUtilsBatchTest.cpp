// Several walks that are completed together.
#include <stdexcept>

#include "tests/host/zip/RawCopyTest.h"

using test::ArchiveBuilder;
using test::contentsOf;
using test::copyAll;

namespace {

class ZipUtilsBatchTest : public test::RawCopyTest
{
};

} // namespace

TEST_F(ZipUtilsBatchTest, batchCompletesSeveralWalksTogether)
{
    mSource.add("a", "1");
    ArchiveBuilder second;
    second.add("b", "2");
    const fileString source = writeSource();
    const std::string before = test::readFile(ArchiveBuilder().write(mFolder, "target.zip"));
    ZipUtils::ArchiveBatch batch;
    EXPECT_EQ(copyAll(source, target(), false), std::vector<bool>{true});
    EXPECT_EQ(copyAll(second.write(mFolder, "second.zip"), target(), false), std::vector<bool>{true});
    EXPECT_TRUE(ZipUtils::canAddToArchive(target()));
    EXPECT_EQ(test::readFile(target()), before);
    batch.complete();
    EXPECT_EQ(contentsOf(target()), (Contents{{"a", "1"}, {"b", "2"}}));
}

TEST_F(ZipUtilsBatchTest, batchThatIsNotCompletedLeavesEverything)
{
    mSource.add("a", "1");
    const fileString source = writeSource();
    {
        ZipUtils::ArchiveBatch batch;
        batch.begin(target());
        EXPECT_EQ(copyAll(source, target(), false), std::vector<bool>{true});
    }
    EXPECT_EQ(test::listTree(mFolder.path()), std::vector<std::string>{"source.zip"});
}

TEST_F(ZipUtilsBatchTest, batchStartsAnArchiveAnewWhileTheOldOneCanBeWalked)
{
    mSource.add("a", "1");
    mSource.add("b", "2");
    const fileString source = writeSource("target.zip");
    ZipUtils::ArchiveBatch batch;
    batch.begin(source);
    int copied = 0;
    ZipUtils::getFilesDataInArchive(source, [&](const fileString& member, auto& handle, const auto& raw) {
        copied += ZipUtils::writeFileToArchiveRaw(source, member, handle, false, raw) ? 1 : 0;
        return false;
    });
    batch.complete();
    EXPECT_EQ(copied, 1);
    EXPECT_EQ(contentsOf(source), (Contents{{"a", "1"}}));
}

TEST_F(ZipUtilsBatchTest, damageInABatchIsFoundBeforeAnythingTakesItsPlace)
{
    mSource.add("a", test::sampleBytes(9 << 20, 1)).checksum = 1; // enough for threads of its own
    const fileString source = writeSource();
    ZipUtils::ArchiveBatch batch;
    EXPECT_EQ(copyAll(source, target()), std::vector<bool>{true});
    EXPECT_THROW(batch.complete(), std::runtime_error);
    EXPECT_FALSE(target().pathExists());
}

TEST_F(ZipUtilsBatchTest, batchWithAFailedWalkCompletesNothing)
{
    mSource.add("a", "1");
    const fileString source = writeSource();
    ZipUtils::ArchiveBatch batch;
    EXPECT_THROW(ZipUtils::getFilesDataInArchive(
                     source,
                     [&](const fileString& member, auto& handle, const auto& raw) -> bool {
                         EXPECT_TRUE(ZipUtils::writeFileToArchiveRaw(target(), member, handle, true, raw));
                         throw std::domain_error("mine");
                     }),
                 std::domain_error);
    EXPECT_THROW(batch.complete(), std::runtime_error);
    EXPECT_FALSE(target().pathExists());
}

TEST_F(ZipUtilsBatchTest, batchNoticesThatAnArchiveWasReplaced)
{
    mSource.add("a", "1");
    const fileString source = writeSource();
    const ZipUtils::ArchiveBatch batch;
    EXPECT_EQ(ZipUtils::getFilenamesInArchive(source).size(), 1U);
    mSource.add("b", "2");
    writeSource();
    EXPECT_EQ(ZipUtils::getFilenamesInArchive(source).size(), 2U);
}
