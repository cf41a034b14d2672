#include <set>
#include <thread>
#include <vector>

#include <sys/stat.h>

#include "tests/host/ServiceContract.h"

namespace {

class PathUtilsContract : public test::ServiceContract
{
protected:
    static std::vector<fileString> folders()
    {
        const PathUtils& paths = PathUtils::getObject();
        return {paths.getUserLibraryDatabasePath(),  paths.getCoreLibraryDatabasePath(),
                paths.getBonusLibraryDatabasePath(), paths.getManufacturerLibraryPath(),
                paths.getManufacturerDataPath(),     paths.getProprietaryLibraryReferencedFilesPath(),
                paths.getUserTexturePath(),          paths.getTempPath()};
    }
};

TEST_P(PathUtilsContract, foldersAreAbsoluteDistinctAndEndWithASeparator)
{
    std::set<fileString> seen;
    for (const fileString& folder : folders()) {
        const std::string& text = folder.toNativeString();
        EXPECT_EQ(text.front(), '/') << text;
        EXPECT_EQ(text.back(), '/') << text;
        EXPECT_EQ(folder, folder.parentPathWithSeparator());
        EXPECT_TRUE(seen.insert(folder).second) << text;
    }
    expectCalls(test::Service::Paths);
}

TEST_P(PathUtilsContract, theTemporaryFolderExistsAndIsPrivate)
{
    struct stat status = {};
    ASSERT_EQ(stat(PathUtils::getObject().getTempPath().toNativeString().c_str(), &status), 0);
    EXPECT_TRUE(S_ISDIR(status.st_mode));
    EXPECT_EQ(status.st_mode & 07777, 0700u);
}

TEST_P(PathUtilsContract, everyThreadGetsTheSameFolders)
{
    const std::vector<fileString> expected = folders();
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([&] {
            for (int round = 0; round < 20; ++round)
                EXPECT_EQ(folders(), expected);
        });
    for (std::thread& thread : threads)
        thread.join();
}

ORV_TEST_IMPLEMENTATIONS(PathUtilsContract);

} // namespace
