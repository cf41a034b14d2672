// New items, pending updates, and how the user dismisses them. The service runs as a process of its own.
#include <QAction>
#include <QLabel>
#include <QListView>
#include <QPushButton>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QTest>
#include <QToolButton>
#include <QTreeView>

#include <gmock/gmock.h>

#include "tests/orv-browser/BrowserService.h"
#include "tests/orv-browser/BrowserTest.h"
#include "tests/orv-browser/CatalogMaker.h"

namespace {

using testing::ElementsAre;

class BrowserNewsTest : public test::BrowserTest
{
protected:
    BrowserNewsTest() : service(folder().path() + "/service")
    {
        test::CatalogMaker doors(service.content() + "/Fresh.orvlib", "fresh");
        const int all = doors.addFolder("All");
        for (const char* name : {"Arch", "Beam", "Column"})
            doors.addItem(all, {name, "", 3, std::nullopt, test::CatalogMaker::picture()});
        const std::string index = service.content() + "/Orv_Core_Content_Index.txt";
        test::writeFile(index, "Fresh.orvlib\n");
    }

    void update()
    {
        trigger("checkForUpdates");
        ASSERT_TRUE(waitFor([&] { return child<QAction>("checkForUpdates").isEnabled(); }));
        ASSERT_TRUE(settle());
    }
    /// Puts a newer version of the catalog on the service: "Arch" has another name, "Column" is removed,
    /// "Dormer" is new.
    void changeCatalog() const
    {
        change({"UPDATE item SET name = 'Archway' WHERE name = 'Arch'",
                "DELETE FROM item WHERE name = 'Column'",
                "INSERT INTO item (id, folder, name, pane_name) VALUES (77, 1, 'Dormer', '')"});
    }
    void change(const QStringList& statements) const
    {
        QString problem;
        {
            QSqlDatabase database = QSqlDatabase::addDatabase("QSQLITE", "news-test");
            database.setDatabaseName(QString::fromStdString(service.content() + "/Fresh.orvlib"));
            database.open();
            for (const QString& statement : statements)
                problem += database.exec(statement).lastError().text().trimmed();
        }
        QSqlDatabase::removeDatabase("news-test");
        ASSERT_EQ(problem, "");
    }
    void openWithNews()
    {
        open(service.redirect());
        update();
        changeCatalog();
        update();
    }
    int newsCount() { return place({"What's new"}).data(PlacesModel::kCountRole).toInt(); }
    QString chip() { return child<QToolButton>("newChip").text(); }
    QString accessibleName(const QString& item)
    {
        const int row = names().indexOf(item);
        return items().index(row, 0).data(Qt::AccessibleTextRole).toString();
    }
    PlacesModel::State stateOf(const QModelIndex& catalog)
    {
        return static_cast<PlacesModel::State>(catalog.data(PlacesModel::kStateRole).toInt());
    }

    test::BrowserService service;
};

} // namespace

TEST_F(BrowserNewsTest, itemsOfTheFirstFetchAreNotNew)
{
    open(service.redirect());
    EXPECT_EQ(newsCount(), 0);
    update();
    EXPECT_TRUE(place({"Core", "Fresh"}).isValid());
    EXPECT_EQ(newsCount(), 0);
    EXPECT_EQ(child<QLabel>("resultText").text(), "1 catalog, 3 items");
    EXPECT_EQ(chip(), "New");
    ASSERT_TRUE(goTo({"What's new"}));
    EXPECT_TRUE(names().isEmpty());
    EXPECT_FALSE(child<QPushButton>("markSeen").isVisible());
}

TEST_F(BrowserNewsTest, itemsThatAnUpdateAddedOrChangedAreNew)
{
    openWithNews();
    EXPECT_EQ(newsCount(), 2);
    EXPECT_EQ(child<QLabel>("resultText").text(), "1 catalog, 1 new item, 1 changed, 1 gone");
    EXPECT_EQ(chip(), "New (2)");
    EXPECT_EQ(stateOf(place({"Core", "Fresh"})), PlacesModel::State::New);
    EXPECT_TRUE(place({"Core", "Fresh"}).data(Qt::AccessibleTextRole).toString().startsWith("Fresh, 2 item"));
    const QModelIndex row = place({"What's new"});
    tree().scrollTo(row);
    QTest::mouseClick(tree().viewport(), Qt::LeftButton, {}, tree().visualRect(row).center());
    EXPECT_EQ(names(), QStringList({"Archway", "Dormer"}));
    EXPECT_EQ(detail("placeGone"), "1");
    EXPECT_EQ(accessibleName("Archway"), "Archway, from Fresh, Changed");
    EXPECT_EQ(accessibleName("Dormer"), "Dormer, from Fresh, New");
    select("Dormer");
    EXPECT_EQ(detail("detailsNew"), "new since you last looked");
    select("Archway");
    EXPECT_EQ(detail("detailsNew"), "changed since you last looked");
}

TEST_F(BrowserNewsTest, chipLeavesWhatIsNewAndItemsSayIt)
{
    openWithNews();
    ASSERT_TRUE(goTo({"Core"}));
    EXPECT_EQ(names(), QStringList({"Archway", "Beam", "Dormer"}));
    select("Beam");
    EXPECT_EQ(detail("detailsNew"), "");
    EXPECT_EQ(accessibleName("Beam"), "Beam, from Fresh");
    QTest::mouseClick(&child<QToolButton>("newChip"), Qt::LeftButton);
    EXPECT_EQ(names(), QStringList({"Archway", "Dormer"}));
    QTest::keyClicks(&child<QWidget>("searchField"), "beam");
    ASSERT_TRUE(waitFor([&] { return child<QLabel>("nothingFound").isVisible(); }));
    EXPECT_TRUE(child<QLabel>("nothingFound").text().contains("only what is new"));
    QTest::mouseClick(&child<QPushButton>("clearSearch"), Qt::LeftButton);
    EXPECT_EQ(names(), QStringList({"Archway", "Beam", "Dormer"}));
}

TEST_F(BrowserNewsTest, newItemsLookNew)
{
    openWithNews();
    ASSERT_TRUE(goTo({"Core"}));
    auto& gallery = child<QListView>("gallery");
    const auto greenPixels = [&](int row) {
        const QImage image = gallery.viewport()->grab(gallery.visualRect(items().index(row, 0))).toImage();
        int count = 0;
        for (int y = 0; y < image.height() / 4; ++y)
            for (int x = 0; x < image.width(); ++x)
                count += image.pixelColor(x, y) == QColor(45, 125, 70);
        return count;
    };
    EXPECT_GT(greenPixels(2), 50);
    EXPECT_EQ(greenPixels(1), 0);
}

TEST_F(BrowserNewsTest, seenItemsAreNotNewUntilUndo)
{
    openWithNews();
    ASSERT_TRUE(goTo({"What's new"}));
    QTest::mouseClick(&child<QPushButton>("markSeen"), Qt::LeftButton);
    EXPECT_TRUE(names().isEmpty());
    EXPECT_EQ(newsCount(), 0);
    EXPECT_EQ(stateOf(place({"Core", "Fresh"})), PlacesModel::State::None);
    QTest::keyClick(&window(), Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(names(), QStringList({"Archway", "Dormer"}));
    trigger("markAllSeen");
    EXPECT_EQ(newsCount(), 0);
    close();
    open(service.redirect());
    EXPECT_EQ(newsCount(), 0);
    change({"UPDATE item SET name = 'Beams' WHERE name = 'Beam'"});
    update();
    ASSERT_TRUE(goTo({"What's new"}));
    EXPECT_EQ(names(), QStringList("Beams"));
}

TEST_F(BrowserNewsTest, notesThatWereRemovedHideNoNews)
{
    open(service.redirect());
    update();
    for (int i = 0; i < 3; ++i)
        update(); // a run without changes still gets a number
    changeCatalog();
    update();
    trigger("markAllSeen");
    ASSERT_EQ(newsCount(), 0);
    ASSERT_TRUE(QFile::remove(QString::fromStdString(inRoot("runs.json"))));
    change({"UPDATE item SET name = 'Beams' WHERE name = 'Beam'"});
    update();
    EXPECT_EQ(newsCount(), 1);
    trigger("markAllSeen");
    for (const char* name : {"runs.json", "catalog-news.json"})
        ASSERT_TRUE(QFile::remove(QString::fromStdString(inRoot(name))));
    change({"UPDATE item SET name = 'Beamer' WHERE name = 'Beams'"});
    update();
    EXPECT_EQ(newsCount(), 1);
}

TEST_F(BrowserNewsTest, newsAddUpOverUpdatesAndStarts)
{
    openWithNews();
    close();
    change({"UPDATE item SET name = 'Beams' WHERE name = 'Beam'"});
    const QString root = QString::fromStdString(folder().path() + "/root");
    test::BrowserService::runProgram({"--root", root, "update", "--url", service.redirect()});
    open(service.redirect());
    ASSERT_TRUE(goTo({"What's new"}));
    EXPECT_EQ(names(), QStringList({"Archway", "Beams", "Dormer"}));
}

TEST_F(BrowserNewsTest, updateThatAnotherProgramFoundWaitsBesideItsCatalog)
{
    open(service.redirect());
    update();
    EXPECT_EQ(stateOf(place({"Core", "Fresh"})), PlacesModel::State::None);
    close();
    changeCatalog();
    const QString root = QString::fromStdString(folder().path() + "/root");
    QProcess program; // its exit status reports pending updates
    program.start(ORV_LIBRARY_PROGRAM, {"--root", root, "check", "--url", service.redirect()});
    ASSERT_TRUE(program.waitForFinished());
    open(service.redirect());
    ASSERT_TRUE(goTo({"Core", "Fresh"}));
    EXPECT_EQ(stateOf(place({"Core", "Fresh"})), PlacesModel::State::Waiting);
    EXPECT_EQ(detail("placeState"), "an update is waiting");
    EXPECT_EQ(place({"Core", "Fresh"}).data(Qt::ToolTipRole).toString(), "an update is waiting");
    update();
    EXPECT_EQ(stateOf(place({"Core", "Fresh"})), PlacesModel::State::New);
}
