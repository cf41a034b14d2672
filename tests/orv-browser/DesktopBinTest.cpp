// The bin of the desktop: the places of a file and its note, and disks on which it takes nothing.
#include "apps/orv-browser/own/DesktopBin.h"

#include <csignal>
#include <filesystem>
#include <fstream>

#include <unistd.h>

#include <gmock/gmock.h>

#include "tests/support/ChildProcess.h"
#include "tests/support/ScopedEnvironment.h"
#include "tests/support/TempFolder.h"

namespace {

namespace fs = std::filesystem;
using testing::IsEmpty;
using testing::MatchesRegex;

class BrowserDesktopBinTest : public testing::Test
{
protected:
    std::string path(const std::string& name) const { return mFolder.path() + "/" + name; }
    std::string bin() const { return path("data/Trash"); }
    std::string take(const std::string& name) const
    {
        test::writeFile(path(name), "bytes of " + name);
        return DesktopBin::take(fileString(path(name))).toNativeString();
    }

    /// Runs `work` with a disk of 1 MB at "disk". A try without an end is killed.
    void onDisk(const std::function<bool()>& work) const
    {
        fs::create_directory(path("disk"));
        std::string reason;
        const auto end = test::runOnSmallDisk(
            path("disk"), 1024,
            [&] {
                signal(SIGALRM, SIG_DFL);
                alarm(20);
                return work() ? 0 : 1;
            },
            reason);
        if (!end) // only the superuser may mount a small disk
            GTEST_SKIP() << reason;
        EXPECT_EQ(0, end->status);
    }

private:
    const test::TempFolder mFolder;
    const test::ScopedEnvironment mData{"XDG_DATA_HOME", (mFolder.path() + "/data").c_str()};
};

std::string ownBin()
{
    return ".Trash-" + std::to_string(getuid());
}

} // namespace

TEST_F(BrowserDesktopBinTest, keepsAFileAndANoteOfItsPlace)
{
    EXPECT_EQ(take("100 % für.orvlib"), bin() + "/files/100 % für.orvlib");
    EXPECT_EQ(test::readFile(bin() + "/files/100 % für.orvlib"), "bytes of 100 % für.orvlib");
    EXPECT_FALSE(fs::exists(path("100 % für.orvlib")));
    EXPECT_THAT(test::readFile(bin() + "/info/100 % für.orvlib.trashinfo"),
                MatchesRegex("\\[Trash Info\\]\nPath=" + path("100%20%25%20f%C3%BCr.orvlib") +
                             "\nDeletionDate=[0-9]{4}-[0-9]{2}-[0-9]{2}T[0-9]{2}:[0-9]{2}:[0-9]{2}\n"));
    DesktopBin::removeNote(fileString(bin() + "/files/100 % für.orvlib"));
    EXPECT_THAT(test::listTree(bin() + "/info"), IsEmpty());
}

TEST_F(BrowserDesktopBinTest, isForItsUserOnly)
{
    take("Mine.zip");
    for (const char* const part : {"", "/files", "/info"})
        EXPECT_EQ(fs::status(bin() + part).permissions(), fs::perms::owner_all) << part;
}

TEST_F(BrowserDesktopBinTest, countsFilesOfOneName)
{
    EXPECT_EQ(take("Mine.orvlib"), bin() + "/files/Mine.orvlib");
    EXPECT_EQ(take("Mine.orvlib"), bin() + "/files/Mine.2.orvlib");
    test::writeFile(bin() + "/info/Mine.3.orvlib.trashinfo", "of a file that moves just now");
    test::writeFile(bin() + "/files/Mine.4.orvlib", "without a note");
    EXPECT_EQ(take("Mine.orvlib"), bin() + "/files/Mine.5.orvlib");
    EXPECT_EQ(test::readFile(bin() + "/info/Mine.3.orvlib.trashinfo"), "of a file that moves just now");
    EXPECT_EQ(test::readFile(bin() + "/files/Mine.4.orvlib"), "without a note");
    EXPECT_EQ(take("Mine"), bin() + "/files/Mine");
    EXPECT_EQ(take("Mine"), bin() + "/files/Mine.2");
}

TEST_F(BrowserDesktopBinTest, cutsANameThatIsTooLongForItsNote)
{
    std::string stem(1, 'x');
    for (int i = 0; i < 123; ++i)
        stem += "ü";
    // 245 bytes remain: "x", 118 letters of two bytes, and the ending. Half a letter would fit, too.
    const std::string kept = stem.substr(0, 1 + 2 * 118);
    EXPECT_EQ(take(stem + ".orvlib"), bin() + "/files/" + kept + ".orvlib");
    EXPECT_EQ(take(stem + ".orvlib"), bin() + "/files/" + kept.substr(0, kept.size() - 2) + ".2.orvlib");
    EXPECT_EQ(test::listTree(bin() + "/info").size(), 2u);
}

TEST_F(BrowserDesktopBinTest, fullDiskTakesNoNoteAndLeavesTheFile)
{
    const test::ScopedEnvironment data("XDG_DATA_HOME", path("disk/data").c_str());
    onDisk([&] {
        test::writeFile(path("disk/Mine.orvlib"), "mine");
        std::ofstream rest(path("disk/rest"));
        while (rest << std::string(4096, 'x') << std::flush) {
        }
        return DesktopBin::take(fileString(path("disk/Mine.orvlib"))).empty() &&
               test::readFile(path("disk/Mine.orvlib")) == "mine" &&
               test::listTree(path("disk/data/Trash/info")).empty() &&
               test::listTree(path("disk/data/Trash/files")).empty();
    });
}

TEST_F(BrowserDesktopBinTest, anotherDiskHasItsOwn)
{
    onDisk([&] {
        const std::string taken = take("disk/some folder/Mine.orvlib");
        return taken == path("disk/" + ownBin() + "/files/Mine.orvlib") &&
               test::readFile(path("disk/" + ownBin() + "/info/Mine.orvlib.trashinfo"))
                       .find("\nPath=some%20folder/Mine.orvlib\n") != std::string::npos;
    });
}

TEST_F(BrowserDesktopBinTest, anotherDiskMayHaveOneForAllUsers)
{
    onDisk([&] {
        fs::create_directory(path("disk/.Trash"));
        fs::permissions(path("disk/.Trash"), fs::perms::all); // users could remove each other's files there
        if (take("disk/One.orvlib") != path("disk/" + ownBin() + "/files/One.orvlib"))
            return false;
        fs::permissions(path("disk/.Trash"), fs::perms::all | fs::perms::sticky_bit);
        return take("disk/Two.orvlib") ==
               path("disk/.Trash/" + std::to_string(getuid()) + "/files/Two.orvlib");
    });
}

TEST_F(BrowserDesktopBinTest, linkToSomewhereElseIsNotTheBinOfADisk)
{
    onDisk([&] {
        fs::create_directory(path("elsewhere"));
        fs::create_directory(path("disk/.Trash"));
        fs::permissions(path("disk/.Trash"), fs::perms::all | fs::perms::sticky_bit);
        for (const std::string& name : {".Trash/" + std::to_string(getuid()), ownBin()})
            fs::create_directory_symlink(path("elsewhere"), path("disk/" + name));
        return take("disk/Mine.orvlib").empty() && fs::exists(path("disk/Mine.orvlib")) &&
               fs::is_empty(path("elsewhere"));
    });
}

TEST_F(BrowserDesktopBinTest, takesNothingWithoutAFolderForData)
{
    const test::ScopedEnvironment data("XDG_DATA_HOME", "/dev/null/data");
    EXPECT_EQ(take("Mine.orvlib"), "");
    EXPECT_EQ(test::readFile(path("Mine.orvlib")), "bytes of Mine.orvlib");
}

TEST_F(BrowserDesktopBinTest, takesNothingThatIsNotThere)
{
    EXPECT_TRUE(DesktopBin::take(fileString(path("Mine.orvlib"))).empty());
    EXPECT_FALSE(fs::exists(bin() + "/info"));
}
