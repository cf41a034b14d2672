#include <filesystem>

#include <gmock/gmock.h>

#include "tests/orv-library/Program.h"

using testing::HasSubstr;
using testing::StartsWith;

namespace {

std::string absolutePath(const test::ProgramResult& result, const char* key)
{
    return result.json()[key].toString().toStdString();
}

} // namespace

TEST(CommandLine, noCommandIsWrongUsage)
{
    const test::Program program;
    const test::ProgramResult result = program.run({});
    EXPECT_EQ(2, result.status);
    EXPECT_EQ("", result.out);
    EXPECT_THAT(result.err, StartsWith("orv-library: "));
    EXPECT_THAT(result.err, HasSubstr("Usage: orv-library"));
}

TEST(CommandLine, wrongUsageChangesNothing)
{
    const test::Program program;
    const std::vector<std::vector<std::string>> wrong = {
        {"nonsense"},
        {"paths", "nonsense"},
        {"paths", "--nonsense"},
        {"log"},
        {"log", "nonsense"},
        {"log", "show", "nonsense"},
        {"--root"},
        {"--root", ""},
        {"--root="},
        {"--progress", "fast"},
        {"paths", "--trace"},
        {"paths", "--trace="},
        {"paths", "paths"},
        {"--json=maybe", "paths"},
        {"log", "clear", "-1"},
    };
    for (const auto& arguments : wrong) {
        const test::ProgramResult result = program.run(arguments);
        const std::string shown = testing::PrintToString(arguments);
        EXPECT_EQ(2, result.status) << shown;
        EXPECT_EQ("", result.out) << shown;
        EXPECT_THAT(result.err, HasSubstr("Usage: orv-library")) << shown;
        EXPECT_FALSE(std::filesystem::exists(program.root())) << shown;
    }
}

TEST(CommandLine, wrongUsagePrintsTheUsageOfThatCommand)
{
    const test::Program program;
    EXPECT_THAT(program.run({"paths", "--nonsense"}).err, HasSubstr("Usage: orv-library paths"));
    EXPECT_THAT(program.run({"log", "clear", "x"}).err, HasSubstr("Usage: orv-library log clear"));
}

TEST(CommandLine, unknownCommandIsNamed)
{
    const test::Program program;
    EXPECT_THAT(program.run({"upgrade"}).err, StartsWith("orv-library: 'upgrade' is no command\n"));
    EXPECT_THAT(program.run({"log", "delete"}).err, StartsWith("orv-library: 'delete' is no command\n"));
    EXPECT_THAT(program.run({"log"}).err, StartsWith("orv-library: no command given\n"));
}

TEST(CommandLine, helpAndVersionWorkOnEveryCommand)
{
    const test::Program program;
    for (const std::vector<std::string>& command :
         std::vector<std::vector<std::string>>{{}, {"paths"}, {"log"}, {"log", "show"}}) {
        std::vector<std::string> help = command;
        help.push_back("--help");
        const test::ProgramResult helped = program.run(help);
        EXPECT_EQ(0, helped.status) << testing::PrintToString(command);
        EXPECT_THAT(helped.out, HasSubstr("Usage: orv-library")) << testing::PrintToString(command);
        EXPECT_THAT(helped.out, HasSubstr("--progress")) << testing::PrintToString(command);

        std::vector<std::string> version = command;
        version.push_back("--version");
        const test::ProgramResult versioned = program.run(version);
        EXPECT_EQ(0, versioned.status) << testing::PrintToString(command);
        EXPECT_THAT(versioned.out, StartsWith("orv-library 1.")) << testing::PrintToString(command);
    }
    EXPECT_FALSE(std::filesystem::exists(program.root()));
}

TEST(CommandLine, globalOptionsStandBeforeAndAfterTheCommand)
{
    const test::Program program;
    const std::string root = program.root();
    for (const std::vector<std::string>& arguments :
         std::vector<std::vector<std::string>>{{"--root", root, "--json", "paths"},
                                               {"paths", "--root", root, "--json"},
                                               {"--json", "paths", "--root=" + root},
                                               {"--root", "/nowhere", "paths", "--json", "--root", root}}) {
        const test::ProgramResult result = program.runBare(arguments);
        EXPECT_EQ(0, result.status) << result.err;
        EXPECT_EQ(root + "/", absolutePath(result, "root"));
    }
}

TEST(CommandLine, rootComesFromTheEnvironmentInOrder)
{
    test::Program program;
    const std::string base = program.folder().path();
    EXPECT_EQ(base + "/home/.local/share/orv-library/",
              absolutePath(program.runBare({"paths", "--json"}), "root"));
    program.setEnvironment("XDG_DATA_HOME", base + "/data");
    EXPECT_EQ(base + "/data/orv-library/", absolutePath(program.runBare({"paths", "--json"}), "root"));
    program.setEnvironment("ORV_LIBRARY_ROOT", base + "/chosen");
    EXPECT_EQ(base + "/chosen/", absolutePath(program.runBare({"paths", "--json"}), "root"));
    EXPECT_EQ(base + "/given/",
              absolutePath(program.runBare({"paths", "--json", "--root", base + "/given"}), "root"));
}

TEST(CommandLine, relativeRootIsTakenFromTheCurrentFolder)
{
    const test::Program program;
    const test::ProgramResult result = program.runBare({"--json", "--root", "some/../where/", "paths"});
    EXPECT_EQ(program.folder().path() + "/where/", absolutePath(result, "root"));
}

TEST(CommandLine, rootThatCannotBeMadeFailsWithItsName)
{
    const test::Program program;
    program.folder().write("file", "not a folder");
    const test::ProgramResult result =
        program.runBare({"--json", "--root", program.folder().path() + "/file/root", "paths"});
    EXPECT_EQ(1, result.status);
    EXPECT_THAT(result.err, HasSubstr(program.folder().path() + "/file/root"));
    EXPECT_THAT(result.json()["error"].toString().toStdString(), HasSubstr("/file/root"));
}
