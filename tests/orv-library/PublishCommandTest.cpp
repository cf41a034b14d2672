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
    void offer(const std::string& name) const
    {
        test::writeFile(folder + "/source/content/" + name, std::string(2000, 'x'));
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
