#include "OrvLibrary/catalog/CatalogHashFile_p.h"

#include <sys/stat.h>
#include <unistd.h>

#include "tests/catalog/CatalogTest.h"

using namespace LibraryCatalogUpdate;

namespace {

class CatalogHashFile : public test::CatalogTest
{
protected:
    /// Reads a core hash file with this text. Returns "name=tag" for each record.
    std::vector<std::string> read(const std::string& text)
    {
        installed("core/catalog_hash.txt", text);
        CatalogMap catalogs;
        readCatalogHashMap(catalogs, Library::kCoreLibrary);
        std::vector<std::string> entries;
        for (const auto& [name, record] : catalogs)
            entries.push_back(name.toNativeString() + "=" + record.localHash);
        return entries;
    }

    static CatalogUpdateData record(const std::string& localHash, const std::string& serverETag,
                                    bool isInstalled, Library::LibraryCategory category)
    {
        CatalogUpdateData data;
        data.localHash = localHash;
        data.serverETag = serverETag;
        data.installed = isInstalled;
        data.category = category;
        return data;
    }
};

} // namespace

using testing::ElementsAre;
using testing::IsEmpty;

TEST_F(CatalogHashFile, liesInTheCategorysFolder)
{
    EXPECT_EQ(catalogHashFile(Library::kCoreLibrary), path("core/catalog_hash.txt"));
    EXPECT_EQ(catalogHashFile(Library::kManufacturerLibrary), path("manufacturer/catalog_hash.txt"));
    EXPECT_EQ(catalogHashFile(Library::kBonusLibrary), path("bonus/catalog_hash.txt"));
}

TEST_F(CatalogHashFile, aMissingFileCountsAsEmpty)
{
    CatalogMap catalogs;
    readCatalogHashMap(catalogs, Library::kCoreLibrary);
    EXPECT_TRUE(catalogs.empty());
}

TEST_F(CatalogHashFile, aFolderInItsPlaceCountsAsEmptyAndIsLeftAlone)
{
    ASSERT_EQ(mkdir(path("core/catalog_hash.txt").toNativeString().c_str(), 0755), 0);
    CatalogMap catalogs;
    readCatalogHashMap(catalogs, Library::kCoreLibrary);
    EXPECT_TRUE(catalogs.empty());
    catalogs[fileString("a.orvlib")] = record("x", "x", false, Library::kCoreLibrary);
    saveCatalogHashMap(catalogs, Library::kCoreLibrary);
    EXPECT_TRUE(exists("core/catalog_hash.txt"));
}

TEST_F(CatalogHashFile, aRecordStartsWithBothTagsAndDefaults)
{
    installed("core/Doors.orvlib", "x");
    installed("core/catalog_hash.txt", "Doors.orvlib:3f2a0c\n");
    CatalogMap catalogs;
    readCatalogHashMap(catalogs, Library::kCoreLibrary);
    ASSERT_EQ(catalogs.size(), 1u);
    const CatalogUpdateData& data = catalogs.at(fileString("Doors.orvlib"));
    EXPECT_EQ(data.localHash, "3f2a0c");
    EXPECT_EQ(data.serverETag, "3f2a0c");
    EXPECT_EQ(data.category, Library::kCoreLibrary);
    EXPECT_FALSE(data.installed);
    EXPECT_EQ(data.responseStatus, 0);
    EXPECT_EQ(data.spare, "");
}

TEST_F(CatalogHashFile, aRecordOfAnyHashFileSaysCore)
{
    installed("bonus/Lamps.orvlib", "x");
    installed("bonus/catalog_hash.txt", "Lamps.orvlib:1\n");
    CatalogMap catalogs;
    readCatalogHashMap(catalogs, Library::kBonusLibrary);
    EXPECT_EQ(catalogs.at(fileString("Lamps.orvlib")).category, Library::kCoreLibrary);
}

TEST_F(CatalogHashFile, blankLineEndsTheHashFile)
{
    for (const char* name : {"core/a.orvlib", "core/b.orvlib", "core/c.orvlib"})
        installed(name, "x");
    EXPECT_THAT(read("a.orvlib:1\nb.orvlib:2\n\nc.orvlib:3\n"), ElementsAre("a.orvlib=1", "b.orvlib=2"));
    EXPECT_THAT(read("\na.orvlib:1\n"), IsEmpty());
}

TEST_F(CatalogHashFile, aLineOfACarriageReturnIsNotBlank)
{
    installed("core/a.orvlib", "x");
    EXPECT_THAT(read("\r\na.orvlib:1\n"), ElementsAre("a.orvlib=1"));
}

TEST_F(CatalogHashFile, linesThatAreNotNameAndTagAreSkipped)
{
    installed("core/a.orvlib", "x");
    installed("core/b.orvlib", "x");
    for (const char* line : {"b.orvlib", "b.orvlib:", ":1", ":", "b.orvlib:1:2", "b.orvlib::2", "::b.orvlib"})
        EXPECT_THAT(read(std::string(line) + "\na.orvlib:1\n"), ElementsAre("a.orvlib=1")) << line;
}

TEST_F(CatalogHashFile, aLineWithoutItsLineFeedCounts)
{
    installed("core/a.orvlib", "x");
    EXPECT_THAT(read("a.orvlib:1"), ElementsAre("a.orvlib=1"));
}

TEST_F(CatalogHashFile, blanksTabsAndCarriageReturnsStayInTheTag)
{
    installed("core/a b.orvlib", "x");
    EXPECT_THAT(read("a b.orvlib: 1\t2 \r\n"), ElementsAre("a b.orvlib= 1\t2 \r"));
}

TEST_F(CatalogHashFile, aNulByteStaysInTheTagAndNamesNoFile)
{
    installed("core/a.orvlib", "x");
    EXPECT_THAT(read(std::string("a.orvlib:1\0002\n", 13)), ElementsAre(std::string("a.orvlib=1\0002", 12)));
    EXPECT_THAT(read(std::string("a\0.orvlib:1\n", 12)), IsEmpty());
}

TEST_F(CatalogHashFile, aFileThatIsGoneIsForgotten)
{
    installed("core/a.orvlib", "x");
    EXPECT_THAT(read("a.orvlib:1\ngone.orvlib:2\n"), ElementsAre("a.orvlib=1"));
}

TEST_F(CatalogHashFile, aZipIsLookedForInTheReferencedFilesFolder)
{
    installed("core/Here.zip", "x");
    installed("referenced/There.zip", "x");
    installed("referenced/Upper.ZIP", "x");
    EXPECT_THAT(read("Here.zip:1\nThere.zip:2\nUpper.ZIP:3\n"), ElementsAre("There.zip=2"));
}

TEST_F(CatalogHashFile, theLastLineOfANameCounts)
{
    installed("core/a.orvlib", "x");
    EXPECT_THAT(read("a.orvlib:1\na.orvlib:2\n"), ElementsAre("a.orvlib=2"));
}

TEST_F(CatalogHashFile, namesMayHoldAnythingButSeparators)
{
    const std::string longName = std::string(190, 'n') + ".orvlib";
    for (const std::string& name : {std::string("T\xc3\xbcren %41 &#+.orvlib"), longName,
                                    std::string("\xff\xfe.orvlib"), std::string(".orvlib")}) {
        installed("core/" + name, "x");
        EXPECT_THAT(read(name + ":1\n"), ElementsAre(name + "=1"));
    }
}

TEST_F(CatalogHashFile, installedRecordsCarryTheServicesTag)
{
    CatalogMap catalogs;
    catalogs[fileString("new.orvlib")] = record("old", "new", true, Library::kCoreLibrary);
    catalogs[fileString("same.orvlib")] = record("old", "new", false, Library::kCoreLibrary);
    saveCatalogHashMap(catalogs, Library::kCoreLibrary);
    EXPECT_EQ(content("core/catalog_hash.txt"), "new.orvlib:new\nsame.orvlib:old\n");
}

TEST_F(CatalogHashFile, recordsWithoutATagGetNoLine)
{
    CatalogMap catalogs;
    catalogs[fileString("a.orvlib")] = record("", "tag", false, Library::kCoreLibrary);
    catalogs[fileString("b.orvlib")] = record("old", "", true, Library::kCoreLibrary);
    saveCatalogHashMap(catalogs, Library::kCoreLibrary);
    EXPECT_EQ(content("core/catalog_hash.txt"), "");
}

TEST_F(CatalogHashFile, eachHashFileHoldsItsCategoryAlone)
{
    CatalogMap catalogs;
    catalogs[fileString("b.orvlib")] = record("1", "", false, Library::kBonusLibrary);
    catalogs[fileString("c.orvlib")] = record("2", "", false, Library::kCoreLibrary);
    catalogs[fileString("m.orvlib")] = record("3", "", false, Library::kManufacturerLibrary);
    for (const auto category : {Library::kCoreLibrary, Library::kBonusLibrary, Library::kManufacturerLibrary})
        saveCatalogHashMap(catalogs, category);
    EXPECT_EQ(content("core/catalog_hash.txt"), "c.orvlib:2\n");
    EXPECT_EQ(content("bonus/catalog_hash.txt"), "b.orvlib:1\n");
    EXPECT_EQ(content("manufacturer/catalog_hash.txt"), "m.orvlib:3\n");
}

TEST_F(CatalogHashFile, linesStandInTheOrderOfTheNames)
{
    for (const char* name : {"core/b.orvlib", "core/B.orvlib", "core/a.orvlib"})
        installed(name, "x");
    installed("core/catalog_hash.txt", "b.orvlib:1\nB.orvlib:2\na.orvlib:3\n");
    CatalogMap catalogs;
    readCatalogHashMap(catalogs, Library::kCoreLibrary);
    saveCatalogHashMap(catalogs, Library::kCoreLibrary);
    EXPECT_EQ(content("core/catalog_hash.txt"), "B.orvlib:2\na.orvlib:3\nb.orvlib:1\n");
}

TEST_F(CatalogHashFile, aMissingFolderIsPassedOverInSilence)
{
    ASSERT_EQ(rmdir(path("core").toNativeString().c_str()), 0);
    CatalogMap catalogs;
    catalogs[fileString("a.orvlib")] = record("1", "", false, Library::kCoreLibrary);
    saveCatalogHashMap(catalogs, Library::kCoreLibrary);
    EXPECT_FALSE(exists("core"));
    EXPECT_EQ(logText(), "");
}

TEST_F(CatalogHashFile, fileThatCannotBeWrittenKeepsItsLines)
{
    installed("core/catalog_hash.txt", "a.orvlib:old\n");
    ASSERT_EQ(chmod(path("core/catalog_hash.txt").toNativeString().c_str(), 0444), 0);
    CatalogMap catalogs;
    catalogs[fileString("a.orvlib")] = record("old", "new", true, Library::kCoreLibrary);
    saveCatalogHashMap(catalogs, Library::kCoreLibrary);
    EXPECT_EQ(content("core/catalog_hash.txt"), "a.orvlib:old\n") << "which costs one more download";
}
