#include <filesystem>

#include <QJsonArray>
#include <QJsonDocument>

#include <sys/stat.h>

#include <gmock/gmock.h>

#include "OrvLibrary/LibraryFilterManager.h"
#include "tests/orv-library/Program.h"

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

namespace {

constexpr char kTwo[] = R"({"Current_Filter": 1,
    "Filter": {"Filter_Name": "Kitchen", "Filter_Id": 0, "Database_Ids": ["a", "b", "a"]},
    "Filter": {"Filter_Name": "Bath", "Filter_Id": 1, "Database_Ids": ["b"]}})";

class FiltersCommand : public testing::Test
{
protected:
    FiltersCommand() { program.createRoot(); }

    test::ProgramResult run(std::vector<std::string> arguments) const
    {
        arguments.insert(arguments.begin(), {"--json", "filters"});
        return program.run(arguments);
    }

    /// Runs a command that must succeed. Returns its output as "current|id:name(databases) …|label,label".
    std::string printed(const std::vector<std::string>& arguments) const
    {
        const test::ProgramResult result = run(arguments);
        EXPECT_EQ(result.status, 0) << result.err;
        EXPECT_EQ(result.err, "");
        return describe(result.json());
    }

    static std::string describe(const QJsonObject& document)
    {
        std::string text = std::to_string(document["current"].toInt()) + "|";
        for (const QJsonValue value : document["filters"].toArray())
            text += describeFilter(value.toObject()) + " ";
        text += "|";
        for (const QJsonValue value : document["labels"].toArray())
            text += value.toString().toStdString() + ",";
        return text;
    }

    static std::string describeFilter(const QJsonObject& filter)
    {
        std::string text =
            std::to_string(filter["id"].toInt()) + ":" + filter["name"].toString().toStdString();
        text += "(";
        for (const QJsonValue value : filter["databases"].toArray())
            text += value.toString().toStdString();
        return text + ")";
    }

    /// Runs a command that must fail and must not change the file.
    void refused(int status, const std::vector<std::string>& arguments) const
    {
        const std::string former = file.pathExists() ? test::readFile(file) : std::string();
        const test::ProgramResult result = run(arguments);
        EXPECT_EQ(result.status, status) << testing::PrintToString(arguments);
        EXPECT_THAT(result.err, StartsWith("orv-library: "));
        EXPECT_EQ(file.pathExists() ? test::readFile(file) : std::string(), former);
    }

    void write(const std::string& content) const { test::writeFile(file.toNativeString(), content); }

    const test::Program program;
    const fileString file{program.root() + "/core/catalog_filters.json"};
};

} // namespace

TEST_F(FiltersCommand, freshRootHasNone)
{
    const test::ProgramResult result = run({"list"});
    EXPECT_EQ(result.json(), QJsonDocument::fromJson(R"({"current": -1, "filters": [],
        "labels": ["No Filter"]})")
                                 .object())
        << result.out;
    EXPECT_FALSE(file.pathExists());
}

TEST_F(FiltersCommand, listPrintsWhatTheFileHolds)
{
    write(kTwo);
    EXPECT_EQ(printed({"list"}), "1|1:Bath(b) 0:Kitchen(aba) |No Filter,Bath,Kitchen,");
    const test::ProgramResult result = program.run({"filters", "list"});
    EXPECT_EQ(result.out, "Current: Bath\n1  Bath: b\n0  Kitchen: a b a\n");
    EXPECT_EQ(test::readFile(file), kTwo);
}

TEST_F(FiltersCommand, showPrintsOne)
{
    write(kTwo);
    EXPECT_EQ(
        run({"show", "0"}).json(),
        QJsonDocument::fromJson(R"({"id": 0, "name": "Kitchen", "databases": ["a", "b", "a"]})").object());
    EXPECT_EQ(program.run({"filters", "show", "1"}).out, "1  Bath: b\n");
}

TEST_F(FiltersCommand, changesPrintWhatAFreshStartReads)
{
    EXPECT_EQ(printed({"add", "Küche", "a", "b"}), "-1|0:Küche(ab) |No Filter,Küche,");
    EXPECT_EQ(printed({"add", "Bath"}), "-1|1:Bath() 0:Küche(ab) |No Filter,Bath,Küche,");
    // The new filter comes first; the others keep their order.
    EXPECT_EQ(printed({"add", "Hall", "--id", "-5", "b"}),
              "-1|-5:Hall(b) 1:Bath() 0:Küche(ab) |No Filter,Hall,Bath,Küche,");
    EXPECT_EQ(printed({"use", "0"}), "0|-5:Hall(b) 1:Bath() 0:Küche(ab) |No Filter,Hall,Bath,Küche,");
    EXPECT_EQ(printed({"drop-database", "b"}), "0|-5:Hall() 1:Bath() 0:Küche(a) |No Filter,Hall,Bath,Küche,");
    EXPECT_EQ(printed({"remove", "1"}), "0|-5:Hall() 0:Küche(a) |No Filter,Hall,Küche,");
    EXPECT_EQ(printed({"use", "none"}), "-1|-5:Hall() 0:Küche(a) |No Filter,Hall,Küche,");
    EXPECT_EQ(printed({"list"}), "-1|-5:Hall() 0:Küche(a) |No Filter,Hall,Küche,");
    EXPECT_THAT(test::listTree(program.root() + "/temp"), IsEmpty());
}

TEST_F(FiltersCommand, wordsInBracketsStayWhole)
{
    EXPECT_EQ(printed({"add", "[a,b]", "[c,d]", "[]", R"(["e"])"}),
              R"(-1|0:[a,b]([c,d][]["e"]) |No Filter,[a,b],)");
    EXPECT_EQ(printed({"use", "[a,b]"}), R"(0|0:[a,b]([c,d][]["e"]) |No Filter,[a,b],)");
    EXPECT_THAT(run({"add", "Kitchen", "--id", "[1]"}).err,
                HasSubstr("--id: '[1]' is not a number that can be used\n"));
}

TEST_F(FiltersCommand, aFilterIsChosenByItsNameToo)
{
    write(R"({"Filter": {"Filter_Name": "Bath", "Filter_Id": 4, "Database_Ids": []},
              "Filter": {"Filter_Name": "4", "Filter_Id": 5, "Database_Ids": []},
              "Filter": {"Filter_Name": "Hall", "Filter_Id": 6, "Database_Ids": []},
              "Filter": {"Filter_Name": "Hall", "Filter_Id": 7, "Database_Ids": []}})");
    EXPECT_THAT(printed({"use", "Bath"}), StartsWith("4|"));
    EXPECT_THAT(printed({"use", "4"}), StartsWith("4|")) << "a number is an id";
    refused(1, {"use", "Hall"});
    EXPECT_THAT(run({"use", "Hall"}).err, HasSubstr("2 filters have the name Hall"));
    EXPECT_THAT(describe(run({"use", "Hall"}).json()), StartsWith("4|")) << "the filters as they are";
    refused(2, {"use", "bath"});
}

TEST_F(FiltersCommand, aNameThatAnotherFilterHasIsRefused)
{
    write(kTwo);
    refused(1, {"add", "Bath", "x"});
    EXPECT_EQ(run({"add", "Bath"}).err, "orv-library: another filter has the name Bath; its id is 1\n");
}

TEST_F(FiltersCommand, droppingADatabaseThatNoFilterNamesSaysSo)
{
    write(kTwo);
    const test::ProgramResult result = run({"drop-database", "none"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "orv-library: no filter names the database none; nothing was dropped\n");
    EXPECT_EQ(describe(result.json()), "1|1:Bath(b) 0:Kitchen(aba) |No Filter,Bath,Kitchen,");
    EXPECT_EQ(test::readFile(file), kTwo);
}

TEST_F(FiltersCommand, newFilterGetsTheLowestFreeId)
{
    write(R"({"Filter": {"Filter_Name": "A", "Filter_Id": 0, "Database_Ids": []},
              "Filter": {"Filter_Name": "B", "Filter_Id": 2, "Database_Ids": []}})");
    EXPECT_THAT(printed({"add", "C"}), StartsWith("-1|1:C() "));
    EXPECT_THAT(printed({"add", "D"}), StartsWith("-1|3:D() "));
    EXPECT_THAT(printed({"add", "E", "--id", "2147483647"}), StartsWith("-1|2147483647:E() "));
}

TEST_F(FiltersCommand, removingTheLastFilterReachesTheFile)
{
    printed({"add", "Bath"});
    EXPECT_EQ(printed({"use", "0"}), "0|0:Bath() |No Filter,Bath,");
    EXPECT_EQ(printed({"remove", "0"}), "-1||No Filter,");
    EXPECT_EQ(printed({"list"}), "-1||No Filter,");
    EXPECT_EQ(test::readFile(file), "{\n  \"Current_Filter\": -1\n}\n");
}

TEST_F(FiltersCommand, ofEqualIdsTheFirstIsRemoved)
{
    write(R"({"Current_Filter": 4, "Filter": {"Filter_Name": "A", "Filter_Id": 4, "Database_Ids": []},
              "Filter": {"Filter_Name": "B", "Filter_Id": 4, "Database_Ids": []}})");
    EXPECT_EQ(printed({"remove", "4"}), "4|4:A() |No Filter,A,");
}

TEST_F(FiltersCommand, unusableIdsAndNamesAreRefused)
{
    write(kTwo);
    for (const char* id : {"-1", "2147483648", "-2147483649", "9223372036854775807", "99999999999999999999",
                           "1x", "", "0x1"}) {
        refused(2, {"show", id});
        refused(2, {"remove", id});
        refused(2, {"use", id});
        refused(2, {"add", "C", "--id", id});
    }
    refused(2, {"add", ""});
    refused(2, {"merge", ""});
    refused(2, {"use", "None"});
    EXPECT_THAT(run({"use", "99999999999999999999"}).err,
                StartsWith("orv-library: '99999999999999999999' is neither the id of a filter nor none\n"));
    refused(2, {});
    refused(2, {"add"});
    refused(2, {"list", "more"});
    refused(2, {"rename", "1"});
    for (const char* id : {"2", "-2147483648", "2147483647"}) {
        refused(1, {"show", id});
        refused(1, {"remove", id});
        refused(1, {"use", id});
    }
    refused(1, {"add", "C", "--id", "1"});
    EXPECT_THAT(run({"show", "7"}).err, HasSubstr("no filter has the id 7"));
    EXPECT_EQ(test::listTree(program.root() + "/core"), std::vector<std::string>{"catalog_filters.json"});
}

TEST_F(FiltersCommand, mergeWritesBothFiles)
{
    write(kTwo);
    const fileString other = program.folder().write("other.json", R"({"Current_Filter": 7,
        "Filter": {"Filter_Name": "Bath", "Filter_Id": 7, "Database_Ids": ["x"]},
        "Filter": {"Filter_Name": "Kitchen", "Filter_Id": 0, "Database_Ids": ["a", "b", "a"]}})");
    // The existing filters come first, then the new ones. Reading the file reverses this order.
    const std::string merged = "7|1:Bath 1(b) 7:Bath(x) 0:Kitchen(aba) |No Filter,Bath 1,Bath,Kitchen,";
    EXPECT_EQ(printed({"merge", other.toNativeString()}), merged);
    EXPECT_EQ(printed({"list"}), merged);
    EXPECT_EQ(test::readFile(other), test::readFile(file));
}

TEST_F(FiltersCommand, mergeIntoAMissingFileMakesIt)
{
    write(kTwo);
    const std::string other = program.folder().path() + "/new.json";
    EXPECT_EQ(printed({"merge", other}), "-1|1:Kitchen(aba) 0:Bath(b) |No Filter,Kitchen,Bath,");
    EXPECT_EQ(test::readFile(other), test::readFile(file));
}

TEST_F(FiltersCommand, mergeThatCannotWriteChangesNothing)
{
    write(kTwo);
    refused(1, {"merge", program.folder().path() + "/no/such/folder.json"});
    refused(1, {"merge", program.folder().path()});
    const fileString other = program.folder().write("other.json", kTwo);
    ASSERT_EQ(chmod(other.toNativeString().c_str(), 0444), 0);
    refused(1, {"merge", other.toNativeString()});
    EXPECT_EQ(test::readFile(other), kTwo);
    EXPECT_THAT(run({"merge", other.toNativeString()}).err, HasSubstr(other.toNativeString()));
}

TEST_F(FiltersCommand, unreadableFileIsKeptBeforeTheFirstSave)
{
    const char* const contents[] = {"", "{ my notes", R"({"Filter": 5, "Current_Filter": 3})",
                                    R"({"Filter": {"Filter_Name": "First", "Filter_Id": 0},
                                        "Filter": {"Filter_Name": "B", "Filter_Id": 1, "Database_Ids": []}})"};
    std::size_t copies = 0;
    for (const char* content : contents) {
        write(content);
        EXPECT_EQ(run({"list"}).err, "") << "reading changes nothing";
        const test::ProgramResult result = run({"add", "New", "--id", "9"});
        EXPECT_EQ(result.status, 0);
        ++copies;
        const std::string copy =
            file.toNativeString() + ".unreadable" + (copies > 1 ? "." + std::to_string(copies) : "");
        EXPECT_EQ(result.err, "orv-library: " + file.toNativeString() +
                                  " cannot be read as a whole; it is kept as " + copy + "\n");
        EXPECT_EQ(test::readFile(copy), content);
        EXPECT_EQ(run({"add", "More", "--id", "10"}).err, "") << "what was written can be read";
    }
    EXPECT_EQ(test::listTree(program.root() + "/core").size(), 1 + copies);
}

TEST_F(FiltersCommand, mergeKeepsTheOtherFileWhenItIsUnreadable)
{
    write(kTwo);
    const fileString other = program.folder().write("other.json", "my shopping list");
    const test::ProgramResult result = run({"merge", other.toNativeString()});
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.err, HasSubstr(other.toNativeString() + ".unreadable"));
    EXPECT_EQ(test::readFile(other.toNativeString() + ".unreadable"), "my shopping list");
}

TEST_F(FiltersCommand, handMadeFileThatCanBeReadNeedsNoCopy)
{
    write("{ }");
    EXPECT_EQ(run({"add", "New"}).err, "");
    EXPECT_EQ(test::listTree(program.root() + "/core"), std::vector<std::string>{"catalog_filters.json"});
}

TEST_F(FiltersCommand, fileThatCannotBeWrittenIsOneClearLine)
{
    write(kTwo);
    ASSERT_EQ(chmod(file.toNativeString().c_str(), 0444), 0);
    for (const std::vector<std::string>& arguments :
         {std::vector<std::string>{"add", "New"}, {"remove", "0"}, {"use", "none"}, {"drop-database", "a"}}) {
        const test::ProgramResult result = run(arguments);
        EXPECT_EQ(result.status, 1);
        EXPECT_EQ(result.err, "orv-library: cannot write " + file.toNativeString() + "\n");
        EXPECT_EQ(test::readFile(file), kTwo);
    }
}

TEST_F(FiltersCommand, twoAtOnceLoseNothing)
{
    std::vector<std::unique_ptr<QProcess>> processes;
    for (int i = 0; i < 6; ++i)
        processes.push_back(program.start({"filters", "add", "F" + std::to_string(i)}));
    for (const auto& process : processes)
        EXPECT_EQ(test::Program::finish(*process).status, 0);
    EXPECT_EQ(run({"list"}).json()["filters"].toArray().size(), 6);
}

TEST_F(FiltersCommand, othersMergeIntoTheFileAndNothingIsLost)
{
    write(kTwo);
    const test::Program others[3];
    std::vector<std::unique_ptr<QProcess>> processes;
    for (int i = 0; i < 3; ++i) {
        others[i].createRoot();
        EXPECT_EQ(others[i].run({"filters", "add", "Other " + std::to_string(i)}).status, 0);
    }
    for (int i = 0; i < 3; ++i) {
        processes.push_back(others[i].start({"filters", "merge", file.toNativeString()}));
        processes.push_back(program.start({"filters", "add", "Own " + std::to_string(i)}));
    }
    for (const auto& process : processes) {
        const test::ProgramResult result = test::Program::finish(*process);
        EXPECT_EQ(result.status, 0) << result.err;
    }
    EXPECT_EQ(run({"list"}).json()["filters"].toArray().size(), 2 + 3 + 3);
    EXPECT_EQ(test::listTree(program.root() + "/core"), std::vector<std::string>{"catalog_filters.json"});
}
