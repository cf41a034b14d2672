// The progress display of an update, especially on a slow connection.
#include <chrono>
#include <set>

#include <QAction>
#include <QLabel>
#include <QLocale>
#include <QProgressBar>
#include <QRegularExpression>

#include <gtest/gtest.h>

#include "OrvLibrary/UI/qtLibraryProgressPanel.h"
#include "OrvLibrary/host/PreferenceEngine.h"
#include "apps/orv-browser/activities/TransferSpeed.h"
#include "apps/orv-browser/models/DataSize.h"
#include "tests/orv-browser/BrowserTest.h"
#include "tests/support/ContentService.h"

namespace {

using std::chrono::milliseconds;

/// An update on a slow connection.
class BrowserProgressTest : public test::BrowserTest
{
protected:
    static constexpr int kRate = 400'000; ///< bytes a second

    BrowserProgressTest()
    {
        PreferenceEngine::getThePrefs().setPrefAs<int>(PrefId::kProgressDisplayType, kProgressCount);
        const std::string body(10 * kRate, 'x');
        service.offer("Orv_Core_Content_Index.txt", "Slow.orvlib\n");
        service.offer("Slow.orvlib", body);
        service.spoil("Slow.orvlib", test::FaultReply::ok(body).trickle(kRate / 20, milliseconds(50)));
        open(QString::fromStdString(service.redirect()));
        trigger("checkForUpdates");
    }
    ~BrowserProgressTest() override
    {
        trigger("cancelUpdate");
        EXPECT_TRUE(waitFor([&] { return !isRunning(); }));
    }

    bool isRunning() { return !child<QAction>("checkForUpdates").isEnabled(); }
    QProgressBar* gauge()
    {
        auto* panel = window().findChild<LibraryProgressPanel*>();
        return panel ? panel->findChild<QProgressBar*>() : nullptr;
    }
    /// The seconds left that the window shows; -1 if it shows none.
    int secondsLeft()
    {
        const auto match = QRegularExpression("about (\\d+) second").match(child<QLabel>("speed").text());
        return match.hasMatch() ? match.captured(1).toInt() : -1;
    }

    test::ContentService service;
};

} // namespace

TEST_F(BrowserProgressTest, gaugeAndTimeLeftMoveOnASlowLink)
{
    ASSERT_TRUE(waitFor([&] { return secondsLeft() >= 0 || !isRunning(); }));
    std::set<int> values;
    QList<int> times;
    // The updater itself reports a first value only after two megabytes, which take 5 s here.
    ASSERT_TRUE(waitFor([&] {
        if (gauge())
            values.insert(gauge()->value());
        if (times.isEmpty() || times.last() != secondsLeft())
            times << secondsLeft();
        return times.size() > 3 || !isRunning();
    }));
    EXPECT_TRUE(isRunning()) << summary().toStdString();
    EXPECT_GE(values.size(), 4U);
    EXPECT_GT(times.first(), times.last());
    EXPECT_GE(times.last(), 1);
}

TEST_F(BrowserProgressTest, sizesHaveOneFamilyOfUnits)
{
    QString figure;
    ASSERT_TRUE(waitFor([&] {
        if (auto* panel = window().findChild<LibraryProgressPanel*>())
            for (const QLabel* label : panel->findChildren<QLabel*>())
                if (label->text().endsWith("B"))
                    figure = label->text();
        return (!figure.isEmpty() && secondsLeft() >= 0) || !isRunning();
    }));
    EXPECT_TRUE(figure.endsWith("of 4,000 kB")) << figure.toStdString();
    const QString speed = child<QLabel>("speed").text();
    EXPECT_TRUE(QRegularExpression("^[\\d.]+ kB/s").match(speed).hasMatch()) << speed.toStdString();
}

TEST(BrowserProgressDataSize, partIsToldInTheUnitOfTheWhole)
{
    EXPECT_EQ(DataSize::part(1'300'000, 4'600'000), "1.3 of 4.6 MB");
    EXPECT_EQ(DataSize::part(0, 4'600'000), "0.0 of 4.6 MB");
    EXPECT_EQ(DataSize::part(12, 500), "12 of 500 bytes");
    EXPECT_EQ(DataSize::part(900'000, 1'200'000'000), "0.0 of 1.2 GB");
    EXPECT_EQ(DataSize::part(5'000, 4'000), "4.0 of 4.0 kB");
}

TEST(BrowserProgressSpeed, countsTheLastSecondsOnly)
{
    TransferSpeed speed;
    speed.note(0, 0);
    EXPECT_EQ(speed.text(1000), "");
    for (int second = 1; second <= 20; ++second)
        speed.note(second * 1000, second * 100'000);
    EXPECT_EQ(speed.text(1'000'000), "100.0 kB/s, about 11 seconds left");
    for (int second = 21; second <= 30; ++second)
        speed.note(second * 1000, 2'000'000 + (second - 20) * 10'000);
    EXPECT_EQ(speed.text(1'000'000), "10.0 kB/s, about 2 minutes left");
    for (int second = 31; second <= 40; ++second)
        speed.note(second * 1000, 2'100'000);
    EXPECT_EQ(speed.text(1'000'000), "waiting for the service");
}
