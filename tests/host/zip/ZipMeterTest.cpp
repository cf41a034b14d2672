#include "OrvLibrary/host/impl/zip/ZipMeter_p.h"

#include <gmock/gmock.h>

#include "OrvLibrary/host/ZipUtils.h"
#include "tests/support/RecordingProgress.h"

using std::chrono::milliseconds;
using testing::ElementsAre;
using testing::IsEmpty;
using ZipUtils::kPortion;
using ZipUtils::ZipMeter;

namespace {

class ZipMeterTest : public testing::Test
{
protected:
    std::shared_ptr<test::RecordingProgress> mProgress = std::make_shared<test::RecordingProgress>();
    ZipMeter mMeter{mProgress};
};

} // namespace

TEST_F(ZipMeterTest, asksAfterEachPortionOfWork)
{
    for (int asked = 0; asked < 3; ++asked) {
        mMeter.addWork(kPortion - 1);
        EXPECT_EQ(mProgress->checks(), asked);
        mMeter.addWork(1);
        EXPECT_EQ(mProgress->checks(), asked + 1);
    }
    EXPECT_THAT(mProgress->bytes(), IsEmpty()) << "work is not content";
}

TEST_F(ZipMeterTest, asksAfterEach50MillisecondsOfWaiting)
{
    for (int asked = 0; asked < 3; ++asked) {
        mMeter.waited(milliseconds(20));
        mMeter.waited(milliseconds(29));
        EXPECT_EQ(mProgress->checks(), asked);
        mMeter.waited(milliseconds(1));
        EXPECT_EQ(mProgress->checks(), asked + 1);
    }
}

TEST_F(ZipMeterTest, workAndWaitingBeginAnewAfterEachQuestion)
{
    mMeter.addWork(kPortion - 1);
    mMeter.waited(milliseconds(50));
    mMeter.addWork(kPortion - 1);
    mMeter.waited(milliseconds(49));
    EXPECT_EQ(mProgress->checks(), 1);
}

TEST_F(ZipMeterTest, contentIsReportedInPortionsAndIsWork)
{
    mMeter.addContent(kPortion - 1);
    EXPECT_THAT(mProgress->bytes(), IsEmpty());
    EXPECT_EQ(mProgress->checks(), 0);
    mMeter.addContent(1);
    EXPECT_THAT(mProgress->bytes(), ElementsAre(kPortion));
    EXPECT_EQ(mProgress->checks(), 1);
    mMeter.addContent(2 * kPortion + 5);
    EXPECT_THAT(mProgress->bytes(), ElementsAre(kPortion, kPortion, kPortion, 5U));
    mMeter.addContent(7);
    mMeter.tellAll();
    mMeter.tellAll();
    EXPECT_THAT(mProgress->bytes(), ElementsAre(kPortion, kPortion, kPortion, 5U, 7U));
}

TEST_F(ZipMeterTest, cancelEndsTheWork)
{
    mProgress->isCancelled = [](int) { return true; };
    EXPECT_THROW(mMeter.addWork(kPortion), ZipUtils::Cancelled);
    EXPECT_THROW(mMeter.addContent(kPortion), ZipUtils::Cancelled);
    EXPECT_THROW(mMeter.waited(milliseconds(50)), ZipUtils::Cancelled);
}

TEST_F(ZipMeterTest, onlyLongStepsAreNamed)
{
    mMeter.label("short", kPortion - 1);
    mMeter.label("long", kPortion);
    EXPECT_THAT(mProgress->calls(), ElementsAre("labels long | "));
}

TEST_F(ZipMeterTest, progressMayBeMissing)
{
    ZipMeter meter(nullptr);
    meter.addContent(kPortion);
    meter.waited(milliseconds(50));
    meter.label("long", kPortion);
}
