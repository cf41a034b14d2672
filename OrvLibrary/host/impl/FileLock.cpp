#include "OrvLibrary/host/impl/FileLock_p.h"

#include <cerrno>
#include <chrono>
#include <cstring>
#include <thread>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

using Clock = std::chrono::steady_clock;

constexpr auto kWait = std::chrono::seconds(5);
constexpr auto kPause = std::chrono::milliseconds(5);

bool isStillNamed(int descriptor, const std::string& path)
{
    struct stat open = {};
    struct stat named = {};
    return fstat(descriptor, &open) == 0 && stat(path.c_str(), &named) == 0 && open.st_dev == named.st_dev &&
           open.st_ino == named.st_ino;
}

} // namespace

FileLock::FileLock(const std::string& path)
{
    const auto end = Clock::now() + kWait;
    for (;;) {
        open(path);
        if (!isHeld())
            return;
        if (lock()) {
            if (isStillNamed(mDescriptor, path))
                return;
            close(); // replaced while we waited: the lock that counts is on the new file
        } else {
            fail(errno);
            if (Clock::now() >= end)
                return;
            std::this_thread::sleep_for(kPause);
        }
    }
}

FileLock::~FileLock()
{
    close();
}

void FileLock::open(const std::string& path)
{
    mDescriptor = ::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0644);
    if (mDescriptor < 0)
        fail(errno);
}

bool FileLock::lock()
{
    return flock(mDescriptor, LOCK_EX | LOCK_NB) == 0;
}

void FileLock::fail(int error)
{
    mReason = std::strerror(error);
    close();
}

void FileLock::close()
{
    if (mDescriptor >= 0)
        ::close(mDescriptor);
    mDescriptor = -1;
}
