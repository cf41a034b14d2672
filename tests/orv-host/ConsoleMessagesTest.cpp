#include "OrvHost/ConsoleMessages.h"

#include <gmock/gmock.h>

#include "tests/orv-host/HostedTest.h"

using testing::SizeIs;

using ConsoleMessagesTest = test::HostedTest;

TEST_F(ConsoleMessagesTest, informationIsShownOnceAndTheRestEachTime)
{
    OrvHost::ConsoleMessages messages;
    for (int i = 0; i < 2; ++i) {
        messages.notify("", 0, error::InformationOnceTrait(), 0x1001, "once", "", "");
        messages.notify("", 0, error::WarningTrait(), 0x1001, "each time", "", "");
    }
    EXPECT_THAT(messages.shown(), SizeIs(3));
    messages.notify("", 0, error::InformationOnceTrait(), 0x1002, "another", "", "");
    EXPECT_THAT(messages.shown(), SizeIs(4));
}
