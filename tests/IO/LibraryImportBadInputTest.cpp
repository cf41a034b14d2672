// Damaged archives, invalid addresses and failing disks, through the functions that import libraries.
#include "OrvLibrary/IO/LibraryImport.h"

#include <filesystem>
#include <optional>
#include <stdexcept>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/ArchiveBuilder.h"
#include "tests/support/ArchiveReader.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/FaultServer.h"
#include "tests/support/RecordingProgress.h"
#include "tests/support/ScopedHost.h"

namespace fs = std::filesystem;
using LibraryImport::UnpackResult;
using test::ArchiveBuilder;
using test::ArchiveMember;
using test::contentsOf;
using test::FaultReply;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

using Contents = std::vector<std::pair<std::string, std::string>>;

constexpr std::size_t kPlaces = 200;

/// Every test works in one folder. The files beside it must stay unchanged.
class LibraryImportBadInputTest : public testing::Test
{
protected:
    LibraryImportBadInputTest()
    {
        mFolder.write("sentinel/evil.png", "sentinel");
        mFolder.write("sentinel/deep/Kitchen.zip", "sentinel");
        mFolder.write("evil.png", "sentinel");
        mKitchen.add("oak.png", test::sampleBytes(3000, 1));
        mKitchen.add("Kitchen.orvlib", test::sampleBytes(4000, 2)).flags = 8;
        mKitchen.add("tile.jpg", "tile").method = ArchiveMember::kStored;
        mOld.add("old.png", test::sampleBytes(2000, 3));
        mOld.add("tile.jpg", "old tile");
    }

    ~LibraryImportBadInputTest() override
    {
        EXPECT_THAT(test::listTree(mFolder.path() + "/sentinel"),
                    ElementsAre("deep/", "deep/Kitchen.zip", "evil.png"));
        for (const char* file : {"sentinel/evil.png", "sentinel/deep/Kitchen.zip", "evil.png"})
            EXPECT_EQ(test::readFile(mFolder.file(file)), "sentinel");
    }

    std::vector<std::string> temporaryFiles()
    {
        const std::string folder = mHost.paths().getTempPath().toNativeString();
        return fs::exists(folder) ? test::listTree(folder) : std::vector<std::string>();
    }

    /// Expects that `unpack` refuses these bytes.
    void expectRefused(const std::string& archive, const std::string& what)
    {
        const fileString path = mFolder.write("work/Kitchen.orvlibz", archive);
        for (const bool temporary : {true, false}) {
            EXPECT_THROW(LibraryImport::unpack(path, temporary, nullptr), std::runtime_error) << what;
            EXPECT_THAT(temporaryFiles(), IsEmpty()) << what;
            EXPECT_THAT(test::listTree(mFolder.path() + "/work"), ElementsAre("Kitchen.orvlibz")) << what;
        }
    }

    /// Unpacks to temporary names and removes the resulting files.
    /// @return the database and the referenced files; none if the archive was refused
    std::optional<std::pair<std::string, Contents>> unpacked(const std::string& archive)
    {
        try {
            const UnpackResult result =
                LibraryImport::unpack(mFolder.write("work/Kitchen.orvlibz", archive), true, nullptr);
            std::pair<std::string, Contents> content;
            if (result.first.first)
                content.first = test::readFile(result.first.second);
            if (result.second.first)
                content.second = contentsOf(result.second.second);
            fs::remove(result.first.second.toNativeString());
            fs::remove(result.second.second.toNativeString());
            return content;
        } catch (const std::runtime_error&) {
            return std::nullopt;
        }
    }

    /// Merges one archive into another. In any case the new archive is consumed and no other file is left.
    bool merge(const std::string& extracted, const std::string& old)
    {
        mFolder.write("textures/Kitchen.zip", old);
        const fileString source = mFolder.write("work/extracted.zip", extracted);
        const bool isMerged = LibraryImport::moveArchivedTextures(source, destination(), mProgress);
        EXPECT_FALSE(source.pathExists());
        EXPECT_THAT(test::listTree(mFolder.path() + "/textures"), ElementsAre("Kitchen.zip"));
        EXPECT_THAT(temporaryFiles(), IsEmpty());
        if (!isMerged) {
            EXPECT_TRUE(test::readFile(destination()) == old);
        }
        return isMerged;
    }
    fileString destination() const { return mFolder.file("textures/Kitchen.zip"); }

    test::ScopedHost mHost;
    test::TempFolder mFolder;
    ArchiveBuilder mKitchen;
    ArchiveBuilder mOld;
    std::shared_ptr<test::RecordingProgress> mProgress = std::make_shared<test::RecordingProgress>();
};

/// Positions in a text, spread evenly from its first byte to its last.
std::vector<std::size_t> places(const std::string& text)
{
    std::vector<std::size_t> found;
    for (std::size_t i = 0; i < kPlaces; ++i)
        found.push_back(i * (text.size() - 1) / (kPlaces - 1));
    return found;
}

std::string flipped(std::string text, std::size_t place)
{
    text[place] = static_cast<char>(text[place] ^ (1 << place % 8));
    return text;
}

} // namespace

TEST_F(LibraryImportBadInputTest, archiveCutAnywhereIsRefused)
{
    const std::string whole = mKitchen.bytes();
    const std::string old = mOld.bytes();
    for (const std::size_t size : places(whole)) {
        expectRefused(whole.substr(0, size), "cut at " + std::to_string(size));
        EXPECT_FALSE(merge(whole.substr(0, size), old)) << size;
    }
    for (const std::size_t size : places(old))
        EXPECT_FALSE(merge(whole, old.substr(0, size))) << size;
}

TEST_F(LibraryImportBadInputTest, byteFlippedAnywhereIsRefusedOrHarmless)
{
    const std::string whole = mKitchen.bytes();
    const auto expected = unpacked(whole);
    ASSERT_TRUE(expected);
    int harmless = 0;
    for (const std::size_t place : places(whole)) {
        const auto content = unpacked(flipped(whole, place));
        EXPECT_THAT(temporaryFiles(), IsEmpty()) << place;
        if (!content)
            continue;
        EXPECT_TRUE(*content == *expected) << place;
        ++harmless;
    }
    EXPECT_LT(harmless, 50); // dates and attributes
}

TEST_F(LibraryImportBadInputTest, mergeWithAFlippedByteFailsOrIsHarmless)
{
    ArchiveBuilder textures;
    textures.add("tile.jpg", "new tile");
    textures.add("door.png", test::sampleBytes(2000, 4));
    const std::string extracted = textures.bytes();
    const std::string old = mOld.bytes();
    ASSERT_TRUE(merge(extracted, old));
    const Contents expected = contentsOf(destination());
    for (const std::size_t place : places(extracted)) {
        if (merge(flipped(extracted, place), old)) {
            EXPECT_TRUE(contentsOf(destination()) == expected) << "new, " << place;
        }
    }
    for (const std::size_t place : places(old)) {
        if (merge(extracted, flipped(old, place))) {
            EXPECT_TRUE(contentsOf(destination()) == expected) << "old, " << place;
        }
    }
}

TEST_F(LibraryImportBadInputTest, encryptedDatabaseIsRefusedAndAnEncryptedPictureGoesOver)
{
    ArchiveMember& database = mKitchen.add("secret.orvlib", "");
    database.flags = 1;
    database.method = ArchiveMember::kStored;
    database.rawData = "twelve bytesdata";
    database.size = 4;
    const ArchiveMember secret = database;
    expectRefused(mKitchen.bytes(), "encrypted database");

    ArchiveBuilder pictures;
    pictures.add("", "") = secret;
    pictures.add("tile.jpg", "tile");
    std::string bytes = pictures.bytes();
    for (std::size_t at = 0; (at = bytes.find("secret.orvlib")) != std::string::npos;)
        bytes.replace(at, 13, "secret.orvjpg");
    const UnpackResult result =
        LibraryImport::unpack(mFolder.write("work/Kitchen.orvlibz", bytes), true, nullptr);
    EXPECT_FALSE(result.first.first);
    EXPECT_EQ(contentsOf(result.second.second),
              (Contents{{"secret.orvjpg", "twelve bytesdata"}, {"tile.jpg", "tile"}}));
    fs::remove(result.second.second.toNativeString());
    EXPECT_TRUE(merge(bytes, mOld.bytes()));
}

TEST_F(LibraryImportBadInputTest, overlapsAndBombsAreRefused)
{
    ArchiveBuilder overlapping = mKitchen;
    overlapping.add("again.png", test::sampleBytes(3000, 1)).headerOffset = 0;
    ArchiveBuilder bomb = mKitchen;
    bomb.add("bomb.png", "tiny").size = std::uint64_t(40) << 30;
    ArchiveBuilder longer = mKitchen;
    longer.add("long.png", std::string(100000, 'x')).size = 10;
    for (const ArchiveBuilder& archive : {overlapping, bomb, longer}) {
        expectRefused(archive.bytes(), "overlap or bomb");
        EXPECT_FALSE(merge(archive.bytes(), mOld.bytes()));
        EXPECT_FALSE(merge(mOld.bytes(), archive.bytes()));
    }
}

TEST_F(LibraryImportBadInputTest, seventyThousandMembersGoOver)
{
    ArchiveBuilder many;
    for (int i = 0; i < 70000; ++i)
        many.add(std::to_string(i), "").method = ArchiveMember::kStored;
    many.add("Kitchen.orvlib", "the database");
    const auto content = unpacked(many.bytes());
    ASSERT_TRUE(content);
    EXPECT_EQ(content->first, "the database");
    EXPECT_EQ(content->second.size(), 70000U);
    EXPECT_TRUE(merge(mOld.bytes(), many.bytes()));
    EXPECT_EQ(contentsOf(destination()).size(), 70003U);
}

TEST_F(LibraryImportBadInputTest, namesThatLeaveTheFolderAreSkippedOrFailTheMerge)
{
    ArchiveBuilder evil;
    for (const char* name : {"../evil.png", "sentinel/../../evil.png", "../sentinel/deep/Kitchen.zip"})
        evil.add(name, "evil");
    evil.add(mFolder.path() + "/evil.png", "evil");
    evil.add("../sentinel/Kitchen.orvlib", "the database");
    evil.add("good.png", "good");
    const auto content = unpacked(evil.bytes());
    ASSERT_TRUE(content);
    EXPECT_EQ(content->first, "the database");
    EXPECT_EQ(content->second, (Contents{{"good.png", "good"}}));
    EXPECT_FALSE(merge(evil.bytes(), mOld.bytes()));
}

TEST_F(LibraryImportBadInputTest, databaseIsRefusedEvenIfALaterOneOfItsNameIsSound)
{
    ArchiveBuilder twice;
    ArchiveMember& unknown = twice.add("Kitchen.orvlib", "");
    unknown.method = 27400;
    unknown.rawData = "seven b";
    twice.add("Kitchen.orvlib", "sound");
    expectRefused(twice.bytes(), "unknown method");
}

TEST_F(LibraryImportBadInputTest, nameThatStandsTwiceComesOutOnce)
{
    mKitchen.add("tile.jpg", "newer tile");
    const auto content = unpacked(mKitchen.bytes());
    ASSERT_TRUE(content);
    EXPECT_EQ(content->second,
              (Contents{{"oak.png", test::sampleBytes(3000, 1)}, {"tile.jpg", "newer tile"}}));
}

TEST_F(LibraryImportBadInputTest, extractedArchiveThatIsNoFileFails)
{
    const fileString folder = mFolder.file("work/folder.zip");
    fs::create_directories(folder.toNativeString());
    EXPECT_FALSE(LibraryImport::moveArchivedTextures(folder, destination(), mProgress));
    EXPECT_TRUE(folder.pathExists()); // a folder is not an extracted archive
    mOld.write(mFolder, "textures/Kitchen.zip");
    EXPECT_FALSE(LibraryImport::moveArchivedTextures(folder, destination(), mProgress));
    EXPECT_TRUE(test::readFile(destination()) == mOld.bytes());
}

TEST_F(LibraryImportBadInputTest, badAnswersLeaveNothingBehind)
{
    test::FaultServer server;
    const std::string bytes = mKitchen.bytes();
    server.on("/404.orvlibz", FaultReply::status(404, bytes));
    server.on("/cut.orvlibz", FaultReply::ok(bytes).cutAt(bytes.size() / 2));
    server.on("/html.orvlibz", FaultReply::ok("<html>sign in</html>"));
    server.on("/half.orvlibz", FaultReply::ok(bytes.substr(0, bytes.size() / 2)));
    server.on("/good.orvlibz", FaultReply::ok(bytes));
    const auto unpackFrom = [&](const char* target) {
        return LibraryImport::unpackArchivedLibrary(fileString(server.url(target)), mProgress);
    };
    EXPECT_EQ(unpackFrom("/404.orvlibz"), UnpackResult());
    EXPECT_EQ(unpackFrom("/cut.orvlibz"), UnpackResult());
    EXPECT_THROW(unpackFrom("/html.orvlibz"), std::runtime_error);
    EXPECT_THROW(unpackFrom("/half.orvlibz"), std::runtime_error);
    EXPECT_THAT(temporaryFiles(), IsEmpty());
    const UnpackResult good = unpackFrom("/good.orvlibz");
    EXPECT_EQ(test::readFile(good.first.second), test::sampleBytes(4000, 2));
    EXPECT_THAT(temporaryFiles(), testing::SizeIs(2));
}

TEST_F(LibraryImportBadInputTest, fullDiskLeavesTheOldArchiveAndNoPieces)
{
    ArchiveBuilder large;
    large.add("large.png", test::sampleBytes(600000, 9)).method = ArchiveMember::kStored;
    large.add("Kitchen.orvlib", test::sampleBytes(600000, 8));
    const fileString source = large.write(mFolder, "work/extracted.zip");
    const fileString archive = large.write(mFolder, "work/Kitchen.orvlibz");
    fs::create_directories(mFolder.file("disk").toNativeString());
    std::string reason;
    const auto end = test::runOnSmallDisk(
        mFolder.file("disk").toNativeString(), 1024,
        [&] {
            const fileString old = mOld.write(mFolder, "disk/textures/Kitchen.zip");
            const fileString beside = large.write(mFolder, "disk/Kitchen.orvlibz");
            if (LibraryImport::moveArchivedTextures(source, old, mProgress))
                return 1;
            if (test::readFile(old) != mOld.bytes() || source.pathExists())
                return 2;
            try {
                LibraryImport::unpack(beside, false, mProgress);
                return 3;
            } catch (const std::exception&) {
            }
            return test::listTree(mFolder.file("disk").toNativeString()).size() == 3 ? 0 : 4;
        },
        reason);
    if (!end) // only the superuser may mount a small disk
        GTEST_SKIP() << reason;
    EXPECT_EQ(end->status, 0);
}

TEST_F(LibraryImportBadInputTest, foldersWithoutRightsFailAndChangeNothing)
{
    fs::permissions(mFolder.path(), fs::perms::all);
    mOld.write(mFolder, "textures/Kitchen.zip");
    mKitchen.write(mFolder, "locked/Kitchen.orvlibz");
    mKitchen.write(mFolder, "open/extracted.zip");
    fs::permissions(mFolder.file("open").toNativeString(), fs::perms::all);
    const auto setRights = [&](fs::perms rights) {
        for (const char* folder : {"textures", "locked"})
            fs::permissions(mFolder.file(folder).toNativeString(), rights);
    };
    setRights(fs::perms::owner_read | fs::perms::owner_exec | fs::perms::others_read |
              fs::perms::others_exec);
    const test::ChildEnd end = test::runWithoutRights([&] {
        const fileString extracted = mFolder.file("open/extracted.zip");
        if (LibraryImport::moveArchivedTextures(extracted, destination(), mProgress) ||
            extracted.pathExists())
            return 1;
        mKitchen.write(mFolder, "open/extracted.zip");
        if (LibraryImport::moveArchivedTextures(extracted, mFolder.file("textures/New.zip"), mProgress) ||
            LibraryImport::moveArchivedTextures(mKitchen.write(mFolder, "open/extracted.zip"),
                                                mFolder.file("locked/new/New.zip"), mProgress))
            return 2;
        try {
            LibraryImport::unpack(mFolder.file("locked/Kitchen.orvlibz"), false, mProgress);
            return 3;
        } catch (const std::exception&) {
            return 0;
        }
    });
    setRights(fs::perms::owner_all);
    EXPECT_EQ(end.status, 0);
    EXPECT_THAT(test::listTree(mFolder.file("textures").toNativeString()), ElementsAre("Kitchen.zip"));
    EXPECT_THAT(test::listTree(mFolder.file("locked").toNativeString()), ElementsAre("Kitchen.orvlibz"));
    EXPECT_TRUE(test::readFile(destination()) == mOld.bytes());
}
