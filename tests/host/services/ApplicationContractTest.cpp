#include <thread>

#include "tests/host/ServiceContract.h"

namespace {

class ApplicationContract : public test::ServiceContract
{
};

TEST_P(ApplicationContract, hasANameAndTheNameOfAContentIndex)
{
    const Application* const application = gApp;
    ASSERT_NE(application, nullptr);
    EXPECT_FALSE(application->name().empty());
    const std::string index = application->contentIndexName().toNativeString();
    const std::string ending = "_Core_Content_Index.txt";
    ASSERT_GT(index.size(), ending.size());
    EXPECT_EQ(index.substr(index.size() - ending.size()), ending);
    EXPECT_EQ(index.find('/'), std::string::npos);
    expectCalls(test::Service::Application);
}

TEST_P(ApplicationContract, saysTheSameOnEveryThread)
{
    const std::string name = gApp.load()->name();
    std::thread thread([&] { EXPECT_EQ(gApp.load()->name(), name); });
    thread.join();
}

ORV_TEST_IMPLEMENTATIONS(ApplicationContract);

} // namespace
