// `check` and `runs`: their reports about a service that is sound, sends false content, or is down.
#include <algorithm>
#include <csignal>
#include <filesystem>

#include <QJsonArray>
#include <QJsonDocument>
#include <gmock/gmock.h>

#include "OrvLibrary/OrvLibraryVersion.h"
#include "tests/orv-library/Program.h"
#include "tests/support/ContentService.h"

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace fs = std::filesystem;

namespace {

const std::string kIndex = "Orv_Core_Content_Index.txt";

class Check : public testing::Test
{
protected:
    Check()
    {
        program.createRoot();
        program.run({"settings", "set", "url", service.redirect()});
        program.run({"settings", "set", "retries", "0"});
        service.offer(kIndex, "Doors.orvlib\nRoofs.orvlib\nTextures.zip\n");
        service.offer("Doors.orvlib", std::string(5000, 'd'));
        service.offer("Roofs.orvlib", std::string(2000, 'r'));
        service.offer("Textures.zip", std::string(1500, 'z'));
    }

    test::ProgramResult check(std::vector<std::string> more = {}) const
    {
        more.insert(more.begin(), {"--json", "check"});
        return program.run(more);
    }

    test::ProgramResult update() const { return program.run({"--json", "update", "--no-database-check"}); }

    /// "Doors.orvlib:core:new:5000", in the order of the document.
    static std::vector<std::string> states(const QJsonObject& document)
    {
        std::vector<std::string> list;
        for (const QJsonValue entry : document["catalogs"].toArray()) {
            const QJsonObject catalog = entry.toObject();
            list.push_back(catalog["name"].toString().toStdString() + ":" +
                           catalog["category"].toString().toStdString() + ":" +
                           catalog["state"].toString().toStdString() + ":" +
                           (catalog["bytes"].isNull() ? "-" : std::to_string(catalog["bytes"].toInt())));
        }
        return list;
    }

    static QJsonObject catalog(const QJsonObject& document, const QString& name)
    {
        for (const QJsonValue entry : document["catalogs"].toArray()) {
            if (entry.toObject()["name"] == name)
                return entry.toObject();
        }
        ADD_FAILURE() << "no " << name.toStdString();
        return {};
    }

    /// Sends this reply to header requests and downloads of a catalog.
    void answer(const std::string& name, const test::FaultReply& reply)
    {
        service.server().on(
            "/content?&library=" + name + "&product=orv-library&version=" + ORVLIBRARY_VERSION_STRING, reply);
    }

    std::string path(const std::string& name) const { return program.root() + "/" + name; }

    const test::Program program;
    test::ContentService service;
};

} // namespace

TEST_F(Check, tellsWhatAnUpdateWouldFetchAndFetchesNothing)
{
    test::ProgramResult result = check();
    EXPECT_EQ(3, result.status) << result.err;
    QJsonObject document = result.json();
    EXPECT_EQ("waiting", document["outcome"].toString());
    EXPECT_THAT(states(document),
                ElementsAre("Doors.orvlib:core:missing:5000", "Roofs.orvlib:core:missing:2000",
                            "Textures.zip:referenced:missing:1500"));
    EXPECT_EQ(8500, document["bytes"].toInt());
    EXPECT_GT(document["free"].toDouble(), 0);
    EXPECT_FALSE(document.contains("asked"));
    EXPECT_THAT(service.takeFetched(), ElementsAre(kIndex));
    EXPECT_FALSE(fs::exists(path("core/catalog_hash.txt")));

    ASSERT_EQ(0, update().status);
    const std::string hashes = test::readFile(path("core/catalog_hash.txt"));
    result = check();
    EXPECT_EQ(0, result.status);
    EXPECT_EQ("current", result.json()["outcome"].toString());
    EXPECT_EQ(0, result.json()["bytes"].toInt());

    service.offer("Doors.orvlib", std::string(6000, 'e'));
    result = check();
    EXPECT_EQ(3, result.status);
    document = result.json();
    EXPECT_THAT(states(document), ElementsAre("Doors.orvlib:core:new:6000", "Roofs.orvlib:core:current:-",
                                              "Textures.zip:referenced:current:-"));
    const QJsonObject doors = catalog(document, "Doors.orvlib");
    const std::string had = test::ContentService::sha1(std::string(5000, 'd'));
    const std::string has = test::ContentService::sha1(std::string(6000, 'e'));
    EXPECT_EQ(had, doors["installed"].toString().toStdString());
    EXPECT_EQ(has, doors["offered"].toString().toStdString());
    EXPECT_EQ("tag differs: had " + had.substr(0, 12) + "..., service has " + has.substr(0, 12) + "...",
              doors["why"].toString().toStdString());
    EXPECT_EQ(hashes, test::readFile(path("core/catalog_hash.txt")));
}

TEST_F(Check, bonusCatalogsAreNamedAsInstalled)
{
    service.offer("Garden.orvlibz", std::string(3000, 'g'));
    test::writeFile(path("bonus/Sauna.orvlib"), "installed");
    const QJsonObject document = check({"--bonus", "Garden.orvlib", "--manufacturer", "Maker.orvlib"}).json();
    EXPECT_EQ("missing", catalog(document, "Garden.orvlib")["state"].toString());
    EXPECT_EQ("bonus", catalog(document, "Garden.orvlib")["category"].toString());
    EXPECT_EQ("gone", catalog(document, "Sauna.orvlib")["state"].toString());
    EXPECT_EQ(test::ContentService::sha1("installed"),
              catalog(document, "Sauna.orvlib")["installed"].toString().toStdString());
    EXPECT_EQ("manufacturer", catalog(document, "Maker.orvlib")["category"].toString());
    EXPECT_EQ("waiting", document["outcome"].toString());
}

TEST_F(Check, lessThanAKilobyteInAllIsNewWithTheReason)
{
    ASSERT_EQ(0, update().status);
    service.offer("Doors.orvlib", std::string(900, 'e'));
    const test::ProgramResult result = check();
    EXPECT_EQ(3, result.status);
    const QJsonObject doors = catalog(result.json(), "Doors.orvlib");
    EXPECT_EQ("new", doors["state"].toString());
    EXPECT_THAT(doors["why"].toString().toStdString(), HasSubstr("an update does not fetch it"));
}

TEST_F(Check, uncheckedCatalogsAreNamed)
{
    ASSERT_EQ(0, update().status);
    answer("Roofs.orvlib", test::FaultReply::status(500, "sorry"));
    const test::ProgramResult result = check();
    EXPECT_EQ(1, result.status);
    EXPECT_EQ("orv-library: Roofs.orvlib: HTTP 500\n", result.err.substr(result.err.rfind("orv-library: ")));
    EXPECT_EQ("failed", result.json()["outcome"].toString());
    EXPECT_FALSE(result.json().contains("error"));
    EXPECT_EQ("unknown", catalog(result.json(), "Roofs.orvlib")["state"].toString());
    EXPECT_EQ("current", catalog(result.json(), "Doors.orvlib")["state"].toString());
}

TEST_F(Check, aKeptAnswerNamesWhatCouldNotBeTold)
{
    ASSERT_EQ(0, update().status);
    answer("Roofs.orvlib", test::FaultReply::status(500, "sorry"));
    EXPECT_EQ(1, check().status);
    const test::ProgramResult again = program.run({"check", "--max-age", "1h", "--quiet"});
    EXPECT_EQ(1, again.status);
    EXPECT_EQ("", again.out);
    EXPECT_EQ("orv-library: Roofs.orvlib: HTTP 500\n", again.err);
}

TEST_F(Check, serviceThatIsDownOrIsNoneFailsAsAWhole)
{
    ASSERT_EQ(0, update().status);
    answer("Doors.orvlib", test::FaultReply::ok("<html>login</html>", {"Content-Type: text/html"}));
    const test::ProgramResult login = check();
    EXPECT_EQ(1, login.status);
    EXPECT_THAT(login.json()["error"].toString().toStdString(), HasSubstr("web pages"));
    service.server().stopListening();
    const test::ProgramResult down = check();
    EXPECT_EQ(1, down.status);
    EXPECT_THAT(down.json()["error"].toString().toStdString(),
                HasSubstr("the catalog web service was not found"));
    EXPECT_EQ(3, down.json()["catalogs"].toArray().size()) << "what is installed is listed all the same";
    const test::ProgramResult quiet = program.run({"check", "--quiet"});
    EXPECT_EQ(1, quiet.status);
    EXPECT_EQ("", quiet.out);
    EXPECT_EQ(1, std::count(quiet.err.begin(), quiet.err.end(), '\n')) << quiet.err;
    EXPECT_EQ("", check({"--quiet"}).err);
}

TEST_F(Check, quietSaysNothingWhenItCouldTell)
{
    const test::ProgramResult waiting = program.run({"check", "--quiet"});
    EXPECT_EQ(3, waiting.status);
    EXPECT_EQ("", waiting.out);
    EXPECT_EQ("", waiting.err);
}

TEST_F(Check, maxAgeAsksNothingWhileTheLastAnswerIsFresh)
{
    EXPECT_EQ(3, check({"--max-age", "24h"}).status);
    service.takeFetched();
    test::ProgramResult again = check({"--max-age", "24"});
    EXPECT_EQ(3, again.status);
    EXPECT_FALSE(again.json()["asked"].toBool(true));
    EXPECT_THAT(service.takeFetched(), IsEmpty());
    EXPECT_EQ(3, check({"--max-age", "0"}).status);
    EXPECT_THAT(service.takeFetched(), ElementsAre(kIndex));
    ASSERT_EQ(0, update().status);
    again = check({"--max-age", "1"});
    EXPECT_EQ(0, again.status) << "an update tells as well";
    EXPECT_FALSE(again.json()["asked"].toBool(true));
    EXPECT_EQ(3, again.json()["catalogs"].toArray().size());
    EXPECT_EQ(2, check({"--max-age", "-1"}).status);
    EXPECT_EQ(2, check({"--max-age", "soon"}).status);
}

TEST_F(Check, runsAreRecordedNewestFirst)
{
    check();
    answer("Roofs.orvlib", test::FaultReply::status(500, "sorry"));
    EXPECT_EQ(1, update().status);
    check({"--max-age", "1"});
    const QJsonArray runs = program.run({"--json", "runs"}).json()["runs"].toArray();
    ASSERT_EQ(2, runs.size());
    const QJsonObject last = runs[0].toObject();
    EXPECT_EQ(2, last["number"].toInt());
    EXPECT_EQ("update", last["kind"].toString());
    EXPECT_EQ("incomplete", last["outcome"].toString());
    EXPECT_EQ(3, last["asked"].toInt());
    EXPECT_EQ(2, last["fetched"].toInt());
    EXPECT_EQ(6500, last["bytes"].toInt());
    EXPECT_EQ("Roofs.orvlib", last["failed"].toArray()[0].toObject()["catalog"].toString());
    EXPECT_EQ(20, last["start"].toString().size());
    EXPECT_EQ("check", runs[1].toObject()["kind"].toString());
    EXPECT_EQ("waiting", runs[1].toObject()["outcome"].toString());

    const QJsonObject shown = program.run({"--json", "runs", "show", "2"}).json();
    const QJsonArray catalogs = shown["catalogs"].toArray();
    ASSERT_EQ(3, catalogs.size());
    EXPECT_EQ("updated", catalogs[0].toObject()["state"].toString());
    EXPECT_EQ(5000, catalogs[0].toObject()["bytes"].toInt());
    EXPECT_EQ(500, catalogs[1].toObject()["status"].toInt());
    EXPECT_EQ(1, program.run({"runs", "show", "3"}).status);
}

TEST_F(Check, killedRunIsRecordedByTheNextOne)
{
    service.spoil("Doors.orvlib", test::FaultReply::ok(std::string(5000, 'd')).silentAt(300));
    const auto running = program.start({"update", "--no-database-check"});
    ASSERT_TRUE(service.waitUntilFetched("Doors.orvlib"));
    EXPECT_EQ(0, program.run({"--json", "runs"}).json()["runs"].toArray().size());
    ::kill(static_cast<pid_t>(running->processId()), SIGKILL);
    test::Program::finish(*running);
    check();
    const QJsonArray runs = program.run({"--json", "runs"}).json()["runs"].toArray();
    ASSERT_EQ(2, runs.size());
    EXPECT_EQ("killed", runs[1].toObject()["outcome"].toString());
    EXPECT_EQ(1, runs[1].toObject()["number"].toInt());
}

TEST_F(Check, fiftyRunsAreKept)
{
    QJsonArray many;
    for (int number = 1; number <= 50; ++number)
        many.append(QJsonObject{{"number", number},
                                {"start", "2026-11-21T21:16:35Z"},
                                {"end", "2026-11-21T21:16:37Z"},
                                {"kind", "update"},
                                {"outcome", "current"},
                                {"asked", 0},
                                {"fetched", 0},
                                {"bytes", 0},
                                {"failed", QJsonArray()},
                                {"catalogs", QJsonArray()}});
    test::writeFile(path("runs.json"), QJsonDocument(QJsonObject{{"runs", many}}).toJson().toStdString());
    check();
    const QJsonArray runs = program.run({"--json", "runs"}).json()["runs"].toArray();
    ASSERT_EQ(50, runs.size());
    EXPECT_EQ(51, runs.first().toObject()["number"].toInt());
    EXPECT_EQ(2, runs.last().toObject()["number"].toInt());
}
