#include "OrvLibrary/LibraryFilter.h"

#include <gtest/gtest.h>

namespace {

using Ids = std::vector<std::string>;

} // namespace

TEST(LibraryFilter, defaultIsNoFilter)
{
    const LibraryFilter filter;
    EXPECT_EQ(filter.getFilterName(), "");
    EXPECT_EQ(filter.getFilterId(), -1);
    EXPECT_EQ(filter.getDatabaseIds(), Ids());
}

TEST(LibraryFilter, keepsWhatItIsMadeOf)
{
    LibraryFilter filter("Kitchen", 4294967296L, {"b", "a", "b"});
    EXPECT_EQ(filter.getFilterName(), "Kitchen");
    EXPECT_EQ(filter.getFilterId(), 4294967296L);
    EXPECT_EQ(filter.getDatabaseIds(), (Ids{"b", "a", "b"}));
    filter.setFilterName("Bath");
    filter.setFilterId(2);
    filter.setDatabaseIds({"c"});
    EXPECT_EQ(filter.getFilterName(), "Bath");
    EXPECT_EQ(filter.getFilterId(), 2);
    EXPECT_EQ(filter.getDatabaseIds(), Ids{"c"});
}

TEST(LibraryFilter, removesTheFirstEqualDatabaseOnly)
{
    LibraryFilter filter("Kitchen", 0, {"a", "b", "a"});
    filter.removeDatabaseId("a");
    EXPECT_EQ(filter.getDatabaseIds(), (Ids{"b", "a"}));
    filter.removeDatabaseId("A");
    filter.removeDatabaseId("");
    filter.removeDatabaseId("c");
    EXPECT_EQ(filter.getDatabaseIds(), (Ids{"b", "a"}));
    filter.removeDatabaseId("a");
    filter.removeDatabaseId("b");
    EXPECT_EQ(filter.getDatabaseIds(), Ids());
}
