#include <QLabel>
#include <QMimeData>
#include <QScrollBar>
#include <QStackedWidget>
#include <QTest>
#include <QTreeView>

#include <gmock/gmock.h>

#include "OrvLibrary/Utility/Chooser.h"
#include "tests/orv-browser/BrowserTest.h"
#include "tests/orv-browser/CatalogMaker.h"

namespace {

using test::CatalogMaker;

class BrowserTreeTest : public test::BrowserTest
{
protected:
    void makeDoors() const
    {
        CatalogMaker doors(inRoot("core/Doors.orvlib"), "doors");
        const int exterior = doors.addFolder("Exterior");
        doors.addFolder("interior");
        doors.addFolder("Sliding", exterior);
        doors.addItem(exterior, {"Door 10", "pane 10", 10000});
        doors.addItem(exterior, {"door 9"});
        doors.addItem(exterior, {"\xC3\x84sche", "", std::nullopt, 55, CatalogMaker::picture()});
    }
};

} // namespace

TEST_F(BrowserTreeTest, showsTheFourKindsOfCatalogsThatAreInstalled)
{
    makeDoors();
    CatalogMaker(inRoot("bonus/Party.orvlib"), "party");
    CatalogMaker(inRoot("manufacturer/Oak.orvlib"), "oak");
    CatalogMaker(inRoot("user/Mine.orvlib"), "mine");
    open();
    EXPECT_EQ(childNames({}), QStringList({"Core", "Bonus", "Manufacturers", "My libraries"}));
    const QStringList catalogs[] = {{"Doors"}, {"Party"}, {"Oak"}, {"Mine"}};
    for (int row = 0; row < 4; ++row)
        EXPECT_EQ(childNames(model().index(row, 0)), catalogs[row]);
}

TEST_F(BrowserTreeTest, sortsByTheItemsOwnOrderFoldersFirst)
{
    makeDoors();
    open();
    const QModelIndex doors = openPath({"Core", "Doors", "Exterior"}).parent();
    EXPECT_EQ(childNames(doors), QStringList({"Exterior", "interior"}));
    const QModelIndex exterior = openPath({"Core", "Doors", "Exterior", "door 9"}).parent();
    EXPECT_EQ(childNames(exterior),
              QStringList({"Sliding", QString::fromUtf8("\xC3\x84sche"), "door 9", "Door 10"}));
}

TEST_F(BrowserTreeTest, readsAFolderOnlyWhenItIsOpened)
{
    makeDoors();
    open();
    const QModelIndex doors = childNamed(model().index(0, 0), "Doors");
    EXPECT_TRUE(model().hasChildren(doors));
    EXPECT_EQ(model().rowCount(doors), 0);
    tree().expand(doors);
    EXPECT_TRUE(waitFor([&] { return model().rowCount(doors) == 2; }));
}

TEST_F(BrowserTreeTest, flagsSayWhatCanBeDraggedAndDroppedOn)
{
    makeDoors();
    open();
    const QModelIndex item = openPath({"Core", "Doors", "Exterior", "door 9"});
    EXPECT_EQ(static_cast<int>(model().flags(item)), 37);
    EXPECT_EQ(static_cast<int>(model().flags(item.parent())), 45);
    EXPECT_EQ(static_cast<int>(model().flags(model().index(0, 0))), 37);
}

TEST_F(BrowserTreeTest, arrowKeysOpenFoldersAndChooseAnItem)
{
    makeDoors();
    open();
    tree().setFocus();
    tree().setCurrentIndex(childNamed(model().index(0, 0), "Doors"));
    QTest::keyClick(&tree(), Qt::Key_Right);
    ASSERT_TRUE(waitFor([&] { return model().rowCount(tree().currentIndex()) == 2; }));
    QTest::keyClick(&tree(), Qt::Key_Down);
    QTest::keyClick(&tree(), Qt::Key_Right);
    ASSERT_TRUE(waitFor([&] { return model().rowCount(tree().currentIndex()) == 4; }));
    for (int step = 0; step < 3; ++step)
        QTest::keyClick(&tree(), Qt::Key_Down);
    EXPECT_EQ(tree().currentIndex().data().toString(), "door 9");
    EXPECT_EQ(Library::Chooser::get()->getData().getItemName(), "door 9");
    EXPECT_EQ(child<QLabel>("detailsTitle").text(), "door 9");
}

TEST_F(BrowserTreeTest, clickChoosesAnItemAndShowsItsDetails)
{
    makeDoors();
    open();
    const QModelIndex item = openPath({"Core", "Doors", "Exterior", "Door 10"});
    tree().scrollTo(item);
    QTest::mouseClick(tree().viewport(), Qt::LeftButton, {}, tree().visualRect(item).center());
    EXPECT_EQ(child<QLabel>("detailsTitle").text(), "Door 10");
    EXPECT_EQ(child<QLabel>("detailsCatalog").text(), "Doors");
    EXPECT_EQ(child<QLabel>("detailsPaneName").text(), "pane 10");
    EXPECT_TRUE(waitFor([&] { return !child<QLabel>("detailsStyle").text().isEmpty(); }));
}

TEST_F(BrowserTreeTest, detailsNameAMakerWithoutARecordByItsNumber)
{
    makeDoors();
    open();
    tree().setCurrentIndex(openPath({"Core", "Doors", "Exterior", QString::fromUtf8("\xC3\x84sche")}));
    EXPECT_TRUE(waitFor([&] { return child<QLabel>("detailsManufacturer").text().contains("55"); }));
}

TEST_F(BrowserTreeTest, picturesComeInAfterTheRows)
{
    makeDoors();
    open();
    const QModelIndex item = openPath({"Core", "Doors", "Exterior", QString::fromUtf8("\xC3\x84sche")});
    tree().scrollTo(item);
    const QPersistentModelIndex place(item);
    EXPECT_TRUE(waitFor([&] {
        const QImage image = place.data(Qt::DecorationRole).value<QIcon>().pixmap(16, 16).toImage();
        return image.pixelColor(8, 8) == QColor(Qt::darkGreen);
    }));
}

TEST_F(BrowserTreeTest, emptyRootOffersToFetchTheContent)
{
    open();
    EXPECT_EQ(child<QStackedWidget>("treeOrOffer").currentIndex(), 1);
    EXPECT_TRUE(child<QWidget>("fetchContent").isVisible());
}

TEST_F(BrowserTreeTest, itemDroppedOnAFolderOfTheUsersIsCopiedThere)
{
    makeDoors();
    {
        CatalogMaker mine(inRoot("user/Mine.orvlib"), "mine");
        mine.addFolder("Favourites");
    }
    open();
    const QModelIndex item = openPath({"Core", "Doors", "Exterior", "Door 10"});
    const QModelIndex target = openPath({"My libraries", "Mine", "Favourites"});
    const std::unique_ptr<QMimeData> data(model().mimeData({item}));
    EXPECT_EQ(data->text(), "Door 10");
    ASSERT_TRUE(model().canDropMimeData(data.get(), Qt::CopyAction, -1, -1, target));
    ASSERT_TRUE(model().dropMimeData(data.get(), Qt::CopyAction, -1, -1, target));
    EXPECT_TRUE(waitFor([&] { return summary() == "Copied to Mine."; }));
    EXPECT_TRUE(waitFor([&] {
        return openPath({"My libraries", "Mine", "Favourites", "Door 10"}).isValid();
    }));
}

TEST_F(BrowserTreeTest, catalogsOfTheServiceTakeNoDrops)
{
    makeDoors();
    open();
    const QModelIndex item = openPath({"Core", "Doors", "Exterior", "Door 10"});
    const std::unique_ptr<QMimeData> data(model().mimeData({item}));
    for (const QModelIndex& target : {item, item.parent(), item.parent().parent(), model().index(0, 0),
                                      model().index(3, 0), QModelIndex()})
        EXPECT_FALSE(model().dropMimeData(data.get(), Qt::CopyAction, -1, -1, target));
    EXPECT_EQ(model().mimeData({item.parent()}), nullptr);
}

TEST_F(BrowserTreeTest, damagedDragDataCopiesNothing)
{
    {
        CatalogMaker mine(inRoot("user/Mine.orvlib"), "mine");
        mine.addFolder("Favourites");
    }
    open();
    const QModelIndex target = openPath({"My libraries", "Mine", "Favourites"});
    QMimeData data;
    data.setData("application/x-orv-library-items", QByteArray("\x00\x00\x10\x00short", 9));
    EXPECT_FALSE(model().dropMimeData(&data, Qt::CopyAction, -1, -1, target));
    const QPersistentModelIndex place(openPath({"My libraries", "Mine", "Favourites"}));
    tree().expand(place);
    ASSERT_TRUE(waitFor([&] { return model().isRead(place); }));
    EXPECT_EQ(model().rowCount(place), 0);
}
