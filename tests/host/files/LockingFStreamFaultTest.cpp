// After a kill or on a full disk the target keeps its old content.
#include <algorithm>
#include <cerrno>
#include <csignal>
#include <filesystem>
#include <functional>

#include "tests/host/files/LockingFStreamFixture.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/FileSizeLimit.h"

namespace {

using test::kWrite;
using test::Names;

using LockingFStreamFault = test::LockingFStreamFixture;

TEST_F(LockingFStreamFault, aKillInTheMiddleLeavesTheOldContentAndTheNextWriterCleansUp)
{
    const fileString file = mFolder.write("data", "old");
    const fileString fresh = mFolder.file("fresh");
    const auto end = test::runInChild([&] {
        LockingFStream out(file, kWrite);
        LockingFStream freshOut(fresh, kWrite);
        out << "half" << std::flush;
        freshOut << "half" << std::flush;
        raise(SIGKILL);
        return 0;
    });
    ASSERT_EQ(end.signal, SIGKILL);
    EXPECT_EQ(test::readFile(file), "old");
    EXPECT_FALSE(fresh.pathExists());
    EXPECT_EQ(list().size(), 3u) << "the two files beside are left";
    writeAll(file, "new");
    writeAll(fresh, "new");
    EXPECT_EQ(list(), (Names{"data", "fresh"}));
}

TEST_F(LockingFStreamFault, firstFailureIsTheReasonEvenIfLaterWritesSucceed)
{
    const fileString file = mFolder.write("data", "old");
    LockingFStream out(file, kWrite);
    {
        const test::FileSizeLimit limit(100'000);
        out << std::string(200'000, 'x');
    }
    errno = 0;
    out.close();
    EXPECT_TRUE(out.fail());
    EXPECT_EQ(errno, EFBIG);
    EXPECT_EQ(test::readFile(file), "old");
}

class LockingFStreamFullDisk : public LockingFStreamFault
{
protected:
    /// Runs `work` on a disk of 64 KiB on which `disk/data` holds "old", and expects that content afterwards.
    void expectOldContentAfter(const std::function<bool(const fileString&)>& work)
    {
        const std::string disk = mFolder.path() + "/disk";
        std::filesystem::create_directory(disk);
        std::string reason;
        const auto end = test::runOnSmallDisk(
            disk, 64,
            [&] {
                const fileString file = mFolder.write("disk/data", "old");
                if (!work(file))
                    return 1;
                return test::readFile(file) == "old" && test::listTree(disk) == Names{"data"} ? 0 : 2;
            },
            reason);
        if (!end) // only the superuser may mount a small disk
            GTEST_SKIP() << reason;
        EXPECT_EQ(end->status, 0);
    }
};

TEST_F(LockingFStreamFullDisk, leavesTheOldContent)
{
    expectOldContentAfter([](const fileString& file) {
        LockingFStream out(file, kWrite);
        for (int i = 0; i < 1024; ++i)
            out << std::string(1000, 'x') << '\n';
        errno = 0;
        out.close();
        return out.fail() && errno == ENOSPC;
    });
}

TEST_F(LockingFStreamFullDisk, isFoundAtTheLastByteToo)
{
    expectOldContentAfter([](const fileString& file) {
        LockingFStream out(file, kWrite);
        for (int i = 0; i < 63 * 1024; ++i)
            out.put('x'); // fits into the stream's buffer, but not on the disk
        const bool wasGood = out.good();
        out.close();
        return wasGood && out.fail();
    });
}

TEST_F(LockingFStreamFullDisk, isFoundByTheStreamEvenWhereItWasWrittenPastIt)
{
    expectOldContentAfter([](const fileString& file) {
        LockingFStream out(file, kWrite);
        const std::string content(1024 * 1024, 'x');
        std::copy(content.begin(), content.end(), std::ostreambuf_iterator<char>(out));
        const bool didNotNotice = out.good();
        out.close();
        return didNotNotice && out.fail();
    });
}

} // namespace
