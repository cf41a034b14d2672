#include "OrvHost/records/FilterChange.h"

#include <gmock/gmock.h>

#include "OrvHost/update/HostLock.h"
#include "OrvLibrary/host/PathUtils.h"
#include "tests/orv-host/HostedTest.h"
#include "tests/support/ForwardingServices.h"

namespace {

using OrvHost::FilterChange;
using testing::ElementsAre;

class FilterChangeTest : public test::HostedTest
{
protected:
    FilterChangeTest() { mManager.loadFilters(); }

    /// Writes the filter file as another program would.
    void writeElsewhere(const std::string& content) { test::writeFile(mFile.toNativeString(), content); }

    std::vector<std::string> names() const
    {
        std::vector<std::string> names;
        for (const LibraryFilter& filter : mManager.getLibraryFilters())
            names.push_back(filter.getFilterName());
        return names;
    }

    LibraryFilterManager& mManager = LibraryFilterManager::getLibraryFilterManager();
    const fileString mFile = mManager.getFilterFullname();
};

const char kTwo[] = R"({"Current_Filter": 1,
    "Filter": {"Filter_Name": "Kitchen", "Filter_Id": 0, "Database_Ids": ["a", "b", "a"]},
    "Filter": {"Filter_Name": "Bath", "Filter_Id": 1, "Database_Ids": ["b"]}})";

TEST_F(FilterChangeTest, startsFromWhatAnotherProgramLeftMeanwhile)
{
    writeElsewhere(kTwo);
    FilterChange change;
    EXPECT_THAT(names(), ElementsAre("Bath", "Kitchen"));
    change.use(0);
    EXPECT_TRUE(change.save().empty());
    mManager.setLibraryFilters({});
    mManager.loadFilters();
    EXPECT_THAT(names(), ElementsAre("Bath", "Kitchen"));
    EXPECT_EQ(mManager.getCurrentFilterId(), 0);
}

TEST_F(FilterChangeTest, keepsTheOrderWhateverIsChanged)
{
    writeElsewhere(kTwo);
    FilterChange change;
    EXPECT_EQ(change.add("Hall", {"c"}), 2);
    EXPECT_EQ(change.add("Attic", {}, -7), -7);
    EXPECT_EQ(change.dropDatabase("a"), 1u);
    EXPECT_EQ(change.dropDatabase("none"), 0u);
    change.save();
    EXPECT_THAT(names(), ElementsAre("Attic", "Hall", "Bath", "Kitchen"));
    change.remove(2);
    change.save();
    EXPECT_THAT(names(), ElementsAre("Attic", "Bath", "Kitchen"));
    EXPECT_EQ(mManager.getLibraryFilters().back().getDatabaseIds(), (std::vector<std::string>{"b", "a"}));
}

TEST_F(FilterChangeTest, lowestFreeIdBeginsAtZero)
{
    FilterChange change;
    EXPECT_EQ(change.add("First", {}), 0);
    EXPECT_EQ(change.add("Third", {}, 2), 2);
    EXPECT_EQ(change.add("Second", {}), 1);
}

TEST_F(FilterChangeTest, onlyTheRemovedFilterIsNoLongerTheCurrentOne)
{
    writeElsewhere(R"({"Current_Filter": 1,
        "Filter": {"Filter_Name": "Kitchen", "Filter_Id": 0, "Database_Ids": []},
        "Filter": {"Filter_Name": "Bath", "Filter_Id": 1, "Database_Ids": []},
        "Filter": {"Filter_Name": "Hall", "Filter_Id": 1, "Database_Ids": []}})");
    FilterChange change;
    change.remove(0);
    EXPECT_EQ(mManager.getCurrentFilterId(), 1);
    change.remove(1);
    EXPECT_THAT(names(), ElementsAre("Bath"));
    EXPECT_EQ(mManager.getCurrentFilterId(), 1) << "another one has its id";
    change.remove(1);
    EXPECT_EQ(mManager.getCurrentFilterId(), FilterChange::kNoFilter);
}

TEST_F(FilterChangeTest, doesNotSayThatNothingIsDroppedFromAFileThatItCannotRead)
{
    writeElsewhere("my shopping list");
    FilterChange change;
    EXPECT_THROW(change.dropDatabase("a"), std::runtime_error);
}

TEST_F(FilterChangeTest, dropsNothingWhereNothingIs)
{
    EXPECT_EQ(FilterChange().dropDatabase("a"), 0u) << "there is no file";
    writeElsewhere(R"({"Filter": {"Filter_Name": "Empty", "Filter_Id": 0, "Database_Ids": []}})");
    EXPECT_EQ(FilterChange().dropDatabase("a"), 0u);
}

TEST_F(FilterChangeTest, dropsWhatItCanRead)
{
    writeElsewhere(R"({"Filter": {"Filter_Name": "First", "Filter_Id": 0},
        "Filter": {"Filter_Name": "B", "Filter_Id": 1, "Database_Ids": ["a"]}})");
    EXPECT_EQ(FilterChange().dropDatabase("a"), 1u);
}

TEST_F(FilterChangeTest, refusesIdsThatAreUnknownAndIdsAndNamesThatAreTaken)
{
    writeElsewhere(kTwo);
    FilterChange change;
    EXPECT_THROW(change.use(7), std::runtime_error);
    EXPECT_THROW(change.remove(7), std::runtime_error);
    EXPECT_THROW(change.add("New", {}, 1), std::runtime_error);
    EXPECT_THROW(change.add("Bath", {}), std::runtime_error);
    change.use(FilterChange::kNoFilter);
    change.save();
    EXPECT_THAT(names(), ElementsAre("Bath", "Kitchen"));
    EXPECT_EQ(mManager.getCurrentFilterId(), -1);
}

TEST_F(FilterChangeTest, anEditorsChangesMeetThoseOfAnotherProgram)
{
    writeElsewhere(kTwo);
    mManager.loadFilters();
    mManager.setCurrentFilterId(1);
    const FilterChange::Filters before = mManager.getLibraryFilters(); // Bath 1, Kitchen 0
    FilterChange::Filters after = before;
    after.erase(after.begin());
    after.front().setFilterName("Cooking");
    after.emplace_back("Hall", 2, std::vector<std::string>{"h"});
    writeElsewhere(R"({"Current_Filter": 1,
        "Filter": {"Filter_Name": "Cellar", "Filter_Id": 3, "Database_Ids": []},
        "Filter": {"Filter_Name": "Attic", "Filter_Id": 2, "Database_Ids": ["x"]},
        "Filter": {"Filter_Name": "Kitchen", "Filter_Id": 0, "Database_Ids": ["a"]},
        "Filter": {"Filter_Name": "Bath", "Filter_Id": 1, "Database_Ids": ["b"]}})");
    FilterChange change;
    change.apply(before, after);
    change.save();
    EXPECT_THAT(names(), ElementsAre("Cooking", "Attic", "Cellar", "Hall"));
    EXPECT_EQ(mManager.getLibraryFilters().back().getFilterId(), 4) << "its own was taken meanwhile";
    EXPECT_EQ(mManager.getCurrentFilterId(), -1);
}

TEST_F(FilterChangeTest, keepsACopyOfAFileThatIsReadInPartOnly)
{
    const std::string halfMalformed = R"({"Filter": {"Filter_Name": "First", "Filter_Id": 0},
        "Filter": {"Filter_Name": "B", "Filter_Id": 1, "Database_Ids": []}})";
    writeElsewhere(halfMalformed);
    FilterChange change;
    change.use(1);
    const fileString copy = change.save();
    EXPECT_EQ(test::readFile(copy), halfMalformed);
    EXPECT_THAT(names(), ElementsAre("B"));
}

TEST_F(FilterChangeTest, keepsACopyOfEachUnreadableFile)
{
    std::vector<std::string> kept;
    for (const char* notes : {"notes 1", "notes 2", "notes 3"}) {
        writeElsewhere(notes);
        const fileString copy = FilterChange::prepareToOverwrite(mFile);
        kept.push_back(copy.extension().toNativeString() + " " + test::readFile(copy));
    }
    EXPECT_THAT(kept, ElementsAre(".unreadable notes 1", ".2 notes 2", ".3 notes 3"));
}

TEST_F(FilterChangeTest, keepsOthersOutOfBothFoldersUntilItsEnd)
{
    const auto isFree = [](const fileString& path) {
        try {
            OrvHost::HostLock::ofChange(path, "filters", std::chrono::milliseconds(1));
            return true;
        } catch (const std::runtime_error&) {
            return false;
        }
    };
    const fileString own = folder.file("root/core"), other = folder.file("other");
    folder.write("other/catalog_filters.json", "{}");
    {
        const FilterChange change;
        EXPECT_FALSE(isFree(own));
        EXPECT_TRUE(isFree(other));
    }
    {
        const FilterChange change(other / fileString("catalog_filters.json"));
        EXPECT_FALSE(isFree(own));
        EXPECT_FALSE(isFree(other));
    }
    EXPECT_TRUE(isFree(own));
    EXPECT_TRUE(isFree(other));
}

TEST_F(FilterChangeTest, keepsInMemoryWhatItWroteIfTheFileCannotBeReadThen)
{
    writeElsewhere(kTwo);
    test::ServiceCalls calls;
    test::ForwardingPathUtils paths(PathUtils::getObject(), calls);
    PathUtils* const former = PathUtils::install(&paths);
    std::size_t callsOfSave = 0;
    {
        FilterChange change;
        callsOfSave = calls.total();
        change.save();
        callsOfSave = calls.total() - callsOfSave;
    }
    {
        FilterChange change;
        change.add("Hall", {"c"});
        // The last call names the file that is loaded after the write.
        calls.planFault(calls.total() + callsOfSave, test::Fault::Throw);
        change.save();
    }
    PathUtils::install(former);
    EXPECT_EQ(calls.faults(), 1u);
    EXPECT_THAT(names(), ElementsAre("Hall", "Bath", "Kitchen"));
    EXPECT_EQ(mManager.getCurrentFilterId(), 1);
    mManager.loadFilters();
    EXPECT_THAT(names(), ElementsAre("Hall", "Bath", "Kitchen"));
}

TEST_F(FilterChangeTest, refusesToBeginIfTheFileCannotBeReadAtFirst)
{
    writeElsewhere(kTwo);
    test::ServiceCalls calls;
    test::ForwardingPathUtils paths(PathUtils::getObject(), calls);
    PathUtils* const former = PathUtils::install(&paths);
    calls.planFault(2, test::Fault::Throw); // the first call is that of the lock
    EXPECT_THAT([] { FilterChange change; },
                testing::ThrowsMessage<std::runtime_error>("cannot read " + mFile.toNativeString()));
    PathUtils::install(former);
    EXPECT_EQ(test::readFile(mFile), kTwo);
}

TEST_F(FilterChangeTest, anIdThatNoFilterHasIsNoFilterInForce)
{
    writeElsewhere(kTwo);
    mManager.loadFilters();
    EXPECT_TRUE(FilterChange::isFiltering(mManager));
    mManager.setCurrentFilterId(7);
    EXPECT_FALSE(FilterChange::isFiltering(mManager));
    mManager.setCurrentFilterId(-1);
    EXPECT_FALSE(FilterChange::isFiltering(mManager));
}

} // namespace
