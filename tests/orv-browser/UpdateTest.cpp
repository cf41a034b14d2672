// Catalog updates in the window. The service runs as a process of its own.
#include <algorithm>
#include <filesystem>
#include <limits>
#include <string>

#include <QAction>
#include <QDate>
#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QLabel>
#include <QListView>
#include <QLocale>
#include <QPushButton>
#include <QScrollBar>
#include <QSplitter>
#include <QTest>
#include <QToolButton>
#include <QTreeView>

#include <gmock/gmock.h>

#include "OrvLibrary/LibraryFilterManager.h"
#include "OrvLibrary/UI/qtLibraryProgressPanel.h"
#include "OrvLibrary/host/Curl.h"
#include "tests/orv-browser/BrowserService.h"
#include "tests/orv-browser/BrowserTest.h"
#include "tests/orv-browser/CatalogMaker.h"
#include "tests/orv-browser/EventWatch.h"
#include "tests/support/SampleDatabase.h"

namespace {

using testing::Contains;
using testing::EndsWith;
using testing::IsEmpty;
using testing::Not;

class BrowserUpdateTest : public test::BrowserTest
{
protected:
    BrowserUpdateTest() : service(folder().path() + "/service") {}

    QAction& check() { return child<QAction>("checkForUpdates"); }
    LibraryProgressPanel* panel() { return window().findChild<LibraryProgressPanel*>(); }
    bool ends()
    {
        return waitFor([&] { return check().isEnabled(); });
    }

    void update()
    {
        check().trigger();
        ASSERT_FALSE(check().isEnabled());
        ASSERT_TRUE(ends());
    }

    /// The installed core catalogs as a sentence lists them: five names, and the number of the others.
    QString installed() const
    {
        const QFileInfoList files =
            QDir(QString::fromStdString(inRoot("core"))).entryInfoList({"*.orvlib"}, QDir::Files, QDir::Name);
        QStringList names;
        for (const QFileInfo& file : files)
            names << file.completeBaseName();
        const int rest = static_cast<int>(names.size()) - 5;
        const QString five = QStringList(names.mid(0, 5)).join(", ");
        return rest > 0 ? five + " and " + QString::number(rest) + " more" : five;
    }

    /// Appends bytes to every catalog, which does not damage the database.
    void changeAllCatalogs() const
    {
        for (const auto& entry : std::filesystem::directory_iterator(service.content()))
            if (entry.path().extension() == ".orvlib")
                test::writeFile(entry.path(), test::readFile(entry.path()) + std::string(4096, '\0'));
    }

    /// Adds a core catalog that takes some time to download.
    void offerLargeCatalog() const
    {
        const std::string index = service.content() + "/Orv_Core_Content_Index.txt";
        test::writeFile(index, test::readFile(index) + "Large.orvlib\n");
        test::writeFile(service.content() + "/Large.orvlib", "x");
        std::filesystem::resize_file(service.content() + "/Large.orvlib", 600'000'000);
    }

    /// Adds a core catalog and a bonus catalog whose database checks take longer than any test waits.
    void offerCatalogsThatAreSlowToCheck() const
    {
        const std::string index = service.content() + "/Orv_Core_Content_Index.txt";
        const std::string slow = service.content() + "/Slow.orvlib";
        test::writeFile(index, test::readFile(index) + "Slow.orvlib\n");
        std::filesystem::copy_file(service.content() + "/Doors.orvlib", slow);
        test::slowDownCheck(slow);
        const std::string archive = service.content() + "/Garden Party.orvlibz";
        std::filesystem::remove(archive);
        test::BrowserService::runProgram({"pack", QString::fromStdString(slow), "--output",
                                          QString::fromStdString(archive), "--no-database-check"});
    }

    test::BrowserService service;
};

} // namespace

TEST_F(BrowserUpdateTest, emptyRootIsFilledAtAClickAndTheSummaryNamesWhatCame)
{
    open(service.redirect());
    QTest::mouseClick(&child<QPushButton>("fetchContent"), Qt::LeftButton);
    ASSERT_NE(panel(), nullptr);
    EXPECT_EQ(panel()->parentWidget(), &child<QSplitter>("libMainSplitter"));
    EXPECT_TRUE(child<QToolButton>("cancelButton").isVisible());
    ASSERT_TRUE(ends());
    EXPECT_TRUE(summary().startsWith("Updated: ")) << summary().toStdString();
    EXPECT_FALSE(child<QToolButton>("cancelButton").isVisible());
    EXPECT_TRUE(waitFor([&] { return panel() == nullptr; }));
    EXPECT_TRUE(place({"Core", "Doors"}).isValid());
    EXPECT_TRUE(tree().isVisible());
}

TEST_F(BrowserUpdateTest, emptyRootGetsTheNamedBonusAndManufacturerCatalogsToo)
{
    test::writeFile(inRoot("settings.json"),
                    R"({"bonus": ["Garden Party.orvlib", "Holiday D\u00e9cor.orvlib"],
                        "manufacturer": ["Oakline Cabinets.orvlib"]})");
    open(service.redirect());
    QTest::mouseClick(&child<QPushButton>("fetchContent"), Qt::LeftButton);
    ASSERT_TRUE(ends());
    EXPECT_EQ(placesBelow(place({"Bonus"})),
              QStringList({"Garden Party", QString::fromUtf8("Holiday D\u00e9cor")}));
    EXPECT_EQ(placesBelow(place({"Manufacturers"})), QStringList("Oakline Cabinets"));
    EXPECT_TRUE(place({"Core", "Doors"}).isValid());
}

TEST_F(BrowserUpdateTest, secondCheckSaysThatAllIsUpToDate)
{
    open(service.redirect());
    update();
    update();
    EXPECT_EQ(summary(), "All catalogs are up to date.");
}

TEST_F(BrowserUpdateTest, panelShowsCaptionAndFigureWhileItRuns)
{
    open(service.redirect());
    QStringList captions;
    check().trigger();
    ASSERT_TRUE(waitFor([&] {
        if (panel())
            for (const QLabel* label : panel()->findChildren<QLabel*>())
                if (!label->text().trimmed().isEmpty() && !captions.contains(label->text()))
                    captions << label->text();
        return check().isEnabled();
    }));
    EXPECT_GE(captions.size(), 2) << captions.join('|').toStdString();
}

TEST_F(BrowserUpdateTest, newCatalogComesInWithoutLosingTheUsersPlace)
{
    open(service.redirect());
    update();
    ASSERT_TRUE(goTo({"Core", "Doors", "Exterior Doors"}));
    const QString name = names().value(20);
    select(name);
    auto& gallery = child<QListView>("gallery");
    // The view soon scrolls to an item that was clicked if it is not quite visible. In the middle it stays
    // visible while the progress panel makes the gallery smaller.
    gallery.scrollTo(gallery.currentIndex(), QAbstractItemView::PositionAtCenter);
    const int scroll = gallery.verticalScrollBar()->value();
    ASSERT_GT(scroll, 0);

    // Appends bytes to the catalog, which does not damage the database.
    const std::string served = service.content() + "/Doors.orvlib";
    test::writeFile(served, test::readFile(served) + std::string(4096, '\0'));
    update();
    EXPECT_EQ(summary(), "Updated: Doors.");
    ASSERT_TRUE(settle());
    EXPECT_EQ(tree().currentIndex().data().toString(), "Exterior Doors");
    EXPECT_EQ(detail("detailsTitle"), name);
    EXPECT_EQ(gallery.verticalScrollBar()->value(), scroll);
}

TEST_F(BrowserUpdateTest, cancelEndsItSoonAndLeavesNothingHalf)
{
    offerLargeCatalog();
    open(service.redirect());
    check().trigger();
    Curl::setRateLimit(20'000'000); // leaves time for a click
    ASSERT_TRUE(waitFor([&] { return !child<QLabel>("speed").text().isEmpty() || check().isEnabled(); }));
    QTest::mouseClick(&child<QToolButton>("cancelButton"), Qt::LeftButton);
    ASSERT_TRUE(ends());
    Curl::setRateLimit(0);
    EXPECT_EQ(summary(), "The update was cancelled. Updated: " + installed() + '.');
    EXPECT_EQ(child<QLabel>("speed").text(), "");
    EXPECT_THAT(test::listTree(folder().path() + "/root"), Not(Contains(EndsWith(".download"))));
    EXPECT_FALSE(place({"Core", "Large"}).isValid());
}

TEST_F(BrowserUpdateTest, closingInTheMiddleEndsTheRunAndTheNextStartGoesOn)
{
    offerLargeCatalog();
    open(service.redirect());
    check().trigger();
    Curl::setRateLimit(20'000'000); // leaves time to close the window
    ASSERT_TRUE(waitFor([&] { return !child<QLabel>("speed").text().isEmpty() || check().isEnabled(); }));
    close();
    Curl::setRateLimit(0);
    test::writeFile(service.content() + "/Large.orvlib",
                    test::readFile(service.content() + "/Doors.orvlib")); // a small file again
    open(service.redirect());
    update();
    EXPECT_TRUE(summary().startsWith("Updated: ")) << summary().toStdString();
    EXPECT_TRUE(place({"Core", "Doors"}).isValid());
}

TEST_F(BrowserUpdateTest, serviceThatIsGoneIsToldInAPlainSentence)
{
    open(service.redirect());
    update();
    service.stop();
    update();
    EXPECT_TRUE(summary().startsWith("The catalog service cannot be reached; the library stays as it is."))
        << summary().toStdString();
    EXPECT_TRUE(place({"Core", "Doors", "Exterior Doors"}).isValid());
}

TEST_F(BrowserUpdateTest, catalogThatIsDamagedHereIsFetchedAgainAtAClick)
{
    open(service.redirect());
    update();
    ASSERT_TRUE(goTo({"Core", "Doors"}));
    const int items = names().size();
    ASSERT_GT(items, 0);
    const QString day = QLocale().toString(QDate::currentDate(), QLocale::ShortFormat);
    EXPECT_TRUE(waitFor([&] { return detail("placeLastCheck").startsWith(day); }))
        << detail("placeLastCheck").toStdString();
    const auto& problem = child<QLabel>("placeProblem");
    EXPECT_FALSE(problem.isVisible());
    test::writeFile(inRoot("core/Doors.orvlib"), "no database any more");
    ASSERT_TRUE(waitFor([&] { return problem.isVisible(); }));
    EXPECT_TRUE(problem.text().startsWith("Cannot be read: ")) << problem.text().toStdString();
    QTest::mouseClick(&child<QPushButton>("fetchAgain"), Qt::LeftButton);
    ASSERT_TRUE(ends());
    EXPECT_TRUE(waitFor([&] { return !problem.isVisible(); }));
    EXPECT_EQ(names().size(), items);
}

TEST_F(BrowserUpdateTest, damagedCatalogIsNamedAndTheOthersCome)
{
    test::writeFile(inRoot("bonus/Garden Party.orvlib"), "an old one");
    test::writeFile(service.content() + "/Garden Party.orvlibz", "this is no archive");
    open(service.redirect());
    update();
    EXPECT_TRUE(summary().contains("Some catalogs could not be updated: ")) << summary().toStdString();
    EXPECT_TRUE(summary().endsWith("The log has the details.")) << summary().toStdString();
    EXPECT_EQ(test::readFile(inRoot("bonus/Garden Party.orvlib")), "an old one");
}

TEST_F(BrowserUpdateTest, closedPanelDoesNotEndTheUpdate)
{
    open(service.redirect());
    check().trigger();
    ASSERT_NE(panel(), nullptr);
    panel()->close();
    ASSERT_TRUE(ends());
    EXPECT_TRUE(summary().startsWith("Updated: "));
}

TEST_F(BrowserUpdateTest, noEventTakesLongWhileItRuns)
{
    constexpr int kMostMilliseconds = 50;
    LibraryFilterManager& manager = LibraryFilterManager::getLibraryFilterManager();
    manager.setLibraryFilters({LibraryFilter("Some", 4, {"sample-1", "sample-2"})});
    manager.setCurrentFilterId(4);
    open(service.redirect());
    update();
    EXPECT_GT(placesBelow(place({"Core"})).size(), 10);
    // On a busy machine any event may take long, but hardly in each of three rounds.
    double longest = std::numeric_limits<double>::max();
    std::string name;
    for (int round = 0; round < 3 && longest >= kMostMilliseconds; ++round) {
        changeAllCatalogs();
        const test::EventWatch watch;
        update();
        EXPECT_TRUE(summary().startsWith("Updated: ")) << summary().toStdString();
        longest = std::min(longest, watch.longest());
        name = watch.longestName();
    }
    EXPECT_LT(longest, kMostMilliseconds) << name;
}

TEST_F(BrowserUpdateTest, slowCheckOfACatalogHoldsNoEventUp)
{
    constexpr int kMostMilliseconds = 500; // the check of each catalog takes a second
    offerCatalogsThatAreSlowToCheck();
    test::writeFile(inRoot("bonus/Garden Party.orvlib"), "an old one");
    test::writeFile(inRoot("temp/orv-library.downloads.core/Floors.orvlib"), test::slowDatabase());
    open(service.redirect());
    const test::EventWatch watch;
    QElapsedTimer timer;
    timer.start();
    update();
    EXPECT_GE(timer.elapsed(), 3000);
    EXPECT_LT(watch.longest(), kMostMilliseconds) << watch.longestName();
    EXPECT_TRUE(summary().startsWith("Updated: ")) << summary().toStdString();
    EXPECT_TRUE(place({"Core", "Slow"}).isValid());
    EXPECT_EQ(test::readFile(inRoot("bonus/Garden Party.orvlib")),
              test::readFile(inRoot("core/Slow.orvlib")));
}
