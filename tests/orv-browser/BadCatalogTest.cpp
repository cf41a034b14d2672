// The window reports damaged catalogs where they appear, and everything else stays usable.
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QLabel>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTreeView>

#include <gtest/gtest.h>

#include "OrvLibrary/host/FileUtils.h"
#include "apps/orv-browser/gallery/GalleryPane.h"
#include "tests/orv-browser/BrowserTest.h"
#include "tests/orv-browser/CatalogMaker.h"

namespace {

using test::CatalogMaker;

class BadCatalogTest : public test::BrowserTest
{
protected:
    /// Creates a sound catalog beside the damaged one.
    void makeGood() const
    {
        CatalogMaker good(inRoot("core/Good.orvlib"), "good");
        good.addItem(good.addFolder("All"), {"Chair"});
    }

    void expectGoodWorks()
    {
        EXPECT_TRUE(goTo({"Core", "Good", "All"}));
        EXPECT_EQ(names(), QStringList("Chair"));
    }

    /// Goes to an unreadable catalog and returns the problem that the details show.
    QString problemOf(const QString& catalog)
    {
        EXPECT_TRUE(goTo({"Core", catalog}));
        EXPECT_FALSE(place({"Core", catalog}).data(PlacesModel::kProblemRole).toString().isEmpty());
        return child<QLabel>("placeProblem").isVisible() ? detail("placeProblem") : QString();
    }
};

} // namespace

TEST_F(BadCatalogTest, fileThatIsNoDatabaseSaysSo)
{
    makeGood();
    test::writeFile(inRoot("core/Text.orvlib"), std::string(10000, 'x'));
    open();
    EXPECT_TRUE(problemOf("Text").startsWith("Cannot be read: ")) << problemOf("Text").toStdString();
    expectGoodWorks();
}

TEST_F(BadCatalogTest, emptyFileAndDatabaseOfAnotherKindSaySo)
{
    makeGood();
    test::writeFile(inRoot("core/Empty.orvlib"), "");
    {
        QSqlDatabase other = QSqlDatabase::addDatabase("QSQLITE", "other");
        other.setDatabaseName(QString::fromStdString(inRoot("core/Other.orvlib")));
        ASSERT_TRUE(other.open());
        QSqlQuery(other).exec("CREATE TABLE something (else_entirely TEXT)");
    }
    QSqlDatabase::removeDatabase("other");
    open();
    EXPECT_TRUE(problemOf("Empty").startsWith("Cannot be read: "));
    EXPECT_TRUE(problemOf("Other").startsWith("Cannot be read: "));
    expectGoodWorks();
}

TEST_F(BadCatalogTest, lockedCatalogSaysSoAndIsReadOnceItIsFree)
{
    makeGood();
    {
        CatalogMaker locked(inRoot("core/Locked.orvlib"), "locked");
        locked.addFolder("Inside");
    }
    {
        QSqlDatabase lock = QSqlDatabase::addDatabase("QSQLITE", "lock");
        lock.setDatabaseName(QString::fromStdString(inRoot("core/Locked.orvlib")));
        ASSERT_TRUE(lock.open());
        ASSERT_TRUE(QSqlQuery(lock).exec("BEGIN EXCLUSIVE"));
        open();
        EXPECT_TRUE(problemOf("Locked").startsWith("Cannot be read: "));
        expectGoodWorks();
        lock.close();
    }
    QSqlDatabase::removeDatabase("lock");
    ASSERT_TRUE(goTo({"Core", "Good"}));
    ASSERT_TRUE(goTo({"Core", "Locked"})); // reads the catalog again
    EXPECT_TRUE(waitFor([&] { return place({"Core", "Locked", "Inside"}).isValid(); }));
}

TEST_F(BadCatalogTest, catalogThatIsRemovedWhileItIsShownLeavesTheWindowAlive)
{
    makeGood();
    {
        CatalogMaker gone(inRoot("core/Gone.orvlib"), "gone");
        const int folder = gone.addFolder("Folder");
        gone.addFolder("Deep", folder);
        gone.addItem(folder, {"Chair", "", std::nullopt, std::nullopt, CatalogMaker::picture()});
    }
    open();
    ASSERT_TRUE(goTo({"Core", "Gone", "Folder"}));
    select("Chair");
    EXPECT_EQ(detail("detailsTitle"), "Chair");
    ASSERT_TRUE(FileUtils::removePath(fileString(inRoot("core/Gone.orvlib"))));
    ASSERT_TRUE(waitFor([&] { return !place({"Core", "Gone"}).isValid(); }));
    EXPECT_TRUE(waitFor([&] { return !child<QLabel>("detailsTitle").isVisible(); }));
    EXPECT_EQ(tree().currentIndex().data().toString(), "Core"); // not what stood beside it
    EXPECT_EQ(window().gallery().place(), (Place{Place::Kind::Category, 0, {}, -1}));
    EXPECT_EQ(summary(), "Gone is not in the library any more.");
    expectGoodWorks();
}

TEST_F(BadCatalogTest, catalogThatWentBetweenTwoStartsIsToldAndLeft)
{
    makeGood();
    CatalogMaker(inRoot("core/Gone.orvlib"), "gone").addFolders(1);
    open();
    ASSERT_TRUE(goTo({"Core", "Gone"}));
    close();
    ASSERT_TRUE(FileUtils::removePath(fileString(inRoot("core/Gone.orvlib"))));
    open();
    EXPECT_EQ(tree().currentIndex().data().toString(), "Core");
    EXPECT_EQ(summary(), "Gone is not in the library any more.");
    expectGoodWorks();
}

TEST_F(BadCatalogTest, brokenPictureIsNamedInTheDetails)
{
    {
        CatalogMaker catalog(inRoot("core/Pictures.orvlib"), "pictures");
        const int folder = catalog.addFolder("All");
        catalog.addItem(folder,
                        {"Broken", "", std::nullopt, std::nullopt, QByteArray("\x89PNG\r\n\x1a\nxx", 10)});
        catalog.addItem(folder, {"Cut", "", std::nullopt, std::nullopt, CatalogMaker::picture().left(40)});
    }
    open();
    for (const char* name : {"Broken", "Cut"}) {
        select(name);
        EXPECT_TRUE(waitFor([&] {
            return child<QLabel>("detailsPictureNote").text() == "The picture is broken.";
        })) << name;
    }
}

TEST_F(BadCatalogTest, namesOfTenThousandLettersAndOfStrangeOnesAreShown)
{
    const QString longName(10000, QChar('W'));
    {
        CatalogMaker catalog(inRoot("core/Names.orvlib"), "names");
        const int folder = catalog.addFolder(longName.toStdString());
        catalog.addItem(folder, {longName.toStdString(), longName.toStdString()});
        catalog.addItem(folder, {"<b>bold</b> & \xD7\xA9\xD7\x9C\xD7\x95\xD7\x9D\n\t second line"});
        catalog.addItem(folder, {""});
    }
    open();
    const int width = window().width();
    const QModelIndex catalog = place({"Core", "Names"});
    tree().expand(catalog);
    const QModelIndex folder = places().index(0, 0, catalog);
    EXPECT_LT(folder.data().toString().size(), 1000);
    tree().setCurrentIndex(folder);
    for (const QString& name : names())
        select(name);
    QCoreApplication::processEvents();
    EXPECT_EQ(window().width(), width);
}
