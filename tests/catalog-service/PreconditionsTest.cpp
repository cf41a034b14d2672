#include "apps/catalog-service/Preconditions.h"

#include <gtest/gtest.h>

using Preconditions::RangeKind;

TEST(Preconditions, tagIsFoundInListsWeakFormsAndStars)
{
    const struct
    {
        std::string header;
        bool matches;
    } rows[] = {
        {"", false},       {"\"t\"", true},        {" \"t\" ", true},
        {"W/\"t\"", true}, {"\"a\", \"t\"", true}, {"\"a\",W/\"t\",\"b\"", true},
        {"*", true},       {" * ", true},          {"\"*\"", false},
        {"t", false},      {"\"T\"", false},       {"\"a\"", false},
        {"\"\"", false},   {"x\"t\"", false},      {"\"t\"x", false},
        {"\"at\"", false},
    };
    for (const auto& row : rows)
        EXPECT_EQ(Preconditions::noneMatchNames(row.header, "\"t\""), row.matches) << row.header;
}

TEST(Preconditions, rangesOfOnePart)
{
    const struct
    {
        std::string range;
        RangeKind kind;
        std::int64_t first;
        std::int64_t last;
    } rows[] = {
        {"bytes=0-0", RangeKind::Part, 0, 0},
        {"bytes=2-4", RangeKind::Part, 2, 4},
        {"bytes=2-", RangeKind::Part, 2, 9},
        {"bytes=5-100", RangeKind::Part, 5, 9},
        {"bytes=-3", RangeKind::Part, 7, 9},
        {"bytes=-100", RangeKind::Part, 0, 9},
        {"bytes=10-", RangeKind::Unsatisfiable, 0, 0},
        {"bytes=10-12", RangeKind::Unsatisfiable, 0, 0},
        {"bytes=-0", RangeKind::Unsatisfiable, 0, 0},
        {"", RangeKind::Whole, 0, 0},
        {"bytes=4-2", RangeKind::Whole, 0, 0},
        {"bytes=-", RangeKind::Whole, 0, 0},
        {"bytes=a-b", RangeKind::Whole, 0, 0},
        {"bytes=0-1,3-4", RangeKind::Whole, 0, 0},
        {"lines=0-1", RangeKind::Whole, 0, 0},
        {"bytes=99999999999999999999-", RangeKind::Whole, 0, 0},
    };
    for (const auto& row : rows) {
        const auto range = Preconditions::range(row.range, "", "\"t\"", 10);
        EXPECT_EQ(range.kind, row.kind) << row.range;
        EXPECT_EQ(range.first, row.first) << row.range;
        EXPECT_EQ(range.last, row.last) << row.range;
    }
    EXPECT_EQ(Preconditions::range("bytes=0-", "", "\"t\"", 0).kind, RangeKind::Unsatisfiable);
}

TEST(Preconditions, rangeCountsOnlyForTheTagItWasMadeFor)
{
    const auto kind = [](const std::string& ifRange) {
        return Preconditions::range("bytes=1-2", ifRange, "\"t\"", 10).kind;
    };
    EXPECT_EQ(kind("\"t\""), RangeKind::Part);
    EXPECT_EQ(kind("\"other\""), RangeKind::Whole);
    EXPECT_EQ(kind("W/\"t\""), RangeKind::Whole);
    EXPECT_EQ(kind("Sat, 21 Nov 2026 04:00:00 GMT"), RangeKind::Whole);
}
