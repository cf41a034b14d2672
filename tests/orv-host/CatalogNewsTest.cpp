#include "OrvHost/history/CatalogNews.h"

#include <gmock/gmock.h>

#include "tests/orv-host/HostedTest.h"

namespace CatalogItems = OrvHost::CatalogItems;
namespace CatalogNews = OrvHost::CatalogNews;
using OrvHost::CatalogCategory;
using OrvHost::CatalogChanges;
using OrvHost::CatalogPlace;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

const CatalogPlace kDoors{CatalogCategory::Core, "T\xC3\xBCren \xFF.orvlib"};

class CatalogNewsTest : public test::HostedTest
{
protected:
    void add(const CatalogItems::Changes& items) const
    {
        CatalogNews::add(host.root(), QDateTime::currentDateTimeUtc(), {{kDoors, items}});
    }
    void addNew(std::int64_t id, const std::string& name) const
    {
        CatalogItems::Changes changes;
        changes.added = {{id, name}};
        add(changes);
    }
    /// The changes of the item since a run, such as "added Oak"; empty if there are none.
    std::string since(std::int64_t run) const
    {
        std::string text;
        for (const CatalogChanges& change : CatalogNews::since(host.root(), run)) {
            for (const auto& item : change.items.added)
                text += "added " + item.name;
            for (const auto& item : change.items.changed)
                text += "changed " + item.name;
            for (const auto& item : change.items.gone)
                text += "gone " + item.name;
        }
        return text;
    }
};

} // namespace

TEST_F(CatalogNewsTest, severalChangesOfAnItemAreJoined)
{
    CatalogItems::Changes added, changed, gone;
    added.added = {{1, "Oak"}};
    changed.changed = {{1, "Oak/2"}};
    gone.gone = {{1, "Oak/3"}};
    for (const CatalogItems::Changes& change : {added, changed, gone, added, changed, gone})
        add(change);
    EXPECT_EQ("", since(0)) << "it came and went, twice";
    EXPECT_EQ("gone Oak/3", since(1));
    EXPECT_EQ("gone Oak/3", since(2));
    EXPECT_EQ("", since(3));
    EXPECT_EQ("gone Oak/3", since(4));
    EXPECT_EQ("gone Oak/3", since(5));
    EXPECT_EQ("", since(6));
    const auto last = CatalogNews::since(host.root(), std::nullopt);
    ASSERT_THAT(last, SizeIs(1));
    EXPECT_EQ(kDoors, last[0].place) << "a name of any bytes";
}

TEST_F(CatalogNewsTest, itemThatWentAndCameBackHasChanged)
{
    CatalogItems::Changes gone;
    gone.gone = {{1, "Oak"}};
    add(gone);
    addNew(1, "Oak/2");
    EXPECT_EQ("changed Oak/2", since(0));
    EXPECT_EQ("added Oak/2", since(1));
}

TEST_F(CatalogNewsTest, rootMayHaveANameThatIsNotUtf8)
{
    folder.write("T\xFCren/empty", "");
    const fileString root = folder.file("T\xFCren");
    CatalogItems::Changes changes;
    changes.added = {{1, "Oak"}};
    CatalogNews::add(root, QDateTime::currentDateTimeUtc(), {{kDoors, changes}});
    EXPECT_THAT(CatalogNews::since(root, 0), SizeIs(1));
}

TEST_F(CatalogNewsTest, nothingIsWrittenWhereNothingChanged)
{
    CatalogNews::add(host.root(), QDateTime::currentDateTimeUtc(), {});
    EXPECT_FALSE(folder.file("root/catalog-news.json").pathExists());
    EXPECT_THAT(CatalogNews::since(host.root(), std::nullopt), IsEmpty());
    EXPECT_FALSE(CatalogNews::isKnown(host.root(), 1));
}

TEST_F(CatalogNewsTest, theLastFiftyRunsAreKept)
{
    for (int run = 1; run <= 50; ++run)
        addNew(run, "Oak");
    EXPECT_TRUE(CatalogNews::isKnown(host.root(), 1));
    addNew(51, "Elm");
    EXPECT_FALSE(CatalogNews::isKnown(host.root(), 1));
    EXPECT_TRUE(CatalogNews::isKnown(host.root(), 2));
    EXPECT_TRUE(CatalogNews::isKnown(host.root(), 51));
    EXPECT_FALSE(CatalogNews::isKnown(host.root(), 52));
}

TEST_F(CatalogNewsTest, theOldestRunsGoWhenTheyAreTooLarge)
{
    addNew(1, "small");
    addNew(2, std::string(9'000'000, 'a'));
    EXPECT_TRUE(CatalogNews::isKnown(host.root(), 1));
    addNew(3, std::string(9'000'000, 'b'));
    EXPECT_FALSE(CatalogNews::isKnown(host.root(), 2));
    EXPECT_TRUE(CatalogNews::isKnown(host.root(), 3));
    addNew(4, std::string(17'000'000, 'c'));
    EXPECT_FALSE(CatalogNews::isKnown(host.root(), 3));
    EXPECT_TRUE(CatalogNews::isKnown(host.root(), 4)) << "the last one is kept, whatever its size";
}

TEST_F(CatalogNewsTest, theUpdateThatGoesOnGivesItsNumber)
{
    folder.write("root/runs.json", R"({"runs": [{"number": 7, "kind": "update", "outcome": "updated"},
        {"number": 8, "kind": "update", "outcome": "running"},
        {"number": 9, "kind": "check", "outcome": "running"}]})");
    addNew(1, "Oak");
    EXPECT_EQ("added Oak", since(7));
    EXPECT_EQ("", since(8));
    EXPECT_TRUE(CatalogNews::isKnown(host.root(), 9)) << "by the list of runs";
    EXPECT_FALSE(CatalogNews::isKnown(host.root(), 6));
}
