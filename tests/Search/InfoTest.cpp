#include "OrvLibrary/Search/Info.h"

#include <gmock/gmock.h>

using Library::Search::copyRestrictions;
using Library::Search::Info;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr unsigned long bit(int category)
{
    return 1UL << category;
}

/// An Info in which every value differs from the default.
Info fullInfo()
{
    Info info(bit(3) | bit(9));
    info.terms = {"oak", "door"};
    info.idRestrictionsA = {1, 2};
    info.idRestrictionsB = {-1};
    info.flag1 = true;
    info.flag2 = false;
    info.flag3 = false;
    info.flag4 = true;
    info.text = "oak door";
    return info;
}

void expectSame(const Info& left, const Info& right)
{
    EXPECT_EQ(left.terms, right.terms);
    EXPECT_EQ(left.categories, right.categories);
    EXPECT_EQ(left.idRestrictionsA, right.idRestrictionsA);
    EXPECT_EQ(left.idRestrictionsB, right.idRestrictionsB);
    EXPECT_EQ(left.flag1, right.flag1);
    EXPECT_EQ(left.flag2, right.flag2);
    EXPECT_EQ(left.flag3, right.flag3);
    EXPECT_EQ(left.flag4, right.flag4);
    EXPECT_EQ(left.text, right.text);
}

} // namespace

TEST(Info, startsEmptyWithItsFlags)
{
    const Info info;
    EXPECT_TRUE(info.empty());
    EXPECT_THAT(info.categories, IsEmpty());
    EXPECT_FALSE(info.flag1);
    EXPECT_TRUE(info.flag2);
    EXPECT_TRUE(info.flag3);
    EXPECT_FALSE(info.flag4);
}

TEST(Info, listsCategoriesInTheOrderOfTheTable)
{
    EXPECT_TRUE(Info(0).empty());
    EXPECT_THAT(Info(bit(20) | 1).categories, ElementsAre(20, 0));
    EXPECT_THAT(Info(bit(25)).categories, ElementsAre(25));
    EXPECT_THAT(Info(0xFFFFFFFF).categories, ElementsAre(20, 19, 10, 5, 6, 12, 7, 4, 2, 16, 0, 17, 1, 18, 14,
                                                         9, 23, 8, 15, 11, 21, 22, 13, 3, 24, 25));
}

TEST(Info, everyCategoryHasItsBit)
{
    for (int category = 0; category < 26; ++category)
        EXPECT_THAT(Info(bit(category)).categories, ElementsAre(category));
}

TEST(Info, ignoresBitsBeyondTheCategories)
{
    for (int category = 26; category < 64; ++category)
        EXPECT_TRUE(Info(bit(category)).empty()) << category;
}

TEST(Info, aMaskLeavesTheRestAtItsDefaults)
{
    Info info(bit(4));
    info.categories.clear();
    expectSame(info, Info());
}

TEST(Info, isEmptyWhateverTheFlagsSay)
{
    Info info;
    info.flag1 = true;
    info.flag2 = false;
    info.flag3 = false;
    info.flag4 = true;
    EXPECT_TRUE(info.empty());
}

TEST(Info, anyFieldMakesItNotEmpty)
{
    Info terms;
    terms.terms = {""};
    EXPECT_FALSE(terms.empty());
    Info categories;
    categories.categories = {0};
    EXPECT_FALSE(categories.empty());
    Info first;
    first.idRestrictionsA = {0};
    EXPECT_FALSE(first.empty());
    Info second;
    second.idRestrictionsB = {0};
    EXPECT_FALSE(second.empty());
    Info text;
    text.text = "x";
    EXPECT_FALSE(text.empty());
}

TEST(CopyRestrictions, replacesRestrictionsAndNothingElse)
{
    Info dst = fullInfo();
    Info src(bit(24) | bit(0));
    src.terms = {"never"};
    src.text = "never";
    src.flag1 = false;
    src.idRestrictionsA = {7};
    src.idRestrictionsB = {8, 9};
    copyRestrictions(dst, src);
    Info expected = fullInfo();
    expected.categories = {0, 24};
    expected.idRestrictionsA = {7};
    expected.idRestrictionsB = {8, 9};
    expectSame(dst, expected);
}

TEST(CopyRestrictions, neverClearsARestriction)
{
    Info dst = fullInfo();
    copyRestrictions(dst, Info());
    expectSame(dst, fullInfo());
}

TEST(CopyRestrictions, copiesEachRestrictionOnItsOwn)
{
    Info dst = fullInfo();
    Info src;
    src.idRestrictionsB = {5};
    copyRestrictions(dst, src);
    Info expected = fullInfo();
    expected.idRestrictionsB = {5};
    expectSame(dst, expected);
}

TEST(CopyRestrictions, ofASearchToItselfChangesNothing)
{
    Info info = fullInfo();
    copyRestrictions(info, info);
    expectSame(info, fullInfo());
}
