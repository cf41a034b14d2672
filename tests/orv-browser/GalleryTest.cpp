// The items as pictures and as a list, operated by mouse and keys.
#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QMimeData>
#include <QScrollBar>
#include <QSlider>
#include <QTest>
#include <QToolButton>
#include <QTreeView>
#include <QTreeWidget>
#include <QWheelEvent>

#include <gmock/gmock.h>

#include "OrvLibrary/Utility/Chooser.h"
#include "apps/orv-browser/gallery/Breadcrumbs.h"
#include "apps/orv-browser/gallery/GalleryDelegate.h"
#include "apps/orv-browser/gallery/ItemPicture.h"
#include "tests/orv-browser/BrowserTest.h"
#include "tests/orv-browser/CatalogMaker.h"

namespace {

using test::CatalogMaker;

class BrowserGalleryTest : public test::BrowserTest
{
protected:
    BrowserGalleryTest()
    {
        {
            CatalogMaker doors(inRoot("core/Doors.orvlib"), "doors");
            const int exterior = doors.addFolder("Exterior");
            doors.addItem(exterior, {"Door 10", "pane 10", 10000});
            doors.addItem(exterior, {"door 9"});
            doors.addItem(exterior, {"\xC3\x84sche", "", 10001, 55, CatalogMaker::picture()});
        }
        CatalogMaker lamps(inRoot("core/Lamps.orvlib"), "lamps");
        lamps.addItem(lamps.addFolder("All"), {"Lamp", "", 10000, 55});
    }

    QListView& grid() { return child<QListView>("gallery"); }
    QSlider& size() { return child<QSlider>("pictureSize"); }
    QString order(int index)
    {
        child<QComboBox>("sortOrder").setCurrentIndex(index);
        return names().join(',');
    }
    QWidget* preview() { return window().findChild<QWidget*>("itemPreview"); }
    QStringList way() { return child<Breadcrumbs>("breadcrumbs").names(); }

    void turnWheel(int delta, Qt::KeyboardModifiers modifiers)
    {
        const QPointF at(50, 50);
        QWheelEvent wheel(at, grid().viewport()->mapToGlobal(at.toPoint()), {}, {0, delta}, Qt::NoButton,
                          modifiers, Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(grid().viewport(), &wheel);
    }

    void clickStar(const QString& name)
    {
        const QModelIndex index = items().index(names().indexOf(name), 0);
        QTest::mouseClick(grid().viewport(), Qt::LeftButton, {},
                          GalleryDelegate::starArea(grid().visualRect(index), Qt::LeftToRight).center());
    }
};

} // namespace

TEST_F(BrowserGalleryTest, startsWithEverythingInTheOrderOfNames)
{
    open();
    EXPECT_EQ(names(), QStringList({QString::fromUtf8("\xC3\x84sche"), "door 9", "Door 10", "Lamp"}));
    EXPECT_EQ(child<QLabel>("itemCount").text(), "4 items");
}

TEST_F(BrowserGalleryTest, sortsByCatalogStyleAndMakerAndBackwards)
{
    open();
    EXPECT_EQ(order(1), QString::fromUtf8("\xC3\x84sche,door 9,Door 10,Lamp"));
    EXPECT_TRUE(order(2).endsWith("door 9")); // the item without a style comes last
    EXPECT_TRUE(order(3).endsWith("door 9,Door 10") || order(3).endsWith("Lamp"));
    EXPECT_TRUE(order(0).startsWith(QString::fromUtf8("\xC3\x84sche")));
    QTest::mouseClick(&child<QToolButton>("sortDescending"), Qt::LeftButton);
    EXPECT_TRUE(waitFor([&] { return names().first() == "Lamp"; }));
}

TEST_F(BrowserGalleryTest, clickChoosesAnItemForTheHostAndShowsItsDetails)
{
    open();
    select("Door 10");
    EXPECT_EQ(Library::Chooser::get()->getData().getItemName(), "Door 10");
    EXPECT_EQ(Library::Chooser::get()->getData().getSelectionPaneName(), "pane 10");
    EXPECT_EQ(detail("detailsTitle"), "Door 10");
    EXPECT_EQ(detail("detailsCatalog"), "Doors");
    EXPECT_EQ(detail("detailsFolder"), "Exterior");
    EXPECT_EQ(detail("detailsPaneName"), "pane 10");
    EXPECT_FALSE(detail("detailsStyle").isEmpty());
}

TEST_F(BrowserGalleryTest, detailsNameAMakerWithoutARecordByItsNumber)
{
    open();
    select("Lamp");
    EXPECT_TRUE(detail("detailsManufacturer").contains("55")) << detail("detailsManufacturer").toStdString();
}

TEST_F(BrowserGalleryTest, arrowKeysWalkThroughTheItems)
{
    open();
    select("door 9");
    QTest::keyClick(&grid(), Qt::Key_Right);
    EXPECT_EQ(detail("detailsTitle"), "Door 10");
    QTest::keyClick(&grid(), Qt::Key_Left);
    EXPECT_EQ(detail("detailsTitle"), "door 9");
}

TEST_F(BrowserGalleryTest, severalItemsAreCountedAndNoneIsChosenForTheHost)
{
    open();
    select("door 9");
    QTest::keyClick(&grid(), Qt::Key_Right, Qt::ShiftModifier);
    EXPECT_EQ(detail("severalTitle"), "2 items selected");
    EXPECT_TRUE(child<QLabel>("severalTitle").isVisible());
    EXPECT_LT(Library::Chooser::get()->getData().getId(), 0);
    QTest::keyClick(&grid(), Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(detail("severalTitle"), "4 items selected");
}

TEST_F(BrowserGalleryTest, withoutASelectionTheDetailsSpeakOfThePlace)
{
    open();
    select("door 9");
    ASSERT_TRUE(goTo({"Core", "Lamps"}));
    EXPECT_TRUE(child<QLabel>("placeTitle").isVisible());
    EXPECT_EQ(detail("placeTitle"), "Lamps");
    EXPECT_EQ(detail("placeItems"), "1");
    EXPECT_LT(Library::Chooser::get()->getData().getId(), 0);
}

TEST_F(BrowserGalleryTest, detailsAndSelectionAgreeAfterHome)
{
    open();
    select("Lamp");
    QTest::keyClick(&grid(), Qt::Key_Home);
    EXPECT_EQ(grid().currentIndex().row(), 0);
    EXPECT_EQ(detail("detailsTitle"), grid().currentIndex().data().toString());
    EXPECT_EQ(QString::fromStdString(Library::Chooser::get()->getData().getItemName()),
              detail("detailsTitle"));
}

TEST_F(BrowserGalleryTest, sliderAndWheelSetTheSizeOfThePictures)
{
    open();
    const int before = grid().gridSize().width();
    size().setValue(256);
    EXPECT_GT(grid().gridSize().width(), before);
    turnWheel(-120, Qt::ControlModifier);
    EXPECT_EQ(size().value(), 240);
    turnWheel(120, Qt::NoModifier);
    EXPECT_EQ(size().value(), 240);
    for (int turn = 0; turn < 30; ++turn)
        turnWheel(-120, Qt::ControlModifier);
    EXPECT_EQ(size().value(), 48);
}

TEST_F(BrowserGalleryTest, listShowsColumnsOfTheSameItemsAndKeepsTheSelection)
{
    open();
    select("Lamp");
    QTest::keyClick(&window(), Qt::Key_2, Qt::ControlModifier);
    auto& list = child<QTreeView>("galleryList");
    ASSERT_TRUE(list.isVisible());
    EXPECT_EQ(list.currentIndex().data().toString(), "Lamp");
    EXPECT_EQ(list.currentIndex().siblingAtColumn(1).data().toString(), "Lamps");
    EXPECT_EQ(detail("detailsTitle"), "Lamp");
    QTest::keyClick(&list, Qt::Key_Up);
    EXPECT_EQ(detail("detailsTitle"), "Door 10");
    QTest::keyClick(&window(), Qt::Key_1, Qt::ControlModifier);
    EXPECT_TRUE(grid().isVisible());
}

TEST_F(BrowserGalleryTest, spaceShowsTheItemLargeAndAnyKeyPutsItAway)
{
    open();
    select("Lamp");
    grid().setFocus();
    QTest::keyClick(&grid(), Qt::Key_Space);
    ASSERT_NE(preview(), nullptr);
    ASSERT_TRUE(preview()->isVisible());
    EXPECT_GT(preview()->width(), window().width() / 2);
    EXPECT_EQ(preview()->accessibleName(), "Picture of Lamp");
    QTest::keyClick(preview(), Qt::Key_Left);
    EXPECT_EQ(preview()->accessibleName(), "Picture of Door 10");
    QTest::keyClick(preview(), Qt::Key_Escape);
    EXPECT_FALSE(preview()->isVisible());
}

TEST_F(BrowserGalleryTest, restingPointerShowsTheItem)
{
    open();
    ASSERT_TRUE(settle());
    QTest::mouseMove(grid().viewport(), grid().visualRect(items().index(1, 0)).center());
    EXPECT_TRUE(waitFor([&] { return preview() && preview()->isVisible(); }));
    QTest::mouseMove(grid().viewport(),
                     QPoint(grid().viewport()->width() - 3, grid().viewport()->height() - 3));
    EXPECT_TRUE(waitFor([&] { return !preview()->isVisible(); }));
}

TEST_F(BrowserGalleryTest, starMakesAFavouriteAndUndoTakesItBack)
{
    open();
    clickStar("Lamp");
    EXPECT_TRUE(items().index(names().indexOf("Lamp"), 0).data(GalleryModel::kFavouriteRole).toBool());
    ASSERT_TRUE(goTo({"Favourites"}));
    EXPECT_EQ(names(), QStringList("Lamp"));
    QTest::keyClick(&window(), Qt::Key_Z, Qt::ControlModifier);
    EXPECT_TRUE(waitFor([&] { return names().isEmpty(); }));
}

TEST_F(BrowserGalleryTest, redoHasBothKeysThatPeopleKnow)
{
    open();
    const auto isFavourite = [&] {
        return items().index(names().indexOf("Lamp"), 0).data(GalleryModel::kFavouriteRole).toBool();
    };
    clickStar("Lamp");
    for (const auto& [key, modifiers] : {std::pair(Qt::Key_Y, Qt::KeyboardModifiers(Qt::ControlModifier)),
                                         std::pair(Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier)}) {
        QTest::keyClick(&window(), Qt::Key_Z, Qt::ControlModifier);
        EXPECT_FALSE(isFavourite());
        QTest::keyClick(&window(), key, modifiers);
        EXPECT_TRUE(isFavourite()) << key;
    }
    inDialog([&] { trigger("showKeys"); },
             [](QDialog& dialog) {
                 const auto found =
                     dialog.findChild<QTreeWidget*>("shortcuts")->findItems("Ctrl+Y", Qt::MatchContains, 1);
                 ASSERT_EQ(found.size(), 1);
                 EXPECT_EQ(found.first()->text(1), "Ctrl+Shift+Z; Ctrl+Y");
                 dialog.reject();
             });
}

TEST_F(BrowserGalleryTest, favouritesAreKeptForTheNextStart)
{
    open();
    select("door 9");
    QTest::keyClick(&window(), Qt::Key_D, Qt::ControlModifier);
    close();
    open();
    ASSERT_TRUE(goTo({"Favourites"}));
    EXPECT_TRUE(waitFor([&] { return names() == QStringList("door 9"); }));
    EXPECT_EQ(place({"Favourites"}).data(PlacesModel::kCountRole).toInt(), 1);
}

TEST_F(BrowserGalleryTest, favouriteIsFoundAgainByItsNameWhenTheCatalogIsNumberedAnew)
{
    open();
    select("Lamp");
    trigger("toggleFavourite");
    close();
    ASSERT_TRUE(QFile::remove(QString::fromStdString(inRoot("core/Lamps.orvlib"))));
    {
        CatalogMaker lamps(inRoot("core/Lamps.orvlib"), "lamps");
        const int all = lamps.addFolder("All");
        lamps.addItem(all, {"Another one"});
        lamps.addItem(all, {"Lamp"});
    }
    open();
    ASSERT_TRUE(goTo({"Favourites"}));
    EXPECT_TRUE(waitFor([&] { return names() == QStringList("Lamp"); })) << names().join(',').toStdString();
}

TEST_F(BrowserGalleryTest, itemThatWasLookedAtIsAmongTheRecentOnes)
{
    open();
    select("Lamp");
    QTest::keyClick(&grid(), Qt::Key_Return);
    ASSERT_TRUE(goTo({"Recent"}));
    EXPECT_EQ(names(), QStringList("Lamp"));
}

TEST_F(BrowserGalleryTest, breadcrumbsLeadUpwards)
{
    open();
    ASSERT_TRUE(goTo({"Core", "Doors", "Exterior"}));
    EXPECT_EQ(way(), QStringList({"Everything", "Core", "Doors", "Exterior"}));
    const auto steps = child<QWidget>("breadcrumbs").findChildren<QToolButton*>();
    for (auto* step : steps)
        if (step->isVisible() && step->accessibleName() == "Go to Core")
            QTest::mouseClick(step, Qt::LeftButton);
    EXPECT_EQ(way(), QStringList({"Everything", "Core"}));
    EXPECT_EQ(tree().currentIndex().data().toString(), "Core");
    EXPECT_EQ(names().size(), 4);
}

TEST_F(BrowserGalleryTest, picturesComeInAfterTheItems)
{
    open();
    const int row = names().indexOf(QString::fromUtf8("\xC3\x84sche"));
    EXPECT_TRUE(waitFor([&] {
        const auto image = items().index(row, 0).data(GalleryModel::kPictureRole).value<QImage>();
        return !image.isNull() && image.pixelColor(8, 8) == QColor(Qt::darkGreen);
    }));
}

TEST_F(BrowserGalleryTest, smallPictureIsEnlargedToTwiceItsSizeAtMost)
{
    EXPECT_EQ(ItemPicture::shownSize({16, 16}, {256, 256}), QSize(32, 32));
    EXPECT_EQ(ItemPicture::shownSize({200, 100}, {256, 256}), QSize(256, 128));
    EXPECT_EQ(ItemPicture::shownSize({1000, 500}, {100, 100}), QSize(100, 50));
}

TEST_F(BrowserGalleryTest, itemsCanBeDragged)
{
    open();
    const std::unique_ptr<QMimeData> data(items().mimeData({items().index(names().indexOf("Lamp"), 0)}));
    EXPECT_EQ(data->text(), "Lamp");
    EXPECT_TRUE(data->hasFormat("application/x-orv-library-items"));
}

TEST_F(BrowserGalleryTest, zoomOrderAndViewAreThereAtTheNextStart)
{
    open();
    size().setValue(80);
    child<QComboBox>("sortOrder").setCurrentIndex(2);
    QTest::mouseClick(&child<QToolButton>("showList"), Qt::LeftButton);
    close();
    open();
    EXPECT_EQ(size().value(), 80);
    EXPECT_EQ(child<QComboBox>("sortOrder").currentIndex(), 2);
    EXPECT_TRUE(child<QTreeView>("galleryList").isVisible());
}

TEST_F(BrowserGalleryTest, selectionIsThereAtTheNextStart)
{
    open();
    select("Door 10");
    close();
    open();
    EXPECT_TRUE(waitFor([&] { return detail("detailsTitle") == "Door 10"; }));
}

TEST_F(BrowserGalleryTest, detailsMakeRoomInANarrowWindow)
{
    open();
    window().resize(1100, 700);
    EXPECT_TRUE(child<QWidget>("detailsPane").isVisible());
    window().resize(800, 700);
    EXPECT_TRUE(waitFor([&] { return !child<QWidget>("detailsPane").isVisible(); }));
    QTest::keyClick(&window(), Qt::Key_I, Qt::ControlModifier);
    EXPECT_TRUE(child<QWidget>("detailsPane").isVisible());
}
