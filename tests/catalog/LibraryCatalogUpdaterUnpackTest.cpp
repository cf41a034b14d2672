#include "tests/catalog/CatalogTest.h"

#include "tests/support/ArchiveBuilder.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

const std::string kDatabase = test::sampleBytes(9000, 1);
const std::string kTexture = test::sampleBytes(3000, 2);

/// Full runs over bonus catalogs whose stored tag is "old"; there are no core catalogs.
class LibraryCatalogUpdaterUnpack : public test::CatalogTest
{
protected:
    LibraryCatalogUpdaterUnpack() { addBonus("Lamps"); }

    void addBonus(const std::string& stem)
    {
        mArguments.bonus.insert(installed("bonus/" + stem + ".orvlib", "old content"));
        mHashLines += stem + ".orvlib:old\n";
        installed("bonus/catalog_hash.txt", mHashLines);
    }

    static std::string archive(const std::vector<std::pair<std::string, std::string>>& members)
    {
        test::ArchiveBuilder builder;
        for (const auto& [name, content] : members)
            builder.add(name, content);
        return builder.bytes();
    }

    static std::string wholeArchive()
    {
        return archive({{"inside.orvlib", kDatabase}, {"brass.png", kTexture}});
    }

    /// Restores the state before the first run, then runs with this archive as the bonus catalog.
    void runWith(const std::string& archiveBytes)
    {
        mRecorder = std::make_unique<test::SlotRecorder>();
        mRecorder->swapsIn = false;
        installed("bonus/catalog_hash.txt", mHashLines);
        serve("Lamps.orvlibz", archiveBytes, "new").headerLines =
            "ETag: \"new\"\r\nContent-Length: 12000\r\n";
        run();
    }

    std::string mHashLines;
};

} // namespace

TEST_F(LibraryCatalogUpdaterUnpack, aBonusArchiveGivesACatalogAndAReferencedArchive)
{
    serve("Lamps.orvlibz", wholeArchive(), "new");
    run();
    EXPECT_THAT(mRecorder->argumentsOf("onCatalogUpdatedEvent"),
                ElementsAre(path("bonus/Lamps.orvlib").toNativeString() + ", " +
                            download("bonus", "Lamps.orvlib").toNativeString()));
    EXPECT_EQ(content("bonus/Lamps.orvlib"), kDatabase);
    EXPECT_TRUE(exists("referenced/Lamps.zip"));
    EXPECT_THAT(mHost.resetFolders(), ElementsAre(path("referenced/").toNativeString()));
    EXPECT_THAT(test::listTree(download("bonus", "").toNativeString()), IsEmpty());
    EXPECT_EQ(content("bonus/catalog_hash.txt"), "Lamps.orvlib:new\n");
    EXPECT_EQ(mRecorder->texts().back(), "closeCatalogUpdateEvent(2, 0x10369189, [Lamps])");
    EXPECT_EQ(logText(), "");
}

TEST_F(LibraryCatalogUpdaterUnpack, aManufacturerArchiveGoesToTheManufacturersFolder)
{
    mArguments.bonus.clear();
    mArguments.manufacturer = {path("manufacturer/Acme.orvlib")};
    serve("Acme.orvlibz", wholeArchive(), "new");
    run();
    EXPECT_EQ(content("manufacturer/Acme.orvlib"), kDatabase);
    EXPECT_TRUE(exists("referenced/Acme.zip"));
    EXPECT_EQ(content("manufacturer/catalog_hash.txt"), "Acme.orvlib:new\n");
}

TEST_F(LibraryCatalogUpdaterUnpack, anArchiveOfADatabaseAloneBringsNoReferencedArchive)
{
    runWith(archive({{"inside.orvlib", kDatabase}}));
    EXPECT_EQ(result(), 2);
    EXPECT_THAT(test::listTree(path("referenced").toNativeString()), IsEmpty());
    EXPECT_THAT(mHost.resetFolders(), IsEmpty());
}

TEST_F(LibraryCatalogUpdaterUnpack, aSoundArchiveWithoutADatabaseCountsAsInstalled)
{
    runWith(archive({{"brass.png", kTexture}}));
    EXPECT_EQ(mRecorder->count("onCatalogUpdatedEvent"), 0u);
    EXPECT_TRUE(exists("referenced/Lamps.zip"));
    EXPECT_EQ(content("bonus/catalog_hash.txt"), "Lamps.orvlib:new\n");
    EXPECT_EQ(mRecorder->texts().back(), "closeCatalogUpdateEvent(2, 0x10369189, [Lamps])");
}

TEST_F(LibraryCatalogUpdaterUnpack, anEmptyArchiveIsRememberedAndInstallsNothing)
{
    runWith(archive({}));
    EXPECT_EQ(content("bonus/catalog_hash.txt"), "Lamps.orvlib:new\n");
    EXPECT_EQ(mRecorder->texts().back(), "closeCatalogUpdateEvent(3, 0x10369189, [])");
}

TEST_F(LibraryCatalogUpdaterUnpack, ofThreeDatabasesTheLastIsInstalled)
{
    runWith(archive({{"a.orvlib", "first"}, {"b.orvlib", "second"}, {"c.orvlib", kDatabase}}));
    EXPECT_EQ(test::readFile(download("bonus", "Lamps.orvlib")), kDatabase);
    EXPECT_EQ(mRecorder->count("onCatalogUpdatedEvent"), 1u);
}

TEST_F(LibraryCatalogUpdaterUnpack, anUnsoundArchiveIsNotInstalledAndStopsTheLoop)
{
    addBonus("Zebra");
    serve("Zebra.orvlibz", wholeArchive(), "new");
    runWith("this is no archive" + std::string(5000, '.'));
    EXPECT_THAT(logMessages(), ElementsAre("Unable to install:  Lamps.orvlib\n"));
    EXPECT_THAT(mCurl.asked("GET"), ElementsAre("Lamps.orvlibz"));
    EXPECT_THAT(test::listTree(download("bonus", "").toNativeString()), IsEmpty());
    EXPECT_EQ(content("bonus/catalog_hash.txt"), "Lamps.orvlib:old\nZebra.orvlib:old\n");
    EXPECT_EQ(content("bonus/Lamps.orvlib"), "old content");
    EXPECT_EQ(mRecorder->texts().back(), "closeCatalogUpdateEvent(0, 0x10369189, [])");
}

TEST_F(LibraryCatalogUpdaterUnpack, aCutArchiveIsNeverInstalled)
{
    const std::string whole = wholeArchive();
    for (std::size_t cut = 0; cut < 200; ++cut) {
        const std::size_t length = 1 + cut * (whole.size() - 2) / 199;
        runWith(whole.substr(0, length));
        ASSERT_EQ(mRecorder->closings(), 1u) << length;
        ASSERT_EQ(result(), 0) << length;
        ASSERT_EQ(mRecorder->count("onCatalogUpdatedEvent"), 0u) << length;
        ASSERT_EQ(content("bonus/catalog_hash.txt"), mHashLines) << length;
        ASSERT_THAT(test::listTree(download("bonus", "").toNativeString()), IsEmpty()) << length;
        ASSERT_THAT(test::listTree(path("referenced").toNativeString()), IsEmpty()) << length;
    }
}

TEST_F(LibraryCatalogUpdaterUnpack, aFlippedByteNeverBringsAnotherDatabase)
{
    const std::string whole = wholeArchive();
    for (std::size_t flip = 0; flip < 200; ++flip) {
        const std::size_t place = flip * (whole.size() - 1) / 199;
        std::string flipped = whole;
        flipped[place] = static_cast<char>(flipped[place] ^ 0x10);
        runWith(flipped);
        ASSERT_EQ(mRecorder->closings(), 1u) << place;
        ASSERT_EQ(content("bonus/catalog_hash.txt"),
                  result() == 0 ? mHashLines : std::string("Lamps.orvlib:new\n"))
            << place;
        for (const FileStringPair& files : mRecorder->updatedFiles())
            ASSERT_EQ(test::readFile(files.second), kDatabase) << place;
    }
}

TEST_F(LibraryCatalogUpdaterUnpack, aCleanRunAfterAnUnsoundArchiveInstallsIt)
{
    runWith(wholeArchive().substr(0, 5000));
    mRecorder = std::make_unique<test::SlotRecorder>();
    serve("Lamps.orvlibz", wholeArchive(), "new");
    run();
    EXPECT_EQ(result(), 2);
    EXPECT_EQ(content("bonus/Lamps.orvlib"), kDatabase);
}
