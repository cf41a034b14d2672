#include "OrvHost/update/MeteredConnection.h"

#include <chrono>

#include <QSignalSpy>

#include <gmock/gmock.h>

#include "OrvHost/update/CatalogUpdateRun.h"
#include "OrvHost/update/CheckHistory.h"
#include "OrvHost/update/LastCheck.h"
#include "tests/orv-host/HostedTest.h"
#include "tests/support/ContentService.h"
#include "tests/support/FakeNetworkManager.h"
#include "tests/support/ScopedEnvironment.h"

using OrvHost::MeteredConnection::isMetered;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr const char* kBus = "DBUS_SYSTEM_BUS_ADDRESS";
/// Long enough for a reply on a busy machine. A test that gets no reply does not wait this long.
constexpr std::chrono::milliseconds kLong{20000};
constexpr std::chrono::milliseconds kShort{50};
constexpr int kTimeoutMilliseconds = 30000;

class MeteredConnectionTest : public testing::Test
{
protected:
    const test::MessageBus bus;
    const test::ScopedEnvironment address{kBus, bus.address().c_str()};
};

std::chrono::milliseconds timeOf(const std::function<void()>& work)
{
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - start);
}

} // namespace

TEST_F(MeteredConnectionTest, itIsWhereNetworkManagerSaysOrGuessesSo)
{
    using Manager = test::FakeNetworkManager;
    Manager manager(bus, Manager::kYes);
    EXPECT_TRUE(isMetered(kLong));
    manager.say(Manager::kGuessYes);
    EXPECT_TRUE(isMetered(kLong));
    for (const unsigned int answer : {Manager::kUnknown, Manager::kNo, Manager::kGuessNo, 5U}) {
        manager.say(answer);
        EXPECT_FALSE(isMetered(kLong)) << answer;
    }
    EXPECT_EQ(6, manager.asked());
}

TEST_F(MeteredConnectionTest, aBusWithoutNetworkManagerSaysNoAtOnceAndStartsNone)
{
    EXPECT_LT(timeOf([] { EXPECT_FALSE(isMetered(kLong)); }), kLong);
    EXPECT_FALSE(bus.hasStartedAManager());
}

TEST_F(MeteredConnectionTest, aNetworkManagerThatDoesNotAnswerIsNotWaitedFor)
{
    test::FakeNetworkManager manager(bus, test::FakeNetworkManager::kYes);
    manager.fallSilent();
    EXPECT_LT(timeOf([] { EXPECT_FALSE(isMetered(std::chrono::milliseconds(500))); }), kLong);
    EXPECT_EQ(1, manager.asked());
}

TEST(MeteredConnectionWithoutABusTest, noBusIsNoMeter)
{
    const test::TempFolder folder;
    for (const std::string& address : {"unix:path=" + folder.path() + "/none", std::string("nonsense")}) {
        const test::ScopedEnvironment environment(kBus, address.c_str());
        EXPECT_LT(timeOf([] { EXPECT_FALSE(isMetered(kLong)); }), kLong) << address;
    }
}

// Qt's own connection attempt would wait for 25 s.
TEST(MeteredConnectionWithoutABusTest, aBusThatIsSilentIsNotWaitedFor)
{
    const test::SilentBus bus;
    const test::ScopedEnvironment environment(kBus, bus.address().c_str());
    EXPECT_LT(timeOf([] { EXPECT_FALSE(isMetered(kShort)); }), std::chrono::seconds(10));
}

namespace {

class MeteredUpdateTest : public test::HostedTest
{
protected:
    MeteredUpdateTest()
    {
        service.offer("Orv_Core_Content_Index.txt", "Doors.orvlib\n");
        service.offer("Doors.orvlib", std::string(5000, 'd'));
    }

    OrvHost::UpdateOutcome update(bool postpones)
    {
        OrvHost::CatalogUpdateRun::Request request;
        request.url = service.redirect();
        request.checksDatabases = false;
        request.postponesOnMetered = postpones;
        request.retries = 0;
        OrvHost::CatalogUpdateRun run(request);
        QSignalSpy finished(&run, &OrvHost::CatalogUpdateRun::finished);
        run.start(object);
        EXPECT_TRUE(finished.wait(kTimeoutMilliseconds));
        return run.finish(std::nullopt, host.root());
    }

    const test::MessageBus bus;
    test::FakeNetworkManager manager{bus, test::FakeNetworkManager::kYes};
    const test::ScopedEnvironment address{kBus, bus.address().c_str()};
    test::ContentService service;
    QObject object;
};

} // namespace

TEST_F(MeteredUpdateTest, checksAndFetchesNothing)
{
    const OrvHost::UpdateOutcome outcome = update(true);
    EXPECT_EQ(OrvHost::UpdateOutcome::Kind::Waiting, outcome.kind);
    EXPECT_STREQ("waiting", outcome.name());
    EXPECT_FALSE(outcome.isGood());
    ASSERT_EQ(1U, outcome.postponed.size());
    EXPECT_EQ("Doors.orvlib", outcome.postponed.front().catalog);
    EXPECT_EQ(5000, outcome.postponed.front().bytes);
    EXPECT_THAT(outcome.failed, IsEmpty());
    EXPECT_THAT(service.takeFetched(), ElementsAre("Orv_Core_Content_Index.txt"));
    EXPECT_THAT(service.takeAsked(), testing::Contains("Doors.orvlib"));
    EXPECT_TRUE(OrvHost::CheckHistory(host.root()).lastGoodCheck().isValid());
    const auto last = OrvHost::LastCheck::load(host.root());
    ASSERT_TRUE(last);
    EXPECT_EQ(3, last->exitStatus);
}

TEST_F(MeteredUpdateTest, isNotAskedForWhereItDoesNotMatter)
{
    update(false);
    EXPECT_THAT(service.takeFetched(), testing::Contains("Doors.orvlib"));
    EXPECT_EQ(0, manager.asked());
}

TEST_F(MeteredUpdateTest, uncheckedCatalogIsAFailureOnAMeteredConnection)
{
    service.offer("Orv_Core_Content_Index.txt", "Doors.orvlib\nRoofs.orvlib\n");
    service.offer("Roofs.orvlib", std::string(2000, 'r'));
    service.spoilHeader("Roofs.orvlib", test::FaultReply::status(500));
    const OrvHost::UpdateOutcome outcome = update(true);
    EXPECT_EQ(OrvHost::UpdateOutcome::Kind::Incomplete, outcome.kind);
    ASSERT_EQ(1U, outcome.failed.size());
    EXPECT_EQ("Roofs.orvlib", outcome.failed.front().catalog);
    EXPECT_EQ(1U, outcome.postponed.size());
    service.server().stopListening();
    EXPECT_EQ(OrvHost::UpdateOutcome::Kind::Failed, update(true).kind);
}
