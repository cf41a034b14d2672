// Words and choices that restrict the gallery.
#include <QElapsedTimer>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QMenu>
#include <QPushButton>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTest>
#include <QToolButton>
#include <QTreeView>

#include <gtest/gtest.h>

#include "OrvLibrary/LibraryFilterManager.h"
#include "OrvLibrary/Utility/Chooser.h"
#include "apps/orv-browser/models/TextFolding.h"
#include "apps/orv-browser/search/FacetChip.h"
#include "tests/orv-browser/BrowserTest.h"
#include "tests/orv-browser/CatalogMaker.h"
#include "tests/orv-browser/EventWatch.h"

namespace {

using test::CatalogMaker;

class BrowserSearchTest : public test::BrowserTest
{
protected:
    BrowserSearchTest()
    {
        {
            CatalogMaker doors(inRoot("core/Doors.orvlib"), "doors");
            const int all = doors.addFolder("All");
            doors.addItem(all, {"Oak door", "", 10000});
            doors.addItem(all, {"Glass door", "vitre", 10001});
            doors.addItem(doors.addFolder("Caf\xC3\xA9 M\xC3\xB6"
                                          "bel"),
                          {"Oak gate", "", 10000});
        }
        CatalogMaker oak(inRoot("manufacturer/Oakline.orvlib"), "oakline");
        oak.addItem(oak.addFolder("All"), {"OAK DOOR of ours", "", std::nullopt, 7});
    }

    QLineEdit& field() { return child<QLineEdit>("searchField"); }

    /// Types into the search field and returns the names of the results.
    QStringList search(const QString& text)
    {
        QTest::keyClick(&window(), Qt::Key_F, Qt::ControlModifier);
        QTest::keyClicks(&field(), text);
        return names();
    }

    /// Opens the list of a choice and selects the entry that starts with this text.
    QStringList choose(const char* chip, const QString& entry)
    {
        EXPECT_TRUE(settle());
        pick(chip, entry);
        return names();
    }

    /// Creates a catalog that another connection keeps locked until it is closed.
    QSqlDatabase locked(const std::string& name) const
    {
        CatalogMaker(inRoot(name), name);
        QSqlDatabase lock = QSqlDatabase::addDatabase("QSQLITE", QString::fromStdString(name));
        lock.setDatabaseName(QString::fromStdString(inRoot(name)));
        EXPECT_TRUE(lock.open());
        EXPECT_TRUE(QSqlQuery(lock).exec("BEGIN EXCLUSIVE"));
        return lock;
    }
};

} // namespace

TEST(BrowserTextFolding, makesLettersSmallAndTakesAccentsAway)
{
    EXPECT_EQ(TextFolding::folded("Caf\xC3\xA9 M\xC3\x96"
                                  "BEL"),
              "cafe mobel");
    EXPECT_EQ(TextFolding::folded("Stra\xC3\x9F"
                                  "e"),
              "strasse");
    EXPECT_EQ(TextFolding::folded("plain TEXT 12"), "plain text 12");
    EXPECT_EQ(TextFolding::folded(""), "");
}

TEST_F(BrowserSearchTest, findsItemsThatHoldEveryWordWhateverTheLetterCase)
{
    open();
    EXPECT_EQ(search("oak DOOR"), QStringList({"Oak door", "OAK DOOR of ours", "Oak gate"}));
    EXPECT_EQ(search("oak ours"), QStringList("OAK DOOR of ours"));
}

TEST_F(BrowserSearchTest, findsByFolderCatalogAndSelectionNameWithoutAccents)
{
    open();
    EXPECT_EQ(search("cafe mobel"), QStringList("Oak gate"));
    EXPECT_EQ(search("oakline"), QStringList("OAK DOOR of ours"));
    EXPECT_EQ(search("vitre"), QStringList("Glass door"));
}

TEST_F(BrowserSearchTest, findsByTheNameOfTheStyle)
{
    open();
    select("Glass door");
    const QString style = detail("detailsStyle");
    ASSERT_FALSE(style.isEmpty());
    EXPECT_EQ(search(style), QStringList("Glass door"));
}

TEST_F(BrowserSearchTest, escapeForgetsTheWords)
{
    open();
    EXPECT_EQ(search("glass").size(), 1);
    QTest::keyClick(&field(), Qt::Key_Escape);
    EXPECT_TRUE(waitFor([&] { return names().size() == 4; }));
    EXPECT_EQ(field().text(), "");
}

TEST_F(BrowserSearchTest, detailsAgreeWithTheSelectionAfterASearchIsCleared)
{
    open();
    search("glass");
    select("Glass door");
    QTest::keyClick(&window(), Qt::Key_F, Qt::ControlModifier);
    QTest::keyClick(&field(), Qt::Key_Escape);
    ASSERT_TRUE(waitFor([&] { return names().size() == 4; }));
    EXPECT_EQ(detail("detailsTitle"), "Glass door");
    EXPECT_EQ(child<QListView>("gallery").selectionModel()->selectedIndexes().value(0).data().toString(),
              "Glass door");
    search("gate");
    EXPECT_TRUE(child<QLabel>("placeTitle").isVisible());
    EXPECT_LT(Library::Chooser::get()->getData().getId(), 0);
}

TEST_F(BrowserSearchTest, downGoesFromTheFieldToTheFirstItem)
{
    open();
    search("glass");
    QTest::keyClick(&field(), Qt::Key_Down);
    ASSERT_TRUE(waitFor([&] { return child<QListView>("gallery").hasFocus(); }));
    EXPECT_EQ(detail("detailsTitle"), "Glass door");
}

TEST_F(BrowserSearchTest, placeNarrowsTheSearchAndEverywhereWidensIt)
{
    open();
    ASSERT_TRUE(goTo({"Manufacturers", "Oakline"}));
    EXPECT_TRUE(search("glass").isEmpty());
    const QString text = child<QLabel>("nothingFound").text();
    EXPECT_TRUE(text.contains("Oakline") && text.contains("glass")) << text.toStdString();
    EXPECT_TRUE(text.contains("1 item elsewhere")) << text.toStdString();
    QTest::mouseClick(&child<QPushButton>("searchEverywhere"), Qt::LeftButton);
    EXPECT_TRUE(waitFor([&] { return names() == QStringList("Glass door"); }));
}

TEST_F(BrowserSearchTest, nothingFoundAnywhereOffersToClear)
{
    open();
    EXPECT_TRUE(search("spaceship").isEmpty());
    EXPECT_FALSE(child<QPushButton>("searchEverywhere").isVisible());
    QTest::mouseClick(&child<QPushButton>("clearSearch"), Qt::LeftButton);
    EXPECT_TRUE(waitFor([&] { return names().size() == 4; }));
}

TEST_F(BrowserSearchTest, styleIsChosenWithTheNumberOfItsItems)
{
    open();
    select("Glass door");
    const QString style = detail("detailsStyle");
    EXPECT_EQ(choose("styleChip", style + " (1)"), QStringList("Glass door"));
    EXPECT_TRUE(child<FacetChip>("styleChip").text().contains(style));
    EXPECT_EQ(choose("styleChip", "All").size(), 4);
}

TEST_F(BrowserSearchTest, catalogAndMakerAreChosenTogether)
{
    open();
    EXPECT_EQ(choose("catalogChip", "Doors (3)").size(), 3);
    EXPECT_TRUE(choose("makerChip", "All").size() == 3);
    EXPECT_EQ(choose("catalogChip", "Oakline (1)"), QStringList("OAK DOOR of ours"));
    EXPECT_EQ(choose("makerChip", "Number 7"), QStringList("OAK DOOR of ours"));
}

TEST_F(BrowserSearchTest, onlyFavouritesMayBeShown)
{
    open();
    select("Oak gate");
    trigger("toggleFavourite");
    ASSERT_TRUE(settle());
    QTest::mouseClick(&child<QToolButton>("favouritesChip"), Qt::LeftButton);
    EXPECT_EQ(names(), QStringList("Oak gate"));
}

TEST_F(BrowserSearchTest, foundItemIsShownInItsFolder)
{
    open();
    search("gate");
    select("Oak gate");
    trigger("showInFolder");
    ASSERT_TRUE(waitFor([&] {
        return tree().currentIndex().data().toString() == QString::fromUtf8("Caf\xC3\xA9 M\xC3\xB6"
                                                                            "bel");
    }));
    ASSERT_TRUE(settle());
    EXPECT_EQ(field().text(), "");
    EXPECT_EQ(detail("detailsTitle"), "Oak gate");
}

TEST_F(BrowserSearchTest, catalogThatCannotBeReadDoesNotHideTheOthers)
{
    test::writeFile(inRoot("core/Broken.orvlib"), "this is no database");
    open();
    EXPECT_EQ(search("oak").size(), 3);
    EXPECT_FALSE(place({"Core", "Broken"}).data(PlacesModel::kProblemRole).toString().isEmpty());
}

TEST_F(BrowserSearchTest, filterOfTheLastRunHoldsFromTheStartAndCanBeDropped)
{
    LibraryFilterManager& manager = LibraryFilterManager::getLibraryFilterManager();
    manager.setLibraryFilters({LibraryFilter("Ours", 4, {"oakline"})});
    manager.setCurrentFilterId(4);
    open();
    auto& choice = child<QToolButton>("filterChip");
    EXPECT_EQ(choice.text(), "Filter: Ours");
    EXPECT_EQ(names(), QStringList("OAK DOOR of ours"));
    pick("filterChip", "No Filter");
    EXPECT_EQ(choice.text(), "Filter");
    EXPECT_EQ(manager.getCurrentFilterId(), -1);
    EXPECT_EQ(names().size(), 4);
}

TEST_F(BrowserSearchTest, catalogsThatAreSlowToAnswerDoNotStopTheWindow)
{
    constexpr int kMostMilliseconds = 100; // each of these catalogs takes 200 ms to report its lock
    const QSqlDatabase locks[] = {locked("core/One.orvlib"), locked("core/Two.orvlib")};
    {
        const test::EventWatch watch;
        open();
        EXPECT_EQ(names().size(), 4);
        EXPECT_LT(watch.longest(), kMostMilliseconds) << watch.longestName();
    }
    for (const QSqlDatabase& lock : locks)
        QSqlDatabase(lock).close();
}
