#include "OrvLibrary/LibraryFilterManager.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <sys/stat.h>

#include <gtest/gtest.h>

#include "OrvLibrary/host/StringUtils.h"
#include "tests/support/ForwardingServices.h"
#include "tests/support/ScopedHost.h"

namespace {

using Ids = std::vector<std::string>;
using Names = std::vector<std::string>;

/// The filter manager as after its first use in a new process: it has loaded the filters of a new host.
class LibraryFilterManagerTest : public testing::Test
{
protected:
    LibraryFilterManagerTest() { mManager.loadFilters(); }

    void writeFile(const std::string& content) { mHost.folder().write("core/catalog_filters.json", content); }

    test::ScopedHost mHost;
    LibraryFilterManager& mManager = LibraryFilterManager::getLibraryFilterManager();
    const std::string mLabel = StringUtils::loadString(8930);
};

const char kTwoFilters[] = R"({"Current_Filter": 4,
    "Filter": {"Filter_Name": "A", "Filter_Id": 3, "Database_Ids": ["x", "y", "x"]},
    "Filter": {"Filter_Name": "B", "Filter_Id": 4, "Database_Ids": ["y"]}})";

} // namespace

TEST_F(LibraryFilterManagerTest, isOne)
{
    EXPECT_EQ(&mManager, &LibraryFilterManager::getLibraryFilterManager());
}

// Runs in a new process, because an earlier test has used the manager already.
TEST(LibraryFilterManagerOfANewProcess, theFirstUseLoadsTheFile)
{
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_EXIT(
        {
            const test::ScopedHost host;
            host.folder().write("core/catalog_filters.json", kTwoFilters);
            const bool isLoaded =
                LibraryFilterManager::getLibraryFilterManager().getLibraryFilters().size() == 2;
            std::_Exit(isLoaded ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
}

TEST_F(LibraryFilterManagerTest, namesItsFile)
{
    EXPECT_EQ(mManager.getFilterFilename().toUTF8String(), "catalog_filters.json");
    EXPECT_EQ(mManager.getFilterFullname().toNativeString(),
              mHost.folder().path() + "/core/catalog_filters.json");
}

TEST_F(LibraryFilterManagerTest, withoutAFileThereIsNoFilter)
{
    EXPECT_TRUE(mManager.getLibraryFilters().empty());
    EXPECT_EQ(mManager.getCurrentFilterId(), -1);
    EXPECT_FALSE(mManager.hasActiveFilter());
    EXPECT_EQ(mManager.getFilterStrings(), Names{mLabel});
    EXPECT_EQ(mManager.getCurrentFilterString(), mLabel);
    EXPECT_FALSE(mManager.isFilteredDatabase("x"));
    EXPECT_TRUE(mManager.getCurrentFilteredDatabases().empty());
    EXPECT_NE(mLabel, "");
}

TEST_F(LibraryFilterManagerTest, loadReplacesListAndCurrentId)
{
    mManager.setLibraryFilters({LibraryFilter("Old", 9, {})});
    mManager.setCurrentFilterId(9);
    writeFile(kTwoFilters);
    mManager.loadFilters();
    EXPECT_EQ(mManager.getFilterStrings(), (Names{mLabel, "B", "A"}));
    EXPECT_EQ(mManager.getCurrentFilterId(), 4);
    EXPECT_EQ(mManager.getCurrentFilterString(), "B");
    writeFile("no JSON");
    mManager.loadFilters();
    EXPECT_TRUE(mManager.getLibraryFilters().empty());
    EXPECT_EQ(mManager.getCurrentFilterId(), -1);
}

TEST_F(LibraryFilterManagerTest, currentFilterSelectsItsDatabases)
{
    writeFile(kTwoFilters);
    mManager.loadFilters();
    mManager.setCurrentFilterId(3);
    EXPECT_TRUE(mManager.hasActiveFilter());
    EXPECT_TRUE(mManager.isFilteredDatabase("x"));
    EXPECT_TRUE(mManager.isFilteredDatabase("y"));
    EXPECT_FALSE(mManager.isFilteredDatabase("X"));
    EXPECT_FALSE(mManager.isFilteredDatabase(""));
    EXPECT_EQ(mManager.getCurrentFilteredDatabases(), (Ids{"x", "y", "x"}));
    EXPECT_EQ(mManager.getCurrentFilterString(), "A");
}

TEST_F(LibraryFilterManagerTest, everyChangeReachesTheQuestionForADatabase)
{
    mManager.setLibraryFilters({LibraryFilter("A", 3, {"x", "y", "x"}), LibraryFilter("B", 4, {"z"})});
    mManager.setCurrentFilterId(3);
    EXPECT_TRUE(mManager.isFilteredDatabase("x"));
    mManager.removeIdFromLibraryFilters("x");
    EXPECT_TRUE(mManager.isFilteredDatabase("x")) << "the second entry stays";
    mManager.removeIdFromLibraryFilters("x");
    EXPECT_FALSE(mManager.isFilteredDatabase("x"));
    mManager.setCurrentFilterId(4);
    EXPECT_TRUE(mManager.isFilteredDatabase("z"));
    mManager.setLibraryFilters({LibraryFilter("B", 4, {"new"})});
    EXPECT_FALSE(mManager.isFilteredDatabase("z"));
    EXPECT_TRUE(mManager.isFilteredDatabase("new"));
    writeFile(kTwoFilters);
    mManager.loadFilters();
    EXPECT_TRUE(mManager.isFilteredDatabase("y"));
    EXPECT_FALSE(mManager.isFilteredDatabase("new"));
    ASSERT_TRUE(mManager.mergeFilters(mHost.folder().write(
        "other.json", R"({"Current_Filter": 1, "Filter": {"Filter_Name": "C", "Filter_Id": 1,
        "Database_Ids": ["merged"]}})")));
    EXPECT_TRUE(mManager.isFilteredDatabase("merged"));
}

TEST_F(LibraryFilterManagerTest, fiveThousandQuestionsTakeNoTime)
{
    Ids ids;
    for (int i = 0; i < 5000; ++i)
        ids.push_back("0b8dc3c2-5b3a-4b0e-9d5b-" + std::to_string(100000000000 + i));
    mManager.setLibraryFilters({LibraryFilter("All", 0, ids)});
    mManager.setCurrentFilterId(0);
    std::chrono::duration<double> best(1);
    for (int round = 0; round < 5; ++round) {
        mManager.setCurrentFilterId(0);
        const auto start = std::chrono::steady_clock::now();
        for (const std::string& id : ids)
            ASSERT_TRUE(mManager.isFilteredDatabase(id));
        best = std::min<std::chrono::duration<double>>(best, std::chrono::steady_clock::now() - start);
    }
    EXPECT_LT(best.count(), 0.010);
}

TEST_F(LibraryFilterManagerTest, currentIdMayNameNoFilter)
{
    mManager.setLibraryFilters({LibraryFilter("A", 3, {"x"})});
    for (const long id : {7L, -5L}) {
        mManager.setCurrentFilterId(id);
        EXPECT_EQ(mManager.getCurrentFilterId(), id);
        EXPECT_TRUE(mManager.hasActiveFilter());
        EXPECT_FALSE(mManager.isFilteredDatabase("x"));
        EXPECT_TRUE(mManager.getCurrentFilteredDatabases().empty());
        EXPECT_EQ(mManager.getCurrentFilterString(), mLabel);
    }
    mManager.setCurrentFilterId(-1);
    EXPECT_FALSE(mManager.hasActiveFilter());
}

TEST_F(LibraryFilterManagerTest, filterWithTheIdOfNoneIsNeverCurrent)
{
    mManager.setLibraryFilters({LibraryFilter("Odd", -1, {"x"})});
    mManager.setCurrentFilterId(-1);
    EXPECT_FALSE(mManager.isFilteredDatabase("x"));
    EXPECT_EQ(mManager.getCurrentFilterString(), mLabel);
}

TEST_F(LibraryFilterManagerTest, ofEqualIdsTheFirstIsFound)
{
    mManager.setLibraryFilters({LibraryFilter("A", 3, {"x"}), LibraryFilter("B", 3, {"y"})});
    mManager.setCurrentFilterId(3);
    EXPECT_EQ(mManager.getCurrentFilterString(), "A");
    EXPECT_TRUE(mManager.isFilteredDatabase("x"));
    EXPECT_FALSE(mManager.isFilteredDatabase("y"));
    EXPECT_EQ(LibraryFilterManager::getLibraryFilterFromId(3, mManager.getLibraryFilters()).getFilterName(),
              "A");
    const LibraryFilter none = LibraryFilterManager::getLibraryFilterFromId(4, mManager.getLibraryFilters());
    EXPECT_EQ(none.getFilterName(), "");
    EXPECT_EQ(none.getFilterId(), -1);
    EXPECT_TRUE(none.getDatabaseIds().empty());
}

TEST_F(LibraryFilterManagerTest, takesItsOwnListBack)
{
    mManager.setLibraryFilters({LibraryFilter("A", 3, {"x"})});
    mManager.setLibraryFilters(mManager.getLibraryFilters());
    EXPECT_EQ(mManager.getFilterStrings(), (Names{mLabel, "A"}));
}

TEST_F(LibraryFilterManagerTest, removesADatabaseOnceFromEachFilter)
{
    writeFile(kTwoFilters);
    mManager.loadFilters();
    mManager.removeIdFromLibraryFilters("x");
    EXPECT_EQ(mManager.getLibraryFilters()[0].getDatabaseIds(), Ids{"y"});
    EXPECT_EQ(mManager.getLibraryFilters()[1].getDatabaseIds(), (Ids{"y", "x"}));
    EXPECT_EQ(test::readFile(mManager.getFilterFullname()), kTwoFilters) << "nothing is saved by itself";
}

TEST_F(LibraryFilterManagerTest, savesListAndCurrentId)
{
    mManager.setLibraryFilters({LibraryFilter("A", 3, {"x"})});
    mManager.setCurrentFilterId(3);
    mManager.saveFilters();
    std::vector<LibraryFilter> filters;
    EXPECT_EQ(LibraryFilterManager::loadFiltersFromFile(mManager.getFilterFullname(), filters), 3);
    ASSERT_EQ(filters.size(), 1U);
    EXPECT_EQ(filters[0].getFilterName(), "A");
}

TEST_F(LibraryFilterManagerTest, emptyListIsNotSaved)
{
    writeFile(kTwoFilters);
    mManager.loadFilters();
    mManager.setLibraryFilters({});
    mManager.saveFilters();
    EXPECT_EQ(test::readFile(mManager.getFilterFullname()), kTwoFilters);
    mManager.loadFilters();
    EXPECT_EQ(mManager.getLibraryFilters().size(), 2U);
}

TEST_F(LibraryFilterManagerTest, failureToSaveIsIgnoredButForTheMessage)
{
    writeFile(kTwoFilters);
    ASSERT_EQ(chmod(mManager.getFilterFullname().toNativeString().c_str(), 0444), 0);
    mManager.setLibraryFilters({LibraryFilter("A", 3, {"x"})});
    mManager.saveFilters();
    EXPECT_EQ(mHost.messages().size(), 1U);
    EXPECT_EQ(test::readFile(mManager.getFilterFullname()), kTwoFilters);
}

TEST_F(LibraryFilterManagerTest, aHostThatCannotSayWhereTheFileIsHasNone)
{
    writeFile(kTwoFilters);
    mManager.loadFilters();
    test::ForwardingServices services;
    services.calls().planFault(test::Service::Paths, 1, test::Fault::Throw,
                               test::ServiceCalls::Repeat::ForEver);
    EXPECT_NO_THROW(mManager.saveFilters());
    EXPECT_NO_THROW(mManager.loadFilters());
    EXPECT_GE(services.calls().faults(), 2U);
    EXPECT_TRUE(mManager.getLibraryFilters().empty());
    EXPECT_EQ(mManager.getCurrentFilterId(), -1);
}
