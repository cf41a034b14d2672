#include "OrvHost/update/CatalogSwapper.h"

#include <thread>

#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <gmock/gmock.h>

#include "tests/orv-host/HostedTest.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/SampleDatabase.h"

namespace {

const char* const kPage = "<html>Please sign in.</html>";

/// The database check is off, so that catalogs need not be databases. Tests of the check turn it on.
class CatalogSwapperTest : public test::HostedTest
{
protected:
    CatalogSwapperTest() { swapper.setDatabaseCheck(false); }

    /// Makes a new catalog with one item and puts it into place.
    bool swapInCatalogWith(const char* item)
    {
        const fileString file = folder.file("new");
        {
            QSqlDatabase database = QSqlDatabase::addDatabase("QSQLITE", "test");
            database.setDatabaseName(QString::fromStdString(file.toNativeString()));
            EXPECT_TRUE(database.open());
            QSqlQuery query(database);
            for (const std::string& statement :
                 {std::string("CREATE TABLE item (id INTEGER PRIMARY KEY, name TEXT)"),
                  "INSERT INTO item VALUES (1, '" + std::string(item) + "')"})
                EXPECT_TRUE(query.exec(statement.c_str())) << query.lastError().text().toStdString();
        }
        QSqlDatabase::removeDatabase("test");
        return swapper.swapIn(folder.file("root/core/Doors.orvlib"), file);
    }

    OrvHost::CatalogSwapper swapper;
};

} // namespace

TEST_F(CatalogSwapperTest, failedSwapLosesItsHashLineAfterwards)
{
    folder.write("root/core/Doors.orvlib/in the way", "x");
    folder.write("root/core/catalog_hash.txt", "Doors.orvlib:new\nRoofs.orvlib:same\n");
    EXPECT_FALSE(swapper.swapIn(folder.file("root/core/Doors.orvlib"), folder.write("new", "content")));
    EXPECT_TRUE(swapper.swapIn(folder.file("root/core/Roofs.orvlib"), folder.write("roofs", "content")));
    ASSERT_EQ(1U, swapper.failed().size());
    EXPECT_EQ(folder.file("root/core/Doors.orvlib"), swapper.failed()[0].destination);
    EXPECT_EQ("cannot replace " + folder.path() + "/root/core/Doors.orvlib", swapper.failed()[0].reason);
    EXPECT_TRUE(swapper.forgetFailed().empty());
    EXPECT_EQ("Roofs.orvlib:same\n", test::readFile(folder.file("root/core/catalog_hash.txt")));
}

TEST_F(CatalogSwapperTest, lineInAHashFileThatCannotBeReadRemains)
{
    folder.write("root/core/Doors.orvlib/in the way", "x");
    folder.write("root/core/catalog_hash.txt/in the way", "x");
    const fileString doors = folder.file("root/core/Doors.orvlib");
    EXPECT_FALSE(swapper.swapIn(doors, folder.write("new", "content")));
    EXPECT_THAT(swapper.forgetFailed(), testing::ElementsAre(doors));
}

TEST_F(CatalogSwapperTest, recoveryKeepsATagThatIsNoChecksumOfTheFormerCatalog)
{
    const std::string former(40, 'a');
    folder.write("root/core/catalog_hash.txt", "Doors.orvlib:v17\nRoofs.orvlib:" + former + "\n");
    folder.write("root/temp/orv-library.downloads.core/Doors.orvlib", "new");
    folder.write("root/temp/orv-library.downloads.core/Roofs.orvlib", "new");
    swapper.recover();
    EXPECT_EQ(2U, swapper.swappedIn().size());
    EXPECT_EQ("Doors.orvlib:v17\n", test::readFile(folder.file("root/core/catalog_hash.txt")));
}

TEST_F(CatalogSwapperTest, recoveryLeavesOnlyEmptyFiles)
{
    folder.write("root/core/Doors.orvlib", "former");
    folder.write("root/temp/orv-library.downloads.core/Doors.orvlib", "");
    folder.write("root/temp/orv-library.downloads.core/Roofs.orvlib", "r");
    swapper.recover();
    EXPECT_EQ("former", test::readFile(folder.file("root/core/Doors.orvlib")));
    EXPECT_EQ("r", test::readFile(folder.file("root/core/Roofs.orvlib")));
}

TEST_F(CatalogSwapperTest, otherFilesThanDatabasesAreRefusedAndRemoved)
{
    folder.write("root/core/Doors.orvlib", "former");
    folder.write("root/core/catalog_hash.txt", "Doors.orvlib:new\n");
    const fileString page = folder.write("page", kPage);
    swapper.setDatabaseCheck(true);
    EXPECT_FALSE(swapper.swapIn(folder.file("root/core/Doors.orvlib"), page));
    ASSERT_EQ(1U, swapper.failed().size());
    EXPECT_EQ("the new file is no database", swapper.failed()[0].reason);
    EXPECT_FALSE(page.pathExists());
    EXPECT_EQ("former", test::readFile(folder.file("root/core/Doors.orvlib")));
    EXPECT_TRUE(swapper.forgetFailed().empty());
    EXPECT_EQ("", test::readFile(folder.file("root/core/catalog_hash.txt")));
}

TEST_F(CatalogSwapperTest, databaseTakesThePlaceOfTheFormerCatalog)
{
    folder.write("root/core/Doors.orvlib", "former");
    const fileString newFile = folder.write("new", test::sampleDatabase("doors"));
    swapper.setDatabaseCheck(true);
    EXPECT_TRUE(swapper.swapIn(folder.file("root/core/Doors.orvlib"), newFile));
    EXPECT_EQ(test::sampleDatabase("doors"), test::readFile(folder.file("root/core/Doors.orvlib")));
}

TEST_F(CatalogSwapperTest, recoveryLeavesWhatIsNoDatabaseAside)
{
    folder.write("root/core/Doors.orvlib", "former");
    folder.write("root/core/catalog_hash.txt", "Doors.orvlib:v17\n");
    const fileString left = folder.write("root/temp/orv-library.downloads.core/Doors.orvlib", kPage);
    swapper.setDatabaseCheck(true);
    swapper.recover();
    EXPECT_TRUE(swapper.swappedIn().empty());
    EXPECT_FALSE(left.pathExists());
    EXPECT_EQ("former", test::readFile(folder.file("root/core/Doors.orvlib")));
    EXPECT_EQ("", test::readFile(folder.file("root/core/catalog_hash.txt")));
}

TEST_F(CatalogSwapperTest, examinedFileIsNotLookedAtAgain)
{
    const fileString page = folder.write("page", kPage),
                     sound = folder.write("sound", test::sampleDatabase("s"));
    swapper.setDatabaseCheck(true);
    std::thread([&] {
        swapper.examine(page);
        swapper.examine(sound);
    }).join();
    folder.write("page", test::sampleDatabase("s"));
    folder.write("sound", kPage);
    EXPECT_FALSE(swapper.swapIn(folder.file("root/core/Page.orvlib"), page));
    EXPECT_EQ("the new file is no database", swapper.failed()[0].reason);
    EXPECT_TRUE(swapper.swapIn(folder.file("root/core/Sound.orvlib"), sound));
    // The result of an examination is used once, because the next file of this name is another file.
    folder.write("page", test::sampleDatabase("s"));
    folder.write("sound", kPage);
    EXPECT_TRUE(swapper.swapIn(folder.file("root/core/Page.orvlib"), page));
    EXPECT_FALSE(swapper.swapIn(folder.file("root/core/Other.orvlib"), sound));
}

TEST_F(CatalogSwapperTest, withoutTheCheckNothingIsExamined)
{
    const fileString page = folder.write("page", kPage);
    swapper.examine(page);
    EXPECT_TRUE(swapper.swapIn(folder.file("root/core/Page.orvlib"), page));
}

TEST_F(CatalogSwapperTest, sameFileAgainIsNoNews)
{
    ASSERT_TRUE(swapInCatalogWith("Oak"));
    ASSERT_TRUE(swapInCatalogWith("Elm"));
    EXPECT_EQ(2U, swapper.takeNews().size());
    ASSERT_TRUE(swapInCatalogWith("Elm"));
    EXPECT_TRUE(swapper.takeNews().empty());
}

TEST_F(CatalogSwapperTest, newFileOnAnotherDiskLeavesIt)
{
    const test::OtherDevice other;
    if (other.path().empty())
        GTEST_SKIP() << "there is no other disk";
    const fileString file(other.path() + "/new");
    test::writeFile(file.toNativeString(), "content");
    EXPECT_TRUE(swapper.swapIn(folder.file("root/core/Doors.orvlib"), file));
    EXPECT_FALSE(file.pathExists());
}
