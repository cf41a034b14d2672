#include "OrvLibrary/host/impl/http/ProgressPacer_p.h"

#include <chrono>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using testing::ElementsAre;
using namespace std::chrono_literals;

namespace {

struct Recorder
{
    std::vector<double> counts;
    double total = -1;
    /// The number of the call that aborts, counted from 1; 0 for none.
    std::size_t abortAt = 0;

    static int call(void* self, double total, double count, double uploadTotal, double uploaded)
    {
        auto* recorder = static_cast<Recorder*>(self);
        EXPECT_EQ(uploadTotal, 0);
        EXPECT_EQ(uploaded, 0);
        recorder->total = total;
        recorder->counts.push_back(count);
        return recorder->counts.size() == recorder->abortAt ? 1 : 0;
    }
};

class ProgressPacerTest : public testing::Test
{
protected:
    HttpLimits limits;
    HttpLimits::Clock::time_point start = HttpLimits::Clock::now();
    Recorder recorder;
    ProgressPacer pacer{limits, &Recorder::call, &recorder, start};
};

} // namespace

TEST_F(ProgressPacerTest, countsRiseEvenlyBy4KiBHoweverTheBytesArrive)
{
    pacer.setTotal(20000);
    EXPECT_TRUE(pacer.received(16384, start));
    EXPECT_THAT(recorder.counts, ElementsAre(4096, 8192, 12288, 16384));
    EXPECT_EQ(recorder.total, 20000);
    EXPECT_TRUE(pacer.received(3616, start));
    EXPECT_EQ(recorder.counts.size(), 4u);
    EXPECT_TRUE(pacer.callAtEnd(start));
    EXPECT_THAT(recorder.counts, ElementsAre(4096, 8192, 12288, 16384, 20000));
}

TEST_F(ProgressPacerTest, finishMakesNoSecondCallForTheSameCount)
{
    pacer.received(4096, start);
    pacer.callAtEnd(start);
    EXPECT_THAT(recorder.counts, ElementsAre(4096));
}

TEST_F(ProgressPacerTest, smallAndEmptyBodiesAreToldOnce)
{
    EXPECT_TRUE(pacer.callAtEnd(start));
    EXPECT_THAT(recorder.counts, ElementsAre(0));
    Recorder other;
    ProgressPacer small(limits, &Recorder::call, &other, start);
    small.received(10, start);
    small.callAtEnd(start);
    EXPECT_THAT(other.counts, ElementsAre(10));
}

TEST_F(ProgressPacerTest, silenceIsToldEvery100msOnceASecondHasPassed)
{
    for (auto time = 0ms; time < 1000ms; time += 10ms)
        pacer.tick(start + time);
    EXPECT_TRUE(recorder.counts.empty());
    for (auto time = 1000ms; time < 2000ms; time += 10ms)
        pacer.tick(start + time);
    EXPECT_EQ(recorder.counts.size(), 10u);
}

TEST_F(ProgressPacerTest, silenceOfAMinuteMakesAbout600Calls)
{
    for (auto time = 0ms; time <= 61100ms; time += 10ms)
        pacer.tick(start + time);
    EXPECT_EQ(recorder.counts.size(), 602u);
}

TEST_F(ProgressPacerTest, byteEndsTheSilence)
{
    pacer.tick(start + 1000ms);
    pacer.received(1, start + 1050ms);
    pacer.tick(start + 2040ms);
    EXPECT_EQ(recorder.counts.size(), 2u); // the second call came a second after the last byte
    pacer.tick(start + 2050ms);
    EXPECT_THAT(recorder.counts, ElementsAre(0, 1, 1));
}

TEST_F(ProgressPacerTest, lateTickDoesNotMakeUpForMissedCalls)
{
    pacer.tick(start + 30s);
    pacer.tick(start + 30s + 10ms);
    pacer.tick(start + 30s + 20ms);
    EXPECT_LE(recorder.counts.size(), 2u);
}

TEST_F(ProgressPacerTest, trickleIsToldOnceASecond)
{
    for (auto time = 100ms; time <= 5000ms; time += 100ms) {
        pacer.received(1, start + time);
        pacer.tick(start + time);
    }
    EXPECT_THAT(recorder.counts, ElementsAre(10, 20, 30, 40, 50));
}

TEST_F(ProgressPacerTest, abortEndsTheCalls)
{
    recorder.abortAt = 2;
    EXPECT_FALSE(pacer.received(16384, start));
    EXPECT_TRUE(pacer.aborted());
    EXPECT_FALSE(pacer.tick(start + 10s));
    EXPECT_FALSE(pacer.callAtEnd(start));
    EXPECT_THAT(recorder.counts, ElementsAre(4096, 8192));
}

TEST_F(ProgressPacerTest, withoutAFunctionNothingAborts)
{
    ProgressPacer silent(limits, nullptr, nullptr, start);
    EXPECT_FALSE(silent.wanted());
    EXPECT_TRUE(silent.received(100000, start));
    EXPECT_TRUE(silent.tick(start + 1h));
    EXPECT_TRUE(silent.callAtEnd(start + 1h));
}
