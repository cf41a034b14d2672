// `history`: the versions that an update keeps when it replaces files.
#include <gmock/gmock.h>

#include "tests/orv-library/HistoryFixture.h"

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::MatchesRegex;

namespace {

using History = test::HistoryFixture;

} // namespace

TEST_F(History, updatesKeepWhatTheyReplace)
{
    std::vector<std::string> tags;
    for (const char letter : {'a', 'b', 'c'}) {
        const std::string content(3000, letter);
        tags.push_back(test::ContentService::sha1(content));
        service.offer("Doors.orvlib", content);
        service.offer("Textures.zip", std::string(1200, letter));
        update();
    }
    EXPECT_THAT(versions("Doors.orvlib"), ElementsAre(tags[1], tags[0]));
    EXPECT_THAT(versions("Textures.zip"), ElementsAre(test::ContentService::sha1(std::string(1200, 'b')),
                                                      test::ContentService::sha1(std::string(1200, 'a'))));
    const QJsonObject document = history("Doors");
    EXPECT_EQ("Doors.orvlib", document["name"].toString());
    const QJsonObject newest = document["versions"].toArray()[0].toObject();
    EXPECT_EQ(3000, newest["bytes"].toInt());
    EXPECT_THAT(newest["replaced"].toString().toStdString(),
                MatchesRegex("2[0-9]{3}-[0-9]{2}-[0-9]{2}T[0-9]{2}:[0-9]{2}:[0-9]{2}Z"));
    EXPECT_EQ(3, newest.size());
    EXPECT_THAT(program.run({"history", "Doors"}).out, HasSubstr(tags[1] + "  3000 bytes  replaced 2"));
}

TEST_F(History, anUpdateThatChangesNothingKeepsNothing)
{
    service.offer("Doors.orvlib", std::string(3000, 'a'));
    service.offer("Textures.zip", std::string(1200, 'a'));
    update();
    update();
    EXPECT_THAT(versions("Doors"), IsEmpty());
    EXPECT_THAT(versions("Textures"), IsEmpty());
    EXPECT_EQ("Doors.orvlib has no former versions.\n", program.run({"history", "Doors"}).out);
    const test::ProgramResult unknown = program.run({"--json", "history", "Windows"});
    EXPECT_EQ(1, unknown.status);
    EXPECT_THAT(unknown.err, HasSubstr("no catalog is called 'Windows'"));
}

TEST_F(History, aFailedDownloadOfAnArchiveKeepsNothing)
{
    service.offer("Doors.orvlib", std::string(3000, 'a'));
    service.offer("Textures.zip", std::string(1200, 'a'));
    update();
    service.offer("Textures.zip", std::string(1200, 'b'));
    service.spoil("Textures.zip", test::FaultReply::status(403));
    program.run({"update", "--url", service.redirect(), "--product", "Orv", "--product-version", "7",
                 "--no-database-check"});
    EXPECT_THAT(versions("Textures"), IsEmpty());
    EXPECT_EQ(std::string(1200, 'a'), test::readFile(program.root() + "/referenced/Textures.zip"));
}

TEST_F(History, aBonusCatalogIsKeptWithTheArchiveThatCameWithIt)
{
    service.offer("Doors.orvlib", std::string(3000, 'a'));
    service.offer("Textures.zip", test::zip("a.png", "a"));
    service.offer("Garden.orvlibz", test::packed(std::string(3000, '1'), std::string(2000, 'x')));
    update({"--bonus", "Garden.orvlib"});
    const std::string files = test::readFile(program.root() + "/referenced/Garden.zip");
    service.offer("Garden.orvlibz", test::packed(std::string(3000, '2'), std::string(2000, 'y')));
    update();
    EXPECT_THAT(versions("Garden.orvlib"), testing::SizeIs(1));
    EXPECT_THAT(versions("Garden.zip"), ElementsAre(test::ContentService::sha1(files)));
    int companions = 0;
    for (const std::string& name : test::listTree(program.root() + "/history/bonus/Garden.orvlib")) {
        if (fileString(name).extension() == fileString(".zip")) {
            ++companions;
            EXPECT_EQ(files, test::readFile(program.root() + "/history/bonus/Garden.orvlib/" + name));
        }
    }
    EXPECT_EQ(1, companions);
}
