#include <algorithm>
#include <filesystem>

#include <gmock/gmock.h>
#include <locale.h>

#include "tests/orv-library/Program.h"

using testing::EndsWith;
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
    EXPECT_EQ("orv-library: no command given\nTry 'orv-library --help'.\n", result.err);
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
        {"import", ""},
        {"import", "Kitchen.orvlibz", ""},
        {"sample", ""},
        {"doctor", "--report="},
        {"update", "--url", "http://127.0.0.1:9/", "--bonus", ""},
    };
    for (const auto& arguments : wrong) {
        const test::ProgramResult result = program.run(arguments);
        const std::string shown = testing::PrintToString(arguments);
        EXPECT_EQ(2, result.status) << shown;
        EXPECT_EQ("", result.out) << shown;
        EXPECT_EQ(2, std::count(result.err.begin(), result.err.end(), '\n')) << shown << result.err;
        EXPECT_THAT(result.err, HasSubstr("--help")) << shown;
        EXPECT_FALSE(std::filesystem::exists(program.root())) << shown;
    }
}

TEST(CommandLine, wrongUsageNamesTheHelpOfThatCommand)
{
    const test::Program program;
    EXPECT_THAT(program.run({"paths", "--nonsense"}).err, EndsWith("\nTry 'orv-library paths --help'.\n"));
    EXPECT_THAT(program.run({"log", "clear", "x"}).err, EndsWith("\nTry 'orv-library log clear --help'.\n"));
    EXPECT_THAT(program
                    .run({"update", "--url", "http://127.0.0.1:9/", "--product", "P", "--product-version",
                          "1", "--bonus", "x.zip"})
                    .err,
                EndsWith("\nTry 'orv-library update --help'.\n"));
}

TEST(CommandLine, commandsOnARootThatIsNotThereFailAndMakeNone)
{
    const test::Program program;
    const std::vector<std::vector<std::string>> commands = {
        {"filters", "list"},
        {"filters", "add", "Kitchen"},
        {"manufacturers", "list"},
        {"log", "show"},
        {"log", "path"},
        {"log", "clear"},
        {"status"},
        {"verify"},
    };
    for (const auto& command : commands) {
        std::vector<std::string> arguments = {"--json"};
        arguments.insert(arguments.end(), command.begin(), command.end());
        const test::ProgramResult result = program.run(arguments);
        const std::string shown = testing::PrintToString(command);
        EXPECT_EQ(1, result.status) << shown;
        EXPECT_THAT(result.json()["error"].toString().toStdString(), HasSubstr(program.root())) << shown;
        EXPECT_THAT(result.err, StartsWith("orv-library: " + program.root())) << shown;
        EXPECT_FALSE(std::filesystem::exists(program.root())) << shown;
    }
    EXPECT_EQ(0, program.run({"styles", "list"}).status);
    EXPECT_FALSE(std::filesystem::exists(program.root()));
}

TEST(CommandLine, documentOfAFailureHasTheMembersOfTheCommand)
{
    const test::Program program;
    const std::vector<std::pair<std::vector<std::string>, QStringList>> commands = {
        {{"status"}, {"error", "held", "lastAttempt", "lastGoodCheck", "warnings"}},
        {{"verify"}, {"checked", "damaged", "error", "repaired"}},
        {{"list"}, {"catalogs", "error"}},
        {{"history", "Doors"}, {"error", "name", "versions"}},
        {{"restore", "Doors"}, {"error", "former", "name", "restored"}},
        {{"hold", "Doors"}, {"error", "held"}},
        {{"release", "Doors"}, {"error", "held"}},
        {{"news"}, {"catalogs", "error"}},
        {{"runs"}, {"error", "runs"}},
        {{"settings"}, {"defaults", "error", "settings"}},
        {{"settings", "unset", "url"}, {"defaults", "error", "settings"}},
        {{"log", "show"}, {"entries", "error", "path"}},
        {{"sample", "/proc/none"}, {"content", "error", "files"}},
        {{"publish", program.root(), program.root() + "service"}, {"error", "published", "refused"}},
        {{"filters", "list"}, {"current", "error", "filters", "labels"}},
        {{"filters", "add", "Kitchen"}, {"current", "error", "filters", "labels"}},
        {{"filters", "show", "3"}, {"databases", "error", "id", "name"}},
        {{"manufacturers", "list"}, {"defaultText", "error", "lastModified", "manufacturers"}},
        {{"manufacturers", "show", "3"},
         {"deleted", "email", "error", "fax", "id", "lastModified", "lock", "logo", "name", "phone", "url"}},
        {{"manufacturers", "refresh", "--data-url", "http://127.0.0.1:9/", "--logo-url",
          "http://127.0.0.1:9/"},
         {"changes", "defaultText", "error", "lastModified", "manufacturers"}},
        {{"styles", "show", "3"}, {"error", "styles"}},
        {{"info", "Doors"},
         {"bytes", "category", "error", "held", "items", "lastChecked", "modified", "name", "state",
          "version"}},
        {{"runs", "show", "3"},
         {"asked", "bytes", "catalogs", "end", "error", "failed", "fetched", "kind", "number", "outcome",
          "start"}},
        {{"serve", program.root()}, {"error", "logos", "manufacturers", "redirect"}},
        {{"undo"}, {"error", "library", "textures"}},
        {{"unpack", program.root()}, {"error", "library", "referenced"}},
        {{"import", program.root()}, {"error", "imports", "library", "textures"}},
        {{"pack", "a.orvlib", "--output", "a.orvlibz"}, {"archive", "bytes", "error", "members"}},
    };
    for (const auto& [command, members] : commands) {
        std::vector<std::string> arguments = {"--json"};
        arguments.insert(arguments.end(), command.begin(), command.end());
        const test::ProgramResult result = program.run(arguments);
        EXPECT_EQ(1, result.status) << testing::PrintToString(command);
        EXPECT_EQ(members, result.json().keys()) << testing::PrintToString(command);
    }
}

TEST(CommandLine, helpShowsTheManualPageOfACommand)
{
    const test::Program program;
    const test::ProgramResult update = program.run({"help", "update"});
    EXPECT_EQ(0, update.status);
    EXPECT_THAT(update.out, StartsWith("NAME\n\n       orv-library-update - "));
    EXPECT_THAT(update.out,
                HasSubstr("\n       --index NAME\n              The name of the core content index"));
    EXPECT_THAT(program.run({"help"}).out, HasSubstr("orv-library - keep a library"));
    EXPECT_EQ("orv-library-log", program.run({"--json", "help", "log"}).json()["page"].toString());
    const test::ProgramResult unknown = program.run({"help", "nonsense"});
    EXPECT_EQ(2, unknown.status);
    EXPECT_THAT(unknown.err, StartsWith("orv-library: 'nonsense' is no command\n"));
}

TEST(CommandLine, unknownCommandIsNamed)
{
    const test::Program program;
    EXPECT_THAT(program.run({"upgrade"}).err, StartsWith("orv-library: 'upgrade' is no command\n"));
    EXPECT_THAT(program.run({"log", "delete"}).err, StartsWith("orv-library: 'delete' is no command\n"));
    EXPECT_THAT(program.run({"log"}).err, StartsWith("orv-library: no command given\n"));
    EXPECT_THAT(program.run({"--nonsense"}).err, StartsWith("orv-library: '--nonsense' is no option\n"));
}

TEST(CommandLine, wordsInBracketsAreQuotedWhole)
{
    const test::Program program;
    EXPECT_THAT(program.run({"[a,b]"}).err, StartsWith("orv-library: '[a,b]' is no command\n"));
    EXPECT_THAT(program.run({"list", "[a,b]"}).err,
                StartsWith("orv-library: The following argument was not expected: [a,b]\n"));
    EXPECT_THAT(program.run({"list", "--progress", "[a]"}).err,
                StartsWith("orv-library: --progress: '[a]' is none of auto, bar, plain, none\n"));
    EXPECT_THAT(absolutePath(program.runBare({"paths", "--json", "--root", "[x]"}), "root"),
                EndsWith("/[x]/"));
}

TEST(CommandLine, helpThatCannotBePrintedIsAFailure)
{
    for (const char* const argument : {"--help", "--version"}) {
        QProcess process;
        process.setStandardOutputFile("/dev/full");
        process.start(ORV_LIBRARY_PROGRAM, {argument});
        ASSERT_TRUE(process.waitForFinished(120'000));
        EXPECT_EQ(1, process.exitCode());
        EXPECT_EQ("orv-library: cannot write standard output\n", process.readAllStandardError());
    }
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

        for (const char* option : {"--version", "-V"}) {
            std::vector<std::string> version = command;
            version.push_back(option);
            const test::ProgramResult versioned = program.run(version);
            EXPECT_EQ(0, versioned.status) << testing::PrintToString(version);
            EXPECT_THAT(versioned.out, StartsWith("orv-library 1.")) << testing::PrintToString(version);
        }
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
        program.runBare({"--json", "--root", program.folder().path() + "/file/root", "paths", "--create"});
    EXPECT_EQ(1, result.status);
    EXPECT_EQ(program.folder().path() + "/file/root/", absolutePath(result, "root"));
    EXPECT_THAT(result.err, HasSubstr(program.folder().path() + "/file/root"));
    EXPECT_THAT(result.json()["error"].toString().toStdString(), HasSubstr("/file/root"));
}

TEST(CommandLine, reasonsOfTheSystemAreInTheProgramsLanguage)
{
    ASSERT_TRUE(newlocale(LC_MESSAGES_MASK, "de_DE.UTF-8", nullptr)) << "script/setup makes it";
    test::Program program;
    program.setEnvironment("LC_ALL", "de_DE.UTF-8");
    program.folder().write("file", "not a folder");
    const test::ProgramResult result =
        program.runBare({"--root", program.folder().path() + "/file/root", "paths", "--create"});
    EXPECT_THAT(result.err, EndsWith(": Not a directory\n"));
}
