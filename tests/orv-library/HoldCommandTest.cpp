// `hold` and `release`: a held catalog keeps its version while the history collects newer ones.
#include <gmock/gmock.h>

#include "tests/orv-library/HistoryFixture.h"

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

namespace {

class Hold : public test::HistoryFixture
{
protected:
    std::vector<std::string> held(const std::vector<std::string>& command) const
    {
        std::vector<std::string> all = {"--json"};
        all.insert(all.end(), command.begin(), command.end());
        const test::ProgramResult result = program.run(all);
        EXPECT_EQ(0, result.status) << result.err;
        std::vector<std::string> names;
        for (const QJsonValue& value : result.json()["held"].toArray())
            names.push_back(value.toString().toStdString());
        return names;
    }
    QJsonObject updateDocument(int status = 0) const
    {
        const test::ProgramResult result =
            program.run({"--json", "update", "--url", service.redirect(), "--product", "Orv",
                         "--product-version", "7", "--no-database-check"});
        EXPECT_EQ(status, result.status) << result.err;
        return result.json();
    }
};

} // namespace

TEST_F(Hold, namesAreListedAndReleased)
{
    updateTo('a');
    test::writeFile(program.root() + "/bonus/Doors.orvlib", "bonus");
    EXPECT_THAT(held({"hold", "Textures"}), ElementsAre("Textures.zip"));
    EXPECT_THAT(held({"hold", "core/Doors.orvlib"}), ElementsAre("core/Doors.orvlib", "Textures.zip"));
    EXPECT_THAT(held({"hold", "core/Doors.orvlib"}), ElementsAre("core/Doors.orvlib", "Textures.zip"));
    EXPECT_THAT(held({"release", "Textures.zip"}), ElementsAre("core/Doors.orvlib"));
    EXPECT_THAT(held({"release", "Textures.zip"}), ElementsAre("core/Doors.orvlib"));
    EXPECT_EQ("Held:\ncore/Doors.orvlib\n", program.run({"hold", "core/Doors.orvlib"}).out);
    EXPECT_EQ("No catalog is held.\n", program.run({"release", "core/Doors.orvlib"}).out);
    EXPECT_EQ(2, program.run({"hold"}).status);
    const test::ProgramResult unknown = program.run({"--json", "hold", "Windows"});
    EXPECT_EQ(1, unknown.status);
    EXPECT_THAT(unknown.err, HasSubstr("no catalog is called 'Windows'"));
    EXPECT_EQ(1, program.run({"release", "Windows"}).status);
}

TEST_F(Hold, updatesFetchNewerVersionsIntoTheHistoryOnce)
{
    updateTo('a');
    held({"hold", "Doors"});
    const QJsonObject info = program.run({"--json", "info", "Doors"}).json();
    EXPECT_EQ("held", info["state"].toString());
    EXPECT_EQ(QJsonValue(true), info["held"]);
    service.offer("Doors.orvlib", std::string(3000, 'b'));
    service.takeFetched();
    const QJsonObject document = updateDocument();
    EXPECT_EQ("current", document["outcome"].toString());
    EXPECT_TRUE(document["updatedCatalogs"].toArray().isEmpty());
    EXPECT_TRUE(document["swappedIn"].toArray().isEmpty());
    EXPECT_THAT(service.takeFetched(), Contains("Doors.orvlib"));
    EXPECT_EQ(std::string(3000, 'a'), content("core/Doors.orvlib"));
    EXPECT_THAT(versions("Doors"), ElementsAre(tagOf('b')));
    EXPECT_EQ("current", updateDocument()["outcome"].toString());
    EXPECT_THAT(service.takeFetched(), Not(Contains("Doors.orvlib"))) << "once is enough";
    EXPECT_THAT(program.run({"status"}).out, HasSubstr("core/Doors.orvlib: held; " + tagOf('b') + " waits"));
    EXPECT_THAT(held({"status"}), ElementsAre("Doors.orvlib"));
}

TEST_F(Hold, aReleasedCatalogIsUpdated)
{
    updateTo('a');
    held({"hold", "Doors"});
    service.offer("Doors.orvlib", std::string(3000, 'b'));
    updateDocument();
    held({"release", "Doors"});
    EXPECT_EQ("updated", updateDocument()["outcome"].toString());
    EXPECT_EQ(std::string(3000, 'b'), content("core/Doors.orvlib"));
    EXPECT_THAT(versions("Doors"), ElementsAre(tagOf('a')));
}

TEST_F(Hold, waitingVersionCanBeRestoredAndStaysHeld)
{
    updateTo('a');
    held({"hold", "Doors"});
    service.offer("Doors.orvlib", std::string(3000, 'b'));
    updateDocument();
    EXPECT_EQ(0, program.run({"restore", "Doors", tagOf('b')}).status);
    EXPECT_EQ(std::string(3000, 'b'), content("core/Doors.orvlib"));
    service.offer("Doors.orvlib", std::string(3000, 'c'));
    EXPECT_EQ("current", updateDocument()["outcome"].toString());
    EXPECT_EQ(std::string(3000, 'b'), content("core/Doors.orvlib"));
    EXPECT_THAT(versions("Doors"), ElementsAre(tagOf('c'), tagOf('a')));
}

TEST_F(Hold, otherCatalogsAreUpdatedAllTheSame)
{
    updateTo('a');
    held({"hold", "Doors"});
    service.offer("Doors.orvlib", std::string(3000, 'b'));
    service.offer("Textures.zip", std::string(3000, 'b'));
    EXPECT_EQ("updated", updateDocument()["outcome"].toString());
    EXPECT_EQ(std::string(3000, 'b'), content("referenced/Textures.zip"));
    EXPECT_EQ(std::string(3000, 'a'), content("core/Doors.orvlib"));
}

TEST_F(Hold, heldArchivesAndBonusCatalogsStayToo)
{
    service.offer("Garden.orvlibz", test::packed(std::string(3000, '1'), "x"));
    updateTo('a');
    update({"--bonus", "Garden.orvlib"});
    const std::string files = content("referenced/Garden.zip");
    held({"hold", "Textures"});
    held({"hold", "Garden.zip"});
    service.offer("Textures.zip", std::string(3000, 'b'));
    service.offer("Garden.orvlibz", test::packed(std::string(3000, '2'), "y"));
    EXPECT_EQ("current", updateDocument()["outcome"].toString());
    EXPECT_EQ(std::string(3000, 'a'), content("referenced/Textures.zip"));
    EXPECT_EQ(files, content("referenced/Garden.zip"));
    EXPECT_EQ(std::string(3000, '1'), content("bonus/Garden.orvlib"));
    EXPECT_EQ(0, program.run({"restore", "Garden.orvlib"}).status);
    EXPECT_EQ(std::string(3000, '2'), content("bonus/Garden.orvlib"));
    EXPECT_NE(files, content("referenced/Garden.zip"));
}

TEST_F(Hold, downloadThatIsNoDatabaseDoesNotWaitAndIsRemoved)
{
    service.offer("Garden.orvlibz", test::packed(std::string(3000, '1'), "x"));
    updateTo('a');
    update({"--bonus", "Garden.orvlib"});
    held({"hold", "Garden.orvlib"});
    service.offer("Garden.orvlibz", test::packed("<html>sign in</html>", "y"));
    const test::ProgramResult result = program.run(
        {"--json", "update", "--url", service.redirect(), "--product", "Orv", "--product-version", "7"});
    EXPECT_EQ(1, result.status);
    EXPECT_THAT(result.err, HasSubstr("the new file is no database"));
    EXPECT_THAT(versions("Garden.orvlib"), testing::IsEmpty());
    EXPECT_THAT(test::listTree(program.root() + "/temp"), testing::IsEmpty());
    EXPECT_EQ(std::string(3000, '1'), content("bonus/Garden.orvlib"));
}

TEST_F(Hold, aDamagedHeldCatalogComesAnew)
{
    updateTo('a');
    held({"hold", "Doors"});
    test::writeFile(program.root() + "/core/Doors.orvlib", "damage");
    program.run({"verify", "--repair"});
    EXPECT_EQ("updated", updateDocument()["outcome"].toString());
    EXPECT_EQ(std::string(3000, 'a'), content("core/Doors.orvlib"));
}

TEST_F(Hold, pinsThatCannotBeReadStopTheUpdate)
{
    updateTo('a');
    test::writeFile(program.root() + "/catalog-pins.json", "{cut");
    service.offer("Doors.orvlib", std::string(3000, 'b'));
    updateDocument(1);
    EXPECT_EQ(std::string(3000, 'a'), content("core/Doors.orvlib"));
    EXPECT_EQ(1, program.run({"hold", "Doors"}).status);
    EXPECT_EQ("{cut", content("catalog-pins.json"));
}
