// Updates on a metered connection: what the window shows, and how the user can start the download anyway.
#include <QAction>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QLabel>
#include <QPushButton>
#include <QTest>

#include <gmock/gmock.h>

#include "OrvHost/Settings.h"
#include "apps/orv-browser/activities/ActivityPane.h"
#include "tests/orv-browser/BrowserTest.h"
#include "tests/orv-browser/CatalogMaker.h"
#include "tests/support/ContentService.h"
#include "tests/support/FakeNetworkManager.h"
#include "tests/support/ScopedEnvironment.h"

namespace {

class BrowserMeteredTest : public test::BrowserTest
{
protected:
    BrowserMeteredTest()
    {
        const std::string offered = folder().path() + "/Alpha.orvlib";
        test::CatalogMaker(inRoot("core/Alpha.orvlib"), "Alpha");
        {
            test::CatalogMaker maker(offered, "Alpha");
            maker.addItem(maker.addFolder("All"), {"Door"});
        }
        service.offer("Orv_Core_Content_Index.txt", "Alpha.orvlib\n");
        service.offer("Alpha.orvlib", test::readFile(offered));
        open(QString::fromStdString(service.redirect()));
    }

    void update()
    {
        trigger("checkForUpdates");
        waitForEnd();
    }
    void waitForEnd()
    {
        ASSERT_TRUE(waitFor([&] { return child<QAction>("checkForUpdates").isEnabled(); }));
    }
    QString card() { return child<QLabel>("resultText").text(); }

    const test::MessageBus bus;
    test::FakeNetworkManager manager{bus, test::FakeNetworkManager::kYes};
    const test::ScopedEnvironment address{"DBUS_SYSTEM_BUS_ADDRESS", bus.address().c_str()};
    test::ContentService service;
};

} // namespace

TEST_F(BrowserMeteredTest, waitingCatalogsAreMarkedAndFetchedOnRequest)
{
    service.takeFetched();
    update();
    EXPECT_THAT(service.takeFetched(), testing::ElementsAre("Orv_Core_Content_Index.txt"));
    ASSERT_TRUE(child<QWidget>("resultCard").isVisible());
    EXPECT_THAT(card().toStdString(),
                testing::MatchesRegex("The connection is metered, so 1 update waits: .* kB\\."));
    EXPECT_FALSE(child<QPushButton>("resultRetry").isVisible());
    const QAbstractItemModel& list = *child<ActivityPane>("activities").model();
    ASSERT_EQ(1, list.rowCount());
    EXPECT_EQ(list.index(0, 1).data().toString(), "waiting");
    ASSERT_TRUE(settle());
    ASSERT_TRUE(waitFor([&] {
        return place({"Core", "Alpha"}).data(Qt::ToolTipRole).toString() == "an update is waiting";
    }));

    QTest::mouseClick(&child<QPushButton>("resultFetch"), Qt::LeftButton);
    waitForEnd();
    EXPECT_THAT(service.takeFetched(), testing::Contains("Alpha.orvlib"));
    EXPECT_EQ(list.index(0, 1).data().toString(), "installed");
    EXPECT_FALSE(child<QPushButton>("resultFetch").isVisible());
}

TEST_F(BrowserMeteredTest, preferencesSayWhatIsDone)
{
    inDialog([&] { trigger("editPreferences"); },
             [&](QDialog& dialog) {
                 auto* choice = dialog.findChild<QComboBox*>("metered");
                 ASSERT_NE(choice, nullptr);
                 EXPECT_EQ(choice->currentData().toString(), OrvHost::Settings::kPostpone);
                 choice->setCurrentIndex(choice->findData(OrvHost::Settings::kFetch));
                 QTest::mouseClick(dialog.findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok),
                                   Qt::LeftButton);
             });
    EXPECT_FALSE(OrvHost::Settings::load(fileString(inRoot(""))).values().postponesOnMetered);
    update();
    EXPECT_THAT(service.takeFetched(), testing::Contains("Alpha.orvlib"));
    EXPECT_EQ(0, manager.asked());
}
