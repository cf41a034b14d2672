// Items that are similar to the item in the details.
#include <algorithm>

#include <QElapsedTimer>
#include <QLabel>
#include <QListView>
#include <QTest>
#include <QTreeView>

#include <gmock/gmock.h>

#include "apps/orv-browser/models/SimilarItems.h"
#include "tests/orv-browser/BrowserTest.h"
#include "tests/orv-browser/CatalogMaker.h"

namespace {

using test::CatalogMaker;
using testing::ElementsAre;
using testing::Lt;

class BrowserSimilarTest : public test::BrowserTest
{
protected:
    BrowserSimilarTest()
    {
        {
            CatalogMaker doors(inRoot("core/Doors.orvlib"), "doors");
            const int exterior = doors.addFolder("Exterior");
            const int other = doors.addFolder("Other");
            doors.addItem(exterior, {"Oak door", "", 10001, 55, CatalogMaker::picture()});
            doors.addItem(exterior, {"Pine door", "", 10002, 55});
            doors.addItem(exterior, {"Plain door"});
            doors.addItem(other, {"Lamp", "", 10001, 55});
            doors.addItem(other, {"Table", "", 10001});
            doors.addItem(other, {"Oven", "", 10002, 55});
            doors.addItem(other, {"Carpet"});
        }
        CatalogMaker more(inRoot("bonus/More.orvlib"), "more");
        more.addItem(more.addFolder("EXT\xC3\x89RIOR"), {"Steel door", "", 10001, 55});
        more.addItem(more.addFolder("Gates"), {"Gate"});
    }

    QListView& view() { return child<QListView>("similarItems"); }
    QStringList similar()
    {
        QStringList names;
        for (int row = 0; row < view().model()->rowCount(); ++row)
            names << view().model()->index(row, 0).data().toString();
        return names;
    }
    bool shows(const QStringList& names)
    {
        const bool isShown = waitFor([&] { return similar() == names; });
        EXPECT_EQ(similar(), names);
        return isShown;
    }
};

} // namespace

TEST_F(BrowserSimilarTest, standInTheDetailsTheMostSimilarFirst)
{
    open();
    ASSERT_TRUE(settle());
    select("Oak door");
    // The order is: same folder, style and maker; folder and maker; folder; style and maker; style; maker.
    ASSERT_TRUE(shows({"Steel door", "Pine door", "Plain door", "Lamp", "Table", "Oven"}));
    EXPECT_TRUE(view().isVisible());
    select("Plain door");
    ASSERT_TRUE(shows({"Steel door", "Pine door", "Oak door"}));
}

TEST_F(BrowserSimilarTest, areHiddenWhereThereAreNone)
{
    open();
    ASSERT_TRUE(settle());
    select("Oak door");
    ASSERT_TRUE(waitFor([&] { return view().isVisible(); }));
    select("Gate");
    EXPECT_TRUE(waitFor([&] { return !view().isVisible(); }));
}

TEST_F(BrowserSimilarTest, clickShowsTheItemWhereItLies)
{
    open();
    ASSERT_TRUE(settle());
    select("Oak door");
    ASSERT_TRUE(waitFor([&] { return view().isVisible(); }));
    QTest::mouseClick(view().viewport(), Qt::LeftButton, {},
                      view().visualRect(view().model()->index(0, 0)).center());
    ASSERT_TRUE(waitFor([&] { return detail("detailsTitle") == "Steel door"; }));
    EXPECT_EQ(names(), QStringList("Steel door"));
    EXPECT_EQ(tree().currentIndex().data().toString(), QString::fromUtf8("EXT\xC3\x89RIOR"));
}

TEST_F(BrowserSimilarTest, keysWalkThroughThemAndEnterShowsOne)
{
    open();
    ASSERT_TRUE(settle());
    select("Oak door");
    ASSERT_TRUE(waitFor([&] { return view().isVisible(); }));
    view().setFocus();
    QTest::keyClick(&view(), Qt::Key_Home);
    QTest::keyClick(&view(), Qt::Key_Right);
    QTest::keyClick(&view(), Qt::Key_Return);
    ASSERT_TRUE(waitFor([&] { return detail("detailsTitle") == "Pine door"; }));
}

TEST_F(BrowserSimilarTest, allOfThemAreSeenWithoutAScrollBarOfTheirOwn)
{
    open();
    ASSERT_TRUE(settle());
    select("Oak door");
    ASSERT_TRUE(waitFor([&] { return view().isVisible(); }));
    for (const int width : {1000, 1180, 2000}) {
        window().resize(width, 720);
        QTest::qWait(1);
        const QRect last = view().visualRect(view().model()->index(view().model()->rowCount() - 1, 0));
        EXPECT_TRUE(view().viewport()->rect().contains(last))
            << width << ": " << last.bottom() << " of " << view().height() << ", " << view().width()
            << " wide";
    }
}

/// Similar items make the details scroll. The scroll bar narrows the texts above, which may then need a
/// second line.
TEST_F(BrowserSimilarTest, leaveTheTextsAboveTheirLines)
{
    {
        CatalogMaker oakline(inRoot("core/Oakline Cabinets.orvlib"), "oakline");
        const int exterior = oakline.addFolder("Exterior");
        for (int i = 0; i < 12; ++i)
            oakline.addItem(exterior, {"Cabinet " + std::to_string(i), "", 10001, 55});
    }
    open();
    ASSERT_TRUE(settle());
    for (const int width : {1100, 1180, 1260, 1400}) {
        window().resize(width, 600);
        for (const char* name : {"Cabinet 1", "Cabinet 2"}) {
            select(name);
            ASSERT_TRUE(waitFor([&] { return similar().size() == 12 && !similar().contains(name); }));
            QTest::qWait(20);
            for (const char* label :
                 {"detailsCatalog", "detailsFolder", "detailsStyle", "detailsManufacturer"}) {
                const auto& text = child<QLabel>(label);
                EXPECT_GE(text.height(), text.heightForWidth(text.width()))
                    << label << ": " << text.text().toStdString() << ", window of " << width;
            }
        }
    }
}

TEST_F(BrowserSimilarTest, twoHundredThousandItemsKeepTheWindowAtWork)
{
    {
        CatalogMaker many(inRoot("core/Many.orvlib"), "many");
        many.addFolders(10);
        many.addItems(3, 200000, {});
    }
    open();
    ASSERT_TRUE(settle());
    ASSERT_TRUE(goTo({"Core", "Doors"}));
    QElapsedTimer click;
    click.start();
    select("Oak door");
    EXPECT_THAT(click.elapsed(), Lt(1000));
    EXPECT_TRUE(waitFor([&] { return similar().size() == 6; }));
    ASSERT_TRUE(goTo({"Core", "Many"}));
    select("Item 100");
    ASSERT_TRUE(waitFor([&] { return similar().size() == 12; }));
    EXPECT_THAT(similar().mid(0, 2), ElementsAre("Item 101", "Item 99"));
}
