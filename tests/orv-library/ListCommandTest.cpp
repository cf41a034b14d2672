// `list` and `info`: the installed catalogs, and which catalog a name refers to.
#include <QJsonArray>
#include <gmock/gmock.h>

#include "OrvHost/update/CheckHistory.h"
#include "tests/orv-library/Program.h"
#include "tests/support/ArchiveBuilder.h"
#include "tests/support/ContentService.h"

using testing::ElementsAre;
using testing::HasSubstr;
using testing::MatchesRegex;

namespace {

class List : public testing::Test
{
protected:
    List() { program.createRoot(); }

    std::string path(const std::string& name) const { return program.root() + "/" + name; }
    void write(const std::string& name, const std::string& content) const
    {
        test::writeFile(path(name), content);
    }
    static std::string archive()
    {
        test::ArchiveBuilder builder;
        builder.add("a.png", "picture");
        return builder.bytes();
    }
    QJsonObject info(const std::string& name) const { return program.run({"--json", "info", name}).json(); }
    void expectUnknown(const std::string& name, const std::string& part) const
    {
        const test::ProgramResult result = program.run({"--json", "info", name});
        EXPECT_EQ(1, result.status);
        EXPECT_THAT(result.err, HasSubstr(part));
        EXPECT_FALSE(result.json()["error"].toString().isEmpty());
    }

    test::Program program;
};

} // namespace

TEST_F(List, freshRootHasNoCatalogs)
{
    const test::ProgramResult result = program.run({"--json", "list"});
    EXPECT_EQ(0, result.status);
    EXPECT_TRUE(result.json()["catalogs"].toArray().isEmpty());
    EXPECT_EQ("No catalog is installed.\n", program.run({"list"}).out);
}

TEST_F(List, everyKindIsListedWithItsVersion)
{
    write("core/Doors.orvlib", "doors");
    write("core/Roofs.orvlib", "roofs");
    write("core/catalog_hash.txt",
          "Doors.orvlib:" + test::ContentService::sha1("doors") + "\nTextures.zip:7\n");
    write("bonus/Garden.orvlib", "garden");
    write("bonus/catalog_hash.txt", "Garden.orvlib:packed\n");
    write("manufacturer/Acme.orvlib", "acme");
    write("referenced/Textures.zip", archive());

    const QJsonArray catalogs = program.run({"--json", "list"}).json()["catalogs"].toArray();
    std::vector<std::string> lines;
    for (const QJsonValue& value : catalogs) {
        const QJsonObject one = value.toObject();
        lines.push_back(
            one["category"].toString().toStdString() + "/" + one["name"].toString().toStdString() + " " +
            one["version"].toString("null").toStdString() + " " + one["state"].toString().toStdString());
    }
    EXPECT_THAT(lines, ElementsAre("core/Doors.orvlib " + test::ContentService::sha1("doors") + " sound",
                                   "core/Roofs.orvlib null sound", "bonus/Garden.orvlib packed sound",
                                   "manufacturer/Acme.orvlib null sound", "referenced/Textures.zip 7 sound"));
}

TEST_F(List, infoTellsEveryMember)
{
    write("core/Doors.orvlib", "doors");
    OrvHost::CheckHistory history{fileString(program.root())};
    history.noteAnswer("Doors.orvlib", 304, QDateTime::fromString("2026-01-02T03:04:05Z", Qt::ISODate));
    history.save();
    const QJsonObject one = info("Doors");
    EXPECT_EQ("Doors.orvlib", one["name"].toString());
    EXPECT_EQ("core", one["category"].toString());
    EXPECT_TRUE(one.contains("version") && one["version"].isNull());
    EXPECT_EQ(5, one["bytes"].toInt());
    EXPECT_THAT(one["modified"].toString().toStdString(),
                MatchesRegex("2[0-9]{3}-[0-9]{2}-[0-9]{2}T[0-9]{2}:[0-9]{2}:[0-9]{2}Z"));
    EXPECT_TRUE(one.contains("items") && one["items"].isNull()) << "no database";
    EXPECT_EQ("2026-01-02T03:04:05Z", one["lastChecked"].toString());
    EXPECT_EQ("sound", one["state"].toString());
    EXPECT_EQ(QJsonValue(false), one["held"]);
    EXPECT_EQ(9, one.size());
}

TEST_F(List, itemsAreCountedAndNothingAppearsBesideTheDatabase)
{
    ASSERT_EQ(0, program.run({"sample", program.folder().file("sample").toNativeString()}).status);
    const std::string content =
        test::readFile(program.folder().file("sample/content/Doors.orvlib").toNativeString());
    write("core/T%C3 ?#ren.orvlib", content);
    const std::vector<std::string> before = test::listTree(program.root());
    EXPECT_GT(info("T%C3 ?#ren")["items"].toInt(), 0);
    EXPECT_EQ(before, test::listTree(program.root()));
}

TEST_F(List, damagedCatalogsAndArchivesAreToldSo)
{
    write("core/Doors.orvlib", "other");
    write("core/catalog_hash.txt", "Doors.orvlib:" + test::ContentService::sha1("doors") + "\n");
    write("referenced/Cut.zip", "PK");
    EXPECT_EQ("damaged", info("Doors")["state"].toString());
    EXPECT_EQ("damaged", info("Cut.zip")["state"].toString());
    EXPECT_THAT(program.run({"list"}).out, HasSubstr("core/Doors.orvlib  5 bytes"));
}

TEST_F(List, aNameMeansOneCatalogOnly)
{
    write("core/Doors.orvlib", "core");
    write("bonus/Doors.orvlib", "in bonus");
    write("core/Lamps.orvlib", "lamps");
    write("referenced/Lamps.zip", archive());
    expectUnknown("Windows", "no catalog is called 'Windows'");
    expectUnknown("doors.orvlib", "no catalog is called");
    expectUnknown("Doors.orvlib", "can be core/Doors.orvlib or bonus/Doors.orvlib");
    expectUnknown("Lamps", "can be core/Lamps.orvlib or referenced/Lamps.zip");
    EXPECT_EQ(8, info("bonus/Doors.orvlib")["bytes"].toInt());
    EXPECT_EQ("core", info("Lamps.orvlib")["category"].toString());
    EXPECT_EQ(2, program.run({"info"}).status);
}
