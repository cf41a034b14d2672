// The file of favourites, when several windows share it, and when it cannot be read or written.
#include <filesystem>

#include <QAction>
#include <QDir>

#include <gmock/gmock.h>

#include "OrvHost/AppHost.h"
#include "OrvHost/update/HostLock.h"
#include "apps/orv-browser/models/ListFile.h"
#include "tests/orv-browser/BrowserTest.h"
#include "tests/orv-browser/CatalogMaker.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

class BrowserListFileTest : public test::BrowserTest
{
protected:
    fileString root() const { return fileString(inRoot("")); }
    ListFile::Entry entry(const std::string& name, long long id) const
    {
        return {{fileString(inRoot("core/Doors.orvlib")), id}, QString::fromStdString(name)};
    }
    std::vector<std::string> kept() const
    {
        std::vector<std::string> names;
        for (const ListFile::Entry& one : ListFile(root()).load().favourites)
            names.push_back(one.name.toStdString());
        return names;
    }
    void save(const ListFile::Entries& favourites) const
    {
        ListFile file(root());
        ListFile::Lists lists;
        lists.favourites = favourites;
        file.save(lists);
    }
};

} // namespace

TEST_F(BrowserListFileTest, windowsKeepEachOthersChanges)
{
    save({entry("Gate", 1), entry("Hatch", 2)});
    ListFile mine(root());
    ListFile theirs(root());
    ListFile::Lists myLists = mine.load();
    ListFile::Lists theirLists = theirs.load();
    theirLists.favourites = {entry("Gate", 1), entry("Portal", 3)}; // one goes and one comes
    theirLists.seenRun = 4;
    theirs.save(theirLists);
    myLists.favourites.push_back(entry("Wicket", 4));
    myLists.recent.push_back(entry("Wicket", 4));
    mine.save(myLists);
    EXPECT_THAT(kept(), UnorderedElementsAre("Gate", "Portal", "Wicket"));
    EXPECT_EQ(myLists.favourites.size(), 3U);
    EXPECT_EQ(myLists.seenRun, 4);
    theirLists.favourites.clear();
    theirs.save(theirLists);
    EXPECT_THAT(kept(), ElementsAre("Wicket"));
    EXPECT_EQ(ListFile(root()).load().recent.size(), 1U);
}

TEST_F(BrowserListFileTest, entryThatGetsAnotherIdIsReplaced)
{
    save({entry("Gate", 1)});
    ListFile file(root());
    ListFile::Lists lists = file.load();
    lists.favourites = {entry("Gate", 7)};
    file.save(lists);
    const ListFile::Entries favourites = ListFile(root()).load().favourites;
    ASSERT_EQ(favourites.size(), 1U);
    EXPECT_EQ(favourites[0].key.second, 7);
}

TEST_F(BrowserListFileTest, fileThatCouldNotBeReadAtFirstIsNotReplaced)
{
    save({entry("Gate", 1)});
    std::filesystem::rename(inRoot("browser-lists.json"), inRoot("aside"));
    std::filesystem::create_directory(inRoot("browser-lists.json")); // opens, and cannot be read
    ListFile file(root());
    ListFile::Lists lists = file.load();
    EXPECT_THAT(lists.favourites, IsEmpty());
    lists.favourites.push_back(entry("Hatch", 2));
    EXPECT_THROW(file.save(lists), std::runtime_error);
    std::filesystem::remove(inRoot("browser-lists.json"));
    std::filesystem::rename(inRoot("aside"), inRoot("browser-lists.json"));
    file.save(lists);
    EXPECT_THAT(kept(), UnorderedElementsAre("Gate", "Hatch"));
}

TEST_F(BrowserListFileTest, favouriteThatCannotBeKeptIsToldAndGoesAlongNextTime)
{
    {
        test::CatalogMaker doors(inRoot("core/Doors.orvlib"), "doors");
        const int all = doors.addFolder("All");
        doors.addItem(all, {"Gate"});
        doors.addItem(all, {"Hatch"});
    }
    open();
    ASSERT_TRUE(QDir().mkpath(QString::fromStdString(inRoot("browser-lists.json"))));
    select("Gate");
    trigger("toggleFavourite");
    const QString told = "Favourites and what you looked at last were not saved: ";
    EXPECT_TRUE(waitFor([&] { return summary().startsWith(told); })) << summary().toStdString();
    ASSERT_TRUE(QDir().rmdir(QString::fromStdString(inRoot("browser-lists.json"))));
    select("Hatch");
    trigger("toggleFavourite");
    EXPECT_THAT(kept(), UnorderedElementsAre("Gate", "Hatch"));
}
