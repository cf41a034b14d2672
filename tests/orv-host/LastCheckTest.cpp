#include "OrvHost/update/LastCheck.h"

#include <gmock/gmock.h>

#include "tests/orv-host/HostedTest.h"

using OrvHost::CheckOutcome;
using OrvHost::LastCheck;

namespace {

class LastCheckTest : public test::HostedTest
{
protected:
    std::optional<LastCheck> stored(const std::string& text) const
    {
        folder.write("root/last-check.json", text);
        return LastCheck::load(host.root());
    }
};

} // namespace

TEST_F(LastCheckTest, aCheckThatReachedTheServiceComesBack)
{
    EXPECT_FALSE(LastCheck::load(host.root()));
    CheckOutcome found;
    found.kind = CheckOutcome::Kind::Waiting;
    LastCheck::save(host.root(), found);
    EXPECT_FALSE(LastCheck::load(host.root())) << "the service was not reached";
    found.isServiceReached = true;
    LastCheck::save(host.root(), found);
    const auto last = LastCheck::load(host.root());
    ASSERT_TRUE(last);
    EXPECT_EQ(3, last->exitStatus);
    EXPECT_EQ(found.document(), last->document);
    EXPECT_EQ(Qt::UTC, last->time.timeSpec());
}

TEST_F(LastCheckTest, aFileThatIsNotUnderstoodIsNoneAndAMissingStatusAFailure)
{
    EXPECT_FALSE(stored("my notes"));
    EXPECT_FALSE(stored(R"({"time": "yesterday", "status": 0, "document": {"outcome": "current"}})"));
    EXPECT_FALSE(stored(R"({"time": "2026-01-02T03:04:05Z", "status": 0, "document": {}})"));
    const auto without = stored(R"({"time": "2026-01-02T03:04:05Z", "document": {"outcome": "current"}})");
    ASSERT_TRUE(without);
    EXPECT_EQ(1, without->exitStatus);
}
