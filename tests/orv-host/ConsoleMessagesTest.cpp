#include "OrvHost/ConsoleMessages.h"

#include <atomic>
#include <map>
#include <sstream>
#include <thread>

#include <gmock/gmock.h>

#include "tests/orv-host/HostedTest.h"

using testing::ElementsAre;
using testing::HasSubstr;

using ConsoleMessagesTest = test::HostedTest;

TEST_F(ConsoleMessagesTest, informationIsShownOnceAndTheRestEachTime)
{
    OrvHost::ConsoleMessages messages;
    for (int i = 0; i < 2; ++i) {
        messages.notify("", 0, error::InformationOnceTrait(), 0x1001, "once", "", "");
        messages.notify("", 0, error::WarningTrait(), 0x1001, "each time", "", "");
    }
    messages.notify("", 0, error::InformationOnceTrait(), 0x1002, "another", "", "");
    EXPECT_THAT(messages.shown(), ElementsAre(HasSubstr("once"), HasSubstr("each time"),
                                              HasSubstr("each time"), HasSubstr("another")));
}

TEST_F(ConsoleMessagesTest, threadsShowAllOfTheirs)
{
    constexpr std::size_t kThreads = 3, kEach = 10000;
    std::atomic<std::size_t> waiting{kThreads};
    OrvHost::ConsoleMessages messages;
    testing::internal::CaptureStderr();
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < kThreads; ++i)
        threads.emplace_back([&messages, &waiting] {
            --waiting;
            while (waiting != 0)
                std::this_thread::yield();
            for (std::size_t n = 0; n < kEach; ++n)
                messages.notify("", 0, error::WarningTrait(), 0x1001, "text", "", "");
        });
    std::size_t before = 0;
    while (before < kThreads * kEach) {
        const std::vector<std::string> shown = messages.shown();
        EXPECT_GE(shown.size(), before);
        before = shown.size();
    }
    for (std::thread& thread : threads)
        thread.join();
    std::istringstream said(testing::internal::GetCapturedStderr());
    std::map<std::string, std::size_t> lines;
    for (std::string line; std::getline(said, line);)
        ++lines[line];
    EXPECT_THAT(lines, ElementsAre(testing::Pair("orv-library: text", kThreads * kEach)))
        << "each a whole line";
    EXPECT_EQ(messages.shown(), std::vector<std::string>(kThreads * kEach, "text"));
}
