// The names of the files in the history.
#include <filesystem>

#include <gmock/gmock.h>

#include "OrvHost/history/CatalogHistory.h"
#include "tests/orv-host/HostedTest.h"

using OrvHost::CatalogCategory;
using OrvHost::CatalogHistory;
using OrvHost::CatalogPlace;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

const CatalogPlace kDoors{CatalogCategory::Core, "Doors.orvlib"};

class HistoryEntry : public test::HostedTest
{
protected:
    void write(const std::string& name) const
    {
        folder.write("root/history/core/Doors.orvlib/" + name, "content of " + name);
    }
    void add(const std::string& tag)
    {
        std::string reason;
        EXPECT_TRUE(history.add(kDoors, tag, folder.write("new", "content of " + tag), {}, reason)) << reason;
    }
    std::vector<std::string> versions() const
    {
        std::vector<std::string> names;
        for (const OrvHost::FormerVersion& version : history.versions(kDoors))
            names.push_back(version.version);
        return names;
    }
    std::vector<std::string> names() const
    {
        return test::listTree(folder.path() + "/root/history/core/Doors.orvlib");
    }

    CatalogHistory history;
};

} // namespace

TEST_F(HistoryEntry, nameHasTheTimeInUtcAndTheTag)
{
    write("20200102T030405678=v%2F1.orvlib");
    const std::vector<OrvHost::FormerVersion> found = history.versions(kDoors);
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(found[0].version, "v/1");
    EXPECT_EQ(found[0].replaced, QDateTime({2020, 1, 2}, {3, 4, 5, 678}, Qt::UTC));
    EXPECT_EQ(found[0].replaced.timeSpec(), Qt::UTC);
}

TEST_F(HistoryEntry, otherNamesAreNoVersions)
{
    for (const char* name :
         {"20200102T030405678.orvlib", "20200102T0304056789=1.orvlib", "20200102T030405678-1.orvlib",
          "20201302T030405678=1.orvlib", "20200102T030405678=1.txt", "notes.orvlib",
          "20200102T030405678=2.orvlib/folder"})
        write(name);
    EXPECT_THAT(versions(), IsEmpty());
    history.settle();
    EXPECT_THAT(names(), ElementsAre("20200102T030405678=2.orvlib/", "20200102T030405678=2.orvlib/folder"));
}

TEST_F(HistoryEntry, archiveNeedsItsCatalog)
{
    for (const char* name :
         {"20200102T030405678=1.orvlib", "20200102T030405678=1.zip", "20200102T030405678=1.txt",
          "20200102T030405679=1.zip", "notes.orvlib", "notes.zip"})
        write(name);
    history.settle();
    EXPECT_THAT(names(), ElementsAre("20200102T030405678=1.orvlib", "20200102T030405678=1.zip"));
}

TEST_F(HistoryEntry, tagThatIsTooLongForANameIsLeftOut)
{
    const std::string longest(200, 't');
    add(longest);
    add(longest + "t");
    EXPECT_THAT(versions(), ElementsAre(testing::SizeIs(40), longest));
}

TEST_F(HistoryEntry, newVersionIsNewerThanAllOthers)
{
    write("29991231T000000000=1.orvlib");
    add("2");
    EXPECT_THAT(names(), ElementsAre("29991231T000000000=1.orvlib", "29991231T000000001=2.orvlib"));
    EXPECT_THAT(versions(), ElementsAre("2", "1"));
}

TEST_F(HistoryEntry, versionsOfOneMillisecondAreAllKept)
{
    std::vector<std::string> expected;
    for (int number = 0; number < 40; ++number) {
        expected.insert(expected.begin(), std::to_string(number));
        add(expected.front());
    }
    EXPECT_EQ(versions(), expected);
}
