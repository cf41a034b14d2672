// A batch completes several walks together, reports progress, and can be cancelled.
#include <stdexcept>

#include <gmock/gmock.h>
#include <sys/stat.h>

#include "OrvLibrary/host/FileUtils.h"
#include "tests/host/zip/RawCopyTest.h"
#include "tests/support/RecordingProgress.h"

using test::ArchiveBuilder;
using test::ArchiveMember;
using test::contentsOf;
using test::copyAll;
using test::RecordingProgress;
using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::Le;
using testing::Not;
using ZipUtils::ArchiveBatch;

namespace {

constexpr std::uint64_t kPortion = 8U << 20U;

class ZipUtilsBatchTest : public test::RawCopyTest
{
protected:
    static std::vector<bool> copyWith(ArchiveBatch& batch, const fileString& source, const fileString& target,
                                      bool create = false)
    {
        std::vector<bool> results;
        batch.walk(source, [&](const fileString& member, auto& handle, const auto& raw) {
            results.push_back(ZipUtils::writeFileToArchiveRaw(target, member, handle, create, raw));
            return true;
        });
        return results;
    }

    /// An archive of `count` members of 3 MB, alternately stored and deflated, and one member that is larger
    /// than a portion.
    fileString writeLargeSource(int count)
    {
        for (int i = 0; i < count; ++i)
            mSource.add("m" + std::to_string(i), test::sampleBytes(3 << 20, static_cast<unsigned>(i)))
                .method = i % 2 == 0 ? ArchiveMember::kStored : ArchiveMember::kDeflated;
        mSource.add("large", test::sampleBytes(20 << 20, 99)).method = ArchiveMember::kStored;
        return writeSource();
    }

    std::shared_ptr<RecordingProgress> mProgress = std::make_shared<RecordingProgress>();
};

} // namespace

TEST_F(ZipUtilsBatchTest, batchCompletesSeveralWalksTogether)
{
    mSource.add("a", "1");
    ArchiveBuilder second;
    second.add("b", "2");
    const fileString source = writeSource();
    const std::string before = test::readFile(ArchiveBuilder().write(mFolder, "target.zip"));
    ArchiveBatch batch(nullptr);
    EXPECT_EQ(copyWith(batch, source, target()), std::vector<bool>{true});
    EXPECT_EQ(copyWith(batch, second.write(mFolder, "second.zip"), target()), std::vector<bool>{true});
    EXPECT_EQ(test::readFile(target()), before);
    batch.complete();
    EXPECT_EQ(contentsOf(target()), (Contents{{"a", "1"}, {"b", "2"}}));
}

TEST_F(ZipUtilsBatchTest, batchThatIsNotCompletedLeavesEverything)
{
    mSource.add("a", "1");
    const fileString source = writeSource();
    {
        ArchiveBatch batch(nullptr);
        batch.begin(target());
        EXPECT_EQ(copyWith(batch, source, target()), std::vector<bool>{true});
    }
    EXPECT_EQ(test::listTree(mFolder.path()), std::vector<std::string>{"source.zip"});
}

TEST_F(ZipUtilsBatchTest, batchStartsAnArchiveAnewWhileTheOldOneCanBeWalked)
{
    mSource.add("a", "1");
    mSource.add("b", "2");
    const fileString source = writeSource("target.zip");
    ArchiveBatch batch(nullptr);
    batch.begin(source);
    int copied = 0;
    batch.walk(source, [&](const fileString& member, auto& handle, const auto& raw) {
        copied += ZipUtils::writeFileToArchiveRaw(source, member, handle, false, raw) ? 1 : 0;
        return false;
    });
    batch.complete();
    EXPECT_EQ(copied, 1);
    EXPECT_EQ(contentsOf(source), (Contents{{"a", "1"}}));
}

TEST_F(ZipUtilsBatchTest, archiveThatWasRefusedCanBeStartedAnew)
{
    mSource.add("a", "1");
    const fileString source = writeSource();
    const std::string file = ArchiveBuilder().write(mFolder, "target.zip").toNativeString();
    ASSERT_EQ(chmod(file.c_str(), 0444), 0);
    ArchiveBatch batch(nullptr);
    EXPECT_EQ(copyWith(batch, source, target()), std::vector<bool>{false});
    ASSERT_EQ(chmod(file.c_str(), 0644), 0);
    EXPECT_EQ(copyWith(batch, source, target()), std::vector<bool>{false}) << "it is not tried again";
    batch.begin(target());
    EXPECT_EQ(copyWith(batch, source, target()), std::vector<bool>{true});
    batch.complete();
    EXPECT_EQ(contentsOf(target()), (Contents{{"a", "1"}}));
}

TEST_F(ZipUtilsBatchTest, archiveThatAnotherProgramReplacedIsNotReplacedByTheBatch)
{
    mSource.add("a", "1");
    const fileString source = writeSource("target.zip");
    ArchiveBatch batch(nullptr);
    batch.begin(source);
    ArchiveBuilder other;
    other.add("b", "2");
    ASSERT_TRUE(FileUtils::moveFile(other.write(mFolder, "other.zip"), source, false));
    EXPECT_THROW(batch.complete(), ZipUtils::Overtaken);
    EXPECT_EQ(contentsOf(source), (Contents{{"b", "2"}}));
}

TEST_F(ZipUtilsBatchTest, damageInABatchIsFoundByTheWalk)
{
    mSource.add("a", test::sampleBytes(9 << 20, 1)).checksum = 1; // starts threads
    const fileString source = writeSource();
    ArchiveBatch batch(nullptr);
    EXPECT_THROW(copyWith(batch, source, target(), true), std::runtime_error);
    EXPECT_THROW(batch.complete(), std::runtime_error);
    EXPECT_EQ(test::listTree(mFolder.path()), std::vector<std::string>{"source.zip"});
}

TEST_F(ZipUtilsBatchTest, batchWithAFailedWalkCompletesNothing)
{
    mSource.add("a", "1");
    const fileString source = writeSource();
    ArchiveBatch batch(nullptr);
    EXPECT_THROW(batch.walk(source,
                            [&](const fileString& member, auto& handle, const auto& raw) -> bool {
                                EXPECT_TRUE(
                                    ZipUtils::writeFileToArchiveRaw(target(), member, handle, true, raw));
                                throw std::domain_error("mine");
                            }),
                 std::domain_error);
    EXPECT_THROW(batch.complete(), std::runtime_error);
    EXPECT_FALSE(target().pathExists());
}

TEST_F(ZipUtilsBatchTest, walkInsideTheWalkOfABatchIsOnItsOwn)
{
    mSource.add("a", "1");
    const fileString source = writeSource();
    ArchiveBatch batch(nullptr);
    batch.walk(source, [&](const fileString& member, auto& handle, const auto& raw) {
        EXPECT_TRUE(ZipUtils::writeFileToArchiveRaw(target(), member, handle, true, raw));
        EXPECT_EQ(copyAll(source, mFolder.file("nested.zip")), std::vector<bool>{true});
        EXPECT_EQ(contentsOf(mFolder.file("nested.zip")), (Contents{{"a", "1"}}));
        EXPECT_TRUE(ZipUtils::canAddToArchive(target())); // the outer walk's target again
        return true;
    });
    EXPECT_FALSE(target().pathExists());
    batch.complete();
    EXPECT_EQ(contentsOf(target()), (Contents{{"a", "1"}}));
}

TEST_F(ZipUtilsBatchTest, bytesAreToldInPortionsAndAddUpToTheTotal)
{
    const fileString source = writeLargeSource(12);
    ArchiveBatch batch(mProgress);
    EXPECT_EQ(copyWith(batch, source, target(), true), std::vector<bool>(13, true));
    EXPECT_EQ(mProgress->calls().front(), "total " + std::to_string(56 << 20));
    EXPECT_EQ(mProgress->sumOfBytes(), 56U << 20U);
    EXPECT_THAT(mProgress->bytes(), Each(Le(kPortion)));
    EXPECT_GT(mProgress->bytes().size(), 6U);
    const int checks = mProgress->checks();
    EXPECT_GE(checks, 6); // at least one per 8 MB
    batch.complete();
    EXPECT_EQ(mProgress->sumOfBytes(), 56U << 20U);
    EXPECT_EQ(contentsOf(target()).size(), 13U);
}

TEST_F(ZipUtilsBatchTest, membersThatAreNotCopiedAreToldAsWell)
{
    mSource.add("left out", test::sampleBytes(100, 1));
    mSource.add("refused", test::sampleBytes(200, 2));
    ArchiveMember& secret = mSource.add("secret", "");
    secret.flags = 1;
    secret.method = ArchiveMember::kStored;
    secret.rawData = "twelve bytesdata";
    secret.size = 4;
    mSource.add("read", test::sampleBytes(400, 3));
    const fileString source = writeSource();
    ArchiveBatch batch(mProgress);
    batch.walk(source, [&](const fileString& member, auto& handle, const auto& raw) {
        if (member == fileString("left out"))
            ZipUtils::leaveOutMember(handle, raw);
        if (member == fileString("read"))
            ZipUtils::writeFileDataFromArchive(source + ZipUtils::getDelimiter() + member,
                                               [](const auto&) {});
        return member != fileString("refused") ||
               !ZipUtils::writeFileToArchiveRaw(target(), fileString("../x"), handle, true, raw);
    });
    EXPECT_THAT(mProgress->calls(), ElementsAre("total 704"));
    EXPECT_THAT(mProgress->bytes(), ElementsAre(704U));
}

TEST_F(ZipUtilsBatchTest, memberThatIsLeftOutIsNotVerified)
{
    mSource.add("bad", "content").checksum = 1;
    const fileString source = writeSource();
    ArchiveBatch batch(nullptr);
    EXPECT_NO_THROW(batch.walk(source, [&](const fileString&, auto& handle, const auto& raw) {
        ZipUtils::leaveOutMember(handle, raw);
        return true;
    }));
    EXPECT_THROW(batch.walk(source, [](const auto&, auto&, const auto&) { return true; }),
                 std::runtime_error);
}

TEST_F(ZipUtilsBatchTest, cancelAtEveryQuestionLeavesTheTargetAsItWas)
{
    const fileString source = writeLargeSource(2);
    ArchiveBuilder old;
    old.add("old", test::sampleBytes(9 << 20, 7)).method = ArchiveMember::kStored;
    const std::string before = test::readFile(old.write(mFolder, "target.zip"));
    int cancelled = 0;
    for (int when = 1; when < 200; ++when) {
        const auto progress = std::make_shared<RecordingProgress>();
        progress->isCancelled = [when](int check) { return check == when; };
        ArchiveBatch batch(progress);
        try {
            copyWith(batch, source, target());
            batch.complete();
        } catch (const ZipUtils::Cancelled&) {
            ++cancelled;
            EXPECT_EQ(progress->checks(), when); // no further check after a cancel
            EXPECT_TRUE(test::readFile(target()) == before);
            continue;
        }
        break;
    }
    EXPECT_GE(cancelled, 3);
    EXPECT_EQ(contentsOf(target()).size(), 4U);
    EXPECT_EQ(test::listTree(mFolder.path()), (std::vector<std::string>{"source.zip", "target.zip"}));
}

TEST_F(ZipUtilsBatchTest, bytesAreReportedWhileTheWalkGoesOn)
{
    constexpr std::size_t kSize = 9 << 20;
    mSource.add("a", test::sampleBytes(kSize, 1)).method = ArchiveMember::kStored;
    mSource.add("b", "2");
    const fileString source = writeSource();
    ArchiveBatch batch(mProgress);
    batch.walk(source, [&](const fileString& member, auto&, const auto&) {
        if (member.toNativeString() == "b")
            EXPECT_EQ(mProgress->sumOfBytes(), kSize);
        else
            ZipUtils::writeFileDataFromArchive(source + ZipUtils::getDelimiter() + member,
                                               [](const auto&) {});
        return true;
    });
    EXPECT_EQ(mProgress->sumOfBytes(), kSize + 1);
}

TEST_F(ZipUtilsBatchTest, longStepsAfterTheLastMemberAreNamed)
{
    const fileString source = writeLargeSource(1);
    ArchiveBuilder old;
    old.add("old", test::sampleBytes(9 << 20, 7)).method = ArchiveMember::kStored;
    old.write(mFolder, "target.zip");
    ArchiveBatch batch(mProgress);
    copyWith(batch, source, target());
    EXPECT_THAT(mProgress->calls(), Not(Contains("labels putting in place | ")));
    batch.complete();
    EXPECT_THAT(mProgress->calls(), Contains("labels putting in place | "));
}

TEST_F(ZipUtilsBatchTest, stepThatHasNothingLeftToDoIsNotNamed)
{
    const fileString source = writeLargeSource(1);
    ArchiveBatch batch(mProgress);
    copyWith(batch, source, target(), true);
    batch.complete();
    EXPECT_THAT(mProgress->calls(), Not(Contains("labels putting in place | ")));
}

TEST_F(ZipUtilsBatchTest, memberThatIsCopiedAndReadIsReportedOnce)
{
    mSource.add("a", "content");
    const fileString source = writeSource();
    ArchiveBatch batch(mProgress);
    batch.walk(source, [&](const fileString& member, auto& handle, const auto& raw) {
        EXPECT_TRUE(ZipUtils::writeFileToArchiveRaw(target(), member, handle, true, raw));
        ZipUtils::writeFileDataFromArchive(source + ZipUtils::getDelimiter() + member, [](const auto&) {});
        return true;
    });
    EXPECT_EQ(mProgress->sumOfBytes(), 7U);
}

TEST_F(ZipUtilsBatchTest, memberThatIsCopiedIsVerifiedEvenIfItIsLeftOut)
{
    mSource.add("a", "damaged").checksum = 1;
    const fileString source = writeSource();
    ArchiveBatch batch(nullptr);
    const auto copyAndLeaveOut = [&](const fileString& member, auto& handle, const auto& raw) {
        EXPECT_TRUE(ZipUtils::writeFileToArchiveRaw(target(), member, handle, true, raw));
        ZipUtils::leaveOutMember(handle, raw);
        return true;
    };
    EXPECT_THROW(batch.walk(source, copyAndLeaveOut), std::runtime_error);
}
