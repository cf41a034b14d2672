#include "tests/support/ChildProcess.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <filesystem>
#include <stdexcept>

#include <csignal>
#include <grp.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#if defined(ORV_COVERAGE)
extern "C" void __gcov_dump();
#endif

namespace test {

namespace {

constexpr int kNobody = 65534;
constexpr int kThrew = 250;
constexpr int kCannotMount = 251;
constexpr char kOtherDevice[] = "/dev/shm";

int withoutExceptions(const std::function<int()>& work)
{
    try {
        return work();
    } catch (...) {
        return kThrew;
    }
}

/// Ends the child without running the exit handlers or flushing the buffers of the parent. Its coverage
/// counters are still written, even if it has given up its rights.
[[noreturn]] void endChild(int status)
{
#if defined(ORV_COVERAGE)
    static_cast<void>(!seteuid(0)); // succeeds only if the child was started as root
    __gcov_dump();
#endif
    _exit(status);
}

ChildEnd waitFor(pid_t process)
{
    int result = 0;
    while (waitpid(process, &result, 0) < 0 && errno == EINTR) {
    }
    ChildEnd end;
    if (WIFEXITED(result))
        end.status = WEXITSTATUS(result);
    else
        end.signal = WTERMSIG(result);
    return end;
}

/// Keeps root as the saved user id only. The kernel consults it only in calls that change ids, so `endChild`
/// can return to root and nothing else can.
bool giveUpRights()
{
    return geteuid() != 0 ||
           (setgroups(0, nullptr) == 0 && setgid(kNobody) == 0 && setresuid(kNobody, kNobody, 0) == 0);
}

bool mountSmallDisk(const std::string& folder, int kilobytes)
{
    const std::string options = "size=" + std::to_string(kilobytes) + "k";
    return unshare(CLONE_NEWNS) == 0 && mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
           mount("none", folder.c_str(), "tmpfs", 0, options.c_str()) == 0;
}

} // namespace

ChildEnd runInChild(const std::function<int()>& work)
{
    const pid_t process = fork();
    if (process < 0)
        throw std::runtime_error("cannot fork");
    if (process == 0)
        endChild(withoutExceptions(work));
    return waitFor(process);
}

ChildEnd runWithoutRights(const std::function<int()>& work)
{
    return runInChild([&] { return giveUpRights() ? work() : kThrew; });
}

std::optional<ChildEnd> runOnSmallDisk(const std::string& folder, int kilobytes,
                                       const std::function<int()>& work, std::string& reason)
{
    const ChildEnd end =
        runInChild([&] { return mountSmallDisk(folder, kilobytes) ? work() : kCannotMount; });
    if (end.status != kCannotMount)
        return end;
    reason = "a file system of its own may not be mounted here";
    return std::nullopt;
}

WaitingChild::WaitingChild(const std::function<void()>& work)
{
    int ready[2];
    if (pipe(ready) != 0)
        throw std::runtime_error("no pipe");
    mProcess = fork();
    if (mProcess == 0) {
        work();
        const bool isTold = write(ready[1], "x", 1) == 1;
        while (isTold)
            pause();
        _exit(0);
    }
    close(ready[1]);
    char told = 0;
    const bool isReady = read(ready[0], &told, 1) == 1;
    close(ready[0]);
    if (!isReady)
        throw std::runtime_error("the child did not start");
}

WaitingChild::~WaitingChild()
{
    kill(mProcess, SIGKILL);
    waitFor(mProcess);
}

OtherDevice::OtherDevice()
{
    struct stat here = {};
    struct stat there = {};
    const std::string temporary = std::filesystem::temp_directory_path();
    if (stat(temporary.c_str(), &here) != 0 || stat(kOtherDevice, &there) != 0 || here.st_dev == there.st_dev)
        return;
    std::string pattern = std::string(kOtherDevice) + "/orv-test-XXXXXX";
    if (mkdtemp(pattern.data()))
        mPath = pattern;
}

OtherDevice::~OtherDevice()
{
    std::error_code ignored;
    if (!mPath.empty())
        std::filesystem::remove_all(mPath, ignored);
}

} // namespace test
