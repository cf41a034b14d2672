#include "OrvHost/update/PartialFiles.h"

#include <filesystem>

#include <gmock/gmock.h>

#include "OrvLibrary/host/PathUtils.h"
#include "tests/orv-host/HostedTest.h"

namespace fs = std::filesystem;

using OrvHost::PartialFiles;
using testing::ElementsAre;

namespace {

class PartialFilesTest : public test::HostedTest
{
protected:
    /// Writes a file of 10 bytes that is this old.
    void write(const std::string& name, std::chrono::hours age) const
    {
        const std::string path = folder.write("partial/" + name, "0123456789").toNativeString();
        fs::last_write_time(path, fs::file_time_type::clock::now() - age);
    }
    std::vector<std::string> names() const { return test::listTree(folder.path() + "/partial"); }

    const PartialFiles partial{folder.file("partial")};
};

} // namespace

TEST_F(PartialFilesTest, theyAreInTheTemporaryFolder)
{
    EXPECT_EQ(PartialFiles::defaultFolder(), PathUtils::getObject().getTempPath() / fileString("partial"));
}

TEST_F(PartialFilesTest, nameHasTheAddressAndTheVersion)
{
    // The first 20 digits of the SHA-1 of "a" and "b".
    EXPECT_EQ(partial.fileFor("a", "b"),
              folder.file("partial/86f7e437faa5a7fce15d-e9d71f5ee7c92d6dc9e9.part"));
    EXPECT_TRUE(folder.file("partial").pathExists());
}

TEST_F(PartialFilesTest, otherVersionsOfTheAddressAreRemoved)
{
    const std::string own = partial.fileFor("a", "b").stemWithExtension().toNativeString();
    const std::string other = partial.fileFor("other", "b").stemWithExtension().toNativeString();
    const std::string former = partial.fileFor("a", "former").stemWithExtension().toNativeString();
    for (const std::string& name : {own, other, former, former + ".notes", "x" + former})
        write(name, std::chrono::hours(0));
    partial.fileFor("a", "b");
    EXPECT_THAT(names(), testing::UnorderedElementsAre(own, other, former + ".notes", "x" + former));
}

TEST_F(PartialFilesTest, folderThatCannotBeMadeHasNoFile)
{
    folder.write("partial", "in the way");
    EXPECT_TRUE(partial.fileFor("a", "b").empty());
}

TEST_F(PartialFilesTest, theOldestGoUntilTheOthersFit)
{
    // The order of the names is not that of the ages.
    write("b.part", std::chrono::hours(4));
    write("d.part", std::chrono::hours(3));
    write("a.part", std::chrono::hours(2));
    write("c.part", std::chrono::hours(1));
    partial.prune(40);
    EXPECT_THAT(names(), ElementsAre("a.part", "b.part", "c.part", "d.part"));
    partial.prune(39);
    EXPECT_THAT(names(), ElementsAre("a.part", "c.part", "d.part"));
    partial.prune(20);
    EXPECT_THAT(names(), ElementsAre("a.part", "c.part"));
    partial.prune(10);
    EXPECT_THAT(names(), ElementsAre("c.part"));
    partial.prune(9);
    EXPECT_FALSE(folder.file("partial").pathExists()) << "no empty folder is left";
}

TEST_F(PartialFilesTest, filesOlderThanAWeekGoAndOthersStay)
{
    write("old.part", std::chrono::hours(7 * 24 + 1));
    write("older.part", std::chrono::hours(8 * 24));
    write("young.part", std::chrono::hours(7 * 24 - 1));
    write("old.txt", std::chrono::hours(8 * 24));
    folder.write("partial/folder.part/x", "");
    fs::last_write_time(folder.path() + "/partial/folder.part",
                        fs::file_time_type::clock::now() - std::chrono::hours(9 * 24));
    partial.prune();
    EXPECT_THAT(names(), ElementsAre("folder.part/", "folder.part/x", "old.txt", "young.part"));
}
