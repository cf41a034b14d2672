#include "OrvLibrary/host/impl/zip/ZipExtraction_p.h"

#include <cerrno>
#include <filesystem>
#include <ios>

#include <gmock/gmock.h>

#include "tests/host/zip/FaultySystem.h"
#include "tests/host/zip/RawCopyTest.h"
#include "tests/support/RecordingProgress.h"

namespace fs = std::filesystem;
using test::FaultySystem;
using ZipUtils::ArchiveBatch;

namespace {

/// Extracts members that are so large that each gets a thread.
class ZipExtractionTest : public test::RawCopyTest
{
protected:
    static constexpr std::size_t kLarge = 9U << 20U;

    fileString file() const { return mFolder.file("file"); }

    /// Extracts all members of the archive to one file.
    std::vector<bool> extractAll(const fileString& source, ArchiveBatch& batch) const
    {
        std::vector<bool> results;
        batch.walk(source, [&](const fileString&, auto& handle, const auto& raw) {
            results.push_back(ZipUtils::extractFileFromArchive(file(), handle, raw));
            return true;
        });
        return results;
    }

    /// The system's reason why extracting fails; 0 if it succeeds.
    int reasonFor(const fileString& source) const
    {
        try {
            ArchiveBatch batch(nullptr);
            extractAll(source, batch);
            batch.complete();
            return 0;
        } catch (const std::ios_base::failure& failure) {
            return failure.code().value();
        }
    }

    const std::string mContent = std::string(kLarge, 'x');
};

} // namespace

TEST_F(ZipExtractionTest, lastOfSeveralLargeMembersStays)
{
    mSource.add("a", std::string(kLarge + 1, 'y'));
    mSource.add("b", mContent);
    ArchiveBatch batch(nullptr);
    EXPECT_EQ(extractAll(writeSource(), batch), (std::vector<bool>{true, true}));
    batch.complete();
    EXPECT_TRUE(test::readFile(file()) == mContent);
}

TEST_F(ZipExtractionTest, worksWhereSpaceCannotBeReserved)
{
    mSource.add("a", mContent);
    const fileString source = writeSource();
    const FaultySystem system(FaultySystem::Call::Fallocate, EOPNOTSUPP);
    EXPECT_EQ(reasonFor(source), 0);
    EXPECT_TRUE(test::readFile(file()) == mContent);
}

TEST_F(ZipExtractionTest, diskWithoutRoomForTheFileLeavesTheOldOne)
{
    mSource.add("a", mContent);
    const fileString source = writeSource();
    mFolder.write("file", "old");
    const FaultySystem system(FaultySystem::Call::Fallocate, ENOSPC);
    EXPECT_EQ(reasonFor(source), ENOSPC);
    EXPECT_EQ(test::readFile(file()), "old");
    EXPECT_EQ(test::listTree(mFolder.path()), (std::vector<std::string>{"file", "source.zip"}));
}

TEST_F(ZipExtractionTest, diskThatFailsToWriteLeavesTheOldFile)
{
    mSource.add("a", mContent);
    const fileString source = writeSource();
    mFolder.write("file", "old");
    for (const int reason : {EIO, ENOSPC}) {
        const FaultySystem system(FaultySystem::Call::SyncFileRange, reason);
        EXPECT_EQ(reasonFor(source), reason);
        EXPECT_EQ(test::readFile(file()), "old");
    }
    // A file system that cannot sync in portions syncs the whole file at the end.
    const FaultySystem system(FaultySystem::Call::SyncFileRange, ENOSYS);
    EXPECT_EQ(reasonFor(source), 0);
    EXPECT_TRUE(test::readFile(file()) == mContent);
}

TEST_F(ZipExtractionTest, cancelIsHeardWhileTheDiskWrites)
{
    mSource.add("a", mContent);
    const auto progress = std::make_shared<test::RecordingProgress>();
    ArchiveBatch batch(progress);
    extractAll(writeSource(), batch);
    const int before = progress->checks();
    progress->isCancelled = [](int) { return true; };
    EXPECT_THROW(batch.complete(), ZipUtils::Cancelled);
    EXPECT_EQ(progress->checks(), before + 1);
    EXPECT_FALSE(file().pathExists());
}

TEST_F(ZipExtractionTest, fileThatWasRefusedStaysRefused)
{
    mSource.add("a", "1");
    mSource.add("b", "2");
    const fileString source = writeSource();
    fs::permissions(mFolder.write("file", "old").toNativeString(), fs::perms::owner_read);
    ArchiveBatch batch(nullptr);
    EXPECT_EQ(extractAll(source, batch), (std::vector<bool>{false, false}));
    batch.complete();
    EXPECT_EQ(test::readFile(file()), "old");
}
