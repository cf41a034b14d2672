// The window shows the messages of the library.
#include <algorithm>
#include <limits>
#include <string>
#include <thread>

#include <QAction>
#include <QIcon>
#include <QLabel>
#include <QProgressBar>
#include <QTest>
#include <QToolButton>

#include <gtest/gtest.h>

#include "OrvLibrary/UI/qtLibraryProgressPanel.h"
#include "OrvLibrary/host/MessagingSystem.h"
#include "OrvLibrary/host/PreferenceEngine.h"
#include "apps/orv-browser/activities/UpdateReceiver.h"
#include "tests/orv-browser/BrowserTest.h"
#include "tests/orv-browser/CatalogMaker.h"

namespace {

using namespace error;

class BrowserMessagesTest : public test::BrowserTest
{
protected:
    BrowserMessagesTest() { test::CatalogMaker(inRoot("core/Doors.orvlib"), "doors"); }

    static void send(const Trait& trait, int number, const char* argument = "")
    {
        MessagingSystem::control().notify(__FILE__, __LINE__, trait, number, marl::unicode::String(argument),
                                          {}, {});
    }

    bool isShown() { return child<QWidget>("messageBar").isVisible(); }
    QString text() { return child<QLabel>("messageText").text(); }
    void putAway() { QTest::mouseClick(&child<QToolButton>("putMessageAway"), Qt::LeftButton); }
};

} // namespace

TEST_F(BrowserMessagesTest, windowIsSilentWhenThereIsNothingToTell)
{
    open();
    EXPECT_FALSE(isShown());
}

TEST_F(BrowserMessagesTest, messageFromAWorkerIsShownAndTheWorkerGoesOn)
{
    open();
    std::thread worker([] { send(ErrorMinimalTrait(), Message::kCannotWriteDataFile, "/a/file.json"); });
    worker.join(); // the interface thread handles no events meanwhile
    EXPECT_FALSE(isShown());
    ASSERT_TRUE(waitFor([&] { return isShown(); }));
    EXPECT_TRUE(text().contains("\"/a/file.json\" cannot be written")) << text().toStdString();
}

TEST_F(BrowserMessagesTest, messageThatCameBeforeTheWindowIsShownInIt)
{
    send(WarningTrait(), Message::kPreferenceType, "early");
    open();
    EXPECT_TRUE(isShown());
    EXPECT_EQ(text(), "early");
}

TEST_F(BrowserMessagesTest, messageThatWasPutAwayIsGoneAndTheNextComes)
{
    open();
    send(WarningTrait(), Message::kPreferenceType, "first");
    ASSERT_TRUE(waitFor([&] { return isShown(); }));
    putAway();
    EXPECT_FALSE(isShown());
    send(WarningTrait(), Message::kPreferenceType, "second");
    ASSERT_TRUE(waitFor([&] { return isShown(); }));
    EXPECT_EQ(text(), "second");
}

TEST_F(BrowserMessagesTest, severalMessagesStandTogetherEachOnce)
{
    open();
    for (const char* argument : {"one", "two", "one", "three", "four", "five"})
        send(WarningTrait(), Message::kPreferenceType, argument);
    ASSERT_TRUE(waitFor([&] { return isShown(); }));
    EXPECT_EQ(text(), "one\nthree\nfour\nfive"); // the oldest message was dropped
}

TEST_F(BrowserMessagesTest, informationIsShownOncePerRun)
{
    open();
    send(InformationOnceTrait(), Message::kManufacturerMaterial);
    ASSERT_TRUE(waitFor([&] { return isShown(); }));
    putAway();
    send(InformationOnceTrait(), Message::kManufacturerMaterial);
    QCoreApplication::processEvents();
    EXPECT_FALSE(isShown());
}

TEST_F(BrowserMessagesTest, progressPreferenceOfAnotherTypeIsToldAndThePanelWorksOn)
{
    open();
    PreferenceEngine::getThePrefs().prefSet().setPref(PrefId::kProgressDisplayType, std::string("odd"));
    LibraryProgressPanel* panel = LibraryProgressPanel::create(&window());
    ASSERT_TRUE(waitFor([&] { return isShown(); }));
    EXPECT_TRUE(text().startsWith("Get pref isA failure: ")) << text().toStdString();
    panel->show();
    QTest::mouseClick(panel->findChild<QProgressBar*>(), Qt::LeftButton);
    panel->onSetText("still here");
    EXPECT_TRUE(waitFor([&] {
        const auto labels = panel->findChildren<QLabel*>();
        return std::any_of(labels.begin(), labels.end(),
                           [](const QLabel* label) { return label->text() == "still here"; });
    }));
    panel->close();
}

TEST_F(BrowserMessagesTest, countsBeyondAnIntFillTheGauge)
{
    open();
    LibraryProgressPanel* panel = LibraryProgressPanel::create(&window());
    OrvHost::CatalogSwapper swapper;
    UpdateReceiver receiver(swapper, panel);
    receiver.onSetRangeInGauge(std::numeric_limits<size_t>::max());
    receiver.onSetValueInGauge(std::numeric_limits<size_t>::max());
    const auto* gauge = panel->findChild<QProgressBar*>();
    EXPECT_TRUE(waitFor([&] { return gauge->value() == std::numeric_limits<int>::max(); }));
    panel->close();
}

TEST_F(BrowserMessagesTest, marksInAMessageAreShownAsTheyAre)
{
    open();
    send(WarningTrait(), Message::kPreferenceType, "<b>bold</b>");
    ASSERT_TRUE(waitFor([&] { return isShown(); }));
    EXPECT_EQ(child<QLabel>("messageText").textFormat(), Qt::PlainText);
    EXPECT_EQ(text(), "<b>bold</b>");
}
