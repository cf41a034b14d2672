#include <filesystem>

#include <gmock/gmock.h>

#include "tests/orv-library/Program.h"

using testing::HasSubstr;

TEST(PathsCommand, namesEveryFolderAndFile)
{
    const test::Program program;
    const std::string root = program.root() + "/";
    const test::ProgramResult result = program.run({"--json", "paths"});
    ASSERT_EQ(0, result.status) << result.err;
    const QJsonObject expected = {
        {"root", QString::fromStdString(root)},
        {"user", QString::fromStdString(root + "user/")},
        {"core", QString::fromStdString(root + "core/")},
        {"bonus", QString::fromStdString(root + "bonus/")},
        {"manufacturer", QString::fromStdString(root + "manufacturer/")},
        {"manufacturerData", QString::fromStdString(root + "manufacturer-data/")},
        {"referenced", QString::fromStdString(root + "referenced/")},
        {"textures", QString::fromStdString(root + "textures/")},
        {"temp", QString::fromStdString(root + "temp/")},
        {"errorLog", QString::fromStdString(root + "user/errors.log")},
        {"filters", QString::fromStdString(root + "core/catalog_filters.json")},
        {"manufacturerFile", QString::fromStdString(root + "manufacturer-data/manufacturer_data.json")},
    };
    EXPECT_EQ(expected, result.json());
}

TEST(PathsCommand, createMakesTheFoldersThatAreMissing)
{
    const test::Program program;
    ASSERT_EQ(0, program.run({"paths"}).status);
    EXPECT_FALSE(std::filesystem::exists(program.root()));
    ASSERT_EQ(0, program.run({"paths", "--create"}).status);
    for (const char* name :
         {"user", "core", "bonus", "manufacturer", "manufacturer-data", "referenced", "textures", "temp"})
        EXPECT_TRUE(std::filesystem::is_directory(program.root() + "/" + name)) << name;
    const auto permissions = std::filesystem::status(program.root() + "/temp").permissions();
    EXPECT_EQ(std::filesystem::perms::owner_all, permissions);
}

TEST(PathsCommand, printsOneLineAPathForPeople)
{
    const test::Program program;
    const test::ProgramResult result = program.run({"paths"});
    EXPECT_THAT(result.out, HasSubstr("manufacturerData: " + program.root() + "/manufacturer-data/\n"));
    EXPECT_EQ("", result.err);
}
