#include <memory>

#include <QComboBox>
#include <QIcon>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QMimeData>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTest>
#include <QTreeView>

#include <gtest/gtest.h>

#include "OrvLibrary/LibraryFilterManager.h"
#include "OrvLibrary/Utility/Chooser.h"
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
            doors.addItem(all, {"Oak door"});
            doors.addItem(all, {"Glass door", "glass"});
            doors.addItem(all, {"Oak gate"});
        }
        CatalogMaker oak(inRoot("manufacturer/Oakline.orvlib"), "oakline");
        oak.addItem(oak.addFolder("All"), {"OAK DOOR of ours"});
    }

    /// Types into the search field and waits for the answer.
    void search(const QString& text)
    {
        auto& field = child<QLineEdit>("searchField");
        QTest::keyClick(&window(), Qt::Key_F, Qt::ControlModifier);
        QTest::keyClicks(&field, text);
        QTest::keyClick(&field, Qt::Key_Return);
        ASSERT_TRUE(waitFor([&] { return child<QLabel>("searchSummary").text().contains("found"); }));
    }

    /// A catalog that another program holds locked until the connection is closed.
    QSqlDatabase locked(const std::string& name) const
    {
        CatalogMaker(inRoot(name), name);
        QSqlDatabase lock = QSqlDatabase::addDatabase("QSQLITE", QString::fromStdString(name));
        lock.setDatabaseName(QString::fromStdString(inRoot(name)));
        EXPECT_TRUE(lock.open());
        EXPECT_TRUE(QSqlQuery(lock).exec("BEGIN EXCLUSIVE"));
        return lock;
    }

    QStringList found()
    {
        const QAbstractItemModel& results = *child<QListView>("searchResults").model();
        QStringList names;
        for (int row = 0; row < results.rowCount(); ++row)
            names << results.index(row, 0).data().toString();
        return names;
    }
};

} // namespace

TEST_F(BrowserSearchTest, findsItemsThatHoldEveryTermWhateverTheLetterCase)
{
    open();
    search("oak DOOR");
    EXPECT_EQ(found(), QStringList({"Oak door", "OAK DOOR of ours"}));
    EXPECT_FALSE(tree().isVisible());
}

TEST_F(BrowserSearchTest, emptyFieldBringsTheTreeBack)
{
    open();
    search("oak");
    auto& field = child<QLineEdit>("searchField");
    field.selectAll();
    QTest::keyClick(&field, Qt::Key_Delete);
    EXPECT_TRUE(waitFor([&] { return tree().isVisible(); }));
    EXPECT_FALSE(child<QListView>("searchResults").isVisible());
}

TEST_F(BrowserSearchTest, categoryNarrowsTheSearch)
{
    open();
    child<QComboBox>("searchCategory").setCurrentIndex(3); // manufacturers
    search("door");
    EXPECT_EQ(found(), QStringList({"OAK DOOR of ours"}));
    child<QComboBox>("searchCategory").setCurrentIndex(1); // core
    EXPECT_TRUE(waitFor([&] { return found() == QStringList({"Glass door", "Oak door"}); }));
}

TEST_F(BrowserSearchTest, goingToAFoundItemChoosesIt)
{
    open();
    search("glass");
    auto& list = child<QListView>("searchResults");
    list.setFocus();
    QTest::keyClick(&list, Qt::Key_Down);
    EXPECT_EQ(Library::Chooser::get()->getData().getItemName(), "Glass door");
    EXPECT_EQ(child<QLabel>("detailsTitle").text(), "Glass door");
    EXPECT_EQ(child<QLabel>("detailsPaneName").text(), "glass");
}

TEST_F(BrowserSearchTest, catalogThatCannotBeReadIsCountedNotHidden)
{
    test::writeFile(inRoot("core/Broken.orvlib"), "this is no database");
    open();
    search("oak");
    EXPECT_EQ(found().size(), 3);
    EXPECT_TRUE(child<QLabel>("searchSummary").text().contains("1 catalog"))
        << child<QLabel>("searchSummary").text().toStdString();
}

TEST_F(BrowserSearchTest, filterHidesCatalogsFromTreeAndSearch)
{
    LibraryFilterManager& manager = LibraryFilterManager::getLibraryFilterManager();
    manager.setLibraryFilters({LibraryFilter("Ours", 4, {"oakline"})});
    manager.saveFilters();
    open();
    auto& choice = child<QComboBox>("filterChoice");
    ASSERT_EQ(choice.count(), 2);
    choice.setFocus();
    QTest::keyClick(&choice, Qt::Key_Down);
    EXPECT_EQ(manager.getCurrentFilterId(), 4);
    EXPECT_TRUE(waitFor([&] { return !tree().isRowHidden(0, model().index(2, 0)); }));
    EXPECT_TRUE(tree().isRowHidden(0, model().index(0, 0)));
    search("oak");
    EXPECT_EQ(found(), QStringList({"OAK DOOR of ours"}));
}

TEST_F(BrowserSearchTest, filterOfTheLastRunHoldsFromTheStart)
{
    LibraryFilterManager& manager = LibraryFilterManager::getLibraryFilterManager();
    manager.setLibraryFilters({LibraryFilter("Ours", 4, {"oakline"})});
    manager.setCurrentFilterId(4);
    open();
    EXPECT_EQ(child<QComboBox>("filterChoice").currentIndex(), 1);
    EXPECT_TRUE(waitFor([&] { return !tree().isRowHidden(0, model().index(2, 0)); }));
    EXPECT_TRUE(tree().isRowHidden(0, model().index(0, 0)));
}

TEST_F(BrowserSearchTest, catalogsThatAreSlowToAnswerDoNotStopTheWindowUnderAFilter)
{
    constexpr int kMostMilliseconds = 100; // each of these catalogs takes 200 to say that it is locked
    LibraryFilterManager& manager = LibraryFilterManager::getLibraryFilterManager();
    manager.setLibraryFilters({LibraryFilter("Ours", 4, {"oakline"})});
    manager.setCurrentFilterId(4);
    const QSqlDatabase locks[] = {locked("core/One.orvlib"), locked("core/Two.orvlib")};
    {
        const test::EventWatch watch;
        open();
        EXPECT_TRUE(waitFor([&] { return !tree().isRowHidden(0, model().index(2, 0)); }));
        EXPECT_LT(watch.longest(), kMostMilliseconds) << watch.longestName();
    }
    for (const QSqlDatabase& lock : locks)
        QSqlDatabase(lock).close();
}

TEST_F(BrowserSearchTest, foundItemsShowTheirPicturesAndCanBeDragged)
{
    {
        CatalogMaker chairs(inRoot("core/Chairs.orvlib"), "chairs");
        chairs.addItem(chairs.addFolder("All"),
                       {"Green chair", "", std::nullopt, std::nullopt, CatalogMaker::picture()});
    }
    open();
    search("green");
    const QAbstractItemModel& results = *child<QListView>("searchResults").model();
    EXPECT_TRUE(waitFor([&] {
        const QImage image =
            results.index(0, 0).data(Qt::DecorationRole).value<QIcon>().pixmap(16, 16).toImage();
        return image.pixelColor(8, 8) == QColor(Qt::darkGreen);
    }));
    const std::unique_ptr<QMimeData> data(results.mimeData({results.index(0, 0)}));
    EXPECT_EQ(data->text(), "Green chair");
    EXPECT_TRUE(data->hasFormat("application/x-orv-library-items"));
}
