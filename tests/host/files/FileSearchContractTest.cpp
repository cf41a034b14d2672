#include <thread>

#include "tests/host/ServiceContract.h"

namespace {

class FileSearchContract : public test::ServiceContract
{
};

TEST_P(FileSearchContract, takesAnyFolderAndChangesNothingOnDisk)
{
    mFolder.write("folder/file", "x");
    const auto before = test::listTree(mFolder.path());
    for (const fileString& folder :
         {mFolder.file("folder"), mFolder.file("folder/"), mFolder.file("none"), mFolder.file("folder/file"),
          fileString(), fileString(std::string(1, '\0'))})
        EXPECT_NO_THROW(FileSearch::get().resetFileSearch(folder));
    EXPECT_EQ(test::listTree(mFolder.path()), before);
    expectCalls(test::Service::FileSearch);
}

TEST_P(FileSearchContract, mayBeCalledFromEveryThread)
{
    std::thread thread([] { EXPECT_NO_THROW(FileSearch::get().resetFileSearch(fileString("/x"))); });
    EXPECT_NO_THROW(FileSearch::get().resetFileSearch(fileString("/x")));
    thread.join();
}

ORV_TEST_IMPLEMENTATIONS(FileSearchContract);

} // namespace
