#include "OrvLibrary/UI/qtProgressGauge.h"

#include <limits>

#include <QCoreApplication>
#include <QMetaObject>
#include <QTest>
#include <QVBoxLayout>

#include <gtest/gtest.h>

#include "tests/UI/UiHost.h"

namespace {

// Counts the mouse releases that reach the parent of the gauge.
class ReleaseCounter : public QWidget
{
public:
    int releases = 0;

protected:
    void mouseReleaseEvent(QMouseEvent*) override { ++releases; }
};

class ProgressGaugeTest : public testing::Test
{
protected:
    explicit ProgressGaugeTest(int displayType = 1)
    {
        host.setDisplayType(displayType);
        text = new ProgressText(&receiver);
        gauge = new ProgressGauge(&window, *text);
    }

    void restart(int displayType)
    {
        host.setDisplayType(displayType);
        delete gauge;
        delete text;
        text = new ProgressText(&receiver);
        gauge = new ProgressGauge(&window, *text);
    }

    void deliver()
    {
        receiver.ranges.clear();
        QCoreApplication::sendPostedEvents();
    }

    test::UiHost host;
    test::LabelReceiver receiver;
    ReleaseCounter window;
    ProgressText* text = nullptr;
    ProgressGauge* gauge = nullptr;
};

} // namespace

TEST_F(ProgressGaugeTest, freshGaugeIsEmptyThinAndTextless)
{
    EXPECT_EQ(gauge->minimum(), 0);
    EXPECT_EQ(gauge->maximum(), 100);
    EXPECT_EQ(gauge->value(), 0);
    EXPECT_FALSE(gauge->isTextVisible());
    EXPECT_EQ(gauge->contentsMargins(), QMargins());
    EXPECT_EQ(gauge->minimumHeight(), 20);
    EXPECT_EQ(gauge->maximumHeight(), 20);
    EXPECT_EQ(gauge->toolTip(), "tip: caption only");
    EXPECT_NE(QMetaType::type("ProgressDisplayType"), QMetaType::UnknownType);
}

TEST_F(ProgressGaugeTest, toolTipTellsTheStoredWayOfShowing)
{
    const std::pair<int, const char*> tips[] = {
        {1, "tip: caption only"}, {2, "tip: percentage"}, {3, "tip: count"}, {0, ""}, {4, ""}, {-1, ""}};
    for (const auto& [type, tip] : tips) {
        restart(type);
        EXPECT_EQ(gauge->toolTip(), tip) << type;
    }
}

TEST_F(ProgressGaugeTest, valueMovesTheBarAtOnceAndTheTextInTheEventLoop)
{
    restart(3);
    receiver.ranges.clear();
    gauge->SetRange(50);
    gauge->SetValue(7);
    EXPECT_EQ(gauge->value(), 7);
    EXPECT_TRUE(receiver.ranges.isEmpty());
    deliver();
    EXPECT_EQ(receiver.ranges, QStringList({"0 of 50", "7 of 50"}));
}

TEST_F(ProgressGaugeTest, rangeCountsFromTheMinimum)
{
    gauge->setMinimum(10);
    gauge->SetRange(30);
    EXPECT_EQ(gauge->maximum(), 40);
}

TEST_F(ProgressGaugeTest, newRangeStartsAtZero)
{
    restart(3);
    gauge->onSetValue(60);
    gauge->onSetRange(50);
    EXPECT_EQ(gauge->value(), 0);
    EXPECT_EQ(gauge->minimum(), 0);
    EXPECT_EQ(gauge->maximum(), 50);
    deliver();
    EXPECT_EQ(receiver.ranges, QStringList({"0 of 0", "0 of 0", "0 of 50"}));
}

TEST_F(ProgressGaugeTest, updateIsOneStep)
{
    for (int step = 1; step <= 3; ++step) {
        gauge->onUpdate();
        EXPECT_EQ(gauge->value(), step);
    }
}

TEST_F(ProgressGaugeTest, updateStopsAtTheLargestInt)
{
    constexpr int kLargest = std::numeric_limits<int>::max();
    gauge->onSetRange(kLargest);
    gauge->onSetValue(kLargest);
    gauge->onUpdate();
    EXPECT_EQ(gauge->value(), kLargest);
}

TEST_F(ProgressGaugeTest, valueBeyondTheRangeStillReachesTheText)
{
    restart(3);
    gauge->onSetRange(5);
    gauge->onSetValue(3);
    gauge->onSetValue(9);
    EXPECT_EQ(gauge->value(), 3);
    deliver();
    EXPECT_EQ(receiver.ranges.last(), "5 of 5");
}

TEST_F(ProgressGaugeTest, leftClicksGoRoundAndAreRemembered)
{
    const std::pair<int, const char*> expected[] = {
        {2, "tip: percentage"}, {3, "tip: count"}, {1, "tip: caption only"}};
    for (const auto& [type, tip] : expected) {
        QTest::mouseClick(gauge, Qt::LeftButton);
        EXPECT_EQ(host.displayType(), type);
        EXPECT_EQ(gauge->toolTip(), tip);
    }
}

TEST_F(ProgressGaugeTest, leftClickReachesTheTextInTheEventLoop)
{
    gauge->onSetRange(4);
    gauge->onSetValue(1);
    deliver();
    QTest::mouseClick(gauge, Qt::LeftButton);
    deliver();
    EXPECT_EQ(receiver.ranges, QStringList("25 percent"));
}

TEST_F(ProgressGaugeTest, rightClickChangesNothing)
{
    for (const Qt::MouseButton button : {Qt::RightButton, Qt::MiddleButton}) {
        QTest::mouseClick(gauge, button);
        EXPECT_EQ(host.displayType(), 1);
        EXPECT_EQ(gauge->toolTip(), "tip: caption only");
    }
}

TEST_F(ProgressGaugeTest, everyReleaseTravelsOnToTheParent)
{
    int expected = 0;
    for (const Qt::MouseButton button : {Qt::LeftButton, Qt::RightButton, Qt::MiddleButton}) {
        QTest::mouseClick(gauge, button);
        EXPECT_EQ(window.releases, ++expected);
    }
}

TEST_F(ProgressGaugeTest, releasedEventIsNotAccepted)
{
    struct Gauge : ProgressGauge
    {
        using ProgressGauge::mouseReleaseEvent;
        using ProgressGauge::ProgressGauge;
    } bare(nullptr, *text);
    for (const Qt::MouseButton button : {Qt::LeftButton, Qt::RightButton}) {
        QMouseEvent event(QEvent::MouseButtonRelease, QPointF(), button, button, Qt::NoModifier);
        event.accept();
        bare.mouseReleaseEvent(&event);
        EXPECT_FALSE(event.isAccepted());
    }
}

TEST_F(ProgressGaugeTest, clicksLeaveAStoredValueOutsideTheThreeAlone)
{
    for (const int type : {0, 4, -7}) {
        restart(type);
        QTest::mouseClick(gauge, Qt::LeftButton);
        EXPECT_EQ(host.displayType(), type);
        EXPECT_EQ(gauge->toolTip(), "");
    }
}

TEST_F(ProgressGaugeTest, derivedGaugesHearOfEveryValueAndRange)
{
    struct Recorder : ProgressGauge
    {
        using ProgressGauge::ProgressGauge;
        void SetValue(int v) override { calls << QString("value %1").arg(v); }
        void SetRange(int r) override { calls << QString("range %1").arg(r); }
        QStringList calls;
    } recorder(nullptr, *text);
    recorder.onUpdate();
    recorder.onSetValue(4);
    recorder.onSetRange(5);
    EXPECT_EQ(recorder.calls, QStringList({"value 1", "value 4", "value 0", "range 5"}));
}

TEST_F(ProgressGaugeTest, slotsAreReachableByName)
{
    for (const char* slot : {"onUpdate()", "onSetValue(int)", "onSetRange(int)"}) {
        const int index = gauge->metaObject()->indexOfSlot(slot);
        ASSERT_GE(index, 0) << slot;
        EXPECT_EQ(gauge->metaObject()->method(index).access(), QMetaMethod::Public) << slot;
    }
}
