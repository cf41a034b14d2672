#include "OrvHost/imports/ImportLock_p.h"

#include <cerrno>
#include <chrono>
#include <cstring>
#include <stdexcept>
#include <thread>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace OrvHost {

namespace {

constexpr mode_t kMode = 0600;
constexpr auto kPatience = std::chrono::seconds(60);
constexpr auto kPause = std::chrono::milliseconds(20);

/// Whether the lock was had. A file system without locks has to do without.
bool isLocked(int descriptor, const std::string& path)
{
    if (flock(descriptor, LOCK_EX | LOCK_NB) == 0 || errno == ENOLCK || errno == EOPNOTSUPP)
        return true;
    if (errno == EWOULDBLOCK || errno == EINTR)
        return false;
    throw std::runtime_error("cannot lock " + path + ": " + std::strerror(errno));
}

void waitForLock(int descriptor, const std::string& path, const std::shared_ptr<ProgressSubject>& progress)
{
    const auto end = std::chrono::steady_clock::now() + kPatience;
    while (!isLocked(descriptor, path)) {
        if (progress && progress->checkCancel(false))
            throw std::runtime_error("cancelled");
        if (std::chrono::steady_clock::now() > end)
            throw std::runtime_error("another import is running on this root: " + path + " is locked");
        std::this_thread::sleep_for(kPause);
    }
}

} // namespace

ImportLock::ImportLock(const fileString& folder, const std::shared_ptr<ProgressSubject>& progress)
{
    const std::string path = (folder / fileString("imports.lock")).toNativeString();
    mDescriptor = open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, kMode);
    if (mDescriptor < 0)
        throw std::runtime_error("cannot lock " + path + ": " + std::strerror(errno));
    try {
        waitForLock(mDescriptor, path, progress);
    } catch (...) {
        close(mDescriptor);
        throw;
    }
}

ImportLock::~ImportLock()
{
    close(mDescriptor);
}

} // namespace OrvHost
