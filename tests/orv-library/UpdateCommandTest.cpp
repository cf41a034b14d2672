#include <csignal>
#include <filesystem>

#include <QJsonArray>
#include <QJsonDocument>

#include <gmock/gmock.h>

#include "OrvHost/update/HashFile.h"
#include "tests/orv-library/Program.h"
#include "tests/support/ArchiveBuilder.h"
#include "tests/support/ContentService.h"

namespace fs = std::filesystem;

using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

namespace {

const std::string kIndex = "Orv_Core_Content_Index.txt";

std::vector<std::string> texts(const QJsonValue& array)
{
    std::vector<std::string> result;
    for (const QJsonValue& value : array.toArray())
        result.push_back(value.toString().toStdString());
    return result;
}

class Update : public testing::Test
{
protected:
    Update()
    {
        service.offer(kIndex, "Doors.orvlib\r\nTüren 2.orvlib\nTextures.zip\nnotes.txt\n");
        service.offer("Doors.orvlib", std::string(5000, 'd'));
        service.offer("Türen 2.orvlib", std::string(2000, 't'));
        service.offer("Textures.zip", std::string(1500, 'z'));
    }

    std::vector<std::string> arguments(const std::vector<std::string>& more = {}) const
    {
        std::vector<std::string> all = {"--json",
                                        "update",
                                        "--url",
                                        service.redirect(),
                                        "--product",
                                        "Orv",
                                        "--product-version",
                                        "7",
                                        "--no-database-check"};
        all.insert(all.end(), more.begin(), more.end());
        return all;
    }

    test::ProgramResult update(const std::vector<std::string>& more = {}) const
    {
        return program.run(arguments(more));
    }

    std::string path(const std::string& name) const { return program.root() + "/" + name; }
    std::string content(const std::string& name) const { return test::readFile(path(name)); }
    std::map<std::string, std::string> hashes(const std::string& folder) const
    {
        return OrvHost::HashFile::read(fileString(path(folder)));
    }

    test::Program program;
    test::ContentService service;
};

/// The parsed lines of a trace.
std::vector<QJsonObject> readTrace(const std::string& file)
{
    std::vector<QJsonObject> lines;
    for (const QByteArray& line : QByteArray::fromStdString(test::readFile(file)).split('\n')) {
        if (!line.isEmpty())
            lines.push_back(QJsonDocument::fromJson(line).object());
    }
    return lines;
}

} // namespace

TEST_F(Update, emptyRootGetsEverythingInTheIndex)
{
    const test::ProgramResult result = update();
    EXPECT_EQ(0, result.status) << result.err;
    const QJsonObject document = result.json();
    EXPECT_EQ("updated", document["outcome"].toString().toStdString());
    EXPECT_EQ(2, document["result"].toInt(-1));
    EXPECT_TRUE(document["messageCode"].isNull());
    EXPECT_THAT(document["failed"].toArray(), IsEmpty());
    EXPECT_THAT(texts(document["updatedCatalogs"]), ElementsAre("Doors", "Textures", "Türen 2"));
    EXPECT_THAT(texts(document["swappedIn"]),
                ElementsAre(path("core/Doors.orvlib"), path("core/Türen 2.orvlib")));
    EXPECT_EQ(std::string(5000, 'd'), content("core/Doors.orvlib"));
    EXPECT_EQ(std::string(2000, 't'), content("core/Türen 2.orvlib"));
    EXPECT_EQ(std::string(1500, 'z'), content("referenced/Textures.zip"));
    EXPECT_EQ("Doors.orvlib:" + test::ContentService::sha1(std::string(5000, 'd')) +
                  "\nTextures.zip:" + test::ContentService::sha1(std::string(1500, 'z')) +
                  "\nTüren 2.orvlib:" + test::ContentService::sha1(std::string(2000, 't')) + "\n",
              content("core/catalog_hash.txt"));
}

TEST_F(Update, onlyTheChangedCatalogTravels)
{
    ASSERT_EQ(0, update().status);
    service.takeFetched();
    service.offer("Doors.orvlib", std::string(6000, 'e'));
    EXPECT_THAT(texts(update().json()["updatedCatalogs"]), ElementsAre("Doors"));
    EXPECT_THAT(service.takeFetched(), ElementsAre(kIndex, "Doors.orvlib"));
    EXPECT_EQ(std::string(6000, 'e'), content("core/Doors.orvlib"));

    const test::ProgramResult third = update();
    EXPECT_EQ(0, third.status);
    EXPECT_EQ("current", third.json()["outcome"].toString().toStdString());
    EXPECT_EQ(3, third.json()["result"].toInt(-1));
    EXPECT_THAT(texts(third.json()["swappedIn"]), IsEmpty());
    EXPECT_THAT(service.takeFetched(), ElementsAre(kIndex));
}

TEST_F(Update, peopleReadAPlainSentence)
{
    std::vector<std::string> all = arguments();
    all.erase(all.begin());
    EXPECT_EQ("Updated 3 catalogs:\n  Doors\n  Textures\n  Türen 2\n", program.run(all).out);
    EXPECT_EQ("Everything is current.\n", program.run(all).out);
}

TEST_F(Update, bonusAndManufacturerCatalogsComeFromArchives)
{
    test::ArchiveBuilder builder;
    builder.add("x.orvlib", std::string(3000, 'b'));
    builder.add("a.png", "picture");
    const std::string archive = builder.bytes();
    service.offer("Garten.orvlibz", archive);
    service.offer("Maker.orvlibz", archive);
    test::writeFile(path("bonus/Garten.orvlib"), "former");
    const test::ProgramResult result = update({"--manufacturer", "Maker.orvlib"});
    EXPECT_EQ(0, result.status) << result.err;
    EXPECT_THAT(texts(result.json()["swappedIn"]),
                AllOf(Contains(path("bonus/Garten.orvlib")), Contains(path("manufacturer/Maker.orvlib"))));
    EXPECT_EQ(std::string(3000, 'b'), content("bonus/Garten.orvlib"));
    EXPECT_EQ(std::string(3000, 'b'), content("manufacturer/Maker.orvlib"));
    EXPECT_EQ(test::ContentService::sha1(archive), hashes("manufacturer")["Maker.orvlib"]);
    EXPECT_TRUE(fs::exists(path("referenced/Maker.zip")));
}

TEST_F(Update, coreOnlyLeavesTheOthersAloneAndKeepsItsErrorState)
{
    test::writeFile(path("bonus/Garten.orvlib"), "former");
    EXPECT_EQ(0, update({"--core-only", "--bonus", "More.orvlib"}).status);
    EXPECT_THAT(service.takeAsked(), Not(Contains("Garten.orvlibz")));
    const auto stored =
        QJsonDocument::fromJson(QByteArray::fromStdString(content("preferences.json"))).object();
    EXPECT_EQ(QJsonValue(false), stored["254"]);

    service.offer("Doors.orvlib", std::string(6000, 'e'));
    service.spoil("Doors.orvlib", test::FaultReply::status(503));
    const test::ProgramResult failed = update({"--core-only", "--retries", "0"});
    EXPECT_EQ(1, failed.status);
    EXPECT_EQ("incomplete", failed.json()["outcome"].toString().toStdString());
    EXPECT_EQ(1, failed.json()["result"].toInt(-1));
    EXPECT_THAT(failed.err, HasSubstr("HTTP 503"));
}

TEST_F(Update, indexNameIsTheUsers)
{
    service.offer("Mine_Core_Content_Index.txt", "Doors.orvlib\n");
    const test::ProgramResult result = update({"--index", "Mine_Core_Content_Index.txt"});
    EXPECT_THAT(texts(result.json()["updatedCatalogs"]), ElementsAre("Doors"));
    EXPECT_THAT(service.takeAsked(), Contains("Mine_Core_Content_Index.txt"));
}

TEST_F(Update, productAndVersionTravelAsTheyAre)
{
    update();
    const std::vector<test::FaultRequest> requests = service.server().requestsFor("/content");
    EXPECT_THAT(requests, Contains(testing::Field(&test::FaultRequest::target,
                                                  "/content?&library=Doors.orvlib&product=Orv&version=7")));
}

TEST_F(Update, missingServiceIsNamed)
{
    service.server().stopListening();
    const test::ProgramResult result = update();
    EXPECT_EQ(1, result.status);
    EXPECT_EQ("failed", result.json()["outcome"].toString().toStdString());
    EXPECT_EQ(0, result.json()["result"].toInt(-1));
    EXPECT_EQ("0x1036918b", result.json()["messageCode"].toString().toStdString());
    EXPECT_THAT(result.err, AllOf(HasSubstr("orv-library: "), HasSubstr(service.redirect())));
}

TEST_F(Update, wrongUsageChangesNothing)
{
    const std::vector<std::vector<std::string>> wrong = {
        {"update"},
        arguments({"--retries", "-1"}),
        arguments({"--retries", "many"}),
        arguments({"--bonus", "Garten.orvlibz"}),
        arguments({"--bonus", "../Garten.orvlib"}),
        arguments({"--manufacturer", ".orvlib"}),
        arguments({"--manufacturer"}),
        arguments({"extra"}),
    };
    for (const auto& given : wrong) {
        const test::ProgramResult result = program.run(given);
        EXPECT_EQ(2, result.status) << testing::PrintToString(given);
        EXPECT_THAT(result.err, HasSubstr("orv-library update --help")) << testing::PrintToString(given);
    }
    EXPECT_FALSE(fs::exists(program.root()));
    EXPECT_THAT(service.takeAsked(), IsEmpty());
}

TEST_F(Update, traceHoldsEveryInvocationInOrder)
{
    const std::string trace = program.folder().path() + "/trace";
    test::writeFile(trace, "{\"event\":\"former\",\"args\":[]}\n");
    ASSERT_EQ(0, update({"--trace", trace}).status);
    const std::vector<QJsonObject> lines = readTrace(trace);
    ASSERT_GT(lines.size(), 10U);
    EXPECT_EQ("former", lines[0]["event"].toString());
    EXPECT_EQ("onSetText", lines[1]["event"].toString());
    EXPECT_EQ((QJsonObject{{"event", "onSetRangeInGauge"}, {"args", QJsonArray{3}}}), lines[2]);
    EXPECT_THAT(lines, Contains(QJsonObject{
                           {"event", "onCatalogUpdatedEvent"},
                           {"args", QJsonArray{QString::fromStdString(path("core/Doors.orvlib")),
                                               QString::fromStdString(
                                                   path("temp/orv-library.downloads.core/Doors.orvlib"))}}}));
    const QJsonObject outcome = {{"result", 2},
                                 {"messageCode", "0x10369189"},
                                 {"updatedCatalogs", QJsonArray{"Doors", "Textures", "Türen 2"}}};
    EXPECT_EQ((QJsonObject{{"event", "closeCatalogUpdateEvent"}, {"args", QJsonArray{outcome}}}),
              lines.back());
    EXPECT_THAT(test::readFile(trace), HasSubstr("Türen 2"));
    EXPECT_THAT(test::readFile(trace), HasSubstr("{\"event\":\"onUpdateInGauge\",\"args\":[]}\n"));
}

TEST_F(Update, traceThatBreaksOffIsToldOnce)
{
    const test::ProgramResult result = update({"--trace", "/dev/full", "--progress", "none"});
    EXPECT_EQ(0, result.status);
    EXPECT_EQ("orv-library: the trace breaks off: cannot write /dev/full: No space left on device\n",
              result.err);
}

TEST_F(Update, traceThatCannotBeWrittenFailsBeforeAnythingIsAsked)
{
    const test::ProgramResult result = update({"--trace", program.folder().path() + "/no/folder"});
    EXPECT_EQ(1, result.status);
    EXPECT_THAT(result.err, HasSubstr(program.folder().path() + "/no/folder"));
    EXPECT_THAT(service.server().requests(), IsEmpty());
}

TEST_F(Update, plainProgressIsOneLineAStepOnStandardError)
{
    EXPECT_THAT(update().err, HasSubstr("Türen 2.orvlib\n"));
    EXPECT_EQ("", update({"--progress", "none"}).err);
    EXPECT_THAT(update({"--progress", "bar"}).err, HasSubstr("\r"));
}

TEST_F(Update, secondUpdateOnARootFailsAtOnceAndInterruptCancelsTheFirst)
{
    service.spoil("Doors.orvlib", test::FaultReply::ok(std::string(5000, 'd')).silentAt(300));
    const auto first = program.start(arguments());
    ASSERT_TRUE(service.waitUntilFetched("Doors.orvlib"));

    const test::ProgramResult second = update();
    EXPECT_EQ(1, second.status);
    EXPECT_THAT(second.err, HasSubstr("another update is running on"));
    QJsonObject failed = second.json();
    EXPECT_THAT(failed.take("error").toString().toStdString(), HasSubstr(program.root()));
    EXPECT_EQ((QJsonObject{{"outcome", "failed"},
                           {"result", QJsonValue()},
                           {"messageCode", QJsonValue()},
                           {"updatedCatalogs", QJsonArray()},
                           {"swappedIn", QJsonArray()},
                           {"failed", QJsonArray()}}),
              failed);

    ::kill(static_cast<pid_t>(first->processId()), SIGINT);
    const test::ProgramResult cancelled = test::Program::finish(*first);
    EXPECT_EQ(130, cancelled.status) << cancelled.err;
    const QJsonObject document = cancelled.json();
    EXPECT_EQ("cancelled", document["outcome"].toString().toStdString());
    EXPECT_TRUE(document["result"].isNull());
    EXPECT_TRUE(document["messageCode"].isNull());
    EXPECT_THAT(test::listTree(path("temp")), Not(Contains(EndsWith(".download"))));
    EXPECT_FALSE(fs::exists(path("core/Doors.orvlib")));
    EXPECT_FALSE(fs::exists(path("temp/update.lock")));
}

TEST_F(Update, terminateCancelsToo)
{
    service.spoil("Doors.orvlib", test::FaultReply::ok(std::string(5000, 'd')).silentAt(300));
    const auto running = program.start(arguments());
    ASSERT_TRUE(service.waitUntilFetched("Doors.orvlib"));
    running->terminate();
    EXPECT_EQ(130, test::Program::finish(*running).status);
}

TEST_F(Update, catalogLeftByAProcessThatDiedIsSwappedInFirst)
{
    service.server().stopListening();
    test::writeFile(path("temp/orv-library.downloads.core/Doors.orvlib"), "whole");
    test::writeFile(path("temp/orv-library.downloads.core/Roofs.orvlib.download"), "half");
    test::writeFile(path("temp/orv-library.downloads.core/Walls.orvlib"), "");
    test::writeFile(path("temp/orv-library.downloads.bonus/Garten.orvlib"), "bonus");
    test::writeFile(path("temp/orv-library.downloads.manufacturer/Maker.orvlib"), "maker");
    test::writeFile(path("core/Doors.orvlib"), "former");
    const test::ProgramResult result = update();
    EXPECT_THAT(texts(result.json()["swappedIn"]),
                ElementsAre(path("core/Doors.orvlib"), path("bonus/Garten.orvlib"),
                            path("manufacturer/Maker.orvlib")));
    EXPECT_EQ("whole", content("core/Doors.orvlib"));
    EXPECT_EQ("maker", content("manufacturer/Maker.orvlib"));
    EXPECT_FALSE(fs::exists(path("core/Walls.orvlib")));
}

TEST_F(Update, recoveredCatalogIsNotFetchedAgain)
{
    ASSERT_EQ(0, update().status);
    service.offer("Doors.orvlib", std::string(6000, 'e'));
    // The state after a kill between the download and the update of the hash file, which still has the old
    // tag.
    test::writeFile(path("temp/orv-library.downloads.core/Doors.orvlib"), std::string(6000, 'e'));
    service.takeFetched();
    const test::ProgramResult result = update();
    EXPECT_EQ("current", result.json()["outcome"].toString().toStdString());
    EXPECT_EQ(std::string(6000, 'e'), content("core/Doors.orvlib"));
    EXPECT_THAT(service.takeFetched(), ElementsAre(kIndex));
}

TEST_F(Update, failedSwapIsFetchedAgainNextTime)
{
    fs::create_directories(path("core/Doors.orvlib/in the way"));
    const test::ProgramResult result = update();
    EXPECT_EQ(1, result.status);
    EXPECT_EQ("incomplete", result.json()["outcome"].toString().toStdString());
    EXPECT_THAT(result.err, HasSubstr("cannot replace " + path("core/Doors.orvlib")));
    EXPECT_EQ(0U, hashes("core").count("Doors.orvlib"));
    EXPECT_EQ(1U, hashes("core").count("Türen 2.orvlib"));

    fs::remove_all(path("core/Doors.orvlib"));
    EXPECT_THAT(texts(update().json()["swappedIn"]), ElementsAre(path("core/Doors.orvlib")));
    EXPECT_EQ(std::string(5000, 'd'), content("core/Doors.orvlib"));
}

TEST_F(Update, preference273LeavesTheCoreCatalogsAlone)
{
    test::writeFile(path("preferences.json"), "{\"273\": true}");
    EXPECT_EQ("current", update().json()["outcome"].toString().toStdString());
    EXPECT_THAT(service.takeAsked(), IsEmpty());
}

TEST_F(Update, preferenceOfTheWrongTypeWarnsAndCountsAsFalse)
{
    test::writeFile(path("preferences.json"), "{\"273\": \"yes\"}");
    const test::ProgramResult result = update();
    EXPECT_EQ("updated", result.json()["outcome"].toString().toStdString());
    EXPECT_THAT(result.err, HasSubstr("Get pref isA failure: Expected preference '"));
}

TEST_F(Update, historyKeepsTheAnswersAndTheLastGoodCheck)
{
    ASSERT_EQ(0, update({"--bonus", "Gone.orvlib"}).status);
    const auto history =
        QJsonDocument::fromJson(QByteArray::fromStdString(content("update-history.json"))).object();
    EXPECT_TRUE(history["lastGoodCheck"].isString());
    EXPECT_EQ(200, history["answers"].toObject()["Doors.orvlib"].toObject()["status"].toInt());
    EXPECT_EQ(404, history["answers"].toObject()["Gone.orvlibz"].toObject()["status"].toInt());
}
