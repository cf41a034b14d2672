#include "OrvLibrary/host/impl/zip/ZipExtraction_p.h"

#include <atomic>
#include <cerrno>
#include <filesystem>
#include <future>
#include <ios>
#include <utility>

#include <gmock/gmock.h>

#include "tests/host/zip/FaultySystem.h"
#include "tests/host/zip/RawCopyTest.h"
#include "tests/support/NoMoreThreads.h"
#include "tests/support/RecordingProgress.h"

namespace fs = std::filesystem;
using test::FaultySystem;
using testing::Contains;
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

TEST_F(ZipExtractionTest, fileThatWasRefusedStaysRefusedForTheWalk)
{
    mSource.add("a", "1");
    mSource.add("b", "2");
    const fileString source = writeSource();
    const std::string old = mFolder.write("file", "old").toNativeString();
    fs::permissions(old, fs::perms::owner_read);
    ZipUtils::getFilesDataInArchive(source, [&](const fileString&, auto& handle, const auto& raw) {
        EXPECT_FALSE(ZipUtils::extractFileFromArchive(file(), handle, raw));
        EXPECT_TRUE(ZipUtils::isRefused(file(), handle));
        fs::permissions(old, fs::perms::owner_read | fs::perms::owner_write);
        return true;
    });
    EXPECT_EQ(test::readFile(file()), "old");
}

TEST_F(ZipExtractionTest, nextMemberWaitsForTheLargeOneBefore)
{
    mSource.add("a", std::string(kLarge + 1, 'y'));
    mSource.add("b", mContent);
    const auto archive = std::make_shared<ZipUtils::ZipArchive>(writeSource());
    const auto progress = std::make_shared<test::RecordingProgress>();
    ZipUtils::ZipMeter meter(progress);
    ZipUtils::ZipPatience patience(meter);
    const auto extraction = ZipUtils::ZipExtraction::begin(file(), patience, meter);
    for (const ZipUtils::ZipEntry& entry : archive->entries())
        extraction->extract(archive, entry);
    extraction->finish();
    EXPECT_EQ(extraction->waiting(), 0U);
    extraction->sync();
    extraction->publish();
    EXPECT_TRUE(test::readFile(file()) == mContent);
    meter.tellAll();
    EXPECT_EQ(progress->sumOfBytes(), 2 * kLarge + 1);
}

TEST_F(ZipExtractionTest, emptyMemberMakesAnEmptyFile)
{
    mSource.add("a", "1");
    mSource.add("b", "");
    EXPECT_EQ(reasonFor(writeSource()), 0);
    EXPECT_EQ(test::readFile(file()), "");
}

TEST_F(ZipExtractionTest, writesThatAreInterruptedOrCutShortGoOn)
{
    mSource.add("a", test::sampleBytes(30'000, 1));
    const fileString source = writeSource();
    const FaultySystem system(FaultySystem::Call::Pwrite);
    EXPECT_EQ(reasonFor(source), 0);
    EXPECT_EQ(test::readFile(file()), test::sampleBytes(30'000, 1));
}

TEST_F(ZipExtractionTest, failedWriteIsReportedWithTheSystemsReason)
{
    mSource.add("a", "1");
    const fileString source = writeSource();
    const FaultySystem system(FaultySystem::Call::Pwrite, EIO);
    EXPECT_EQ(reasonFor(source), EIO);
}

TEST_F(ZipExtractionTest, cancelIsHeardWhileAThreadExtracts)
{
    mSource.add("a", mContent);
    const fileString source = writeSource();
    const auto progress = std::make_shared<test::RecordingProgress>();
    std::promise<void> asked;
    std::atomic<bool> isLate{false};
    progress->isCancelled = [&](int check) {
        if (check == 1)
            asked.set_value();
        return true;
    };
    std::unique_ptr<FaultySystem> system;
    ArchiveBatch batch(progress);
    const auto extract = [&](const fileString&, auto& handle, const auto& raw) {
        system =
            std::make_unique<FaultySystem>(FaultySystem::Call::Pread, [&, done = asked.get_future().share()] {
                isLate = done.wait_for(std::chrono::seconds(10)) != std::future_status::ready;
            });
        return ZipUtils::extractFileFromArchive(file(), handle, raw);
    };
    EXPECT_THROW(batch.walk(source, extract), ZipUtils::Cancelled);
    EXPECT_FALSE(isLate) << "the question came only after the extraction";
    EXPECT_THAT(progress->calls(), Contains("labels checking | "));
    EXPECT_FALSE(file().pathExists());
}

TEST_F(ZipExtractionTest, longStepsAfterTheLastMemberAreNamed)
{
    mSource.add("a", mContent);
    const auto progress = std::make_shared<test::RecordingProgress>();
    ArchiveBatch batch(progress);
    extractAll(writeSource(), batch);
    batch.complete();
    EXPECT_THAT(progress->calls(), Contains("labels putting in place | "));
}

TEST_F(ZipExtractionTest, bytesAreReportedWhileAThreadExtracts)
{
    mSource.add("a", std::string(12U << 20U, 'x')).method = test::ArchiveMember::kStored;
    const fileString source = writeSource();
    const auto progress = std::make_shared<test::RecordingProgress>();
    std::promise<void> told;
    std::atomic<int> reads{0};
    std::atomic<bool> isLate{false};
    progress->isCancelled = [&, isFirst = true](int) mutable {
        if (!progress->bytes().empty() && std::exchange(isFirst, false))
            told.set_value();
        return false;
    };
    std::unique_ptr<FaultySystem> system;
    ArchiveBatch batch(progress);
    const auto extract = [&](const fileString&, auto& handle, const auto& raw) {
        // A read is a megabyte. The tenth waits until the first eight are told.
        system =
            std::make_unique<FaultySystem>(FaultySystem::Call::Pread, [&, done = told.get_future().share()] {
                if (++reads == 10)
                    isLate = done.wait_for(std::chrono::seconds(10)) != std::future_status::ready;
            });
        return ZipUtils::extractFileFromArchive(file(), handle, raw);
    };
    batch.walk(source, extract);
    EXPECT_FALSE(isLate) << "nothing was told before the end";
    EXPECT_EQ(progress->sumOfBytes(), 12U << 20U);
}

TEST_F(ZipExtractionTest, largeMemberIsExtractedWhereNoThreadCanBeStarted)
{
    const test::NoMoreThreads none;
    mSource.add("a", mContent);
    EXPECT_EQ(reasonFor(writeSource()), 0);
    EXPECT_TRUE(test::readFile(file()) == mContent);
}

TEST_F(ZipExtractionTest, walkThatFailsRemovesItsFilesAtOnce)
{
    mSource.add("a", "1");
    mSource.add("b", "2").checksum = 1;
    const fileString source = writeSource();
    ArchiveBatch batch(nullptr);
    EXPECT_THROW(extractAll(source, batch), std::runtime_error);
    EXPECT_EQ(test::listTree(mFolder.path()), std::vector<std::string>{"source.zip"});
}

TEST_F(ZipExtractionTest, unusablePlaceIsReportedWithTheSystemsReason)
{
    mSource.add("a", "1");
    const fileString source = writeSource();
    const std::pair<fileString, int> targets[] = {{fileString(mFolder.path()), EISDIR},
                                                  {mFolder.file("no/such/file"), ENOENT},
                                                  {fileString("/dev/null"), EACCES}};
    for (const auto& [path, reason] : targets) {
        try {
            ZipUtils::getFilesDataInArchive(source,
                                            [&, to = path](const fileString&, auto& handle, const auto& raw) {
                                                return ZipUtils::extractFileFromArchive(to, handle, raw);
                                            });
            ADD_FAILURE() << "nothing is thrown for " << path;
        } catch (const std::ios_base::failure& failure) {
            EXPECT_EQ(failure.code().value(), reason) << path;
        }
    }
}

TEST_F(ZipExtractionTest, fileInAFolderThatCannotBeChangedIsRefused)
{
    mSource.add("a", "1");
    const fileString source = writeSource();
    mFolder.write("file", "old");
    for (const int reason : {EPERM, EROFS}) {
        const FaultySystem system(FaultySystem::Call::Create, reason);
        ArchiveBatch batch(nullptr);
        EXPECT_EQ(extractAll(source, batch), std::vector<bool>{false});
    }
    const FaultySystem full(FaultySystem::Call::Create, ENOSPC);
    EXPECT_EQ(reasonFor(source), ENOSPC);
    EXPECT_EQ(test::readFile(file()), "old");
}

TEST_F(ZipExtractionTest, placeThatIsTakenMeanwhileFailsTheBatch)
{
    mSource.add("a", "1");
    ArchiveBatch batch(nullptr);
    extractAll(writeSource(), batch);
    fs::create_directory(file().toNativeString());
    EXPECT_THROW(batch.complete(), std::ios_base::failure);
}

TEST_F(ZipExtractionTest, encryptedMemberIsNotExtracted)
{
    mSource.add("a", "secret").flags = 1;
    const fileString source = writeSource();
    ArchiveBatch batch(nullptr);
    EXPECT_THAT([&] { extractAll(source, batch); },
                testing::ThrowsMessage<std::runtime_error>(testing::EndsWith("\"a\": is encrypted")));
}
