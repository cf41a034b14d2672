// How long things take, with bounds that a loaded machine and a build without optimisation keep. The figures
// themselves come from bench/BrowserBench.cpp.
#include <QElapsedTimer>
#include <QLabel>
#include <QThread>
#include <QTimer>
#include <QTreeView>

#include <gtest/gtest.h>

#include "tests/orv-browser/BrowserTest.h"
#include "tests/orv-browser/CatalogMaker.h"
#include "tests/orv-browser/EventWatch.h"

namespace {

using test::CatalogMaker;

#ifdef ORV_SLOW_BUILD
constexpr int kSlowness = 10;
#else
constexpr int kSlowness = 1;
#endif

class BrowserFiguresTest : public test::BrowserTest
{
protected:
    /// Opens a folder and waits for its rows.
    /// @return milliseconds
    long long opening(const QModelIndex& folder)
    {
        const QPersistentModelIndex place(folder);
        QElapsedTimer timer;
        timer.start();
        tree().expand(folder);
        EXPECT_TRUE(waitFor([&] { return model().isRead(place); }));
        return timer.elapsed();
    }
};

} // namespace

TEST_F(BrowserFiguresTest, folderOfTenThousandItemsAmongAHundredThousandOpensAtOnce)
{
    {
        CatalogMaker large(inRoot("core/Large.orvlib"), "large");
        for (int folder = 0; folder < 10; ++folder)
            large.addItems(large.addFolder("Folder " + std::to_string(folder)), 10000);
    }
    open();
    const QModelIndex folder = openPath({"Core", "Large", "Folder 7"});
    EXPECT_LT(opening(folder), 500 * kSlowness); // 100 where nothing else runs
    EXPECT_EQ(model().rowCount(folder), 10000);
    EXPECT_EQ(model().index(9999, 0, folder).data().toString(), "Item 10000");
}

TEST_F(BrowserFiguresTest, folderOfTwoHundredThousandItemsOpensWhileTheWindowWorks)
{
    constexpr int kItems = 200000;
    {
        CatalogMaker huge(inRoot("core/Huge.orvlib"), "huge");
        huge.addItems(huge.addFolder("All"), kItems);
    }
    open();
    const QPersistentModelIndex folder(openPath({"Core", "Huge", "All"}));
    {
        const test::EventWatch watch;
        opening(folder);
        EXPECT_LT(watch.longest(), 250 * kSlowness) << watch.longestName();
    }
    EXPECT_EQ(model().rowCount(folder), kItems);
    EXPECT_EQ(model().index(kItems - 1, 0, folder).data().toString(), "Item 200000");
    tree().setCurrentIndex(model().index(kItems - 1, 0, folder));
    EXPECT_EQ(child<QLabel>("detailsTitle").text(), "Item 200000");
}

TEST_F(BrowserFiguresTest, catalogThatIsReadAgainWhileItFillsHoldsEachFolderOnce)
{
    constexpr int kFolders = 6000;
    constexpr unsigned kSlowListener = 20; // milliseconds, so that the filling takes several steps
    CatalogMaker(inRoot("core/Many.orvlib"), "many").addFolders(kFolders);
    open();
    const QPersistentModelIndex catalog(openPath({"Core", "Many"}));
    int readings = 0;
    const auto readAgain = [&] {
        EXPECT_FALSE(model().isRead(catalog));
        model().reload(fileString(inRoot("core/Many.orvlib")));
    };
    QObject::connect(&model(), &QAbstractItemModel::rowsInserted, &tree(), [&](const QModelIndex& parent) {
        QThread::msleep(kSlowListener);
        if (parent == catalog && ++readings == 1)
            QTimer::singleShot(0, &tree(), readAgain); // before the next step of the filling
    });
    tree().expand(catalog);
    ASSERT_TRUE(waitFor([&] { return model().isRead(catalog); }));
    EXPECT_EQ(readings, 4); // one step of the first reading, and three of the second
    EXPECT_EQ(model().rowCount(catalog), kFolders);
}

TEST_F(BrowserFiguresTest, startsWithFiftyCatalogsWithinASecond)
{
    for (int number = 0; number < 50; ++number) {
        CatalogMaker catalog(inRoot("core/Catalog " + std::to_string(number) + ".orvlib"),
                             "id " + std::to_string(number));
        catalog.addItems(catalog.addFolder("All"), 20, CatalogMaker::picture());
    }
    QElapsedTimer timer;
    timer.start();
    open();
    EXPECT_LT(timer.elapsed(), 1000 * kSlowness);
    EXPECT_EQ(model().catalogCount(), 50);
}
