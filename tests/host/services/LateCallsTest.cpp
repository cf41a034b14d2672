// Threads may ask for the default services even while the process ends.
#include <cstdlib>

#include <gtest/gtest.h>
#include <unistd.h>

#include "OrvLibrary/host/FileSearch.h"
#include "OrvLibrary/host/MessagingSystem.h"
#include "OrvLibrary/host/PathUtils.h"
#include "OrvLibrary/host/PreferenceEngine.h"
#include "OrvLibrary/host/StringUtils.h"
#include "tests/support/ScopedEnvironment.h"
#include "tests/support/TempFolder.h"

namespace {

constexpr int kWrongAnswer = 3;

void demand(bool isRight)
{
    if (!isRight)
        _exit(kWrongAnswer);
}

void askAllServices()
{
    demand(StringUtils::loadString(8930) == "No Filter");
    demand(xl8("no key") == "no key");
    demand(!PathUtils::getObject().getCoreLibraryDatabasePath().empty());
    demand(PreferenceEngine::getThePrefs().getPrefAs<std::string>(4711).empty());
    demand(PreferenceEngine::getThePrefs().getPrefAs<int>(PrefId::kProgressDisplayType) == 2);
    FileSearch::get().resetFileSearch(fileString("/"));
    error::MessagingSystem::control().notify(__FILE__, __LINE__, error::InformationOnceTrait(), 272032338, {},
                                             {}, {});
}

TEST(LateCalls, theDefaultServicesAnswerUntilTheProcessEnds)
{
    const test::TempFolder folder;
    const test::ScopedEnvironment root("ORV_LIBRARY_ROOT", folder.path().c_str());
    // Runs in a new process in which nothing has asked for the services before. The exit handler runs after
    // the destructors of all objects that are created at first use.
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_EXIT(
        {
            std::atexit(askAllServices);
            askAllServices();
            std::exit(0);
        },
        testing::ExitedWithCode(0), "");
}

} // namespace
