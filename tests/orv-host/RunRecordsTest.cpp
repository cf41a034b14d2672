#include "OrvHost/update/RunRecords.h"

#include <stdexcept>

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gmock/gmock.h>

#include "tests/orv-host/HostedTest.h"
#include "tests/support/ChildProcess.h"

namespace RunRecords = OrvHost::RunRecords;

namespace {

const QDateTime kStart = QDateTime::fromString("2026-01-02T03:04:05+01:00", Qt::ISODate);

class RunRecordsTest : public test::HostedTest
{
protected:
    std::int64_t begin(const char* kind = "update") const
    {
        return RunRecords::begin(host.root(), kind, kStart);
    }
    void end(std::int64_t number, const char* outcome) const
    {
        RunRecords::end(host.root(), number, kStart.addSecs(7),
                        {{"outcome", outcome}, {"asked", 3}, {"catalogs", QJsonArray{"Doors"}}});
    }
    /// The recorded runs in their order, such as "2 updated".
    std::vector<std::string> listed() const
    {
        std::vector<std::string> runs;
        for (const QJsonValue& value : RunRecords::list(host.root())) {
            const QJsonObject run = value.toObject();
            runs.push_back(std::to_string(run["number"].toInt()) + " " +
                           run["outcome"].toString().toStdString());
        }
        return runs;
    }
};

} // namespace

TEST_F(RunRecordsTest, runsAreNumberedAndListedWhenTheyHaveEndedTheNewestFirst)
{
    EXPECT_EQ(begin(), 1);
    EXPECT_EQ(begin("check"), 2);
    EXPECT_THAT(listed(), testing::IsEmpty());
    EXPECT_THROW(RunRecords::show(host.root(), 1), std::runtime_error);
    end(1, "updated");
    end(2, "current");
    EXPECT_THAT(listed(), testing::ElementsAre("2 current", "1 updated"));
    EXPECT_FALSE(RunRecords::list(host.root())[0].toObject().contains("catalogs"));
    const QJsonObject run = RunRecords::show(host.root(), 1);
    EXPECT_EQ(run, (QJsonObject{{"number", 1},
                                {"start", "2026-01-02T02:04:05Z"},
                                {"end", "2026-01-02T02:04:12Z"},
                                {"kind", "update"},
                                {"outcome", "updated"},
                                {"asked", 3},
                                {"fetched", 0},
                                {"bytes", 0},
                                {"failed", QJsonArray()},
                                {"catalogs", QJsonArray{"Doors"}}}));
    EXPECT_THROW(RunRecords::show(host.root(), 3), std::runtime_error);
}

TEST_F(RunRecordsTest, aRunWhoseProcessIsGoneWasKilled)
{
    const pid_t child = fork();
    if (child == 0) {
        begin();
        _exit(0);
    }
    int status = -1;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(begin(), 2) << "this process is still there";
    EXPECT_EQ(begin(), 3);
    EXPECT_THAT(listed(), testing::ElementsAre("1 killed"));
    EXPECT_TRUE(RunRecords::show(host.root(), 1)["end"].isNull());
}

TEST_F(RunRecordsTest, runOfNoProcessWasKilled)
{
    for (const char* process : {"0", "-1", "null", "\"x\""}) {
        folder.write("root/runs.json",
                     R"({"runs": [{"number": 1, "kind": "update", "start": "", "process": )" +
                         std::string(process) + "}]}");
        EXPECT_EQ(begin(), 2) << process;
        EXPECT_THAT(listed(), testing::ElementsAre("1 killed")) << process;
    }
}

TEST_F(RunRecordsTest, theLastFiftyAreKept)
{
    for (int number = 1; number <= 51; ++number) {
        EXPECT_EQ(begin(), number);
        end(number, "updated");
    }
    EXPECT_THAT(listed(), testing::SizeIs(50));
    EXPECT_EQ(listed().front(), "51 updated");
    EXPECT_EQ(listed().back(), "2 updated");
}

TEST_F(RunRecordsTest, aFileThatIsNotUnderstoodHoldsNone)
{
    folder.write("root/runs.json", "my notes");
    EXPECT_THAT(listed(), testing::IsEmpty());
    EXPECT_EQ(begin(), 1);
}

TEST_F(RunRecordsTest, aFileThatCannotBeReadIsNotReplaced)
{
    end(begin(), "updated");
    for (const char* name : {".", "root", "root/temp"})
        ASSERT_EQ(chmod(folder.file(name).toNativeString().c_str(), 0777), 0);
    const std::string file = folder.file("root/runs.json").toNativeString();
    ASSERT_EQ(chmod(file.c_str(), 0222), 0);
    const test::ChildEnd child = test::runWithoutRights([&] {
        try {
            begin();
            return 1;
        } catch (const std::runtime_error&) {
            return 0;
        }
    });
    EXPECT_EQ(child.status, 0);
    ASSERT_EQ(chmod(file.c_str(), 0600), 0);
    EXPECT_THAT(listed(), testing::ElementsAre("1 updated"));
}
