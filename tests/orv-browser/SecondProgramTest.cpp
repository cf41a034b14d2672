// A second program changes the same root while the window is open. The window then shows the new state
// without a request of the user.
#include <filesystem>

#include <QAction>
#include <QLabel>
#include <QProcess>
#include <QPushButton>
#include <QTest>
#include <QToolButton>
#include <QTreeView>

#include <gmock/gmock.h>

#include "OrvHost/update/HostLock.h"
#include "OrvLibrary/LibraryFilterManager.h"
#include "tests/orv-browser/BrowserService.h"
#include "tests/orv-browser/BrowserTest.h"
#include "tests/orv-browser/CatalogMaker.h"
#include "tests/support/ContentService.h"

namespace {

class BrowserSecondProgramTest : public test::BrowserTest
{
protected:
    BrowserSecondProgramTest()
    {
        service.offer("Orv_Core_Content_Index.txt", "Doors.orvlib\nLamps.orvlib\n");
        offer("Doors", {"Gate", "Hatch"});
        offer("Lamps", {"Torch"});
    }

    std::string catalog(const std::string& name, const QStringList& items) const
    {
        const std::string file = folder().path() + "/" + name + ".orvlib";
        std::filesystem::remove(file);
        {
            test::CatalogMaker maker(file, name);
            const int all = maker.addFolder("All");
            for (const QString& item : items)
                maker.addItem(all, {item.toStdString()});
        }
        return file;
    }
    void offer(const std::string& name, const QStringList& items)
    {
        service.offer(name + ".orvlib", test::readFile(catalog(name, items)));
    }
    QString url() const { return QString::fromStdString(service.redirect()); }
    /// Runs another program until it ends.
    void command(const QStringList& arguments) const
    {
        const QString root = QString::fromStdString(folder().path() + "/root");
        test::BrowserService::runProgram(QStringList{"--root", root, "--progress", "none"} + arguments);
    }
    void update()
    {
        trigger("checkForUpdates");
        ASSERT_TRUE(waitFor([&] { return child<QAction>("checkForUpdates").isEnabled(); }));
        ASSERT_TRUE(settle());
    }
    /// Waits until the gallery shows these items.
    bool shows(const QStringList& wanted)
    {
        return waitFor([&] { return names() == wanted; });
    }
    QString archive(const std::string& name, const QStringList& items) const
    {
        const QString database = QString::fromStdString(catalog(name, items));
        const std::string texture = folder().write("wood.jpg", "not really a picture").toNativeString();
        const QString packed = database + "z";
        test::BrowserService::runProgram(
            {"pack", database, QString::fromStdString(texture), "--output", packed});
        return packed;
    }

    test::ContentService service;
};

} // namespace

TEST_F(BrowserSecondProgramTest, firstContentThatItFetchesTakesThePlaceOfTheOffers)
{
    open();
    ASSERT_TRUE(child<QPushButton>("fetchContent").isVisible());
    command({"update", "--url", url()});
    EXPECT_TRUE(shows({"Gate", "Hatch", "Torch"}));
    EXPECT_FALSE(child<QPushButton>("fetchContent").isVisible());
    EXPECT_EQ(placesBelow(place({"Core"})), QStringList({"Doors", "Lamps"}));
}

TEST_F(BrowserSecondProgramTest, catalogThatItReplacesIsReadAgain)
{
    open(url());
    update();
    ASSERT_TRUE(goTo({"Core", "Doors"}));
    offer("Doors", {"Gate", "Portal", "Wicket"});
    command({"update", "--url", url()});
    EXPECT_TRUE(shows({"Gate", "Portal", "Wicket"})) << names().join(',').toStdString();
    EXPECT_TRUE(waitFor([&] { return place({"What's new"}).data(PlacesModel::kCountRole).toInt() == 2; }));
    update();
    EXPECT_EQ(summary(), "All catalogs are up to date.");
}

TEST_F(BrowserSecondProgramTest, versionThatItRestoresIsShownAndStays)
{
    open(url());
    update();
    offer("Doors", {"Portal"});
    update();
    ASSERT_TRUE(goTo({"Core", "Doors"}));
    ASSERT_TRUE(shows({"Portal"}));
    command({"restore", "Doors"});
    EXPECT_TRUE(shows({"Gate", "Hatch"})) << names().join(',').toStdString();
    update();
    EXPECT_TRUE(shows({"Gate", "Hatch"})) << names().join(',').toStdString();
}

TEST_F(BrowserSecondProgramTest, libraryThatItImportsAndTakesBackComesAndGoes)
{
    open(url());
    update();
    command({"import", archive("Kitchen", {"Table"})});
    EXPECT_TRUE(waitFor([&] { return place({"My libraries", "Kitchen"}).isValid(); }));
    EXPECT_TRUE(goTo({"My libraries", "Kitchen"}));
    EXPECT_TRUE(shows({"Table"}));
    command({"undo"});
    EXPECT_TRUE(waitFor([&] { return !place({"My libraries", "Kitchen"}).isValid(); }));
    EXPECT_TRUE(shows({})) << names().join(',').toStdString();
    ASSERT_TRUE(goTo({"Core"}));
    EXPECT_TRUE(shows({"Gate", "Hatch", "Torch"}));
}

TEST_F(BrowserSecondProgramTest, filterThatItPutsInForceHoldsHereToo)
{
    open(url());
    update();
    command({"filters", "add", "Light", "Lamps"});
    command({"filters", "use", "0"});
    EXPECT_TRUE(shows({"Torch"})) << names().join(',').toStdString();
    EXPECT_TRUE(child<QToolButton>("filterChip").text().contains("Light"));
    command({"filters", "use", "none"});
    EXPECT_TRUE(shows({"Gate", "Hatch", "Torch"}));
    pick("filterChip", "Light");
    EXPECT_TRUE(shows({"Torch"}));
    EXPECT_EQ(LibraryFilterManager::getLibraryFilterManager().getCurrentFilterId(), 0);
}

TEST_F(BrowserSecondProgramTest, updateThatItRunsIsToldAndNothingIsSpoilt)
{
    open(url());
    update();
    {
        const OrvHost::HostLock theirs = OrvHost::HostLock::ofUpdate();
        trigger("checkForUpdates");
        ASSERT_TRUE(waitFor([&] { return child<QAction>("checkForUpdates").isEnabled(); }));
        EXPECT_TRUE(summary().startsWith("another update is running on this root"))
            << summary().toStdString();
        EXPECT_TRUE(shows({"Gate", "Hatch", "Torch"}));
    }
    update();
    EXPECT_EQ(summary(), "All catalogs are up to date.");
}

TEST_F(BrowserSecondProgramTest, bothMayUpdateInTurnWhileTheContentChanges)
{
    open(url());
    update();
    for (int round = 0; round < 3; ++round) {
        const QString mine = QString("Mine %1").arg(round);
        const QString theirs = QString("Theirs %1").arg(round);
        offer("Doors", {mine});
        update();
        EXPECT_TRUE(shows({mine, round == 0 ? QString("Torch") : QString("Theirs %1").arg(round - 1)}))
            << names().join(',').toStdString();
        offer("Lamps", {theirs});
        command({"update", "--url", url()});
        EXPECT_TRUE(shows({mine, theirs})) << names().join(',').toStdString();
    }
}

TEST_F(BrowserSecondProgramTest, catalogThatItHoldsIsLeftAlone)
{
    open(url());
    update();
    command({"hold", "Doors"});
    offer("Doors", {"Portal"});
    update();
    EXPECT_TRUE(shows({"Gate", "Hatch", "Torch"})) << names().join(',').toStdString();
    command({"release", "Doors"});
    update();
    EXPECT_TRUE(shows({"Portal", "Torch"})) << names().join(',').toStdString();
}
