// Failing allocations in a whole update, including the calls of the host object.
#include <thread>

#include <QEventLoop>
#include <gtest/gtest.h>

#include "tests/allocation-sweeps/AllocationPlan.h"
#include "tests/update-sweeps/UpdateWorld.h"

using test::AllocationPlan;
using test::CountedAllocations;

namespace {

/// Runs an update on the thread whose allocations count.
std::size_t runUpdate(test::UpdateWorld& world, std::size_t failing)
{
    const AllocationPlan plan(failing);
    world.run([&world] {
        LibraryCatalogUpdate::LibraryCatalogUpdater updater = world.updater();
        QEventLoop loop;
        std::thread worker([&] {
            {
                const CountedAllocations counted;
                EXPECT_NO_THROW(updater());
            }
            QMetaObject::invokeMethod(&loop, "quit", Qt::QueuedConnection);
        });
        loop.exec();
        worker.join();
    });
    return plan.count();
}

} // namespace

TEST(UpdateAllocations, aRunIsClosedOnceAndLosesNothing)
{
    test::UpdateWorld world;
    world.reset();
    runUpdate(world, 0);
    world.reset();
    const std::size_t count = runUpdate(world, 0);
    EXPECT_GT(count, 1000u);
    for (const std::size_t cell : test::sweepCells(count, 50)) {
        SCOPED_TRACE("allocation " + std::to_string(cell + 1) + " of " + std::to_string(count));
        world.reset();
        runUpdate(world, cell + 1);
        world.expectNothingLost();
        world.expectConverges();
        if (HasFailure())
            return;
    }
    RecordProperty("allocations", static_cast<int>(count));
}
