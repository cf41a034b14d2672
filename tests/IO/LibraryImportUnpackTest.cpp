// Unpacking: results, guards, progress, cancel, and failures.
#include "OrvLibrary/IO/LibraryImport.h"

#include <filesystem>
#include <stdexcept>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "OrvLibrary/IO/LibraryImport_p.h"
#include "OrvLibrary/host/FileUtils.h"
#include "OrvLibrary/host/NullPointerRaiser.h"
#include "tests/support/ArchiveBuilder.h"
#include "tests/support/ArchiveReader.h"
#include "tests/support/RecordingProgress.h"
#include "tests/support/ScopedHost.h"
#include "tests/support/StubServices.h"

namespace fs = std::filesystem;
using LibraryImport::FoundFile;
using LibraryImport::UnpackResult;
using test::ArchiveBuilder;
using test::ArchiveMember;
using test::contentsOf;
using testing::ElementsAre;

namespace {

using Contents = std::vector<std::pair<std::string, std::string>>;

class LibraryImportUnpackTest : public testing::Test
{
protected:
    std::vector<std::string> namesIn(const fileString& folder) const
    {
        return fs::exists(folder.toNativeString()) ? test::listTree(folder.toNativeString())
                                                   : std::vector<std::string>();
    }
    std::vector<std::string> temporaryFiles() { return namesIn(mHost.paths().getTempPath()); }
    fileString writeKitchen() { return mKitchen.write(mFolder, "Kitchen.orvlibz"); }

    test::ScopedHost mHost;
    test::TempFolder mFolder;
    ArchiveBuilder mKitchen;
    std::shared_ptr<test::RecordingProgress> mProgress = std::make_shared<test::RecordingProgress>();
};

/// A download service whose responses the test sets.
class FakeCurl : public test::DeadCurl
{
public:
    bool downloadable(const std::string& url) override
    {
        asked = url;
        return url.rfind("http://", 0) == 0;
    }
    fileString download(const std::string&) override { return answer; }

    std::string asked;
    fileString answer;
};

} // namespace

TEST_F(LibraryImportUnpackTest, databaseAndReferencedFilesComeOutApart)
{
    mKitchen.add("textures/", "").method = 0;
    mKitchen.add("textures/oak.png", "oak");
    mKitchen.add("Kitchen.orvlib", "the database");
    mKitchen.add("tile.jpg", "tile");
    const UnpackResult result = LibraryImport::unpack(writeKitchen(), true, nullptr);
    EXPECT_TRUE(result.first.first);
    EXPECT_EQ(result.first.second.extension().toNativeString(), ".orvlib");
    EXPECT_EQ(test::readFile(result.first.second), "the database");
    EXPECT_TRUE(result.second.first);
    EXPECT_EQ(result.second.second.extension().toNativeString(), ".zip");
    EXPECT_EQ(contentsOf(result.second.second),
              (Contents{{"textures/", ""}, {"textures/oak.png", "oak"}, {"tile.jpg", "tile"}}));
    EXPECT_EQ(temporaryFiles().size(), 2U);
    EXPECT_EQ(namesIn(fileString(mFolder.path())), std::vector<std::string>{"Kitchen.orvlibz"});
}

TEST_F(LibraryImportUnpackTest, missingArchiveGivesTheEmptyResult)
{
    EXPECT_EQ(LibraryImport::unpack(mFolder.file("none.orvlibz"), true, mProgress), UnpackResult());
    EXPECT_TRUE(mProgress->calls().empty());
    EXPECT_TRUE(temporaryFiles().empty());
}

TEST_F(LibraryImportUnpackTest, archiveWithoutADatabaseYieldsReferencedFilesOnly)
{
    mKitchen.add("tile.jpg", "tile");
    const UnpackResult result = LibraryImport::unpack(writeKitchen(), true, nullptr);
    EXPECT_EQ(result.first, FoundFile());
    EXPECT_TRUE(result.second.first);
    EXPECT_EQ(temporaryFiles().size(), 1U);
}

TEST_F(LibraryImportUnpackTest, archiveWithOnlyADatabaseYieldsNoReferencedFiles)
{
    mKitchen.add("Kitchen.orvlib", "the database");
    const UnpackResult result = LibraryImport::unpack(writeKitchen(), true, nullptr);
    EXPECT_TRUE(result.first.first);
    EXPECT_EQ(result.second, FoundFile());
    EXPECT_EQ(temporaryFiles().size(), 1U);
}

TEST_F(LibraryImportUnpackTest, emptyArchiveYieldsNothing)
{
    EXPECT_EQ(LibraryImport::unpack(writeKitchen(), true, mProgress), UnpackResult());
    EXPECT_THAT(mProgress->calls(), ElementsAre("total 0"));
    EXPECT_TRUE(temporaryFiles().empty());
}

TEST_F(LibraryImportUnpackTest, lastOfThreeDatabasesWins)
{
    for (const char* name : {"a.orvlib", "b/c.orvlib", "b.orvlib"})
        mKitchen.add(name, std::string("of ") + name);
    const UnpackResult result = LibraryImport::unpack(writeKitchen(), true, nullptr);
    EXPECT_EQ(test::readFile(result.first.second), "of b.orvlib");
    EXPECT_FALSE(result.second.first);
}

TEST_F(LibraryImportUnpackTest, extensionInUpperCaseIsNoDatabase)
{
    mKitchen.add("Kitchen.ORVLIB", "x");
    mKitchen.add(".orvlib", "a name without extension");
    const UnpackResult result = LibraryImport::unpack(writeKitchen(), true, nullptr);
    EXPECT_FALSE(result.first.first);
    EXPECT_EQ(contentsOf(result.second.second).size(), 2U);
}

TEST_F(LibraryImportUnpackTest, namesBesideTheArchive)
{
    mKitchen.add("inner.orvlib", "the database");
    mKitchen.add("tile.jpg", "tile");
    const UnpackResult result = LibraryImport::unpack(writeKitchen(), false, nullptr);
    EXPECT_EQ(result.first.second, mFolder.file("Kitchen.orvlib"));
    EXPECT_EQ(result.second.second, mFolder.file("Kitchen.zip"));
    EXPECT_THAT(namesIn(fileString(mFolder.path())),
                ElementsAre("Kitchen.orvlib", "Kitchen.orvlibz", "Kitchen.zip"));
    EXPECT_TRUE(temporaryFiles().empty());
}

TEST_F(LibraryImportUnpackTest, databaseBesideIsReplacedAndArchiveBesideAddedTo)
{
    mFolder.write("Kitchen.orvlib", "a much longer former database");
    ArchiveBuilder old;
    old.add("old.jpg", "old");
    old.add("tile.jpg", "old tile");
    old.write(mFolder, "Kitchen.zip");
    mKitchen.add("inner.orvlib", "the database");
    mKitchen.add("tile.jpg", "tile");
    LibraryImport::unpack(writeKitchen(), false, nullptr);
    EXPECT_EQ(test::readFile(mFolder.file("Kitchen.orvlib")), "the database");
    EXPECT_EQ(contentsOf(mFolder.file("Kitchen.zip")), (Contents{{"old.jpg", "old"}, {"tile.jpg", "tile"}}));
}

TEST_F(LibraryImportUnpackTest, unsoundArchiveBesideIsReplaced)
{
    mFolder.write("Kitchen.zip", "not an archive");
    mKitchen.add("tile.jpg", "tile");
    LibraryImport::unpack(writeKitchen(), false, nullptr);
    EXPECT_EQ(contentsOf(mFolder.file("Kitchen.zip")), (Contents{{"tile.jpg", "tile"}}));
}

TEST_F(LibraryImportUnpackTest, filesBesideGoWhenTheArchiveHoldsNoneOfTheirKind)
{
    mFolder.write("Kitchen.orvlib", "former");
    mFolder.write("Kitchen.zip", ArchiveBuilder().bytes());
    EXPECT_EQ(LibraryImport::unpack(writeKitchen(), false, nullptr), UnpackResult());
    EXPECT_THAT(namesIn(fileString(mFolder.path())), ElementsAre("Kitchen.orvlibz"));
}

TEST_F(LibraryImportUnpackTest, progressHasTheTotalInBytesAndOneStepPerMember)
{
    mKitchen.add("tile.jpg", "tile");
    mKitchen.add("K\xC3\xBC"
                 "che.orvlib",
                 "the database");
    mKitchen.add("../evil", "skipped");
    LibraryImport::unpack(writeKitchen(), true, mProgress);
    EXPECT_THAT(mProgress->calls(), ElementsAre("total 23", "check", "step Unpacking tile.jpg | ", "check",
                                                "step Unpacking K\xC3\xBC"
                                                "che.orvlib | ",
                                                "check", "step Unpacking ../evil | "));
}

TEST_F(LibraryImportUnpackTest, labelIsTheTranslatedTextAroundTheName)
{
    const test::OneText german("%1% wird ausgepackt");
    LibraryImport::updateProgressDialog(mProgress, "50%1.jpg");
    LibraryImport::updateProgressDialog(nullptr, "nobody looks");
    EXPECT_THAT(mProgress->calls(), ElementsAre("step 50%1.jpg wird ausgepackt | "));
}

TEST_F(LibraryImportUnpackTest, brokenTranslationShowsItsRawText)
{
    for (const char* text : {"%1", "no place", "%1% %2%"}) {
        const test::OneText broken(text);
        const auto progress = std::make_shared<test::RecordingProgress>();
        LibraryImport::updateProgressDialog(progress, "a");
        EXPECT_THAT(progress->calls(), ElementsAre("step " + std::string(text) + " | "));
    }
}

TEST_F(LibraryImportUnpackTest, cancelAtAnyMemberLeavesNothing)
{
    mKitchen.add("tile.jpg", "tile");
    mKitchen.add("Kitchen.orvlib", "the database");
    mKitchen.add("oak.png", "oak");
    const fileString archive = writeKitchen();
    for (int when = 1; when <= 3; ++when) {
        for (const bool temporary : {true, false}) {
            const auto progress = std::make_shared<test::RecordingProgress>();
            progress->isCancelled = [when](int check) { return check == when; };
            EXPECT_EQ(LibraryImport::unpack(archive, temporary, progress), UnpackResult());
            EXPECT_EQ(progress->calls().back(), "check");
            EXPECT_EQ(progress->calls().size(), 2U * static_cast<unsigned>(when));
            EXPECT_TRUE(temporaryFiles().empty());
            EXPECT_THAT(namesIn(fileString(mFolder.path())), ElementsAre("Kitchen.orvlibz"));
        }
    }
}

TEST_F(LibraryImportUnpackTest, databasesOfEverySizeComeOutWhole)
{
    // Small members are unpacked in memory, large ones through the pages of the file, stored ones in pieces.
    for (const std::size_t size : {0U, 300000U, 9U << 20U}) {
        const std::string database = test::sampleBytes(size, 3);
        for (const int method : {ArchiveMember::kStored, ArchiveMember::kDeflated}) {
            ArchiveBuilder library;
            library.add("Kitchen.orvlib", database).method = static_cast<std::uint16_t>(method);
            const fileString archive = library.write(mFolder, "Kitchen.orvlibz");
            const UnpackResult result = LibraryImport::unpack(archive, true, mProgress);
            ASSERT_TRUE(result.first.first);
            EXPECT_TRUE(test::readFile(result.first.second) == database) << size;
        }
    }
}

TEST_F(LibraryImportUnpackTest, damageInDatabasesOfEverySizeIsFound)
{
    for (const std::size_t size : {0U, 300000U, 9U << 20U}) {
        for (const int method : {ArchiveMember::kStored, ArchiveMember::kDeflated}) {
            ArchiveBuilder library;
            ArchiveMember& database = library.add("Kitchen.orvlib", test::sampleBytes(size, 3));
            database.method = static_cast<std::uint16_t>(method);
            database.checksum = 1;
            const fileString archive = library.write(mFolder, "Kitchen.orvlibz");
            EXPECT_THROW(LibraryImport::unpack(archive, true, nullptr), std::runtime_error) << size;
            EXPECT_TRUE(temporaryFiles().empty());
        }
    }
}

TEST_F(LibraryImportUnpackTest, unsoundArchiveThrowsAndLeavesNothing)
{
    mKitchen.add("Kitchen.orvlib", "the database");
    mKitchen.add("tile.jpg", "tile").checksum = 1;
    mKitchen.add("oak.png", "oak");
    const fileString archive = writeKitchen();
    for (const bool temporary : {true, false}) {
        EXPECT_THROW(LibraryImport::unpack(archive, temporary, mProgress), std::runtime_error);
        EXPECT_TRUE(temporaryFiles().empty());
        EXPECT_THAT(namesIn(fileString(mFolder.path())), ElementsAre("Kitchen.orvlibz"));
    }
    EXPECT_THROW(LibraryImport::unpack(mFolder.write("x.orvlibz", "text"), true, nullptr),
                 std::runtime_error);
}

TEST_F(LibraryImportUnpackTest, unsafeNamesAreSkippedAndNothingLeavesTheTarget)
{
    for (const char* name : {"../evil.png", "/etc/evil.png", "a/../../evil.png", "C:\\evil.png"})
        mKitchen.add(name, "evil");
    mKitchen.add("../evil.orvlib", "the database");
    mKitchen.add("good.png", "good");
    const UnpackResult result = LibraryImport::unpack(writeKitchen(), true, nullptr);
    EXPECT_EQ(test::readFile(result.first.second), "the database");
    EXPECT_EQ(contentsOf(result.second.second), (Contents{{"good.png", "good"}}));
    EXPECT_EQ(temporaryFiles().size(), 2U);
    EXPECT_FALSE(fs::exists(mFolder.path() + "/../evil.orvlib"));
}

TEST_F(LibraryImportUnpackTest, sourceThatIsNoFileThrows)
{
    fs::create_symlink("loop.orvlibz", mFolder.file("loop.orvlibz").toNativeString());
    EXPECT_THROW(LibraryImport::unpack(fileString(mFolder.path()), true, nullptr), std::runtime_error);
    EXPECT_THROW(LibraryImport::unpack(fileString("/dev/zero"), true, nullptr), std::runtime_error);
    EXPECT_EQ(LibraryImport::unpack(mFolder.file("loop.orvlibz"), true, nullptr), UnpackResult());
}

TEST_F(LibraryImportUnpackTest, databaseThatCannotBeWrittenThrows)
{
    mKitchen.add("tile.jpg", "tile");
    mKitchen.add("Kitchen.orvlib", "the database");
    const fileString archive = writeKitchen();
    fs::create_directory(mFolder.file("Kitchen.orvlib").toNativeString());
    EXPECT_THROW(LibraryImport::unpack(archive, false, nullptr), std::ios_base::failure);
    EXPECT_THAT(namesIn(fileString(mFolder.path())), ElementsAre("Kitchen.orvlib/", "Kitchen.orvlibz"));
}

TEST_F(LibraryImportUnpackTest, localArchiveIsUnpackedToTemporaryNames)
{
    FakeCurl curl;
    mKitchen.add("Kitchen.orvlib", "the database");
    const fileString archive = mKitchen.write(mFolder, "K\xC3\xBC"
                                                       "che.orvlibz");
    const UnpackResult result = LibraryImport::unpackArchivedLibrary(archive, mProgress);
    EXPECT_EQ(curl.asked, mFolder.path() + "/K\xFC"
                                           "che.orvlibz");
    EXPECT_EQ(test::readFile(result.first.second), "the database");
    EXPECT_THAT(temporaryFiles(), testing::SizeIs(1));
    EXPECT_EQ(mProgress->calls().front(), "total 12");
}

TEST_F(LibraryImportUnpackTest, downloadedArchiveIsRemovedAfterwards)
{
    FakeCurl curl;
    mKitchen.add("Kitchen.orvlib", "the database");
    curl.answer = mKitchen.write(mFolder, "downloaded");
    const fileString address("http://localhost/Kitchen.orvlibz");
    EXPECT_TRUE(LibraryImport::unpackArchivedLibrary(address, nullptr).first.first);
    EXPECT_FALSE(curl.answer.pathExists());
    curl.answer = mFolder.write("downloaded", "a page that is no archive");
    EXPECT_THROW(LibraryImport::unpackArchivedLibrary(address, nullptr), std::runtime_error);
    EXPECT_FALSE(curl.answer.pathExists());
}

TEST_F(LibraryImportUnpackTest, failedDownloadGivesTheEmptyResult)
{
    FakeCurl curl;
    EXPECT_EQ(LibraryImport::unpackArchivedLibrary(fileString("http://localhost/a.orvlibz"), mProgress),
              UnpackResult());
    EXPECT_TRUE(mProgress->calls().empty());
}

TEST_F(LibraryImportUnpackTest, temporaryDatabaseIsAWritableCopy)
{
    const fileString library = mFolder.write("Kitchen.orvlib", "the database");
    fs::permissions(library.toNativeString(), fs::perms::owner_read);
    const FoundFile copy = LibraryImport::createTempDatabase(library, mProgress);
    EXPECT_TRUE(copy.first);
    EXPECT_EQ(copy.second.extension().toNativeString(), ".orvlib");
    EXPECT_EQ(test::readFile(copy.second), "the database");
    EXPECT_TRUE(FileUtils::canWriteFile(copy.second));
    EXPECT_THAT(mProgress->calls(), ElementsAre("labels " + library.toNativeString() + " | "));
}

TEST_F(LibraryImportUnpackTest, temporaryDatabaseOfAMissingOneIsNone)
{
    EXPECT_EQ(LibraryImport::createTempDatabase(mFolder.file("none.orvlib"), mProgress), FoundFile());
    EXPECT_TRUE(mProgress->calls().empty());
}

TEST_F(LibraryImportUnpackTest, temporaryDatabaseThatCannotBeCopiedIsNone)
{
    EXPECT_EQ(LibraryImport::createTempDatabase(fileString(mFolder.path()), mProgress), FoundFile());
    EXPECT_TRUE(temporaryFiles().empty());
}

TEST_F(LibraryImportUnpackTest, temporaryDatabaseNeedsAProgressObject)
{
    const fileString library = mFolder.write("Kitchen.orvlib", "the database");
    EXPECT_THROW(LibraryImport::createTempDatabase(library, nullptr), NullPointerError);
}
