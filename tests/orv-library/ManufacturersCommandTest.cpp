#include <csignal>

#include <QJsonArray>
#include <QJsonDocument>

#include <sys/stat.h>

#include <gmock/gmock.h>

#include "tests/orv-library/Program.h"
#include "tests/support/FaultServer.h"

using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

namespace {

using test::FaultReply;

constexpr char kOurs[] = R"({"Last_Modified": "20210101T000000", "Default_Text": "call us",
    "Manufacturer": {"Id": 1, "Name": "One", "Last_Modified": "20200101T000000", "Logo": "one.png"},
    "Manufacturer": {"Id": 2, "Name": "Two", "Last_Modified": "20200101T000000"},
    "Manufacturer": {"Id": 3, "Name": "Three", "Last_Modified": "20200101T000000"},
    "Manufacturer": {"Id": 4, "Name": "Four", "Last_Modified": "20200101T000000"},
    "Manufacturer": {"Id": 5, "Name": "Five"},
    "Manufacturer": {"Id": 8, "Name": "Möbel", "Url": "http://m", "Phone": "default", "Fax": "12",
                     "Email": "default", "Logo": "ö.png", "Lock": true, "Deleted": true}})";

constexpr char kTheirs[] = R"({"Last_Modified": "20220101T000000", "Default_Text": "new text",
    "Manufacturer": {"Id": 1, "Name": "One", "Last_Modified": "20220101T000000", "Logo": "new.png"},
    "Manufacturer": {"Id": 2, "Name": "Two", "Last_Modified": "20190101T000000"},
    "Manufacturer": {"Id": 3, "Name": "Drei", "Last_Modified": "20200101T000000"},
    "Manufacturer": {"Id": 4, "Name": "Four", "Last_Modified": "20200101T000000"},
    "Manufacturer": {"Id": 9, "Name": "Nine", "Last_Modified": "20190101T000000", "Logo": "missing.png"}})";

class ManufacturersCommand : public testing::Test
{
protected:
    ManufacturersCommand() { program.createRoot(); }

    test::ProgramResult run(std::vector<std::string> arguments) const
    {
        arguments.insert(arguments.begin(), {"--json", "manufacturers"});
        return program.run(arguments);
    }

    test::ProgramResult refresh(const std::vector<std::string>& more = {}) const
    {
        std::vector<std::string> arguments = {"manufacturers",      "refresh",    "--data-url",
                                              server.url("/data?"), "--logo-url", server.url("/logo?")};
        arguments.insert(arguments.begin(), more.begin(), more.end());
        return program.run(arguments);
    }

    static std::string compact(const QJsonValue& value)
    {
        return QJsonDocument(value.toObject()).toJson(QJsonDocument::Compact).toStdString();
    }

    void write(const std::string& content) const { test::writeFile(file, content); }
    std::vector<std::string> files() const { return test::listTree(program.root() + "/manufacturer-data"); }

    const test::Program program;
    const std::string file = program.root() + "/manufacturer-data/manufacturer_data.json";
    test::FaultServer server;
};

} // namespace

TEST_F(ManufacturersCommand, freshRootHasNone)
{
    EXPECT_EQ(run({"list"}).json(), QJsonDocument::fromJson(R"({"lastModified": "1400-01-01T00:00:00Z",
        "defaultText": "", "manufacturers": []})")
                                        .object());
    EXPECT_EQ(files(), std::vector<std::string>());
}

TEST_F(ManufacturersCommand, listPrintsTheRecordsAsTheyAreStored)
{
    write(kOurs);
    const QJsonObject document = run({"list"}).json();
    EXPECT_EQ(document["lastModified"], "2021-01-01T00:00:00Z");
    EXPECT_EQ(document["defaultText"], "call us");
    const QJsonArray records = document["manufacturers"].toArray();
    ASSERT_EQ(records.size(), 6);
    EXPECT_EQ(records[5].toObject(), QJsonDocument::fromJson(R"({"id": 8, "name": "Möbel", "url": "http://m",
        "phone": "default", "fax": "12", "email": "default", "logo": "ö.png", "lock": true, "deleted": true,
        "lastModified": null})")
                                         .object());
    EXPECT_THAT(program.run({"manufacturers", "list"}).out,
                testing::EndsWith("5  Five\n8  Möbel  (deleted)  (locked)\n"));
}

TEST_F(ManufacturersCommand, showResolvesDefaultedContacts)
{
    write(kOurs);
    EXPECT_EQ(run({"show", "8"}).json(), QJsonDocument::fromJson(R"({"id": 8, "name": "Möbel",
        "url": "http://m", "phone": "call us", "fax": "12", "email": "call us", "logo": "ö.png", "lock": true,
        "deleted": true, "lastModified": null})")
                                             .object());
    EXPECT_THAT(program.run({"manufacturers", "show", "8"}).out, HasSubstr("Phone:  call us\n"));
    for (const char* id : {"7", "-1", "4294967304"}) {
        const test::ProgramResult result = run({"show", id});
        EXPECT_EQ(result.status, 1);
        EXPECT_EQ(result.err, std::string("orv-library: no manufacturer has the id ") + id + "\n");
    }
    EXPECT_EQ(run({"show", "x"}).status, 2);
    EXPECT_EQ(run({"show"}).status, 2);
    EXPECT_EQ(run({}).status, 2);
}

TEST_F(ManufacturersCommand, refreshSaysWhatChangedAndKeepsTheFormerFile)
{
    write(kOurs);
    test::writeFile(program.root() + "/manufacturer-data/one.png", "old");
    server.on("/data", FaultReply::ok(kTheirs));
    server.on("/logo?&logo-path=new.png", FaultReply::ok("picture"));
    const test::ProgramResult result = refresh({"--json"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(compact(result.json()["changes"]),
              R"({"added":[9],"changed":[3],"newer":[1],"older":[2],"removed":[5,8]})");
    EXPECT_EQ(result.json()["manufacturers"].toArray().size(), 5);
    EXPECT_EQ(result.json()["defaultText"], "new text");
    EXPECT_EQ(result.err,
              "orv-library: cannot fetch " + server.url("/logo?&logo-path=missing.png") + ": HTTP 404\n");
    EXPECT_EQ(test::readFile(file + ".bak"), kOurs);
    EXPECT_THAT(files(), ElementsAre("manufacturer_data.json", "manufacturer_data.json.bak", "new.png"));
    EXPECT_EQ(run({"list"}).json()["manufacturers"], result.json()["manufacturers"]);
    EXPECT_EQ(run({"list"}).json()["lastModified"], result.json()["lastModified"]);
}

TEST_F(ManufacturersCommand, refreshPrintsLinesForPeople)
{
    write(kOurs);
    server.on("/data", FaultReply::ok(kTheirs));
    EXPECT_EQ(refresh().out, "added: 9\nremoved: 5 8\nnewer: 1\nolder: 2\nchanged: 3\n");
    EXPECT_EQ(refresh().out, "Nothing has changed.\n");
}

TEST_F(ManufacturersCommand, refreshOfAFreshRootKeepsNoFormerFile)
{
    server.on("/data", FaultReply::ok(R"({"Last_Modified": "20220101T000000", "Manufacturer": {"Id": 9}})"));
    EXPECT_EQ(refresh().out, "added: 9\n");
    EXPECT_THAT(files(), ElementsAre("manufacturer_data.json"));
}

TEST_F(ManufacturersCommand, refreshWithNothingNewerChangesNothing)
{
    write(kOurs);
    test::writeFile(file + ".bak", "the former one");
    server.on("/data", FaultReply::ok(kOurs));
    EXPECT_EQ(refresh().out, "Nothing has changed.\n");
    EXPECT_EQ(test::readFile(file), kOurs);
    EXPECT_EQ(test::readFile(file + ".bak"), "the former one") << "what it keeps is not pushed out";
}

TEST_F(ManufacturersCommand, refreshFailsWhenTheDataCannotBeHad)
{
    write(kOurs);
    const std::string theirs = kTheirs;
    struct Case
    {
        FaultReply reply;
        std::string reason;
    };
    const std::string url = server.url("/data?");
    const Case cases[] = {
        {FaultReply::ok("<html></html>"), url + " answers no manufacturer file"},
        {FaultReply::ok("[]"), url + " answers no manufacturer file"},
        {FaultReply::ok(theirs.substr(0, 300)), url + " answers no manufacturer file"},
        {FaultReply::status(404, theirs), "cannot fetch " + url + ": HTTP 404"},
        {FaultReply::status(503), "cannot fetch " + url + ": HTTP 503"},
        {FaultReply::ok(theirs).cutAt(200), "cannot fetch " + url + ": "},
    };
    for (const Case& row : cases) {
        server.on("/data", row.reply);
        const test::ProgramResult result = refresh();
        EXPECT_EQ(result.status, 1) << row.reason;
        EXPECT_THAT(result.err, StartsWith("orv-library: " + row.reason));
        EXPECT_EQ(result.out, "");
        EXPECT_EQ(test::readFile(file), kOurs);
        EXPECT_THAT(files(), ElementsAre("manufacturer_data.json"));
    }
    EXPECT_EQ(program.run({"manufacturers", "refresh", "--data-url", "nowhere", "--logo-url", "x"}).status,
              1);
    EXPECT_EQ(program.run({"manufacturers", "refresh", "--data-url", url}).status, 2);
    EXPECT_EQ(test::readFile(file), kOurs);
}

TEST_F(ManufacturersCommand, signalEndsARefreshWithStatus130)
{
    write(kOurs);
    server.on("/data?", FaultReply::ok(kTheirs).silentAt(100));
    std::size_t asked = 0;
    for (const int signal : {SIGINT, SIGTERM}) {
        const auto process = program.start(
            {"manufacturers", "refresh", "--data-url", server.url("/data?"), "--logo-url", "x"});
        ASSERT_TRUE(server.waitForRequests(++asked));
        ::kill(static_cast<pid_t>(process->processId()), signal);
        EXPECT_EQ(test::Program::finish(*process).status, 130);
        EXPECT_EQ(test::readFile(file), kOurs);
    }
}

TEST_F(ManufacturersCommand, refreshFailsWhenTheFileCannotBeWritten)
{
    write(kOurs);
    ASSERT_EQ(chmod(file.c_str(), 0444), 0);
    server.on("/data", FaultReply::ok(kTheirs));
    const test::ProgramResult result = refresh();
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err,
              "orv-library: cannot write " + file + ": it was read-only; the next refresh may write it\n");
    EXPECT_EQ(test::readFile(file), kOurs);
    EXPECT_THAT(files(), ElementsAre("manufacturer_data.json"));
    EXPECT_EQ(refresh().status, 0) << "as it is with the library alone";
    EXPECT_EQ(test::readFile(file + ".bak"), kOurs);
}

TEST_F(ManufacturersCommand, unreadableFileIsReplacedAndKept)
{
    write("my notes");
    server.on("/data", FaultReply::ok(R"({"Last_Modified": "20220101T000000", "Manufacturer": {"Id": 9}})"));
    EXPECT_EQ(refresh().out, "added: 9\n");
    EXPECT_EQ(test::readFile(file + ".bak"), "my notes");
}
