#include "OrvLibrary/LibraryFilterManager.h"

#include <algorithm>

#include <sys/stat.h>

#include <gtest/gtest.h>

#include "OrvLibrary/host/MessagingSystem.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/FormatPage.h"
#include "tests/support/ScopedHost.h"

namespace {

using Ids = std::vector<std::string>;

/// One line per filter: "id name [databases]".
std::string describe(const std::vector<LibraryFilter>& filters)
{
    std::string text;
    for (const LibraryFilter& filter : filters) {
        text += std::to_string(filter.getFilterId()) + " " + filter.getFilterName() + " [";
        for (const std::string& id : filter.getDatabaseIds())
            text += id + ",";
        text += "]\n";
    }
    return text;
}

class LibraryFilterManagerFile : public testing::Test
{
protected:
    /// Loads a file with this content.
    long load(const std::string& content)
    {
        mFilters.clear();
        return LibraryFilterManager::loadFiltersFromFile(mHost.folder().write("f.json", content), mFilters);
    }

    std::string loaded() const { return describe(mFilters); }

    test::ScopedHost mHost;
    std::vector<LibraryFilter> mFilters;
};

const char kGood[] = R"("Filter": {"Filter_Name": "Good", "Filter_Id": 1, "Database_Ids": ["x"]})";

} // namespace

TEST_F(LibraryFilterManagerFile, savedFileHasTheMembersInOrder)
{
    const fileString path = mHost.folder().file("f.json");
    ASSERT_TRUE(LibraryFilterManager::saveFiltersToFile(
        path, {LibraryFilter("Küche \"1\"", 3, {"b", "a"}), LibraryFilter("", -1, {})}, 3));
    EXPECT_EQ(test::readFile(path), R"({
  "Current_Filter": 3,
  "Filter": {
    "Filter_Name": "Küche \"1\"",
    "Filter_Id": 3,
    "Database_Ids": [
      "b",
      "a"
    ]
  },
  "Filter": {
    "Filter_Name": "",
    "Filter_Id": -1,
    "Database_Ids": []
  }
}
)");
}

TEST_F(LibraryFilterManagerFile, emptyListLeavesTheCurrentIdAlone)
{
    const fileString path = mHost.folder().file("f.json");
    ASSERT_TRUE(LibraryFilterManager::saveFiltersToFile(path, {}, -1));
    EXPECT_EQ(test::readFile(path), "{\n  \"Current_Filter\": -1\n}\n");
}

TEST_F(LibraryFilterManagerFile, savedFileHasStandardPermissions)
{
    const mode_t former = umask(0077);
    const fileString path = mHost.folder().file("f.json");
    ASSERT_TRUE(LibraryFilterManager::saveFiltersToFile(path, {}, -1));
    umask(former);
    struct stat status;
    ASSERT_EQ(stat(path.toNativeString().c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0644U);
}

TEST_F(LibraryFilterManagerFile, everyLoadTurnsTheListRound)
{
    const fileString path = mHost.folder().file("f.json");
    ASSERT_TRUE(LibraryFilterManager::saveFiltersToFile(
        path, {LibraryFilter("A", 0, {"x", "y"}), LibraryFilter("B", 1, {}), LibraryFilter("C", 2, {"z"})},
        1));
    EXPECT_EQ(LibraryFilterManager::loadFiltersFromFile(path, mFilters), 1);
    EXPECT_EQ(loaded(), "2 C [z,]\n1 B []\n0 A [x,y,]\n");
    ASSERT_TRUE(LibraryFilterManager::saveFiltersToFile(path, mFilters, 1));
    mFilters.clear();
    LibraryFilterManager::loadFiltersFromFile(path, mFilters);
    EXPECT_EQ(loaded(), "0 A [x,y,]\n1 B []\n2 C [z,]\n");
}

TEST_F(LibraryFilterManagerFile, exampleOnThePageIsWhatIsReadAndWritten)
{
    const std::string example = test::exampleOnPage("catalog_filters");
    EXPECT_EQ(load(example), 2);
    EXPECT_EQ(loaded(), "0 Küche & Bad []\n2 Kitchen [b1f0c9,Doors,]\n");
    std::reverse(mFilters.begin(), mFilters.end());
    const fileString path = mHost.folder().file("f.json");
    ASSERT_TRUE(LibraryFilterManager::saveFiltersToFile(path, mFilters, 2));
    EXPECT_EQ(test::readFile(path), example + "\n");
}

TEST_F(LibraryFilterManagerFile, loadingAppends)
{
    mFilters.push_back(LibraryFilter("Here", 9, {}));
    const fileString path = mHost.folder().write("f.json", std::string("{") + kGood + "}");
    LibraryFilterManager::loadFiltersFromFile(path, mFilters);
    EXPECT_EQ(loaded(), "9 Here []\n1 Good [x,]\n");
}

TEST_F(LibraryFilterManagerFile, loadsWhatTheFileHolds)
{
    struct Case
    {
        const char* what;
        std::string content;
        long currentId;
        std::string filters;
    };
    const std::string good = kGood;
    const std::string current = R"({"Current_Filter": 3, )";
    const std::string last = R"("Filter": {"Filter_Name": "Last", "Filter_Id": 2, "Database_Ids": []})";
    const Case cases[] = {
        {"current id alone", R"({"Current_Filter": 3})", 3, ""},
        {"no current id", "{" + good + "}", -1, "1 Good [x,]\n"},
        {"current id that names no filter", R"({"Current_Filter": -7, )" + good + "}", -7, "1 Good [x,]\n"},
        {"two current ids: the last counts", R"({"Current_Filter": 1, "Current_Filter": 2})", 2, ""},
        {"empty object", "{}", -1, ""},
        {"unknown members", R"({"x": [1], "Filter ": 5, )" + good + "}", -1, "1 Good [x,]\n"},
        {"ids and names twice", "{" + good + "," + good + "}", -1, "1 Good [x,]\n1 Good [x,]\n"},
        {"id -1 is left out",
         current + good + R"(, "Filter": {"Filter_Name": "N", "Filter_Id": -1,
            "Database_Ids": []}, )" +
             last + "}",
         3, "2 Last []\n1 Good [x,]\n"},
        {"no id is left out",
         current + good + R"(, "Filter": {"Filter_Name": "N", "Database_Ids": []}, )" + last + "}", 3,
         "2 Last []\n1 Good [x,]\n"},
        {"empty name is left out",
         current + good + R"(, "Filter": {"Filter_Name": "", "Filter_Id": 5,
            "Database_Ids": []}, )" +
             last + "}",
         3, "2 Last []\n1 Good [x,]\n"},
        {"no name is left out",
         current + good + R"(, "Filter": {"Filter_Id": 5, "Database_Ids": []}, )" + last + "}", 3,
         "2 Last []\n1 Good [x,]\n"},
        {"negative id", R"({"Filter": {"Filter_Name": "N", "Filter_Id": -5, "Database_Ids": []}})", -1,
         "-5 N []\n"},
        {"name beyond UTF-8",
         "{\"Filter\": {\"Filter_Name\": \"\xFF\xC3\", \"Filter_Id\": 5, "
         "\"Database_Ids\": []}}",
         -1, "5 \xFF\xC3 []\n"},
        {"NUL in a name", R"({"Filter": {"Filter_Name": "a\u0000b", "Filter_Id": 5, "Database_Ids": []}})",
         -1, std::string("5 a\0b []\n", 9)},
    };
    for (const Case& row : cases) {
        EXPECT_EQ(load(row.content), row.currentId) << row.what;
        EXPECT_EQ(loaded(), row.filters) << row.what;
    }
    EXPECT_TRUE(mHost.messages().empty());
}

TEST_F(LibraryFilterManagerFile, malformedFilterStopsTheLoadThere)
{
    const char* const malformed[] = {
        R"("Filter": 5)",
        R"("Filter": "x")",
        R"("Filter": null)",
        R"("Filter": [{}])",
        R"("Filter": {"Filter_Name": 5, "Filter_Id": 7, "Database_Ids": []})",
        R"("Filter": {"Filter_Name": null, "Filter_Id": 7, "Database_Ids": []})",
        R"("Filter": {"Filter_Name": "N", "Filter_Id": "7", "Database_Ids": []})",
        R"("Filter": {"Filter_Name": "N", "Filter_Id": 7.0, "Database_Ids": []})",
        R"("Filter": {"Filter_Name": "N", "Filter_Id": true, "Database_Ids": []})",
        R"("Filter": {"Filter_Name": "N", "Filter_Id": 7, "Database_Ids": "a"})",
        R"("Filter": {"Filter_Name": "N", "Filter_Id": 7, "Database_Ids": {}})",
        R"("Filter": {"Filter_Name": "N", "Filter_Id": 7, "Database_Ids": null})",
        R"("Filter": {"Filter_Name": "N", "Filter_Id": 7, "Database_Ids": ["a", 5]})",
        R"("Filter": {"Filter_Name": "N", "Filter_Id": 7, "Database_Ids": [["a"]]})",
        R"("Filter": {"Filter_Name": "N", "Filter_Id": 7})",
        R"("Filter": {"Filter_Name": "", "Filter_Id": -1})",
    };
    for (const char* entry : malformed) {
        // The last filter of the file is read first, so the filters before the malformed one are not reached.
        EXPECT_EQ(
            load(std::string(R"({"Current_Filter": 3, "Filter": {"Filter_Name": "Before", "Filter_Id": 0,
            "Database_Ids": []}, )") +
                 entry + ", " + kGood + "}"),
            3)
            << entry;
        EXPECT_EQ(loaded(), "1 Good [x,]\n") << entry;
    }
    EXPECT_TRUE(mHost.messages().empty());
}

TEST_F(LibraryFilterManagerFile, unreadableFilesHoldNoFilters)
{
    const std::string good = kGood;
    const std::string contents[] = {
        "",
        " \n",
        "{",
        "[]",
        "[{" + good + "}]",
        "\"x\"",
        "<html><body>404</body></html>",
        "{" + good,
        "{" + good + ",}",
        "{" + good + "} x",
        R"({"Current_Filter": 2.0, )" + good + "}",
        R"({"Current_Filter": "2", )" + good + "}",
        R"({"Current_Filter": null, )" + good + "}",
        R"({"Current_Filter": [2], )" + good + "}",
        R"({"Current_Filter": 2147483648, )" + good + "}",
        "{" + good + R"(, "Filter": {"Filter_Name": "N", "Filter_Id": 4294967296, "Database_Ids": []}})",
        std::string(100000, '['),
        "{\"Filter\": " + std::string(100000, '['),
        std::string("\0{}", 3),
        "\xEF\xBB\xBF{" + good + "}",
    };
    for (const std::string& content : contents) {
        EXPECT_EQ(load(content), -1) << content.substr(0, 200);
        EXPECT_EQ(loaded(), "") << content.substr(0, 200);
    }
    EXPECT_TRUE(mHost.messages().empty());
}

TEST_F(LibraryFilterManagerFile, cutAnywhereTheFileHoldsNoFilters)
{
    const fileString path = mHost.folder().file("f.json");
    ASSERT_TRUE(LibraryFilterManager::saveFiltersToFile(path, {LibraryFilter("A", 0, {"x"})}, 0));
    const std::string whole = test::readFile(path);
    for (std::size_t length = 0; length < whole.size() - 1; ++length) {
        EXPECT_EQ(load(whole.substr(0, length)), -1) << length;
        EXPECT_EQ(loaded(), "") << length;
    }
    EXPECT_EQ(load(whole.substr(0, whole.size() - 1)), 0) << "only the final line break is lost";
}

TEST_F(LibraryFilterManagerFile, pathsThatAreNoFilesHoldNoFilters)
{
    const std::string paths[] = {"/nonexistent/f.json", mHost.folder().path(), "/dev/null", "",
                                 std::string("/tmp/a\0b", 8)};
    for (const std::string& path : paths) {
        EXPECT_EQ(LibraryFilterManager::loadFiltersFromFile(fileString(path), mFilters), -1) << path;
        EXPECT_EQ(loaded(), "") << path;
    }
    EXPECT_TRUE(mHost.messages().empty());
}

TEST_F(LibraryFilterManagerFile, fileThatMayNotBeReadHoldsNoFilters)
{
    const fileString path = mHost.folder().write("f.json", std::string("{") + kGood + "}");
    ASSERT_EQ(chmod(mHost.folder().path().c_str(), 0755), 0);
    ASSERT_EQ(chmod(path.toNativeString().c_str(), 0000), 0);
    const test::ChildEnd end = test::runWithoutRights([&] {
        const bool isEmpty = LibraryFilterManager::loadFiltersFromFile(path, mFilters) == -1 &&
                             mFilters.empty() && !LibraryFilterManager::isWhollyReadable(path);
        return isEmpty && mHost.messages().empty() ? 0 : 1;
    });
    EXPECT_EQ(end.status, 0);
}

TEST_F(LibraryFilterManagerFile, folderThatMayNotBeWrittenKeepsItsFile)
{
    const fileString path = mHost.folder().write("f.json", "old");
    ASSERT_EQ(chmod(mHost.folder().path().c_str(), 0555), 0);
    ASSERT_EQ(chmod(path.toNativeString().c_str(), 0666), 0);
    const test::ChildEnd end = test::runWithoutRights([&] {
        return !LibraryFilterManager::saveFiltersToFile(path, {}, 0) && mHost.messages().empty() ? 0 : 1;
    });
    EXPECT_EQ(end.status, 0);
    EXPECT_EQ(test::readFile(path), "old");
    ASSERT_EQ(chmod(mHost.folder().path().c_str(), 0755), 0);
    EXPECT_EQ(test::listTree(mHost.folder().path() + "/core"), std::vector<std::string>());
}

TEST_F(LibraryFilterManagerFile, tellsWhetherAllOfAFileIsRead)
{
    const auto isRead = [this](const std::string& content) {
        return LibraryFilterManager::isWhollyReadable(mHost.folder().write("f.json", content));
    };
    const std::string good = kGood;
    EXPECT_TRUE(isRead("{}"));
    EXPECT_TRUE(isRead("{" + good + "}"));
    EXPECT_TRUE(isRead("{\"Current_Filter\": 3, \"x\": 1, " + good + "," + good + "}"));
    EXPECT_FALSE(isRead(""));
    EXPECT_FALSE(isRead("[]"));
    EXPECT_FALSE(isRead("{"));
    EXPECT_FALSE(isRead("{\"Current_Filter\": 3.0}"));
    EXPECT_FALSE(isRead("{\"Filter\": 5, " + good + "}"));
    EXPECT_FALSE(LibraryFilterManager::isWhollyReadable(mHost.folder().file("missing")));
    EXPECT_FALSE(LibraryFilterManager::isWhollyReadable(fileString(mHost.folder().path())));
}

TEST_F(LibraryFilterManagerFile, idBeyondAnIntMakesTheFileUnreadable)
{
    const fileString path = mHost.folder().file("f.json");
    ASSERT_TRUE(LibraryFilterManager::saveFiltersToFile(
        path, {LibraryFilter("A", 0, {}), LibraryFilter("B", 2147483648L, {})}, 0));
    EXPECT_NE(test::readFile(path).find("2147483648"), std::string::npos);
    EXPECT_EQ(LibraryFilterManager::loadFiltersFromFile(path, mFilters), -1);
    EXPECT_EQ(loaded(), "");
}

TEST_F(LibraryFilterManagerFile, readOnlyFileIsLeftAndTheUserIsTold)
{
    const fileString path = mHost.folder().write("f.json", "old");
    ASSERT_EQ(chmod(path.toNativeString().c_str(), 0444), 0);
    EXPECT_FALSE(LibraryFilterManager::saveFiltersToFile(path, {LibraryFilter("A", 0, {})}, 0));
    EXPECT_EQ(test::readFile(path), "old");
    const std::vector<test::SentMessage> expected{
        {272032391, error::Trait::Kind::ErrorMinimal, path.toNativeString(), "", ""}};
    EXPECT_EQ(mHost.messages(), expected);
}

TEST_F(LibraryFilterManagerFile, otherFailuresToSaveAreSilent)
{
    const std::string paths[] = {"/nonexistent/f.json", "", std::string("/tmp/a\0b", 8)};
    for (const std::string& path : paths)
        EXPECT_FALSE(LibraryFilterManager::saveFiltersToFile(fileString(path), {}, 0)) << path;
    EXPECT_TRUE(mHost.messages().empty());
}

TEST_F(LibraryFilterManagerFile, folderInTheFilesPlaceIsTold)
{
    EXPECT_FALSE(LibraryFilterManager::saveFiltersToFile(fileString(mHost.folder().path()), {}, 0));
    EXPECT_EQ(mHost.messages().size(), 1U);
}

TEST_F(LibraryFilterManagerFile, largeFileIsReadWhole)
{
    std::vector<LibraryFilter> filters;
    const std::string longId(5000, 'x');
    for (long id = 0; id < 1000; ++id)
        filters.push_back(LibraryFilter("Filter " + std::to_string(id), id, Ids(10, longId)));
    const fileString path = mHost.folder().file("f.json");
    ASSERT_TRUE(LibraryFilterManager::saveFiltersToFile(path, filters, 999));
    ASSERT_GT(test::readFile(path).size(), 50000000U);
    EXPECT_EQ(LibraryFilterManager::loadFiltersFromFile(path, mFilters), 999);
    ASSERT_EQ(mFilters.size(), 1000U);
    EXPECT_EQ(mFilters.front().getFilterId(), 999);
    EXPECT_EQ(mFilters.back().getDatabaseIds(), Ids(10, longId));
}
