// Texture archives: where they are stored, how they are merged, and that a failure loses nothing.
#include "OrvLibrary/IO/LibraryImport.h"

#include <filesystem>
#include <functional>
#include <stdexcept>
#include <utility>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "OrvLibrary/IO/LibraryImport_p.h"
#include "OrvLibrary/host/FileUtils.h"
#include "OrvLibrary/host/NullPointerRaiser.h"
#include "OrvLibrary/host/ZipUtils.h"
#include "tests/support/ArchiveBuilder.h"
#include "tests/support/ArchiveReader.h"
#include "tests/support/RecordingProgress.h"
#include "tests/support/ScopedHost.h"

namespace fs = std::filesystem;
using test::ArchiveBuilder;
using test::contentsOf;
using testing::ElementsAre;

namespace {

using Contents = std::vector<std::pair<std::string, std::string>>;

/// Runs an action for each member that progress is reported for.
class AtEachStep : public test::RecordingProgress
{
public:
    explicit AtEachStep(std::function<void()> action) : mAction(std::move(action)) {}
    void increment(const marl::unicode::String&, const marl::unicode::String&) override { mAction(); }

private:
    std::function<void()> mAction;
};

class LibraryImportTexturesTest : public testing::Test
{
protected:
    bool move(const ArchiveBuilder& extracted)
    {
        return LibraryImport::moveArchivedTextures(extracted.write(mFolder, "extracted.zip"), mDestination,
                                                   mProgress);
    }
    void expectConsumed() const { EXPECT_FALSE(mFolder.file("extracted.zip").pathExists()); }
    std::vector<std::string> texturesFolder() const { return test::listTree(mFolder.path() + "/textures"); }

    test::ScopedHost mHost;
    test::TempFolder mFolder;
    fileString mDestination = mFolder.file("textures/Kitchen.zip");
    ArchiveBuilder mOld;
    ArchiveBuilder mNew;
    std::shared_ptr<test::RecordingProgress> mProgress = std::make_shared<test::RecordingProgress>();
};

} // namespace

TEST_F(LibraryImportTexturesTest, archiveLivesInTheTextureFolderUnderTheLibrarysStem)
{
    const fileString library("/some/where/Kitchen.orvlib");
    EXPECT_EQ(LibraryImport::getArchivedTexturePath(library, false),
              mHost.paths().getUserTexturePath() + fileString("Kitchen.zip"));
    EXPECT_EQ(LibraryImport::getArchivedTexturePath(library, true),
              mHost.paths().getProprietaryLibraryReferencedFilesPath() + fileString("Kitchen.zip"));
    EXPECT_EQ(LibraryImport::getArchivedTexturePath(fileString("a.b.orvlib"), false),
              mHost.paths().getUserTexturePath() + fileString("a.b.zip"));
}

TEST_F(LibraryImportTexturesTest, missingExtractedArchiveIsSuccessAndChangesNothing)
{
    EXPECT_TRUE(LibraryImport::moveArchivedTextures(mFolder.file("none.zip"), mDestination, nullptr));
    EXPECT_TRUE(test::listTree(mFolder.path()).empty());
    EXPECT_TRUE(mHost.resetFolders().empty());
}

TEST_F(LibraryImportTexturesTest, firstImportCopiesTheArchiveAndConsumesIt)
{
    mNew.add("tile.jpg", "tile");
    EXPECT_TRUE(
        LibraryImport::moveArchivedTextures(mNew.write(mFolder, "extracted.zip"), mDestination, nullptr));
    EXPECT_TRUE(test::readFile(mDestination) == mNew.bytes());
    expectConsumed();
    EXPECT_THAT(mHost.resetFolders(), ElementsAre(mFolder.path() + "/textures/"));
}

TEST_F(LibraryImportTexturesTest, mergeTakesEveryNewMemberAndTheOldOnesThatAreLacking)
{
    mOld.add("a", "old a");
    mOld.add("b", "old b");
    mOld.add("c", "old c");
    mOld.write(mFolder, "textures/Kitchen.zip");
    mNew.add("d", "new d");
    mNew.add("b", "new b");
    EXPECT_TRUE(move(mNew));
    EXPECT_EQ(contentsOf(mDestination),
              (Contents{{"a", "old a"}, {"c", "old c"}, {"d", "new d"}, {"b", "new b"}}));
    expectConsumed();
    EXPECT_THAT(texturesFolder(), ElementsAre("Kitchen.zip"));
    EXPECT_TRUE(test::listTree(mHost.folder().path()).empty() ||
                test::listTree(mHost.paths().getTempPath().toNativeString()).empty());
    EXPECT_THAT(mHost.resetFolders(), ElementsAre(mFolder.path() + "/textures/"));
}

TEST_F(LibraryImportTexturesTest, namesThatStandTwiceComeOutOnce)
{
    mOld.add("a", "old a");
    mOld.add("a", "newer old a");
    mOld.write(mFolder, "textures/Kitchen.zip");
    mNew.add("b", "new b");
    mNew.add("b", "newer b");
    EXPECT_TRUE(move(mNew));
    EXPECT_EQ(contentsOf(mDestination), (Contents{{"a", "newer old a"}, {"b", "newer b"}}));
}

TEST_F(LibraryImportTexturesTest, namesDifferByLetterCase)
{
    mOld.add("A", "old");
    mOld.write(mFolder, "textures/Kitchen.zip");
    mNew.add("a", "new");
    EXPECT_TRUE(move(mNew));
    EXPECT_EQ(contentsOf(mDestination), (Contents{{"A", "old"}, {"a", "new"}}));
}

TEST_F(LibraryImportTexturesTest, mergeReportsBothArchivesMemberByMember)
{
    mOld.add("a", "12345");
    mOld.add("b", "12");
    mOld.write(mFolder, "textures/Kitchen.zip");
    mNew.add("b", "1234");
    EXPECT_TRUE(move(mNew));
    EXPECT_THAT(mProgress->calls(), ElementsAre("total 7", "step Unpacking a | ", "step Unpacking b | ",
                                                "total 4", "step Unpacking b | "));
}

TEST_F(LibraryImportTexturesTest, emptyArchivesMerge)
{
    mOld.write(mFolder, "textures/Kitchen.zip");
    EXPECT_TRUE(move(mNew));
    EXPECT_TRUE(ZipUtils::getFilenamesInArchive(mDestination).empty());
    mNew.add("a", "new");
    EXPECT_TRUE(move(mNew));
    EXPECT_TRUE(move(ArchiveBuilder()));
    EXPECT_EQ(contentsOf(mDestination), (Contents{{"a", "new"}}));
}

TEST_F(LibraryImportTexturesTest, failedMergeLeavesTheOldArchiveAndConsumesTheNew)
{
    mOld.add("a", "old a");
    const std::string before = mOld.bytes();
    mNew.add("a", "new a");
    ArchiveBuilder bad = mNew;
    bad.add("b", "new b").checksum = 1;
    ArchiveBuilder unsafe = mNew;
    unsafe.add("../b", "new b");
    mOld.write(mFolder, "textures/Kitchen.zip");
    for (const std::string& extracted : {bad.bytes(), unsafe.bytes(), std::string("not an archive")}) {
        EXPECT_FALSE(LibraryImport::moveArchivedTextures(mFolder.write("extracted.zip", extracted),
                                                         mDestination, mProgress));
        EXPECT_TRUE(test::readFile(mDestination) == before);
        expectConsumed();
        EXPECT_THAT(texturesFolder(), ElementsAre("Kitchen.zip"));
    }
    EXPECT_TRUE(mHost.resetFolders().empty());
}

TEST_F(LibraryImportTexturesTest, unsoundOldArchiveStaysByteForByte)
{
    mOld.add("a", "old a").checksum = 1;
    mNew.add("b", "new b");
    for (const std::string& before : {mOld.bytes(), std::string("not an archive")}) {
        mFolder.write("textures/Kitchen.zip", before);
        EXPECT_FALSE(move(mNew));
        EXPECT_TRUE(test::readFile(mDestination) == before);
        expectConsumed();
    }
}

TEST_F(LibraryImportTexturesTest, destinationThatCannotBeWrittenFails)
{
    mNew.add("a", "new");
    mOld.write(mFolder, "textures/Kitchen.zip");
    fs::permissions(mDestination.toNativeString(), fs::perms::owner_read);
    EXPECT_FALSE(move(mNew));
    EXPECT_TRUE(test::readFile(mDestination) == mOld.bytes());
    expectConsumed();
    mDestination = fileString(mFolder.path());
    EXPECT_FALSE(move(mNew));
    mDestination = fileString("/proc/self/Kitchen.zip");
    EXPECT_FALSE(move(mNew));
    expectConsumed();
}

TEST_F(LibraryImportTexturesTest, mergeNeedsAProgressObject)
{
    mOld.write(mFolder, "textures/Kitchen.zip");
    mProgress = nullptr;
    EXPECT_THROW(move(mNew), NullPointerError);
    EXPECT_TRUE(test::readFile(mDestination) == mOld.bytes());
    expectConsumed();
}

TEST_F(LibraryImportTexturesTest, exceptionOfTheProgressObjectLosesNothing)
{
    class Failing : public test::RecordingProgress
    {
        void increment(const marl::unicode::String&, const marl::unicode::String&) override
        {
            throw std::logic_error("mine");
        }
    };
    mOld.add("a", "old");
    mOld.write(mFolder, "textures/Kitchen.zip");
    mProgress = std::make_shared<Failing>();
    EXPECT_THROW(move(mNew), std::logic_error);
    EXPECT_TRUE(test::readFile(mDestination) == mOld.bytes());
    EXPECT_THAT(texturesFolder(), ElementsAre("Kitchen.zip"));
}

TEST_F(LibraryImportTexturesTest, anArchiveThatAnUpdateReplacesDuringTheMergeIsMergedAnew)
{
    mOld.add("a", "old").method = test::ArchiveMember::kStored;
    mOld.write(mFolder, "textures/Kitchen.zip");
    mNew.add("mine", "imported");
    ArchiveBuilder update;
    update.add("b", "of the update");
    int steps = 0;
    mProgress = std::make_shared<AtEachStep>([&] {
        if (++steps == 1) {
            EXPECT_TRUE(FileUtils::moveFile(update.write(mFolder, "update.zip"), mDestination, false));
        }
    });
    EXPECT_TRUE(move(mNew));
    EXPECT_GT(steps, 1);
    EXPECT_EQ(contentsOf(mDestination), (Contents{{"b", "of the update"}, {"mine", "imported"}}));
    expectConsumed();
    EXPECT_THAT(texturesFolder(), ElementsAre("Kitchen.zip"));
}

TEST_F(LibraryImportTexturesTest, anArchiveThatIsReplacedAgainAndAgainFailsAndKeepsTheLastOne)
{
    mOld.write(mFolder, "textures/Kitchen.zip");
    mNew.add("mine", "imported");
    int merges = 0;
    mProgress = std::make_shared<AtEachStep>([&] {
        ++merges;
        EXPECT_TRUE(FileUtils::moveFile(mOld.write(mFolder, "update.zip"), mDestination, false));
    });
    std::string reason;
    EXPECT_FALSE(LibraryImport::moveArchivedTextures(mNew.write(mFolder, "extracted.zip"), mDestination,
                                                     mProgress, reason));
    EXPECT_THAT(reason, testing::HasSubstr("another program has replaced it meanwhile"));
    EXPECT_EQ(merges, 5) << "then it gives up";
    EXPECT_TRUE(test::readFile(mDestination) == mOld.bytes());
}

TEST_F(LibraryImportTexturesTest, copyNeedsAnExistingTargetAndStopsAtWhatItCannotCopy)
{
    mNew.add("a", "1");
    mNew.add("../b", "2");
    mNew.add("c", "3");
    const fileString source = mNew.write(mFolder, "source.zip");
    const fileString target = mFolder.file("target.zip");
    EXPECT_FALSE(LibraryImport::copyArchivedFile(source, target, mProgress, {}));
    EXPECT_THAT(mProgress->calls(), ElementsAre("total 3", "step Unpacking a | "));
    EXPECT_FALSE(target.pathExists());
    ArchiveBuilder().write(mFolder, "target.zip");
    EXPECT_FALSE(LibraryImport::copyArchivedFile(source, target, mProgress, {}));
    EXPECT_EQ(contentsOf(target), (Contents{{"a", "1"}}));
    EXPECT_TRUE(
        LibraryImport::copyArchivedFile(source, target, mProgress, {fileString("../b"), fileString("a")}));
    EXPECT_EQ(contentsOf(target), (Contents{{"a", "1"}, {"c", "3"}}));
    EXPECT_THROW(LibraryImport::copyArchivedFile(source, target, nullptr, {}), NullPointerError);
}

TEST_F(LibraryImportTexturesTest, missingFolderIsMadeWithStandardPermissions)
{
    mNew.add("a.jpg", "a");
    EXPECT_TRUE(move(mNew));
    EXPECT_EQ(test::modeOf(mDestination.parentPath()), 0755u);
}
