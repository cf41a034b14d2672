#include "OrvLibrary/host/impl/files/TempNames_p.h"

#include <filesystem>
#include <thread>

#include <gtest/gtest.h>

#include "OrvLibrary/host/fileString.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/TempFolder.h"

namespace {

using Names = std::vector<std::string>;

class TempNames : public testing::Test
{
protected:
    Names list() const { return test::listTree(mFolder.path()); }

    /// Leaves temporary files as a killed process would.
    void leaveFiles() const
    {
        mFolder.write(host::makeTempName(".zip"), "x");
        mFolder.write(host::makeTempName(""), "x");
        mFolder.write("." + host::makeTempName(".orvlib") + ".0123456789abcdef.orv-new", "x");
    }

    test::TempFolder mFolder;
};

TEST_F(TempNames, leftoversOfKilledProcessesAreRemovedOnFirstUse)
{
    leaveFiles();
    host::claimTempFolder(mFolder.path());
    EXPECT_EQ(list(), Names{});
}

TEST_F(TempNames, onlyNamesOfThisKindAreRemoved)
{
    const std::string digits = "0123456789abcdef01234567";
    for (const std::string name :
         {"update.lock", "orv-123.zip", "orv-library.downloads.core", ".hidden", "other"})
        mFolder.write(name, "x");
    mFolder.write("orv-" + digits + "8.zip", "x");
    mFolder.write("Orv-" + digits, "x");
    std::filesystem::create_directory(mFolder.path() + "/orv-" + digits);
    const Names before = list();
    host::claimTempFolder(mFolder.path());
    EXPECT_EQ(list(), before);
}

TEST_F(TempNames, ownFilesStayOnLaterUse)
{
    host::claimTempFolder(mFolder.path());
    leaveFiles();
    host::claimTempFolder(mFolder.path());
    EXPECT_EQ(list().size(), 3u);
}

TEST_F(TempNames, filesStayThoughThreadsClaimTheFolderAtOnce)
{
    for (int round = 0; round < 20; ++round) {
        const std::string folder = mFolder.path() + "/" + std::to_string(round);
        std::filesystem::create_directory(folder);
        std::vector<std::thread> threads;
        for (int thread = 0; thread < 4; ++thread) {
            threads.emplace_back([&folder] {
                host::claimTempFolder(folder);
                test::writeFile(folder + "/" + host::makeTempName(".zip"), "x");
            });
        }
        for (std::thread& thread : threads)
            thread.join();
        EXPECT_EQ(test::listTree(folder).size(), 4u);
    }
}

TEST_F(TempNames, theFilesOfALivingProcessStay)
{
    {
        const test::WaitingChild child([&] {
            host::claimTempFolder(mFolder.path());
            leaveFiles();
        });
        host::claimTempFolder(mFolder.path());
        EXPECT_EQ(list().size(), 3u);
    }
    const test::TempFolder other;
    host::claimTempFolder(other.path()); // releases the first folder
    host::claimTempFolder(mFolder.path());
    EXPECT_EQ(list(), Names{}) << "the child is gone";
}

TEST_F(TempNames, filesOfASecondProcessStayAfterTheFirstHasEnded)
{
    {
        const test::WaitingChild first([&] { host::claimTempFolder(mFolder.path()); });
        host::claimTempFolder(mFolder.path());
        leaveFiles();
    }
    const test::TempFolder other;
    const auto third = test::runInChild([&] {
        host::claimTempFolder(other.path()); // gives back the lock that was inherited
        host::claimTempFolder(mFolder.path());
        return 0;
    });
    EXPECT_EQ(third.status, 0);
    EXPECT_EQ(list().size(), 3u);
}

TEST_F(TempNames, aFolderThatIsMissingOrReplacedIsNoFailure)
{
    host::claimTempFolder(mFolder.path() + "/none");
    std::filesystem::create_directory(mFolder.path() + "/temp");
    host::claimTempFolder(mFolder.path() + "/temp");
    std::filesystem::rename(mFolder.path() + "/temp", mFolder.path() + "/former");
    mFolder.write("temp/" + host::makeTempName(".zip"), "x");
    host::claimTempFolder(mFolder.path() + "/temp");
    EXPECT_EQ(list(), (Names{"former/", "temp/"}));
}

TEST_F(TempNames, noTwoAreEqual)
{
    EXPECT_NE(host::makeTempName(".zip"), host::makeTempName(".zip"));
    EXPECT_EQ(fileString(host::makeTempName(".zip")).extension(), fileString(".zip"));
}

} // namespace
