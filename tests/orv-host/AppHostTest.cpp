#include "OrvHost/AppHost.h"

#include <QLocale>

#include <gmock/gmock.h>

#include "OrvLibrary/host/Application.h"
#include "OrvLibrary/host/MessagingSystem.h"
#include "OrvLibrary/host/PathUtils.h"
#include "OrvLibrary/host/PreferenceEngine.h"
#include "OrvLibrary/host/StringUtils.h"
#include "tests/orv-host/HostedTest.h"
#include "tests/support/ScopedHost.h"

using AppHostTest = test::HostedTest;

TEST(AppHost, servicesAreInstalledForItsLifeOnly)
{
    const test::TempFolder folder;
    PathUtils* const formerPaths = &PathUtils::getObject();
    error::MessagingSystem* const formerMessages = &error::MessagingSystem::control();
    {
        const OrvHost::AppHost host({folder.file("root")});
        ASSERT_NE(nullptr, gApp.load());
        EXPECT_EQ("orv-library", gApp.load()->name());
        EXPECT_EQ(fileString("Orv_Core_Content_Index.txt"), gApp.load()->contentIndexName());
        EXPECT_EQ(folder.file("root/core/"), PathUtils::getObject().getCoreLibraryDatabasePath());
        EXPECT_EQ("false", testing::PrintToString(PreferenceEngine::getThePrefs().getPrefAs<bool>(273)));
    }
    EXPECT_EQ(nullptr, gApp.load());
    EXPECT_EQ(formerPaths, &PathUtils::getObject());
    EXPECT_EQ(formerMessages, &error::MessagingSystem::control());
}

TEST(AppHost, servicesOfAnotherHostComeBack)
{
    test::ScopedHost former;
    {
        const test::TempFolder folder;
        const OrvHost::AppHost host({folder.file("root")});
        EXPECT_NE(&former.paths(), &PathUtils::getObject());
        EXPECT_NE(&former.prefs(), &PreferenceEngine::getThePrefs());
        EXPECT_NE(&former.messaging(), &error::MessagingSystem::control());
        EXPECT_NE(&former.application(), gApp.load());
    }
    EXPECT_EQ(&former.paths(), &PathUtils::getObject());
    EXPECT_EQ(&former.prefs(), &PreferenceEngine::getThePrefs());
    EXPECT_EQ(&former.messaging(), &error::MessagingSystem::control());
    EXPECT_EQ(&former.application(), gApp.load());
}

TEST_F(AppHostTest, contentIndexCanBeAnother)
{
    host.setContentIndexName("Other.txt");
    EXPECT_EQ(fileString("Other.txt"), gApp.load()->contentIndexName());
}

TEST(AppHost, textsAreInTheUsersLanguageForItsLife)
{
    const test::TempFolder folder;
    const QLocale former;
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
    {
        const OrvHost::AppHost host({folder.file("root")});
        EXPECT_EQ("Kein Filter", StringUtils::loadString(8930));
    }
    EXPECT_EQ("No Filter", StringUtils::loadString(8930));
    QLocale::setDefault(former);
}

TEST_F(AppHostTest, preferencesAreKeptInTheRoot)
{
    PreferenceEngine::getThePrefs().setPrefAs<bool>(PrefId::kExcludeCoreContent, true);
    EXPECT_THAT(test::readFile(host.preferencesFile()), testing::HasSubstr("\"273\""));
}

TEST_F(AppHostTest, preferencesHaveTheirDefaults)
{
    EXPECT_EQ(PreferenceEngine::getThePrefs().getPrefAs<int>(PrefId::kProgressDisplayType), 2);
}

TEST(AppHost, foldersAreMadeOnlyIfWanted)
{
    const test::TempFolder folder;
    {
        const OrvHost::AppHost host({folder.file("root"), "Index.txt", false});
        EXPECT_EQ(folder.file("root/core/"), PathUtils::getObject().getCoreLibraryDatabasePath());
    }
    EXPECT_THAT(test::listTree(folder.path()), testing::IsEmpty());
    folder.write("file", "");
    EXPECT_THROW(OrvHost::AppHost({folder.file("file")}), std::runtime_error);
}
