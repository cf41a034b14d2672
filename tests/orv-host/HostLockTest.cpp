#include "OrvHost/update/HostLock.h"

#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstddef>
#include <cstring>
#include <filesystem>
#include <optional>
#include <stdexcept>
#include <thread>
#include <utility>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <gmock/gmock.h>

#include "tests/orv-host/HostedTest.h"

using OrvHost::HostLock;
using std::chrono::milliseconds;

using HostLockTest = test::HostedTest;

namespace {

std::atomic<int> gFailure{0}; ///< an error number; 0: the system answers

/// Lets the system's locks fail with this error number until the destructor.
class FailingLocks
{
public:
    explicit FailingLocks(int error) { gFailure = error; }
    ~FailingLocks() { gFailure = 0; }
    FailingLocks(const FailingLocks&) = delete;
    FailingLocks& operator=(const FailingLocks&) = delete;
};

} // namespace

// This definition takes precedence over that of the C library.
extern "C" __attribute__((visibility("default"))) int flock(int descriptor, int operation) noexcept
{
    if (gFailure == 0)
        return static_cast<int>(syscall(SYS_flock, descriptor, operation));
    errno = gFailure;
    return -1;
}

namespace {

/// Tries to lock the filters for 50 ms. Returns the error message, or an empty string on success.
std::string refusalOfChange()
{
    try {
        const HostLock lock = HostLock::ofChange("filters", milliseconds(50));
    } catch (const std::runtime_error& error) {
        return error.what();
    }
    return {};
}

} // namespace

TEST_F(HostLockTest, secondUpdateFailsAtOnceAndNothingIsLeft)
{
    {
        const HostLock lock = HostLock::ofUpdate();
        const auto start = std::chrono::steady_clock::now();
        EXPECT_THROW(HostLock::ofUpdate(), std::runtime_error);
        EXPECT_LT(std::chrono::steady_clock::now() - start, milliseconds(1000));
    }
    EXPECT_FALSE(folder.file("root/temp/update.lock").pathExists());
    EXPECT_NO_THROW(HostLock::ofUpdate());
    folder.write("root/temp/update.lock", "left by a process that died");
    EXPECT_NO_THROW(HostLock::ofUpdate());
}

TEST_F(HostLockTest, lookingForARunningUpdateKeepsNoneFromBeginning)
{
    const std::string path = folder.write("root/temp/update.lock", "").toNativeString();
    std::atomic<bool> isOver{false};
    std::thread looking([&] {
        while (!isOver) {
            const int descriptor = open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666);
            flock(descriptor, LOCK_EX | LOCK_NB);
            close(descriptor);
            std::this_thread::sleep_for(std::chrono::microseconds(100));
        }
    });
    for (int i = 0; i < 5000; ++i)
        EXPECT_NO_THROW(HostLock::ofUpdate());
    isOver = true;
    looking.join();
}

TEST_F(HostLockTest, changeWaitsForAnotherOne)
{
    std::optional<HostLock> first(HostLock::ofChange("filters"));
    std::thread owner([&first] {
        std::this_thread::sleep_for(milliseconds(200));
        first.reset();
    });
    const auto start = std::chrono::steady_clock::now();
    EXPECT_NO_THROW(HostLock::ofChange("filters"));
    EXPECT_GE(std::chrono::steady_clock::now() - start, milliseconds(100));
    owner.join();
    EXPECT_FALSE(folder.file("root/temp/filters.lock").pathExists());
}

TEST_F(HostLockTest, changeIsTurnedAwayAfterItsPatience)
{
    const HostLock lock = HostLock::ofChange("filters");
    EXPECT_THAT(refusalOfChange(),
                testing::HasSubstr("filters.lock: another program is changing the filters"));
}

TEST_F(HostLockTest, refusalKeepsNoFileOpen)
{
    const auto openOnes = [] { return test::listTree("/proc/self/fd").size(); };
    const HostLock lock = HostLock::ofChange("filters");
    const std::size_t before = openOnes();
    EXPECT_NE("", refusalOfChange());
    EXPECT_EQ(before, openOnes());
}

// The former owner removes the file, and a third program may make it again before the second one has it.
TEST_F(HostLockTest, lockOfAFileThatIsGoneDoesNotCount)
{
    const auto openOnes = [] { return test::listTree("/proc/self/fd").size(); };
    const std::string path = folder.path() + "/root/imports.lock";
    const std::size_t before = openOnes();
    for (const bool isMadeAgain : {false, true}) {
        const int former = ::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
        ASSERT_EQ(0, flock(former, LOCK_EX));
        const HostLock second = HostLock::ofImport(folder.file("root"), [&] {
            std::filesystem::remove(path);
            if (isMadeAgain)
                test::writeFile(path, "");
            close(former);
            return false;
        });
        EXPECT_THROW(HostLock::ofImport(folder.file("root"), [] { return true; }), std::runtime_error)
            << isMadeAgain;
    }
    EXPECT_EQ(before, openOnes());
}

TEST_F(HostLockTest, fileSystemWithoutLocksLocksNothing)
{
    for (const int error : {ENOLCK, EOPNOTSUPP}) {
        const FailingLocks failing(error);
        const HostLock lock = HostLock::ofChange("filters");
        EXPECT_EQ("", refusalOfChange()) << std::strerror(error);
    }
}

TEST_F(HostLockTest, otherFailureOfTheSystemIsTold)
{
    const FailingLocks failing(EIO);
    EXPECT_THAT(refusalOfChange(),
                testing::AllOf(testing::StartsWith("cannot lock "), testing::HasSubstr("filters.lock: "),
                               testing::EndsWith(std::strerror(EIO))));
}

TEST_F(HostLockTest, aCancelEndsTheWaitForAnotherImport)
{
    const fileString where = folder.file("root");
    const HostLock first = HostLock::ofImport(where, {});
    int questions = 0;
    try {
        const HostLock second = HostLock::ofImport(where, [&questions] { return ++questions == 3; });
        FAIL() << "two imports at once";
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "cancelled");
    }
    EXPECT_EQ(questions, 3);
}

TEST_F(HostLockTest, otherSubjectsAndFoldersAreFree)
{
    const HostLock update = HostLock::ofUpdate();
    const HostLock filters = HostLock::ofChange("filters");
    EXPECT_NO_THROW(HostLock::ofChange("settings"));
    const HostLock other = HostLock::ofChange(folder.file("root"), "filters");
    EXPECT_TRUE(folder.file("root/.filters.lock").pathExists());
}

TEST_F(HostLockTest, moveTakesTheLockAlong)
{
    std::optional<HostLock> moved;
    {
        HostLock lock = HostLock::ofChange("filters");
        moved.emplace(std::move(lock));
    }
    EXPECT_NE("", refusalOfChange());
    moved.reset();
    EXPECT_EQ("", refusalOfChange());
}

TEST_F(HostLockTest, fileThatCannotBeMadeIsTold)
{
    EXPECT_THAT([&] { HostLock::ofChange(folder.file("root/missing"), "filters"); },
                testing::ThrowsMessage<std::runtime_error>(testing::HasSubstr(std::strerror(ENOENT))));
}
