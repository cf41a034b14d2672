#include "OrvHost/history/CatalogItems.h"

#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QStringList>
#include <gmock/gmock.h>

#include "tests/support/TempFolder.h"

namespace CatalogItems = OrvHost::CatalogItems;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class CatalogItemsTest : public testing::Test
{
protected:
    /// Writes a database made by these statements.
    fileString write(const std::string& name, const std::vector<const char*>& statements) const
    {
        const fileString file = folder.file(name);
        {
            QSqlDatabase database = QSqlDatabase::addDatabase("QSQLITE", "test");
            database.setDatabaseName(QString::fromStdString(file.toNativeString()));
            EXPECT_TRUE(database.open());
            for (const char* statement : statements) {
                QSqlQuery query(database);
                EXPECT_TRUE(query.exec(statement)) << query.lastError().text().toStdString();
            }
        }
        QSqlDatabase::removeDatabase("test");
        return file;
    }
    static std::vector<std::string> texts(const std::vector<CatalogItems::Item>& items)
    {
        std::vector<std::string> all;
        for (const CatalogItems::Item& item : items)
            all.push_back(std::to_string(item.id) + " " + item.name);
        return all;
    }

    test::TempFolder folder;
    const fileString former =
        write("former?x%41 \"'.orvlib",
              {"CREATE TABLE item (id INTEGER PRIMARY KEY, name TEXT, \"the \"\"width\" INTEGER, old TEXT)",
               "INSERT INTO item VALUES (1, 'Same', 10, 'x'), (2, 'Wider', 10, 'x'), (3, 'Gone', 10, 'x'), "
               "(4, 'Former name', 10, 'x'), (5, 'Unset', 10, 'x'), (9, 'Gone, too', 10, 'x')"});
    const fileString current = write(
        "current.orvlib",
        {"CREATE TABLE item (id INTEGER PRIMARY KEY, name TEXT, \"the \"\"width\" INTEGER, new TEXT)",
         "INSERT INTO item VALUES (1, 'Same', 10, 'y'), (2, 'Wider', 20, 'x'), (8, 'T\xC3\xBCr', 1, 'x'), "
         "(4, 'New name', 10, 'x'), (5, 'Unset', NULL, 'x'), (7, 'Added', 1, 'x')"});
};

} // namespace

TEST_F(CatalogItemsTest, itemsAreCounted)
{
    EXPECT_EQ(CatalogItems::count(former), 6);
    EXPECT_EQ(CatalogItems::count(write("empty.orvlib", {"CREATE TABLE item (id INTEGER)"})), 0);
}

TEST_F(CatalogItemsTest, otherFilesHaveNoCount)
{
    EXPECT_FALSE(CatalogItems::count(folder.file("missing.orvlib")));
    EXPECT_FALSE(CatalogItems::count(folder.write("page.orvlib", "a web page")));
    EXPECT_FALSE(CatalogItems::count(write("other.orvlib", {"CREATE TABLE other (id INTEGER)"})));
    EXPECT_FALSE(folder.file("missing.orvlib").pathExists());
}

TEST_F(CatalogItemsTest, versionsAreComparedByIdInTheColumnsOfBoth)
{
    const auto changes = CatalogItems::compare(former, current);
    ASSERT_TRUE(changes);
    EXPECT_THAT(texts(changes->added), ElementsAre("7 Added", "8 T\xC3\xBCr"));
    EXPECT_THAT(texts(changes->changed), ElementsAre("2 Wider", "4 New name", "5 Unset"));
    EXPECT_THAT(texts(changes->gone), ElementsAre("3 Gone", "9 Gone, too"));
}

TEST_F(CatalogItemsTest, versionThatIsTheSameHasNoChanges)
{
    const auto changes = CatalogItems::compare(former, former);
    ASSERT_TRUE(changes);
    EXPECT_TRUE(changes->empty());
}

TEST_F(CatalogItemsTest, allItemsOfANewCatalogAreAdded)
{
    const auto changes = CatalogItems::compare(fileString(), current);
    ASSERT_TRUE(changes);
    EXPECT_THAT(texts(changes->added),
                ElementsAre("1 Same", "2 Wider", "4 New name", "5 Unset", "7 Added", "8 T\xC3\xBCr"));
    EXPECT_THAT(changes->changed, IsEmpty());
    EXPECT_THAT(changes->gone, IsEmpty());
}

TEST_F(CatalogItemsTest, versionThatCannotBeReadIsNotCompared)
{
    const fileString page = folder.write("page.orvlib", "a web page");
    const fileString missing = folder.file("missing.orvlib");
    const fileString unnamed = write("unnamed.orvlib", {"CREATE TABLE item (id INTEGER PRIMARY KEY)"});
    for (const fileString& bad : {page, missing, unnamed}) {
        EXPECT_FALSE(CatalogItems::compare(former, bad)) << bad;
        EXPECT_FALSE(CatalogItems::compare(bad, current)) << bad;
        EXPECT_FALSE(CatalogItems::compare(fileString(), bad)) << bad;
    }
    EXPECT_FALSE(missing.pathExists());
}

TEST_F(CatalogItemsTest, noFileAppearsBesideACatalogWithAJournal)
{
    const fileString catalog =
        write("wal.orvlib", {"PRAGMA journal_mode=WAL", "CREATE TABLE item (id INTEGER)"});
    const std::vector<std::string> before = test::listTree(folder.path());
    EXPECT_EQ(CatalogItems::count(catalog), 0);
    EXPECT_EQ(test::listTree(folder.path()), before);
}

TEST_F(CatalogItemsTest, onlyTheConnectionOfTheApplicationStaysOpen)
{
    {
        QSqlDatabase own = QSqlDatabase::addDatabase("QSQLITE");
        own.setDatabaseName(":memory:");
        ASSERT_TRUE(own.open());
        CatalogItems::compare(former, current);
        EXPECT_TRUE(own.isOpen());
        EXPECT_TRUE(QSqlQuery(own).exec("CREATE TABLE mine (id INTEGER)"));
        EXPECT_EQ(QSqlDatabase::connectionNames(), QStringList{QSqlDatabase::defaultConnection});
    }
    QSqlDatabase::removeDatabase(QSqlDatabase::defaultConnection);
}
