#pragma once

#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "tests/support/ForwardingServices.h"
#include "tests/support/RecordingServices.h"
#include "tests/support/ScopedEnvironment.h"
#include "tests/support/TempFolder.h"

namespace test {

enum class Implementation
{
    Default,
    Forwarding ///< wraps the default
};

inline std::string implementationName(const testing::TestParamInfo<Implementation>& info)
{
    return info.param == Implementation::Default ? "Default" : "Forwarding";
}

/// The base of the contract tests. Only the implementation under test is installed, and the default root is a
/// temporary folder. There is no default application object, so the tests provide one.
class ServiceContract : public testing::TestWithParam<Implementation>
{
protected:
    ServiceContract()
        : mRoot("ORV_LIBRARY_ROOT", mFolder.path().c_str()),
          mFormerPaths(PathUtils::install(nullptr)),
          mFormerPrefs(PreferenceEngine::install(nullptr)),
          mFormerStrings(StringTable::install(nullptr)),
          mFormerMessages(error::MessagingSystem::install(nullptr)),
          mFormerSearch(FileSearch::install(nullptr)),
          mFormerCurl(Curl::install(nullptr)),
          mFormerApplication(Application::install(&mApplication))
    {
        if (GetParam() == Implementation::Forwarding)
            mForwarding = std::make_unique<ForwardingServices>();
    }

    ~ServiceContract() override
    {
        mForwarding.reset();
        Application::install(mFormerApplication);
        Curl::install(mFormerCurl);
        FileSearch::install(mFormerSearch);
        error::MessagingSystem::install(mFormerMessages);
        StringTable::install(mFormerStrings);
        PreferenceEngine::install(mFormerPrefs);
        PathUtils::install(mFormerPaths);
    }

    /// Expects that the calls went through the forwarding service if the test uses one.
    void expectCalls(Service service) const
    {
        if (mForwarding) {
            EXPECT_GT(mForwarding->calls().count(service), 0u);
        }
    }

    TempFolder mFolder;
    ScopedEnvironment mRoot;
    TestApplication mApplication;
    std::unique_ptr<ForwardingServices> mForwarding;

private:
    PathUtils* mFormerPaths;
    PreferenceEngine* mFormerPrefs;
    StringTable* mFormerStrings;
    error::MessagingSystem* mFormerMessages;
    FileSearch* mFormerSearch;
    Curl* mFormerCurl;
    Application* mFormerApplication;
};

} // namespace test

/// Runs the tests of a contract against every implementation.
#define ORV_TEST_IMPLEMENTATIONS(Fixture)                                                                    \
    INSTANTIATE_TEST_SUITE_P(                                                                                \
        Contract, Fixture, testing::Values(test::Implementation::Default, test::Implementation::Forwarding), \
        test::implementationName)
