// `restore`: an old version comes back, and updates keep it until the service has another version.
#include <filesystem>

#include <gmock/gmock.h>

#include "OrvHost/update/HashFile.h"
#include "tests/orv-library/HistoryFixture.h"

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

namespace {

class Restore : public test::HistoryFixture
{
protected:
    QJsonObject restore(const std::vector<std::string>& arguments) const
    {
        std::vector<std::string> all = {"--json", "restore"};
        all.insert(all.end(), arguments.begin(), arguments.end());
        const test::ProgramResult result = program.run(all);
        EXPECT_EQ(0, result.status) << result.err;
        return result.json();
    }
    void expectRefused(const std::vector<std::string>& arguments, const std::string& part) const
    {
        const std::vector<std::string> before = test::listTree(program.root());
        std::vector<std::string> all = {"--json", "restore"};
        all.insert(all.end(), arguments.begin(), arguments.end());
        const test::ProgramResult result = program.run(all);
        EXPECT_EQ(1, result.status);
        EXPECT_THAT(result.err, HasSubstr(part));
        EXPECT_EQ(before, test::listTree(program.root()));
    }
    void damageGardenFiles() const
    {
        std::string files = content("referenced/Garden.zip");
        const std::size_t picture = files.find("xxxx");
        ASSERT_NE(std::string::npos, picture);
        files[picture] = 'z';
        test::writeFile(program.root() + "/referenced/Garden.zip", files);
    }
    std::string version(const std::string& name) const
    {
        return program.run({"--json", "info", name}).json()["version"].toString().toStdString();
    }
    std::string outcome() const
    {
        return program
            .run({"--json", "update", "--url", service.redirect(), "--product", "Orv", "--product-version",
                  "7", "--no-database-check"})
            .json()["outcome"]
            .toString()
            .toStdString();
    }
};

} // namespace

TEST_F(Restore, theNewestFormerVersionComesBack)
{
    updateTo('a');
    updateTo('b');
    const QJsonObject document = restore({"Doors"});
    EXPECT_EQ("Doors.orvlib", document["name"].toString());
    EXPECT_EQ(tagOf('a'), document["restored"].toString().toStdString());
    EXPECT_EQ(tagOf('b'), document["former"].toString().toStdString());
    EXPECT_EQ(3, document.size());
    EXPECT_EQ(std::string(3000, 'a'), content("core/Doors.orvlib"));
    EXPECT_EQ(tagOf('a'), version("Doors"));
    EXPECT_THAT(versions("Doors"), ElementsAre(tagOf('b')));
    const test::ProgramResult verify = program.run({"verify"});
    EXPECT_THAT(verify.err, Not(HasSubstr("Doors.orvlib"))) << "the restored version is no damage";
}

TEST_F(Restore, updatesLeaveItUntilThereIsAThirdVersion)
{
    updateTo('a');
    updateTo('b');
    restore({"Doors"});
    service.takeFetched();
    EXPECT_EQ("current", outcome());
    EXPECT_THAT(service.takeFetched(), Not(testing::Contains("Doors.orvlib")));
    EXPECT_EQ(std::string(3000, 'a'), content("core/Doors.orvlib"));
    EXPECT_EQ(tagOf('a'), version("Doors"));
    service.offer("Doors.orvlib", std::string(3000, 'a'));
    EXPECT_EQ("current", outcome()) << "the service goes back, too";
    service.offer("Doors.orvlib", std::string(3000, 'c'));
    EXPECT_EQ("updated", outcome());
    EXPECT_EQ(std::string(3000, 'c'), content("core/Doors.orvlib"));
    EXPECT_THAT(versions("Doors"), ElementsAre(tagOf('a'), tagOf('b')));
    service.offer("Doors.orvlib", std::string(3000, 'b'));
    EXPECT_EQ("updated", outcome()) << "what was restored once is forgotten";
}

TEST_F(Restore, anyFormerVersionCanBeChosenAndTheWayForthIsTheSame)
{
    for (const char letter : {'a', 'b', 'c'})
        updateTo(letter);
    restore({"Doors.orvlib", tagOf('a')});
    EXPECT_THAT(versions("Doors"), ElementsAre(tagOf('c'), tagOf('b')));
    EXPECT_EQ("current", outcome());
    restore({"Doors.orvlib", tagOf('b')});
    EXPECT_EQ("current", outcome()) << "neither c nor a was wanted";
    restore({"Doors.orvlib", tagOf('c')});
    EXPECT_EQ(std::string(3000, 'c'), content("core/Doors.orvlib"));
    EXPECT_EQ("current", outcome());
    EXPECT_THAT(versions("Doors"), ElementsAre(tagOf('b'), tagOf('a')));
}

TEST_F(Restore, missingVersionIsRefusedAndNothingChanges)
{
    updateTo('a');
    expectRefused({"Doors"}, "Doors.orvlib has no former versions");
    updateTo('b');
    expectRefused({"Windows"}, "no catalog is called 'Windows'");
    expectRefused({"Doors", "v9"}, "Doors.orvlib has no former version 'v9'");
    expectRefused({"Doors", tagOf('b')}, "no former version");
    EXPECT_EQ(2, program.run({"restore"}).status);
}

TEST_F(Restore, archivesOfReferencedFilesComeBackAlike)
{
    updateTo('a');
    updateTo('b');
    restore({"Textures.zip"});
    EXPECT_EQ(std::string(3000, 'a'), content("referenced/Textures.zip"));
    EXPECT_EQ("current", outcome());
    EXPECT_EQ(std::string(3000, 'a'), content("referenced/Textures.zip"));
    EXPECT_EQ(std::string(3000, 'b'), content("core/Doors.orvlib"));
}

TEST_F(Restore, aBonusCatalogTakesItsArchiveAlong)
{
    service.offer("Doors.orvlib", std::string(3000, 'a'));
    service.offer("Textures.zip", std::string(3000, 'a'));
    service.offer("Garden.orvlibz", test::packed(std::string(3000, '1'), "x"));
    update({"--bonus", "Garden.orvlib"});
    const std::string files = content("referenced/Garden.zip");
    service.offer("Garden.orvlibz", test::packed(std::string(3000, '2'), "y"));
    update();
    const std::string newFiles = content("referenced/Garden.zip");
    EXPECT_NE(files, newFiles);
    restore({"Garden.orvlib"});
    EXPECT_EQ(std::string(3000, '1'), content("bonus/Garden.orvlib"));
    EXPECT_EQ(files, content("referenced/Garden.zip"));
    EXPECT_EQ("current", outcome());
    EXPECT_EQ(std::string(3000, '1'), content("bonus/Garden.orvlib"));
    restore({"Garden.orvlib"});
    EXPECT_EQ(std::string(3000, '2'), content("bonus/Garden.orvlib"));
    EXPECT_EQ(newFiles, content("referenced/Garden.zip"));
    EXPECT_EQ(0U, OrvHost::HashFile::read(fileString(program.root() + "/core")).count("Garden.zip"));
}

TEST_F(Restore, aCatalogThatIsGoneComesBack)
{
    updateTo('a');
    updateTo('b');
    std::filesystem::remove(program.root() + "/core/Doors.orvlib");
    const QJsonObject document = restore({"Doors"});
    EXPECT_TRUE(document["former"].isNull());
    EXPECT_EQ(std::string(3000, 'a'), content("core/Doors.orvlib"));
}

TEST_F(Restore, aLostHashLineDoesNotUndoIt)
{
    updateTo('a');
    updateTo('b');
    restore({"Doors"});
    test::writeFile(program.root() + "/core/catalog_hash.txt", ""); // the state after a cancelled update
    EXPECT_EQ("current", outcome());
    EXPECT_EQ(tagOf('a'), version("Doors"));
}

TEST_F(Restore, aRestoredCatalogThatIsRemovedIsMissingToACheckAndComesBack)
{
    updateTo('a');
    updateTo('b');
    restore({"Doors"});
    std::filesystem::remove(program.root() + "/core/Doors.orvlib");
    const test::ProgramResult check = program.run({"--json", "check", "--url", service.redirect()});
    EXPECT_EQ(3, check.status) << check.err;
    EXPECT_EQ("missing", check.json()["catalogs"].toArray()[0].toObject()["state"].toString());
    EXPECT_EQ("updated", outcome());
}

TEST_F(Restore, aDamagedRestoredCatalogIsFetchedAfterRepair)
{
    updateTo('a');
    updateTo('b');
    restore({"Doors"});
    test::writeFile(program.root() + "/core/Doors.orvlib", "damage");
    program.run({"verify", "--repair"});
    const test::ProgramResult check = program.run({"--json", "check", "--url", service.redirect()});
    EXPECT_EQ(3, check.status) << check.err;
    EXPECT_EQ("waiting", check.json()["outcome"].toString());
    EXPECT_EQ("updated", outcome());
    EXPECT_EQ(std::string(3000, 'b'), content("core/Doors.orvlib"));
}

TEST_F(Restore, aDamagedArchiveOfABonusCatalogIsFetchedAfterRepair)
{
    service.offer("Doors.orvlib", std::string(3000, 'a'));
    service.offer("Textures.zip", test::zip("a.png", std::string(3000, 'a')));
    service.offer("Garden.orvlibz", test::packed(std::string(3000, '1'), std::string(2000, 'x')));
    update({"--bonus", "Garden.orvlib"});
    const std::string files = content("referenced/Garden.zip");
    damageGardenFiles();
    EXPECT_EQ(0, program.run({"verify", "--repair"}).status);
    EXPECT_EQ("updated", outcome());
    EXPECT_EQ(files, content("referenced/Garden.zip"));
    EXPECT_EQ(0, program.run({"verify"}).status);
}

TEST_F(Restore, theSoundFilesOfARestoredCatalogsArchiveAreKept)
{
    service.offer("Doors.orvlib", std::string(3000, 'a'));
    service.offer("Textures.zip", test::zip("a.png", std::string(3000, 'a')));
    service.offer("Garden.orvlibz", test::packed(std::string(3000, '1'), std::string(2000, 'x')));
    update({"--bonus", "Garden.orvlib"});
    service.offer("Garden.orvlibz", test::packed(std::string(3000, '2'), std::string(2000, 'y')));
    update();
    restore({"Garden.orvlib"});
    damageGardenFiles();
    EXPECT_EQ(0, program.run({"verify", "--repair"}).status);
    EXPECT_TRUE(std::filesystem::exists(program.root() + "/referenced/Garden.zip.damaged"));
    EXPECT_EQ(std::string(3000, '1'), content("bonus/Garden.orvlib")) << "no update would bring this version";
}
