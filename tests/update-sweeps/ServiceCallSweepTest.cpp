// Every call of a host service during an update fails or throws, once or from then on.
#include "tests/support/ForwardingServices.h"
#include "tests/update-sweeps/DistanceSweep.h"

using test::Fault;
using test::ServiceCalls;

namespace {

struct Way
{
    const char* name;
    Fault fault;
    ServiceCalls::Repeat repeat;
};

constexpr Way kWays[] = {
    {"throws once", Fault::Throw, ServiceCalls::Repeat::Once},
    {"throws for ever", Fault::Throw, ServiceCalls::Repeat::ForEver},
    {"fails once", Fault::Fail, ServiceCalls::Repeat::Once},
    {"fails for ever", Fault::Fail, ServiceCalls::Repeat::ForEver},
};

/// Runs an update with a fault at this call. Returns the operation that was called.
std::string runWithFault(test::UpdateWorld& world, const Way& way, std::size_t call)
{
    std::string operation;
    world.run([&] {
        test::ForwardingServices services;
        services.calls().planFault(call, way.fault, way.repeat);
        test::runUpdate(world.updater());
        const std::vector<std::string> operations = services.calls().operations();
        operation = call <= operations.size() ? operations[call - 1] : "no call";
    });
    return operation;
}

std::size_t countCalls(test::UpdateWorld& world)
{
    std::size_t calls = 0;
    world.run([&] {
        test::ForwardingServices services;
        test::runUpdate(world.updater());
        calls = services.calls().total();
    });
    return calls;
}

/// These failures are not visible: the error log ignores exceptions when it asks for its folder, and requests
/// that cannot be sent ahead are sent in turn.
bool countsAsError(const std::string& operation)
{
    return operation != "PathUtils::getUserLibraryDatabasePath" && operation != "Curl::prefetchHeaders" &&
           operation != "Curl::prefetchDownloads";
}

using ServiceCallSweep = test::DistanceSweep;
INSTANTIATE_TEST_SUITE_P(Service, ServiceCallSweep, testing::Values(test::kNear, test::kFar),
                         test::distanceName);

} // namespace

TEST_P(ServiceCallSweep, everyCallOfAHostServiceThrowsOrFails)
{
    reset();
    const std::size_t calls = countCalls(mWorld);
    EXPECT_GT(calls, 60u);
    constexpr std::size_t kWayCount = sizeof kWays / sizeof *kWays;
    for (const std::size_t cell : test::sweepCells(calls * kWayCount, 104)) {
        const Way& way = kWays[cell % kWayCount];
        const std::size_t call = 1 + cell / kWayCount;
        reset();
        const std::string operation = runWithFault(mWorld, way, call);
        SCOPED_TRACE(operation + ", call " + std::to_string(call) + " " + way.name);
        mWorld.expectNothingLost();
        ASSERT_TRUE(mWorld.recorder()->closingData());
        const bool isError = way.fault == Fault::Throw && countsAsError(operation);
        EXPECT_TRUE(!isError || mWorld.recorder()->closingData()->result == 0);
        mWorld.expectConverges();
    }
}
