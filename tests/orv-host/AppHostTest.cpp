#include "OrvHost/AppHost.h"

#include <QLocale>

#include <gmock/gmock.h>

#include "OrvLibrary/host/Application.h"
#include "OrvLibrary/host/MessagingSystem.h"
#include "OrvLibrary/host/PathUtils.h"
#include "OrvLibrary/host/PreferenceEngine.h"
#include "OrvLibrary/host/StringUtils.h"
#include "tests/orv-host/HostedTest.h"

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
