// The tree of places on the left, and dropping items on it.
#include <QAbstractItemView>
#include <QLineEdit>
#include <QMimeData>
#include <QStackedWidget>
#include <QTest>
#include <QTreeView>

#include <gmock/gmock.h>

#include "OrvLibrary/LibraryFilterManager.h"
#include "apps/orv-browser/models/ItemDrag.h"
#include "tests/orv-browser/BrowserTest.h"
#include "tests/orv-browser/CatalogMaker.h"

namespace {

using test::CatalogMaker;

class BrowserPlacesTest : public test::BrowserTest
{
protected:
    void makeDoors() const
    {
        CatalogMaker doors(inRoot("core/Doors.orvlib"), "doors");
        const int exterior = doors.addFolder("Exterior");
        doors.addFolder("interior");
        const int sliding = doors.addFolder("Sliding", exterior);
        doors.addItem(exterior, {"Door 10", "pane 10", 10000});
        doors.addItem(exterior, {"door 9"});
        doors.addItem(sliding, {"Glass door"});
    }

    void makeMine(const char* folder = "Best") const
    {
        CatalogMaker mine(inRoot("user/Mine.orvlib"), "mine");
        if (folder)
            mine.addFolder(folder);
    }

    /// The data of a drag of this gallery item.
    std::unique_ptr<QMimeData> dragged(const QString& name)
    {
        const int row = names().indexOf(name);
        return std::unique_ptr<QMimeData>(items().mimeData({items().index(row, 0)}));
    }

    bool drop(const QMimeData& data, const QModelIndex& target)
    {
        return places().dropMimeData(&data, Qt::CopyAction, -1, -1, target);
    }
};

} // namespace

TEST_F(BrowserPlacesTest, showListsAndTheFourKindsOfCatalogs)
{
    makeDoors();
    CatalogMaker(inRoot("bonus/Party.orvlib"), "party");
    CatalogMaker(inRoot("manufacturer/Oak.orvlib"), "oak");
    makeMine();
    open();
    EXPECT_EQ(placesBelow({}), QStringList({"Favourites", "Recent", "What's new", "Core", "Bonus",
                                            "Manufacturers", "My libraries"}));
    EXPECT_EQ(placesBelow(place({"Core"})), QStringList("Doors"));
    EXPECT_EQ(placesBelow(place({"Bonus"})), QStringList("Party"));
    EXPECT_EQ(placesBelow(place({"Manufacturers"})), QStringList("Oak"));
    EXPECT_EQ(placesBelow(place({"My libraries"})), QStringList("Mine"));
}

TEST_F(BrowserPlacesTest, holdFoldersInTheOrderOfNamesAndNoItems)
{
    makeDoors();
    open();
    const QModelIndex doors = place({"Core", "Doors"});
    tree().expand(doors);
    EXPECT_EQ(placesBelow(doors), QStringList({"Exterior", "interior"}));
    const QModelIndex exterior = place({"Core", "Doors", "Exterior"});
    tree().expand(exterior);
    EXPECT_EQ(placesBelow(exterior), QStringList("Sliding"));
}

TEST_F(BrowserPlacesTest, sayHowManyItemsTheyHold)
{
    makeDoors();
    open();
    const auto count = [&](const QStringList& names) {
        return place(names).data(PlacesModel::kCountRole).toInt();
    };
    EXPECT_EQ(count({"Core"}), 3);
    EXPECT_EQ(count({"Core", "Doors"}), 3);
    EXPECT_EQ(count({"Core", "Doors", "Exterior", "Sliding"}), 1);
    EXPECT_EQ(count({"Core", "Doors", "interior"}), 0);
}

TEST_F(BrowserPlacesTest, clickShowsTheItemsOfAFolderAndThoseBelowIt)
{
    makeDoors();
    open();
    const QModelIndex exterior = place({"Core", "Doors", "Exterior"});
    tree().scrollTo(exterior);
    QTest::mouseClick(tree().viewport(), Qt::LeftButton, {}, tree().visualRect(exterior).center());
    EXPECT_EQ(names(), QStringList({"door 9", "Door 10", "Glass door"}));
    ASSERT_TRUE(goTo({"Core", "Doors", "Exterior", "Sliding"}));
    EXPECT_EQ(names(), QStringList("Glass door"));
}

TEST_F(BrowserPlacesTest, arrowKeysWalkThroughThePlaces)
{
    makeDoors();
    open();
    tree().setFocus();
    tree().setCurrentIndex(place({"Core", "Doors"}));
    for (const Qt::Key key : {Qt::Key_Right, Qt::Key_Down, Qt::Key_Down})
        QTest::keyClick(&tree(), key);
    EXPECT_EQ(tree().currentIndex().data().toString(), "interior");
    EXPECT_TRUE(names().isEmpty());
    QTest::keyClick(&tree(), Qt::Key_Up);
    EXPECT_EQ(names().size(), 3);
}

TEST_F(BrowserPlacesTest, stayInSightDuringASearch)
{
    makeDoors();
    open();
    QTest::keyClicks(&child<QLineEdit>("searchField"), "glass");
    EXPECT_TRUE(waitFor([&] { return names() == QStringList("Glass door"); }));
    EXPECT_TRUE(tree().isVisible());
}

TEST_F(BrowserPlacesTest, emptyRootOffersToFetchTheContent)
{
    open();
    EXPECT_EQ(child<QStackedWidget>("galleryPages").currentIndex(), 2);
    EXPECT_TRUE(child<QWidget>("fetchContent").isVisible());
}

TEST_F(BrowserPlacesTest, storedFilterHidesCatalogsFromTheTreeAndTheGallery)
{
    makeDoors();
    {
        CatalogMaker oak(inRoot("manufacturer/Oak.orvlib"), "oak");
        oak.addItem(oak.addFolder("All"), {"Oak door"});
    }
    LibraryFilterManager& manager = LibraryFilterManager::getLibraryFilterManager();
    manager.setLibraryFilters({LibraryFilter("Ours", 4, {"oak"})});
    manager.setCurrentFilterId(4);
    open();
    EXPECT_EQ(names(), QStringList("Oak door"));
    const QModelIndex doors = place({"Core", "Doors"});
    EXPECT_TRUE(tree().isRowHidden(doors.row(), doors.parent()));
    EXPECT_FALSE(tree().isRowHidden(0, place({"Manufacturers"})));
}

TEST_F(BrowserPlacesTest, itemDroppedOnAFolderOfTheUsersIsCopiedThere)
{
    makeDoors();
    makeMine();
    open();
    const auto data = dragged("Door 10");
    EXPECT_EQ(data->text(), "Door 10");
    ASSERT_TRUE(drop(*data, place({"My libraries", "Mine", "Best"})));
    ASSERT_TRUE(waitFor([&] { return summary() == "Copied to Mine."; }));
    ASSERT_TRUE(goTo({"My libraries", "Mine", "Best"}));
    EXPECT_EQ(names(), QStringList("Door 10"));
}

TEST_F(BrowserPlacesTest, itemDroppedOnALibraryItselfGoesToItsFirstFolder)
{
    makeDoors();
    makeMine(nullptr);
    open();
    ASSERT_TRUE(drop(*dragged("Door 10"), place({"My libraries", "Mine"})));
    ASSERT_TRUE(waitFor([&] { return summary() == "Copied to Mine."; }));
    ASSERT_TRUE(goTo({"My libraries", "Mine", "Items"}));
    EXPECT_EQ(names(), QStringList("Door 10"));
}

TEST_F(BrowserPlacesTest, copyIsTakenBackByUndo)
{
    makeDoors();
    makeMine();
    open();
    ASSERT_TRUE(drop(*dragged("Door 10"), place({"My libraries", "Mine", "Best"})));
    ASSERT_TRUE(waitFor([&] { return summary() == "Copied to Mine."; }));
    QTest::keyClick(&window(), Qt::Key_Z, Qt::ControlModifier);
    ASSERT_TRUE(waitFor([&] { return summary() == "The copies are gone again."; }));
    ASSERT_TRUE(goTo({"My libraries", "Mine", "Best"}));
    EXPECT_TRUE(names().isEmpty());
}

TEST_F(BrowserPlacesTest, catalogsOfTheServiceTakeNoDrops)
{
    makeDoors();
    makeMine();
    open();
    const auto data = dragged("Door 10");
    for (const QStringList& names : {QStringList{"Core"},
                                     {"Core", "Doors"},
                                     {"Core", "Doors", "Exterior"},
                                     {"My libraries"},
                                     {"Recent"}})
        EXPECT_FALSE(drop(*data, place(names))) << names.join('/').toStdString();
}

TEST_F(BrowserPlacesTest, damagedDragDataCopiesNothing)
{
    makeDoors();
    makeMine();
    open();
    QMimeData data;
    data.setData(ItemDrag::mimeType(), QByteArray("\x00\x00\x10\x00short", 9));
    drop(data, place({"My libraries", "Mine", "Best"}));
    ASSERT_TRUE(goTo({"My libraries", "Mine", "Best"}));
    EXPECT_TRUE(names().isEmpty());
    EXPECT_EQ(summary(), "");
}

TEST_F(BrowserPlacesTest, placeAndOpenNodesAreThereAtTheNextStart)
{
    makeDoors();
    open();
    ASSERT_TRUE(goTo({"Core", "Doors", "Exterior", "Sliding"}));
    close();
    open();
    EXPECT_EQ(names(), QStringList("Glass door"));
    EXPECT_TRUE(waitFor([&] { return tree().currentIndex().data().toString() == "Sliding"; }));
    EXPECT_TRUE(tree().isExpanded(tree().currentIndex().parent()));
}
