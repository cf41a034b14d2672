// If the service is far, an update fetches the bodies ahead of their turn. The host object sees no
// difference.
#include <condition_variable>
#include <mutex>

#include <gmock/gmock.h>

#include "OrvLibrary/catalog/CatalogUpdaterState_p.h"
#include "tests/update-sweeps/DistanceSweep.h"

using test::FaultReply;
using test::FaultRequest;
using test::RequestKind;
using namespace std::chrono_literals;

namespace {

constexpr std::size_t kBodies = 4;

class FarService : public testing::Test
{
protected:
    /// The calls that the host object receives during a run, in order.
    std::vector<std::string> eventsOfARun(std::chrono::milliseconds delay)
    {
        LibraryCatalogUpdate::progress_update_count = 0;
        mWorld.reset();
        mWorld.setDelay(delay);
        mWorld.onRequest(nullptr);
        mWorld.run();
        return mWorld.recorder()->texts();
    }
    /// Whether the last body is requested while the first one is still held back.
    bool asksForAllBodiesAtOnce(std::chrono::milliseconds delay)
    {
        eventsOfARun(test::kNear);
        const std::size_t requests = mWorld.requestCount();
        mWorld.reset();
        mWorld.setDelay(delay);
        std::mutex mutex;
        std::condition_variable changed;
        bool isLastAsked = false;
        bool isAtOnce = false;
        mWorld.onRequest([&](std::size_t number) {
            std::unique_lock<std::mutex> lock(mutex);
            isLastAsked = isLastAsked || number == requests;
            changed.notify_all();
            if (number == requests - kBodies + 1)
                isAtOnce =
                    changed.wait_for(lock, delay == test::kNear ? 100ms : 5s, [&] { return isLastAsked; });
        });
        mWorld.run();
        return isAtOnce;
    }

    const test::ResourceGuard mGuard;
    test::UpdateWorld mWorld;
};

} // namespace

TEST_F(FarService, isAskedForBodiesAheadAndANearOneInTurn)
{
    EXPECT_TRUE(asksForAllBodiesAtOnce(test::kFar));
    EXPECT_FALSE(asksForAllBodiesAtOnce(test::kNear));
}

TEST_F(FarService, leadsToTheFilesTagsAndEventsOfARunInTurn)
{
    const std::vector<std::string> inTurn = eventsOfARun(test::kNear);
    const std::size_t requests = mWorld.requestCount();
    EXPECT_EQ(eventsOfARun(test::kFar), inTurn);
    EXPECT_EQ(mWorld.requestCount(), requests);
    mWorld.expectNew();
}

TEST_F(FarService, bodiesAreDiscardedWhenAnInstallationFails)
{
    mWorld.reset();
    mWorld.setDelay(test::kFar);
    mWorld.spoil(RequestKind::Body, [](const FaultReply& sound, const FaultRequest&) {
        return FaultReply(sound).withBody("").pauseAt(0, test::kFar);
    });
    mWorld.run();
    ASSERT_TRUE(mWorld.recorder()->closingData());
    EXPECT_THAT(mWorld.recorder()->closingData()->updatedCatalogs, testing::IsEmpty());
    mWorld.expectNothingLost();
    mWorld.expectConverges();
}
