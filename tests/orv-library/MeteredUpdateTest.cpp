// `update` on a metered connection: which downloads it postpones, how it reports this, and how the user can
// start them anyway.
#include <filesystem>

#include <QJsonArray>
#include <gmock/gmock.h>

#include "tests/orv-library/Program.h"
#include "tests/support/ContentService.h"
#include "tests/support/FakeNetworkManager.h"

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

namespace fs = std::filesystem;

namespace {

const std::string kIndex = "Orv_Core_Content_Index.txt";

class MeteredUpdate : public testing::Test
{
protected:
    MeteredUpdate()
    {
        program.setEnvironment("DBUS_SYSTEM_BUS_ADDRESS", bus.address());
        program.createRoot();
        program.run({"settings", "set", "url", service.redirect()});
        service.offer(kIndex, "Doors.orvlib\nRoofs.orvlib\n");
        service.offer("Doors.orvlib", std::string(5000, 'd'));
        service.offer("Roofs.orvlib", std::string(2000, 'r'));
    }

    test::ProgramResult update(std::vector<std::string> more = {}) const
    {
        more.insert(more.begin(), {"--json", "--progress", "none", "update", "--no-database-check"});
        return program.run(more);
    }

    const test::MessageBus bus;
    test::FakeNetworkManager manager{bus, test::FakeNetworkManager::kYes};
    test::Program program;
    test::ContentService service;
};

} // namespace

TEST_F(MeteredUpdate, tellsWhatWaitsAndFetchesNothing)
{
    const test::ProgramResult result = update();
    EXPECT_EQ(3, result.status) << result.err;
    EXPECT_EQ("", result.err);
    const QJsonObject document = result.json();
    EXPECT_EQ("waiting", document["outcome"].toString());
    EXPECT_TRUE(document["result"].isNull());
    EXPECT_EQ(QJsonArray(), document["failed"].toArray());
    EXPECT_EQ(QJsonArray(), document["updatedCatalogs"].toArray());
    const QJsonArray expected{QJsonObject{{"catalog", "Doors.orvlib"}, {"bytes", 5000}},
                              QJsonObject{{"catalog", "Roofs.orvlib"}, {"bytes", 2000}}};
    EXPECT_EQ(expected, document["postponed"].toArray());
    EXPECT_THAT(service.takeFetched(), ElementsAre(kIndex));
    EXPECT_THAT(test::listTree(program.root() + "/core"), IsEmpty());

    EXPECT_EQ("The connection is metered: 2 catalogs wait, 7.0 KB in all.\n  Doors.orvlib\n  Roofs.orvlib\n"
              "'orv-library update --metered fetch' fetches all the same.\n",
              program.run({"update", "--no-database-check"}).out);
    const QJsonObject run = program.run({"--json", "runs"}).json()["runs"].toArray()[0].toObject();
    EXPECT_EQ("update", run["kind"].toString());
    EXPECT_EQ("waiting", run["outcome"].toString());
    EXPECT_EQ(0, run["fetched"].toInt());
    service.takeAsked();
    EXPECT_EQ(3, program.run({"check", "--quiet", "--max-age", "1"}).status);
    EXPECT_THAT(service.takeAsked(), IsEmpty());
    EXPECT_EQ(0, program.run({"status"}).status);
}

TEST_F(MeteredUpdate, isFetchedWhereTheCommandLineOrTheSettingsSaySo)
{
    EXPECT_EQ(0, update({"--metered", "fetch"}).status);
    EXPECT_TRUE(fs::exists(program.root() + "/core/Doors.orvlib"));
    EXPECT_EQ(0, update().status); // no download is postponed any more
    EXPECT_EQ("current", update().json()["outcome"].toString());
    service.offer("Doors.orvlib", std::string(6000, 'e'));
    program.run({"settings", "set", "metered", "fetch"});
    const int asked = manager.asked();
    EXPECT_EQ(3, update({"--metered", "postpone"}).status);
    EXPECT_EQ(asked + 1, manager.asked());
    EXPECT_EQ("updated", update().json()["outcome"].toString());
    EXPECT_EQ(asked + 1, manager.asked());
    EXPECT_EQ(2, update({"--metered", "perhaps"}).status);
    EXPECT_THAT(update({"--metered", "perhaps"}).err,
                HasSubstr("orv-library: --metered: must be 'fetch' or 'postpone'\n"));
}

TEST_F(MeteredUpdate, connectionThatIsNotMeteredFetches)
{
    manager.say(test::FakeNetworkManager::kNo);
    EXPECT_EQ("updated", update().json()["outcome"].toString());
}

TEST_F(MeteredUpdate, checkIsNotPostponed)
{
    const QJsonObject document = program.run({"--json", "check"}).json();
    EXPECT_EQ("waiting", document["outcome"].toString());
    EXPECT_EQ(0, manager.asked());
}

TEST_F(MeteredUpdate, heldCatalogStaysWithoutItsNewerVersion)
{
    ASSERT_EQ(0, update({"--metered", "fetch"}).status);
    ASSERT_EQ(0, program.run({"hold", "Doors.orvlib"}).status);
    service.offer("Doors.orvlib", std::string(6000, 'e'));
    service.takeFetched();
    EXPECT_EQ("current", update().json()["outcome"].toString());
    EXPECT_THAT(service.takeFetched(), Not(Contains("Doors.orvlib")));
    EXPECT_EQ(0, update({"--metered", "fetch"}).status);
    EXPECT_THAT(service.takeFetched(), Contains("Doors.orvlib"));
}

TEST_F(MeteredUpdate, serviceThatIsDownIsAFailure)
{
    service.server().stopListening();
    const test::ProgramResult result = update({"--retries", "0"});
    EXPECT_EQ(1, result.status);
    EXPECT_EQ("failed", result.json()["outcome"].toString());
}
