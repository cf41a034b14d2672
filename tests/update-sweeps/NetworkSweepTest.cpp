// A broken or hostile service spoils each kind of request of an update in every known way.
#include "tests/support/BrokenService.h"
#include "tests/update-sweeps/DistanceSweep.h"

using test::Behaviour;
using test::FaultReply;
using test::FaultRequest;
using test::RequestKind;

namespace {

/// Runs one cell: an update with the spoilt service, then one with the sound service.
void expectSurvives(test::UpdateWorld& world, RequestKind kind, const Behaviour& behaviour)
{
    SCOPED_TRACE(std::string(kindName(kind)) + ": " + behaviour.name);
    world.spoil(kind, behaviour.spoil);
    world.run();
    const bool isFile = kind == RequestKind::Body || kind == RequestKind::Archive;
    world.expectNothingLost(behaviour.lies && isFile);
    // False content with the right tag stays installed until the tag changes or the file is verified.
    if (!behaviour.lies || kind != RequestKind::Body)
        world.expectConverges();
}

using NetworkSweep = test::DistanceSweep;
INSTANTIATE_TEST_SUITE_P(Service, NetworkSweep, testing::Values(test::kNear, test::kFar), test::distanceName);

} // namespace

TEST_P(NetworkSweep, everyBehaviourOnEveryKindOfRequest)
{
    const std::vector<Behaviour> behaviours = test::brokenServices();
    const std::vector<RequestKind>& kinds = test::spoiltKinds();
    EXPECT_GE(behaviours.size(), 60u);
    for (const std::size_t cell : test::sweepCells(behaviours.size() * kinds.size(), 100)) {
        reset();
        expectSurvives(mWorld, kinds[cell % kinds.size()], behaviours[cell / kinds.size()]);
        if (HasFatalFailure())
            return;
    }
}

TEST_P(NetworkSweep, everyReplyCutAtEveryByte)
{
    for (const RequestKind kind : test::spoiltKinds()) {
        const char* const method = kind == RequestKind::Header ? "HEAD" : "GET";
        const std::size_t size = mWorld.soundAnswer(kind).bytes(method).size();
        for (const std::size_t cut : test::sweepCells(size, 8)) {
            const std::string name = "cut at byte " + std::to_string(cut);
            reset();
            expectSurvives(mWorld, kind, {name.c_str(), [cut](const FaultReply& sound, const FaultRequest&) {
                                              return FaultReply(sound).cutAt(cut);
                                          }});
        }
    }
}

TEST_P(NetworkSweep, everyStatusOnEveryKindOfRequest)
{
    for (const RequestKind kind : test::spoiltKinds()) {
        for (const std::size_t cell : test::sweepCells(500, 10)) {
            const int status = 100 + static_cast<int>(cell);
            const std::string name = "status " + std::to_string(status);
            reset();
            expectSurvives(mWorld, kind,
                           {name.c_str(), [status](const FaultReply& sound, const FaultRequest&) {
                                return FaultReply(sound).withStatus(status).close();
                            }});
        }
    }
}
