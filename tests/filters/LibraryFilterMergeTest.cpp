#include "OrvLibrary/LibraryFilterMerge_p.h"

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <random>
#include <set>

#include <sys/stat.h>

#include <gtest/gtest.h>

#include "OrvLibrary/LibraryFilterManager.h"
#include "OrvLibrary/host/FileUtils.h"
#include "OrvLibrary/host/MessagingSystem.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/ScopedHost.h"

namespace {

using Filters = std::vector<LibraryFilter>;
using Ids = std::vector<std::string>;

std::string describe(const Filters& filters)
{
    std::string text;
    for (const LibraryFilter& filter : filters) {
        text += std::to_string(filter.getFilterId()) + ":" + filter.getFilterName() + "(";
        for (const std::string& id : filter.getDatabaseIds())
            text += id;
        text += ") ";
    }
    return text;
}

Filters merge(Filters file, const Filters& own)
{
    LibraryFilterMerge merge(file);
    for (const LibraryFilter& filter : own)
        merge.add(filter);
    return file;
}

bool isSame(const LibraryFilter& left, const LibraryFilter& right)
{
    return left.getFilterName() == right.getFilterName() && left.getDatabaseIds() == right.getDatabaseIds();
}

/// A direct implementation of the merge rules. It searches the list at every step.
Filters plainMerge(Filters merged, const Filters& own)
{
    const auto any = [&merged](const auto& question) {
        return std::any_of(merged.begin(), merged.end(), question);
    };
    for (const LibraryFilter& filter : own) {
        if (any([&](const LibraryFilter& other) { return isSame(other, filter); }))
            continue;
        long id = 0;
        while (any([&](const LibraryFilter& other) { return other.getFilterId() == id; }))
            ++id;
        std::string name = filter.getFilterName();
        for (int n = 1; any([&](const LibraryFilter& other) { return other.getFilterName() == name; }); ++n)
            name = filter.getFilterName() + " " + std::to_string(n);
        merged.push_back(LibraryFilter(name, id, filter.getDatabaseIds()));
    }
    return merged;
}

/// Random filters with few different names, lists and ids, so that duplicates occur.
Filters madeUp(std::mt19937& random)
{
    const char* const names[] = {"K", "K 1", "K 2", "K 1 1", "B", "", " 1", "k"};
    const Ids lists[] = {{}, {"x"}, {"x", "y"}, {"y", "x"}, {"x", "x"}};
    Filters filters;
    for (unsigned count = random() % 12; count > 0; --count)
        filters.push_back(
            LibraryFilter(names[random() % 8], static_cast<long>(random() % 10) - 2, lists[random() % 5]));
    return filters;
}

class FilterMerge : public testing::Test
{
protected:
    FilterMerge() { mManager.loadFilters(); }

    fileString writeOther(const std::string& content) { return mHost.folder().write("other.json", content); }

    test::ScopedHost mHost;
    LibraryFilterManager& mManager = LibraryFilterManager::getLibraryFilterManager();
};

const char kFileBC[] = R"({"Current_Filter": 1,
    "Filter": {"Filter_Name": "B", "Filter_Id": 0, "Database_Ids": ["y"]},
    "Filter": {"Filter_Name": "C", "Filter_Id": 1, "Database_Ids": ["z"]}})";

} // namespace

TEST(LibraryFilterMerge, workedCases)
{
    struct Case
    {
        const char* what;
        Filters file;
        Filters own;
        std::string merged;
    };
    const LibraryFilter a("A", 4, {"x"});
    const LibraryFilter b("B", 0, {"y"});
    const LibraryFilter c("C", 1, {"z"});
    const Case cases[] = {
        {"known filter is left out, new one is numbered", {b, c}, {a, b}, "0:B(y) 1:C(z) 2:A(x) "},
        {"taken name", {c}, {LibraryFilter("C", 9, {"q"})}, "1:C(z) 0:C 1(q) "},
        {"taken name twice",
         {c, LibraryFilter("C 1", 5, {})},
         {LibraryFilter("C", 9, {"q"})},
         "1:C(z) 5:C 1() 0:C 2(q) "},
        {"own id is not kept", {}, {LibraryFilter("A", 7, {}), LibraryFilter("B", 3, {})}, "0:A() 1:B() "},
        {"gaps are filled in order",
         {LibraryFilter("B", 1, {}), LibraryFilter("C", 3, {})},
         {LibraryFilter("D", 1, {}), LibraryFilter("E", 1, {}), LibraryFilter("F", 1, {})},
         "1:B() 3:C() 0:D() 2:E() 4:F() "},
        {"same name and list twice among one's own", {}, {a, a}, "0:A(x) "},
        {"renamed one is met again under its new name",
         {c},
         {LibraryFilter("C", 0, {"q"}), LibraryFilter("C 1", 0, {"q"}), LibraryFilter("C", 0, {"q"})},
         "1:C(z) 0:C 1(q) 2:C 2(q) "},
        {"order of databases counts",
         {LibraryFilter("A", 0, {"x", "y"})},
         {LibraryFilter("A", 0, {"y", "x"})},
         "0:A(xy) 1:A 1(yx) "},
        {"letter case counts", {c}, {LibraryFilter("c", 0, {"z"})}, "1:C(z) 0:c(z) "},
        {"no name", {LibraryFilter("", 0, {})}, {LibraryFilter("", 0, {"q"})}, "0:() 1: 1(q) "},
        {"negative ids are no obstacle", {LibraryFilter("B", -1, {})}, {a}, "-1:B() 0:A(x) "},
        {"nothing of one's own", {b}, {}, "0:B(y) "},
    };
    for (const Case& row : cases)
        EXPECT_EQ(describe(merge(row.file, row.own)), row.merged) << row.what;
}

TEST(LibraryFilterMerge, keepsItsPromisesOverMadeUpLists)
{
    std::mt19937 random(7);
    for (int round = 0; round < 20000; ++round) {
        const Filters file = madeUp(random);
        const Filters own = madeUp(random);
        const Filters merged = merge(file, own);
        ASSERT_EQ(describe(merged), describe(plainMerge(file, own)));

        ASSERT_GE(merged.size(), file.size());
        for (std::size_t i = 0; i < file.size(); ++i) {
            ASSERT_TRUE(isSame(merged[i], file[i])) << "the file's filters come first, as they were";
            ASSERT_EQ(merged[i].getFilterId(), file[i].getFilterId());
        }
        std::set<long> ids;
        std::set<std::string> names;
        for (const LibraryFilter& filter : file) {
            ids.insert(filter.getFilterId());
            names.insert(filter.getFilterName());
        }
        for (std::size_t i = file.size(); i < merged.size(); ++i) {
            ASSERT_TRUE(ids.insert(merged[i].getFilterId()).second) << "an added id is its own";
            ASSERT_TRUE(names.insert(merged[i].getFilterName()).second) << "an added name is its own";
        }
        for (const LibraryFilter& filter : own) {
            const bool isThere = std::any_of(merged.begin(), merged.end(), [&](const LibraryFilter& other) {
                const std::string name = filter.getFilterName();
                return other.getDatabaseIds() == filter.getDatabaseIds() &&
                       other.getFilterName().compare(0, name.size(), name) == 0;
            });
            ASSERT_TRUE(isThere) << "no list is lost";
        }
    }
}

TEST(LibraryFilterMerge, noStepLooksThroughTheList)
{
    // Merges ten thousand filters of one name into ten thousand of the same name. For each filter the merge
    // must find its suffix, its id and duplicates without trying all others. Quadratic steps would take
    // minutes.
    Filters file;
    Filters own;
    for (long i = 0; i < 10000; ++i) {
        file.push_back(LibraryFilter("Kitchen", i, {"common", "file" + std::to_string(i)}));
        own.push_back(LibraryFilter("Kitchen", i, {"common", "own" + std::to_string(i)}));
    }
    const auto start = std::chrono::steady_clock::now();
    const Filters merged = merge(file, own);
    const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
    ASSERT_EQ(merged.size(), 20000U);
    EXPECT_EQ(merged.back().getFilterName(), "Kitchen 10000");
    EXPECT_EQ(merged.back().getFilterId(), 19999);
    EXPECT_LT(seconds.count(), 5) << "also in a debug build on a busy machine";
}

TEST_F(FilterMerge, fileTakesTheFiltersAndTheManagerTheFile)
{
    const fileString path = writeOther(kFileBC);
    mManager.setLibraryFilters({LibraryFilter("A", 4, {"x"}), LibraryFilter("B", 0, {"y"})});
    mManager.setCurrentFilterId(4);
    ASSERT_TRUE(mManager.mergeFilters(path));
    EXPECT_EQ(describe(mManager.getLibraryFilters()), "1:C(z) 0:B(y) 2:A(x) ");
    EXPECT_EQ(mManager.getCurrentFilterId(), 1);
    Filters written;
    EXPECT_EQ(LibraryFilterManager::loadFiltersFromFile(path, written), 1);
    EXPECT_EQ(describe(written), "2:A(x) 0:B(y) 1:C(z) ");
    EXPECT_FALSE(mManager.getFilterFullname().pathExists()) << "the manager's own file is not written";
}

TEST_F(FilterMerge, missingFileIsMade)
{
    mManager.setLibraryFilters({LibraryFilter("A", 4, {"x"}), LibraryFilter("B", 9, {})});
    mManager.setCurrentFilterId(4);
    const fileString path = mHost.folder().file("new.json");
    ASSERT_TRUE(mManager.mergeFilters(path));
    EXPECT_EQ(describe(mManager.getLibraryFilters()), "0:A(x) 1:B() ");
    EXPECT_EQ(mManager.getCurrentFilterId(), -1);
    EXPECT_TRUE(path.pathExists());
}

TEST_F(FilterMerge, aFileThatCannotBeReadIsNotWrittenOver)
{
    const fileString file = mHost.folder().write("large.json", "{}");
    std::filesystem::resize_file(file.toNativeString(), (std::uintmax_t(256) << 20) + 1); // a sparse file
    mManager.setLibraryFilters({LibraryFilter("Own", 0, {"a"})});
    EXPECT_FALSE(mManager.mergeFilters(file));
    EXPECT_EQ(FileUtils::fileSize(file), (std::int64_t(256) << 20) + 1);
    EXPECT_EQ(describe(mManager.getLibraryFilters()), "0:Own(a) ");
    const std::vector<test::SentMessage> expected{
        {272032391, error::Trait::Kind::ErrorMinimal, file.toNativeString(), "", ""}};
    EXPECT_EQ(mHost.messages(), expected);
}

TEST_F(FilterMerge, aFileThatMayNotBeReadIsNotWrittenOver)
{
    const fileString file = writeOther(kFileBC);
    mManager.setLibraryFilters({LibraryFilter("Own", 0, {"a"})});
    ASSERT_EQ(chmod(mHost.folder().path().c_str(), 0777), 0);
    ASSERT_EQ(chmod(file.toNativeString().c_str(), 0222), 0);
    const test::ChildEnd end = test::runWithoutRights([&] {
        return mManager.mergeFilters(file) ? 1 : mHost.messages().size() == 1 ? 0 : 2;
    });
    EXPECT_EQ(end.status, 0);
    ASSERT_EQ(chmod(file.toNativeString().c_str(), 0644), 0);
    EXPECT_EQ(test::readFile(file), kFileBC);
}

TEST_F(FilterMerge, aFileThatIsNoJsonIsWrittenOver)
{
    const fileString file = writeOther("my shopping list");
    mManager.setLibraryFilters({LibraryFilter("Own", 7, {"a"})});
    EXPECT_TRUE(mManager.mergeFilters(file));
    EXPECT_EQ(describe(mManager.getLibraryFilters()), "0:Own(a) ");
    EXPECT_TRUE(mHost.messages().empty());
}

TEST_F(FilterMerge, folderInTheFilesPlaceIsTold)
{
    mManager.setLibraryFilters({LibraryFilter("Own", 4, {"a"})});
    EXPECT_FALSE(mManager.mergeFilters(fileString(mHost.folder().path())));
    const std::vector<test::SentMessage> expected{
        {272032391, error::Trait::Kind::ErrorMinimal, mHost.folder().path(), "", ""}};
    EXPECT_EQ(mHost.messages(), expected);
    EXPECT_EQ(describe(mManager.getLibraryFilters()), "4:Own(a) ");
}

TEST_F(FilterMerge, failureToWriteChangesNothing)
{
    mManager.setLibraryFilters({LibraryFilter("A", 4, {"x"})});
    mManager.setCurrentFilterId(4);
    const fileString path = writeOther(kFileBC);
    ASSERT_EQ(chmod(path.toNativeString().c_str(), 0444), 0);
    EXPECT_FALSE(mManager.mergeFilters(path));
    EXPECT_FALSE(mManager.mergeFilters(fileString("/nonexistent/f.json")));
    EXPECT_EQ(describe(mManager.getLibraryFilters()), "4:A(x) ");
    EXPECT_EQ(mManager.getCurrentFilterId(), 4);
    EXPECT_EQ(test::readFile(path), kFileBC);
}

TEST_F(FilterMerge, mergeDoneAgainAfterHalfOfItAddsOneRenamedCopy)
{
    // The process ended after it wrote the other file and before it wrote the manager's own file.
    const fileString path = writeOther(kFileBC);
    const Filters own{LibraryFilter("B", 0, {"mine"}), LibraryFilter("A", 4, {"x"})};
    for (int merge = 0; merge < 2; ++merge) {
        mManager.setLibraryFilters(own);
        ASSERT_TRUE(mManager.mergeFilters(path));
    }
    std::string names;
    for (const LibraryFilter& filter : mManager.getLibraryFilters())
        names += filter.getFilterName() + "(" + filter.getDatabaseIds().front() + ") ";
    EXPECT_EQ(names, "A(x) B 1(mine) B(y) C(z) B 2(mine) ") << "and none of other names";
}
