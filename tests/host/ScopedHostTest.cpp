#include "tests/support/ScopedHost.h"

#include <gmock/gmock.h>

using testing::ElementsAre;

TEST(ScopedHost, installsEveryServiceAndRestoresTheFormer)
{
    PathUtils& paths = PathUtils::getObject();
    error::MessagingSystem& messaging = error::MessagingSystem::control();
    FileSearch& search = FileSearch::get();
    {
        test::ScopedHost host;
        EXPECT_EQ(&PathUtils::getObject(), &host.paths());
        EXPECT_EQ(&PreferenceEngine::getThePrefs(), &host.prefs());
        EXPECT_EQ(gApp.load()->name(), "Orv Test");
        EXPECT_EQ(gApp.load()->contentIndexName(), fileString("Orv_Core_Content_Index.txt"));
        FileSearch::get().resetFileSearch(fileString("/a/"));
        EXPECT_THAT(host.resetFolders(), ElementsAre("/a/"));
        error::MessagingSystem::control().notify("", 0, error::WarningTrait(), 1, "a", "", "");
        EXPECT_THAT(host.messages(), testing::SizeIs(1));
        EXPECT_EQ(PreferenceEngine::getThePrefs().getPrefAs<int>(239), 2);
        EXPECT_TRUE(PathUtils::getObject().getCoreLibraryDatabasePath().pathExists());
    }
    EXPECT_EQ(&PathUtils::getObject(), &paths);
    EXPECT_EQ(&error::MessagingSystem::control(), &messaging);
    EXPECT_EQ(&FileSearch::get(), &search);
    EXPECT_EQ(gApp.load(), nullptr);
}
