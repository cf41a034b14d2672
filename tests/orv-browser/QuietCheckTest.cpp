// The silent check when the window opens, and its result for other programs: a mark and no message.
#include <QAction>
#include <QDateTime>
#include <QLabel>
#include <QProcess>

#include <gmock/gmock.h>

#include "OrvHost/update/LastCheck.h"
#include "tests/orv-browser/BrowserTest.h"
#include "tests/orv-browser/CatalogMaker.h"
#include "tests/support/ContentService.h"

namespace {

using testing::Contains;
using testing::IsEmpty;
using testing::Not;

class BrowserQuietCheckTest : public test::BrowserTest
{
protected:
    BrowserQuietCheckTest()
    {
        const std::string offered = folder().path() + "/Alpha.orvlib";
        test::CatalogMaker(inRoot("core/Alpha.orvlib"), "Alpha");
        {
            test::CatalogMaker maker(offered, "Alpha");
            maker.addItem(maker.addFolder("All"), {"Door"});
        }
        service.offer("Orv_Core_Content_Index.txt", "Alpha.orvlib\n");
        service.offer("Alpha.orvlib", test::readFile(offered));
        test::writeFile(inRoot("settings.json"), "{\"url\": \"" + service.redirect() + "\"}");
        test::writeFile(inRoot("browser.json"), R"({"checkAtStart": true, "checkAgeHours": 5})");
    }

    bool isMarked()
    {
        return waitFor([&] {
            return place({"Core", "Alpha"}).data(Qt::ToolTipRole).toString() == "an update is waiting";
        });
    }
    /// Sets the time of the last check to `minutes` ago.
    void age(int minutes) const
    {
        QByteArray text = QByteArray::fromStdString(test::readFile(inRoot("last-check.json")));
        const auto last = OrvHost::LastCheck::load(fileString(inRoot("")));
        ASSERT_TRUE(last);
        const QDateTime then = QDateTime::currentDateTimeUtc().addSecs(-60 * minutes);
        text.replace(last->time.toString(Qt::ISODate).toUtf8(), then.toString(Qt::ISODate).toUtf8());
        test::writeFile(inRoot("last-check.json"), text.toStdString());
    }
    void checkElsewhere() const
    {
        QProcess program; // its exit status reports pending updates
        program.start(ORV_LIBRARY_PROGRAM,
                      {"--root", QString::fromStdString(folder().path() + "/root"), "check", "--quiet"});
        ASSERT_TRUE(program.waitForFinished());
        ASSERT_EQ(3, program.exitCode());
    }

    test::ContentService service;
};

} // namespace

TEST_F(BrowserQuietCheckTest, newVersionsAreMarkedAndNothingIsFetched)
{
    open();
    EXPECT_TRUE(isMarked());
    EXPECT_THAT(service.takeFetched(), Not(Contains("Alpha.orvlib")));
    EXPECT_TRUE(child<QAction>("checkForUpdates").isEnabled());
    EXPECT_FALSE(child<QWidget>("resultCard").isVisible());
    EXPECT_EQ(summary(), "");
}

TEST_F(BrowserQuietCheckTest, updateThatIsAskedForMeanwhileComesAtOnce)
{
    service.spoilHeader("Alpha.orvlib", test::FaultReply::silence());
    open();
    ASSERT_TRUE(waitFor([&] { return !service.takeAsked().empty(); }));
    trigger("checkForUpdates");
    ASSERT_TRUE(waitFor([&] { return !child<QAction>("checkForUpdates").isEnabled(); }));
    trigger("cancelUpdate");
    EXPECT_TRUE(waitFor([&] { return child<QAction>("checkForUpdates").isEnabled(); }));
}

TEST_F(BrowserQuietCheckTest, windowThatIsClosedMeanwhileDoesNotWait)
{
    service.spoilHeader("Alpha.orvlib", test::FaultReply::silence());
    open();
    ASSERT_TRUE(waitFor([&] { return !service.takeAsked().empty(); }));
    close();
}

TEST_F(BrowserQuietCheckTest, serviceThatIsDownIsNotTold)
{
    service.server().stopListening();
    open();
    ASSERT_TRUE(waitFor([&] { return fileString(inRoot("runs.json")).pathExists(); }));
    ASSERT_TRUE(settle());
    EXPECT_EQ(summary(), "");
}

TEST_F(BrowserQuietCheckTest, updatesThatAnotherProgramFindsAreMarked)
{
    test::writeFile(inRoot("browser.json"), "{}");
    open();
    ASSERT_TRUE(settle());
    EXPECT_THAT(service.takeAsked(), IsEmpty());
    checkElsewhere();
    EXPECT_TRUE(isMarked());
}

TEST_F(BrowserQuietCheckTest, checkThatIsYoungerThanTheSettingIsEnough)
{
    checkElsewhere();
    age(4 * 60 + 50);
    service.takeAsked();
    open();
    EXPECT_TRUE(isMarked());
    EXPECT_THAT(service.takeAsked(), IsEmpty());
    close();
    age(5 * 60 + 1);
    open();
    EXPECT_TRUE(waitFor([&] { return !service.takeAsked().empty(); }));
}
