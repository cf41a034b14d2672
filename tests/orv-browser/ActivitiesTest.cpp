// The list of running downloads and imports, and the card with their result.
#include <chrono>
#include <filesystem>

#include <QAction>
#include <QApplication>
#include <QLabel>
#include <QPushButton>
#include <QTest>
#include <QToolButton>
#include <QTreeView>

#include <gmock/gmock.h>

#include "OrvLibrary/UI/qtLibraryProgressPanel.h"
#include "apps/orv-browser/activities/ActivityPane.h"
#include "apps/orv-browser/gallery/GalleryPane.h"
#include "tests/orv-browser/BrowserTest.h"
#include "tests/orv-browser/CatalogMaker.h"
#include "tests/support/ContentService.h"

namespace {

using std::chrono::milliseconds;
using test::FaultReply;

class BrowserActivitiesTest : public test::BrowserTest
{
protected:
    BrowserActivitiesTest()
    {
        service.offer("Orv_Core_Content_Index.txt", "Alpha.orvlib\nBeta.orvlib\n");
        offer("Alpha", {"Door", "Gate"});
        offer("Beta", {"Lamp"});
    }

    /// Adds a catalog with these items to the service.
    std::string offer(const std::string& name, const std::vector<std::string>& items)
    {
        const std::string file = folder().path() + "/" + name + ".orvlib";
        std::filesystem::remove(file);
        {
            test::CatalogMaker maker(file, name);
            const int all = maker.addFolder("All");
            for (const std::string& item : items)
                maker.addItem(all, {item});
        }
        const std::string content = test::readFile(file);
        service.offer(name + ".orvlib", content);
        return content;
    }
    /// Makes the download of a catalog take about two seconds.
    void slowDown(const std::string& name, const std::string& content)
    {
        service.spoil(name + ".orvlib",
                      FaultReply::ok(content).trickle(content.size() / 20, milliseconds(100)));
    }

    void openAndUpdate()
    {
        if (!isOpen)
            open(QString::fromStdString(service.redirect()));
        isOpen = true;
        trigger("checkForUpdates");
    }
    bool isRunning() { return !child<QAction>("checkForUpdates").isEnabled(); }
    bool ends()
    {
        return waitFor([&] { return !isRunning(); });
    }
    ActivityPane& list() { return child<ActivityPane>("activities"); }
    /// The state of an activity as the list shows it; empty if the list does not have it.
    QString stateOf(const QString& name)
    {
        const QAbstractItemModel& model = *list().model();
        for (int row = 0; row < model.rowCount(); ++row)
            if (model.index(row, 0).data().toString() == name)
                return model.index(row, 1).data().toString();
        return {};
    }
    bool isCardShown() { return child<QWidget>("resultCard").isVisible(); }
    QString card() { return child<QLabel>("resultText").text(); }
    void click(const char* button) { QTest::mouseClick(&child<QPushButton>(button), Qt::LeftButton); }
    test::ContentService service;
    bool isOpen = false;
};

} // namespace

TEST_F(BrowserActivitiesTest, listSaysHowEachCatalogStands)
{
    slowDown("Alpha", offer("Alpha", {"Door", "Gate"}));
    openAndUpdate();
    EXPECT_TRUE(waitFor([&] { return stateOf("Alpha").contains(" of "); })) << stateOf("Alpha").toStdString();
    EXPECT_TRUE(stateOf("Alpha").endsWith(" kB")) << stateOf("Alpha").toStdString();
    EXPECT_EQ(stateOf("Beta"), "waiting");
    ASSERT_TRUE(ends());
    EXPECT_EQ(stateOf("Alpha"), "installed");
    EXPECT_EQ(stateOf("Beta"), "installed");
}

TEST_F(BrowserActivitiesTest, clickOnTheCaptionUnfoldsTheListAndAnotherFoldsIt)
{
    slowDown("Alpha", offer("Alpha", {"Door", "Gate"}));
    openAndUpdate();
    ASSERT_TRUE(waitFor([&] { return stateOf("Alpha").contains(" of "); }));
    EXPECT_FALSE(list().isVisible());
    auto* panel = window().findChild<LibraryProgressPanel*>();
    ASSERT_NE(panel, nullptr);
    const auto labels = panel->findChildren<QLabel*>();
    const auto caption = std::find_if(labels.begin(), labels.end(),
                                      [](const QLabel* label) { return label->text().contains("Alpha"); });
    ASSERT_NE(caption, labels.end());
    QTest::mouseClick(*caption, Qt::LeftButton);
    EXPECT_TRUE(list().isVisible());
    EXPECT_TRUE(panel->isVisible());
    QTest::mouseClick(*caption, Qt::LeftButton);
    EXPECT_FALSE(list().isVisible());
    ASSERT_TRUE(ends());
}

TEST_F(BrowserActivitiesTest, clickOnTheGaugeChangesTheFigureOnly)
{
    slowDown("Alpha", offer("Alpha", {"Door", "Gate"}));
    openAndUpdate();
    ASSERT_TRUE(waitFor([&] { return stateOf("Alpha").contains(" of "); }));
    QTest::mouseClick(window().findChild<LibraryProgressPanel*>()->findChild<ProgressGauge*>(),
                      Qt::LeftButton);
    EXPECT_FALSE(list().isVisible());
    ASSERT_TRUE(ends());
}

TEST_F(BrowserActivitiesTest, listStaysAfterTheUpdateUntilItIsFolded)
{
    openAndUpdate();
    ASSERT_TRUE(ends());
    QTest::mouseClick(&child<QToolButton>("activitiesButton"), Qt::LeftButton);
    EXPECT_TRUE(list().isVisible());
    EXPECT_EQ(list().model()->rowCount(), 2);
    QApplication::setActiveWindow(&window()); // needed without a window manager
    QTest::keyClick(&window(), Qt::Key_J, Qt::ControlModifier);
    EXPECT_FALSE(list().isVisible());
}

TEST_F(BrowserActivitiesTest, cardCountsWhatIsNewAndStaysUntilItIsPutAway)
{
    openAndUpdate();
    ASSERT_TRUE(ends());
    EXPECT_TRUE(isCardShown());
    EXPECT_EQ(card(), "2 catalogs, 3 items");
    EXPECT_FALSE(child<QPushButton>("resultNews").isVisible()); // there is no news
    ASSERT_TRUE(settle());
    offer("Alpha", {"Door"});
    offer("Beta", {"Lamp", "Torch", "Candle"});
    trigger("checkForUpdates");
    ASSERT_TRUE(ends());
    EXPECT_EQ(card(), "2 catalogs, 2 new items, 1 gone");
    EXPECT_FALSE(child<QPushButton>("resultRetry").isVisible());
    QTest::qWait(50);
    EXPECT_TRUE(isCardShown());
    QTest::mouseClick(&child<QToolButton>("putResultAway"), Qt::LeftButton);
    EXPECT_FALSE(isCardShown());
}

TEST_F(BrowserActivitiesTest, updateWithoutNewsHasNoCard)
{
    openAndUpdate();
    ASSERT_TRUE(ends());
    trigger("checkForUpdates");
    ASSERT_TRUE(ends());
    EXPECT_EQ(summary(), "All catalogs are up to date.");
    EXPECT_FALSE(isCardShown());
    EXPECT_EQ(list().model()->rowCount(), 0);
}

TEST_F(BrowserActivitiesTest, cardLeadsToWhatIsNew)
{
    openAndUpdate();
    ASSERT_TRUE(ends());
    const std::string lists = inRoot("browser-lists.json");
    ASSERT_TRUE(waitFor([&] { return fileString(lists).pathExists(); })); // now all items count as seen
    offer("Beta", {"Lamp", "Torch"});
    trigger("checkForUpdates");
    ASSERT_TRUE(ends());
    ASSERT_TRUE(settle());
    EXPECT_TRUE(child<QPushButton>("resultNews").isVisible());
    click("resultNews");
    ASSERT_TRUE(settle());
    EXPECT_EQ(window().gallery().place().kind, Place::Kind::News);
    EXPECT_TRUE(names().contains("Torch")) << names().join('|').toStdString();
}

TEST_F(BrowserActivitiesTest, cardLeadsToTheLog)
{
    openAndUpdate();
    ASSERT_TRUE(ends());
    inDialog([&] { click("resultLog"); },
             [](QDialog& dialog) {
                 EXPECT_EQ(dialog.objectName(), "logDialog");
                 dialog.reject();
             });
}

TEST_F(BrowserActivitiesTest, failedCatalogSaysWhyAndItsButtonFetchesItAgain)
{
    service.spoil("Beta.orvlib", FaultReply::status(404));
    openAndUpdate();
    ASSERT_TRUE(ends());
    EXPECT_EQ(stateOf("Alpha"), "installed");
    EXPECT_EQ(stateOf("Beta"), "failed: HTTP 404");
    EXPECT_TRUE(card().startsWith("1 catalog, 2 items\nSome catalogs could not be updated: Beta.orvlib: "))
        << card().toStdString();
    QTest::mouseClick(&child<QToolButton>("activitiesButton"), Qt::LeftButton);
    auto& retry = child<QPushButton>("retry", &list());
    ASSERT_TRUE(settle());
    EXPECT_EQ(retry.accessibleName(), "Retry Beta");
    service.spoil("Beta.orvlib", FaultReply::ok(offer("Beta", {"Lamp"})));
    QTest::mouseClick(&retry, Qt::LeftButton);
    EXPECT_TRUE(isRunning());
    ASSERT_TRUE(ends());
    EXPECT_EQ(stateOf("Beta"), "installed");
    EXPECT_EQ(list().findChild<QPushButton*>("retry"), nullptr);
    EXPECT_EQ(card(), "1 catalog, 1 new item");
}

TEST_F(BrowserActivitiesTest, failureHasAColourOfItsOwnAndRetryStartsAgain)
{
    openAndUpdate();
    ASSERT_TRUE(ends());
    const auto ground = [this] {
        const QImage image = child<QWidget>("resultCard").grab().toImage();
        return image.pixelColor(image.width() / 2, 2);
    };
    ASSERT_TRUE(isCardShown());
    const QColor good = ground();
    offer("Beta", {"Other"});
    service.spoil("Beta.orvlib", FaultReply::status(404));
    trigger("checkForUpdates");
    ASSERT_TRUE(ends());
    ASSERT_TRUE(isCardShown()) << summary().toStdString();
    EXPECT_TRUE(child<QPushButton>("resultRetry").isVisible());
    EXPECT_NE(ground(), good);
    EXPECT_GT(ground().red(), ground().green());
    click("resultRetry");
    EXPECT_FALSE(isCardShown());
    EXPECT_TRUE(isRunning());
    ASSERT_TRUE(ends());
}

TEST_F(BrowserActivitiesTest, cancelledUpdateIsNoFailureAndNamesWhatCame)
{
    slowDown("Beta", offer("Beta", {"Lamp"}));
    openAndUpdate();
    ASSERT_TRUE(waitFor([&] { return stateOf("Beta").contains(" of "); }));
    trigger("cancelUpdate");
    ASSERT_TRUE(ends());
    EXPECT_EQ(summary(), "The update was cancelled. Updated: Alpha.");
    EXPECT_EQ(stateOf("Alpha"), "installed");
    EXPECT_EQ(stateOf("Beta"), "cancelled");
    EXPECT_EQ(card(), "1 catalog, 2 items");
    EXPECT_FALSE(child<QPushButton>("resultRetry").isVisible());
}

TEST_F(BrowserActivitiesTest, cancelBeforeAnythingCameSaysNoMore)
{
    slowDown("Alpha", offer("Alpha", {"Door"}));
    openAndUpdate();
    ASSERT_TRUE(waitFor([&] { return stateOf("Alpha").contains(" of "); }));
    QTest::mouseClick(&child<QToolButton>("cancelButton"), Qt::LeftButton);
    ASSERT_TRUE(ends());
    EXPECT_EQ(summary(), "The update was cancelled.");
    EXPECT_EQ(stateOf("Alpha"), "cancelled");
    EXPECT_EQ(stateOf("Beta"), "cancelled");
    EXPECT_FALSE(isCardShown());
}

TEST_F(BrowserActivitiesTest, slowImportUnfoldsTheListSoonAndCancelIsNoFailure)
{
    test::FaultServer archives;
    archives.on("/Kitchen.orvlibz",
                FaultReply::ok(std::string(5'000'000, 'x')).trickle(100'000, milliseconds(100)));
    open();
    window().library().importArchives({QString::fromStdString(archives.url("/Kitchen.orvlibz"))});
    EXPECT_FALSE(list().isVisible());
    EXPECT_TRUE(child<QToolButton>("cancelButton").isVisible());
    ASSERT_TRUE(waitFor([&] { return list().isVisible(); }));
    ASSERT_TRUE(waitFor([&] { return stateOf("Kitchen.orvlibz").contains(" of 5.0 MB"); }))
        << stateOf("Kitchen.orvlibz").toStdString();
    EXPECT_TRUE(stateOf("Kitchen.orvlibz").startsWith("downloading, "));
    QTest::mouseClick(&child<QToolButton>("cancelButton"), Qt::LeftButton);
    ASSERT_TRUE(waitFor([&] { return summary() == "The import was cancelled."; }));
    EXPECT_EQ(stateOf("Kitchen.orvlibz"), "cancelled");
    EXPECT_FALSE(list().isVisible());
    EXPECT_FALSE(isCardShown());
    EXPECT_FALSE(child<QToolButton>("cancelButton").isVisible());
}

TEST_F(BrowserActivitiesTest, failedImportsStandInTheCardAndRetryImportsThoseOnly)
{
    const std::string file = folder().path() + "/Broken.orvlibz";
    test::writeFile(file, "this is no archive");
    open();
    window().library().importArchives({QString::fromStdString(file)});
    ASSERT_TRUE(waitFor([&] { return isCardShown(); }));
    EXPECT_TRUE(card().startsWith("Broken.orvlibz was not imported: ")) << card().toStdString();
    EXPECT_TRUE(stateOf("Broken.orvlibz").startsWith("failed: ")) << stateOf("Broken.orvlibz").toStdString();
    click("resultRetry");
    EXPECT_FALSE(isCardShown());
    ASSERT_TRUE(waitFor([&] { return isCardShown(); }));
}
