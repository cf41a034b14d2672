#include <QJsonArray>

#include <gmock/gmock.h>

#include "tests/orv-library/Program.h"
#include "tests/support/TempFolder.h"

using testing::HasSubstr;

namespace {

class PublishCommand : public testing::Test
{
protected:
    test::ProgramResult publish() const
    {
        return program.runBare({"--json", "publish", folder + "/source", folder + "/service"});
    }
    void offer(const std::string& name, const std::string& content = std::string(2000, 'x')) const
    {
        test::writeFile(folder + "/source/content/" + name, content);
    }

    const test::Program program;
    const std::string folder = program.folder().path();
};

} // namespace

TEST_F(PublishCommand, saysHowManyNamesThereAre)
{
    offer("Doors.orvlib");
    offer("Textures.zip");
    const test::ProgramResult result = publish();
    EXPECT_EQ(0, result.status) << result.err;
    EXPECT_EQ((QJsonObject{{"published", 2}, {"refused", QJsonArray()}}), result.json());
    EXPECT_THAT(test::readFile(folder + "/service/catalog.d/names.map"), HasSubstr("\"Doors.orvlib\" "));
}

TEST_F(PublishCommand, saysWhatItRefused)
{
    offer("Doors.orvlib");
    offer("Do:ors.orvlib");
    const test::ProgramResult result = publish();
    EXPECT_EQ(1, result.status);
    const QJsonObject document = result.json();
    EXPECT_EQ(1, document["published"].toInt());
    ASSERT_EQ(1, document["refused"].toArray().size());
    EXPECT_EQ("Do:ors.orvlib", document["refused"].toArray()[0].toObject()["name"].toString());
    EXPECT_THAT(result.err, HasSubstr("Do:ors.orvlib: "));
}

TEST_F(PublishCommand, refusesAnIndexThatClientsCannotUse)
{
    const std::string name = "Orv_Core_Content_Index.txt";
    const std::string page = "begins with \"<\"; clients would take it for a web page";
    const std::vector<std::pair<std::string, std::string>> cases{
        {"<html>Log in</html>", page},
        {"\xef\xbb\xbf\n <Doors.orvlib", page},
        {"Doors.orvlib\nBath.orvlibz\n", "lists \"Bath.orvlibz\"; a packed archive is no core content"}};
    offer("Doors.orvlib");
    for (const auto& [content, reason] : cases) {
        offer(name, content);
        const QJsonObject refused = publish().json()["refused"].toArray()[0].toObject();
        EXPECT_EQ(refused["name"].toString().toStdString(), name) << content;
        EXPECT_EQ(refused["why"].toString().toStdString(), reason) << content;
    }
    offer(name, "Doors.orvlib\n<b>.orvlib\n");
    EXPECT_EQ(0, publish().status);
}
