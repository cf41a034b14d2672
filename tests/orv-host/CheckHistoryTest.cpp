#include "OrvHost/update/CheckHistory.h"

#include <gmock/gmock.h>

#include "tests/orv-host/HostedTest.h"

using OrvHost::CheckHistory;

namespace {

QDateTime at(int second)
{
    return QDateTime({2026, 1, 2}, {3, 4, second, 5}, Qt::UTC);
}

class CheckHistoryTest : public test::HostedTest
{
protected:
    std::string stored() const { return test::readFile(folder.file("root/update-history.json")); }
};

} // namespace

TEST_F(CheckHistoryTest, everythingComesBack)
{
    CheckHistory history(host.root());
    history.noteAttempt(at(1), "no service");
    history.noteGoodCheck(at(2));
    history.noteAnswer("Doors.orvlib", 503, at(3), "HTTP 503");
    history.noteAnswer("G\xC3\xA4rten.orvlib", 304, at(4));
    history.save();
    const CheckHistory read(host.root());
    EXPECT_EQ(read.lastAttempt(), at(1));
    EXPECT_EQ(read.lastError(), "no service");
    EXPECT_EQ(read.lastGoodCheck(), at(2));
    ASSERT_EQ(read.answers().size(), 2U);
    const CheckHistory::Answer& doors = read.answers().at("Doors.orvlib");
    EXPECT_EQ(doors.status, 503);
    EXPECT_EQ(doors.time, at(3));
    EXPECT_EQ(doors.reason, "HTTP 503");
    EXPECT_EQ(read.answers().at("G\xC3\xA4rten.orvlib").reason, "");
}

TEST_F(CheckHistoryTest, rootMayHaveANameThatIsNotUtf8)
{
    folder.write("T\xFCren/empty", "");
    CheckHistory history(folder.file("T\xFCren"));
    history.noteAttempt(at(1), "no service");
    history.save();
    EXPECT_EQ(CheckHistory(folder.file("T\xFCren")).lastError(), "no service");
}

TEST_F(CheckHistoryTest, fileHasOnlyWhatIsKnown)
{
    CheckHistory history(host.root());
    history.save();
    EXPECT_EQ(stored(), "{\n    \"answers\": {\n    }\n}\n");
    history.noteAnswer("Doors.orvlib", 304, at(3));
    history.save();
    EXPECT_EQ(stored().find("reason"), std::string::npos);
    EXPECT_FALSE(CheckHistory(host.root()).lastAttempt().isValid());
    EXPECT_FALSE(CheckHistory(host.root()).lastGoodCheck().isValid());
}

TEST_F(CheckHistoryTest, fileThatIsNotUnderstoodIsEmpty)
{
    folder.write("root/update-history.json", "my notes");
    const CheckHistory history(host.root());
    EXPECT_FALSE(history.lastAttempt().isValid());
    EXPECT_THAT(history.answers(), testing::IsEmpty());
}
