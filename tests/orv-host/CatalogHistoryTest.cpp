#include "OrvHost/history/CatalogHistory.h"

#include <filesystem>

#include <gmock/gmock.h>

#include "tests/orv-host/HostedTest.h"

namespace fs = std::filesystem;

using OrvHost::CatalogCategory;
using OrvHost::CatalogHistory;
using OrvHost::CatalogPlace;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

const CatalogPlace kDoors{CatalogCategory::Core, "Doors.orvlib"};
const CatalogPlace kGarden{CatalogCategory::Bonus, "Garden.orvlib"};
const CatalogPlace kGardenFiles{CatalogCategory::Referenced, "Garden.zip"};

class CatalogHistoryTest : public test::HostedTest
{
protected:
    /// Replaces a file as an update does: keeps the old version, then renames the new file over it.
    void replace(const CatalogPlace& place, const std::string& tag, const std::string& content)
    {
        std::string reason;
        ASSERT_TRUE(history.keep(place, tag, reason)) << reason;
        fs::rename(folder.write("new", content).toNativeString(), place.path().toNativeString());
    }
    std::vector<std::string> versions(const CatalogPlace& place) const
    {
        std::vector<std::string> names;
        for (const OrvHost::FormerVersion& version : history.versions(place))
            names.push_back(version.version);
        return names;
    }
    static std::vector<std::string> files(const CatalogPlace& place)
    {
        return test::listTree(CatalogHistory::folderOf(place).toNativeString());
    }

    CatalogHistory history;
};

} // namespace

TEST_F(CatalogHistoryTest, formerVersionsAreListedNewestFirst)
{
    replace(kDoors, "none", "one"); // there is no old version yet
    EXPECT_THAT(versions(kDoors), IsEmpty());
    replace(kDoors, "1", "two");
    replace(kDoors, "2", "three");
    EXPECT_THAT(versions(kDoors), ElementsAre("2", "1"));
    const std::vector<OrvHost::FormerVersion> found = history.versions(kDoors);
    EXPECT_EQ(3, found[0].bytes);
    EXPECT_EQ("two", test::readFile(found[0].file));
    EXPECT_EQ("one", test::readFile(found[1].file));
    EXPECT_LT(found[1].replaced, found[0].replaced);
}

TEST_F(CatalogHistoryTest, otherUsersMayReadWhatIsKeptAsTheyMayTheCatalogs)
{
    replace(kDoors, "", "one");
    replace(kDoors, "1", "two");
    for (const fileString& kept : {CatalogHistory::folder(), CatalogHistory::folderOf(kDoors)})
        EXPECT_EQ(fs::status(folder.path() + "/root/core").permissions(),
                  fs::status(kept.toNativeString()).permissions());
}

TEST_F(CatalogHistoryTest, aVersionWithoutATagIsToldByItsContents)
{
    replace(kDoors, "", "hello");
    replace(kDoors, "", "second");
    replace(kDoors, std::string(300, 't'), "third");
    EXPECT_THAT(versions(kDoors), ElementsAre("352f7829a2384b001cc12b0c2613c756454a1f6a",
                                              "aaf4c61ddcc5e8a2dabede0f3b482cd9aea9434d"));
}

TEST_F(CatalogHistoryTest, tagsOfAnyBytesComeBack)
{
    const std::string tag = "v/1 \"%41\xC3\xBC\r.orvlib";
    replace(kDoors, "", "one");
    replace(kDoors, tag, "two");
    EXPECT_THAT(versions(kDoors), ElementsAre(tag));
    history.settle();
    EXPECT_THAT(versions(kDoors), ElementsAre(tag));
}

TEST_F(CatalogHistoryTest, installedVersionIsNoFormerVersion)
{
    folder.write("root/core/Doors.orvlib", "one");
    std::string reason;
    ASSERT_TRUE(history.keep(kDoors, "1", reason));
    EXPECT_THAT(files(kDoors), SizeIs(1)) << "the update dies here";
    EXPECT_THAT(versions(kDoors), IsEmpty());
    ASSERT_TRUE(history.keep(kDoors, "1", reason));
    EXPECT_THAT(files(kDoors), SizeIs(1)) << "one link, however often it is kept";
    history.settle();
    EXPECT_FALSE(CatalogHistory::folder().pathExists()) << "no empty folders are left";
    EXPECT_EQ("one", test::readFile(folder.file("root/core/Doors.orvlib")));
}

TEST_F(CatalogHistoryTest, aCopyOfWhatIsStillInItsPlaceIsMadeOnce)
{
    folder.write("root/core/Doors.orvlib", "one");
    std::string reason;
    ASSERT_TRUE(history.keep(kDoors, "1", reason));
    // Simulates a file system without hard links, where the kept version is a copy.
    const fs::path kept = CatalogHistory::folderOf(kDoors).toNativeString() + "/" + files(kDoors).at(0);
    const fs::path copy = kept.string() + ".copy";
    fs::copy_file(kept, copy);
    fs::rename(copy, kept);
    ASSERT_EQ(1U, fs::hard_link_count(kept));
    ASSERT_TRUE(history.keep(kDoors, "1", reason))
        << "the new one could not be put in place, and comes again";
    EXPECT_THAT(files(kDoors), SizeIs(1));
    fs::rename(folder.write("new", "two").toNativeString(), kDoors.path().toNativeString());
    EXPECT_THAT(versions(kDoors), ElementsAre("1"));
}

TEST_F(CatalogHistoryTest, settlingKeepsTheNewestVersionsOnly)
{
    for (const char* tag : {"0", "1", "2", "3", "4", "5"})
        replace(kDoors, tag, std::string("after ") + tag);
    history.settle();
    EXPECT_THAT(versions(kDoors), ElementsAre("5", "4", "3"));
    CatalogHistory({1, 1 << 20}).settle();
    EXPECT_THAT(versions(kDoors), ElementsAre("5"));
    CatalogHistory({0, 0}).settle();
    EXPECT_THAT(versions(kDoors), ElementsAre("5")) << "the newest always stays";
}

TEST_F(CatalogHistoryTest, versionThatWasKeptTwiceStaysOnce)
{
    replace(kDoors, "", "one");
    replace(kDoors, "1", "two");
    replace(kDoors, "2", "three");
    const std::string oldest = history.versions(kDoors).at(1).file.toNativeString();
    const std::string kept = CatalogHistory::folderOf(kDoors).toNativeString();
    fs::create_hard_link(oldest, kept + "/29991231T000000001=1.orvlib");
    fs::create_hard_link(oldest, kept + "/29991231T000000002=3.orvlib");
    history.settle();
    EXPECT_THAT(versions(kDoors), ElementsAre("3", "1", "2"));
}

TEST_F(CatalogHistoryTest, theOldestGoFirstWhenThereIsTooMuchInAll)
{
    replace(kDoors, "", std::string(100, '1'));
    replace(kDoors, "d1", std::string(100, '2'));
    replace(kGarden, "", std::string(100, '1'));
    replace(kGarden, "g1", std::string(100, '2'));
    replace(kDoors, "d2", std::string(100, '3'));
    replace(kGarden, "g2", std::string(100, '3'));
    CatalogHistory({3, 300}).settle();
    EXPECT_THAT(versions(kDoors), ElementsAre("d2"));
    EXPECT_THAT(versions(kGarden), ElementsAre("g2", "g1"));
    CatalogHistory({3, 10}).settle();
    EXPECT_THAT(versions(kDoors), ElementsAre("d2"));
    EXPECT_THAT(versions(kGarden), ElementsAre("g2"));
}

TEST_F(CatalogHistoryTest, versionThatComesBackIsNoFormerVersion)
{
    replace(kDoors, "", "first");
    replace(kDoors, "1", "other");
    replace(kDoors, "2", "first");
    EXPECT_THAT(versions(kDoors), ElementsAre("2"));
    history.settle();
    EXPECT_THAT(files(kDoors), SizeIs(1));
    EXPECT_THAT(versions(kDoors), ElementsAre("2"));
}

TEST_F(CatalogHistoryTest, aTagThatTheHashFileShouldNotHaveAnyMoreIsGivenToOneVersionOnly)
{
    replace(kDoors, "", "one");
    replace(kDoors, "1", "two"); // the update ends before it writes the hash file
    replace(kDoors, "1", "three");
    EXPECT_THAT(versions(kDoors), ElementsAre("ad782ecdac770fc6eb9a62e44f90873fb97fb26b", "1"));
}

TEST_F(CatalogHistoryTest, contentsAreComparedToTheLastByte)
{
    const std::string content(70000, 'x');
    const fileString one = folder.write("one", content + "1");
    EXPECT_TRUE(CatalogHistory::hasSameContents(one, one));
    EXPECT_TRUE(CatalogHistory::hasSameContents(one, folder.write("same", content + "1")));
    EXPECT_FALSE(CatalogHistory::hasSameContents(one, folder.write("other", content + "2")));
    EXPECT_FALSE(CatalogHistory::hasSameContents(one, folder.write("longer", content + "11")));
    EXPECT_FALSE(CatalogHistory::hasSameContents(folder.file("missing"), folder.file("missing too")));
    EXPECT_TRUE(CatalogHistory::hasSameContents(folder.write("empty", ""), folder.write("empty too", "")));
}

TEST_F(CatalogHistoryTest, aCatalogTakesAlongTheArchiveThatItsSuccessorReplaces)
{
    replace(kGarden, "", "catalog 1");
    replace(kGardenFiles, "", "files 1");
    replace(kGardenFiles, "",
            "files 2"); // replaced before the catalog
    replace(kGarden, "1", "catalog 2");
    history.settle();
    const std::vector<OrvHost::FormerVersion> found = history.versions(kGarden);
    ASSERT_THAT(found, SizeIs(1));
    EXPECT_EQ("files 1", test::readFile(found[0].companion));
    EXPECT_THAT(files(kGarden), SizeIs(2));

    replace(kGarden, "2", "catalog 3");
    CatalogHistory({1, 1 << 20}).settle();
    EXPECT_THAT(files(kGarden), SizeIs(2)) << "the companion goes with its version";
    replace(kGarden, "3", "catalog 4");
    CatalogHistory({3, 1}).settle();
    EXPECT_THAT(files(kGarden), SizeIs(2)) << "also where there is too much in all";
}

TEST_F(CatalogHistoryTest, archivesCountAndGoWithTheirVersionsWhereThereIsTooMuchInAll)
{
    std::string reason;
    for (const std::string number : {"1", "2"}) {
        const fileString catalog = folder.write("new.orvlib", "catalog " + number);
        const fileString archive = folder.write("new.zip", "files " + number);
        ASSERT_TRUE(history.add(kGarden, number, catalog, archive, reason)) << reason;
    }
    constexpr std::int64_t kBoth = 2 * (sizeof "catalog 1" - 1 + sizeof "files 1" - 1);
    CatalogHistory({3, kBoth}).settle();
    EXPECT_THAT(files(kGarden), SizeIs(4));
    CatalogHistory({3, kBoth - 1}).settle();
    EXPECT_THAT(versions(kGarden), ElementsAre("2"));
    EXPECT_THAT(files(kGarden), SizeIs(2));
}

TEST_F(CatalogHistoryTest, aCatalogKeepsItsArchiveWhenAnUpdateReplacedOnlyThat)
{
    replace(kGarden, "", "catalog 1");
    replace(kGardenFiles, "", "files 1");
    replace(kGardenFiles, "", "files 2"); // the catalog that came with it was refused
    replace(kGardenFiles, "", "files 2"); // the next update brings both again
    replace(kGarden, "1", "catalog 2");
    history.settle();
    EXPECT_EQ("files 1", test::readFile(history.versions(kGarden).front().companion));
    replace(kGarden, "2", "catalog 3"); // with the same archive
    history.settle();
    EXPECT_EQ("files 2", test::readFile(history.versions(kGarden).front().companion));
}

TEST_F(CatalogHistoryTest, aCatalogIsNotKeptWithAnArchiveThatMayBeAnotherVersions)
{
    folder.write("root/bonus/Garden.orvlib", "catalog 1");
    folder.write("root/referenced/Garden.zip", "files 2");
    folder.write("root/history/referenced/Garden.zip", "a folder that cannot be read");
    std::string reason;
    EXPECT_FALSE(history.keep(kGarden, "1", reason));
    EXPECT_THAT(reason, testing::StartsWith("cannot read "));
    EXPECT_THAT(versions(kGarden), IsEmpty());
}

TEST_F(CatalogHistoryTest, strayFilesAreSwept)
{
    replace(kGarden, "", "one");
    replace(kGarden, "1", "two");
    const std::vector<std::string> before = files(kGarden);
    folder.write("root/history/bonus/Garden.orvlib/20200101T000000000=x.zip", "its catalog is gone");
    folder.write("root/history/bonus/Garden.orvlib/half.copy", "x");
    history.settle();
    EXPECT_EQ(before, files(kGarden));
}

TEST_F(CatalogHistoryTest, emptyFoldersGoAndLinksAreNotFollowed)
{
    namespace fs = std::filesystem;
    folder.write("root/history/keep", "");
    fs::create_directories(folder.path() + "/root/history/a/b");
    fs::create_directories(folder.path() + "/elsewhere/empty");
    fs::create_directory_symlink(folder.path() + "/elsewhere", folder.path() + "/root/history/link");
    history.settle();
    EXPECT_FALSE(fs::exists(folder.path() + "/root/history/a"));
    EXPECT_TRUE(fs::exists(folder.path() + "/elsewhere/empty"));
}

TEST_F(CatalogHistoryTest, aFolderInTheWayIsToldAndNothingIsLost)
{
    folder.write("root/core/Doors.orvlib", "one");
    folder.write("root/history/core", "no folder");
    std::string reason;
    EXPECT_FALSE(history.keep(kDoors, "1", reason));
    EXPECT_THAT(reason, testing::HasSubstr("history/core"));
    EXPECT_EQ("one", test::readFile(folder.file("root/core/Doors.orvlib")));
}
