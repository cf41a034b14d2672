#include "OrvHost/update/HostLock.h"

#include <cerrno>
#include <cstring>
#include <stdexcept>
#include <thread>
#include <utility>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include "OrvLibrary/host/PathUtils.h"

namespace OrvHost {

namespace {

using Clock = std::chrono::steady_clock;

constexpr const char* kUpdateLock = "update.lock";
constexpr mode_t kMode = 0666;
constexpr std::chrono::milliseconds kPause{20};
constexpr std::chrono::minutes kPatienceOfImport{1};
/// Enough for several tries, because `ofRunningUpdate` of another program holds the lock for an instant.
constexpr std::chrono::milliseconds kPatienceOfUpdate{100};

[[noreturn]] void fail(const std::string& path, int error)
{
    throw std::runtime_error("cannot lock " + path + ": " + std::strerror(error));
}

/// Whether the path still leads to the open file. The former owner of the lock may have removed it.
bool namesOpenFile(const std::string& path, int descriptor)
{
    struct stat open
    {
    };
    struct stat named
    {
    };
    return fstat(descriptor, &open) == 0 && stat(path.c_str(), &named) == 0 && open.st_ino == named.st_ino &&
           open.st_dev == named.st_dev;
}

/// @return 0 for success, also on file systems without locks; otherwise the system's error number
int tryLock(int descriptor)
{
    if (flock(descriptor, LOCK_EX | LOCK_NB) == 0 || errno == ENOLCK || errno == EOPNOTSUPP)
        return 0;
    return errno;
}

/// @return what `tryLock` returns
int waitForLock(int descriptor, Clock::time_point end, const std::function<bool()>& isCancelled)
{
    int error = tryLock(descriptor);
    while ((error == EWOULDBLOCK || error == EINTR) && Clock::now() < end) {
        if (isCancelled && isCancelled())
            return ECANCELED;
        std::this_thread::sleep_for(kPause);
        error = tryLock(descriptor);
    }
    return error;
}

fileString inTempFolder(const std::string& name)
{
    return PathUtils::getObject().getTempPath() / fileString(name);
}

std::string busyWith(const fileString& path, const std::string& subject)
{
    return "cannot lock " + path.toNativeString() + ": another program is changing the " + subject;
}

} // namespace

HostLock HostLock::ofUpdate()
{
    const fileString path = inTempFolder(kUpdateLock);
    return {path, "another update is running on this root: " + path.toNativeString() + " is locked",
            kPatienceOfUpdate};
}

fileString HostLock::ofRunningUpdate()
{
    const fileString path = inTempFolder(kUpdateLock);
    const int descriptor = ::open(path.toNativeString().c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW);
    if (descriptor < 0)
        return {};
    const bool isFree = tryLock(descriptor) == 0;
    close(descriptor);
    return isFree ? fileString() : path;
}

HostLock HostLock::ofChange(const std::string& subject, Milliseconds patience)
{
    const fileString path = inTempFolder(subject + ".lock");
    return {path, busyWith(path, subject), patience};
}

HostLock HostLock::ofChange(const fileString& folder, const std::string& subject, Milliseconds patience)
{
    const fileString path = folder / fileString("." + subject + ".lock");
    return {path, busyWith(path, subject), patience};
}

HostLock HostLock::ofImport(const fileString& folder, const std::function<bool()>& isCancelled)
{
    const fileString path = folder / fileString("imports.lock");
    return {path, "another import is running on this root: " + path.toNativeString() + " is locked",
            kPatienceOfImport, isCancelled};
}

HostLock::HostLock(const fileString& path, const std::string& busyText, Milliseconds patience,
                   const CancelQuestion& isCancelled)
    : mPath(path.toNativeString())
{
    const Clock::time_point end = Clock::now() + patience;
    do {
        open();
        if (const int error = waitForLock(mDescriptor, end, isCancelled)) {
            close(mDescriptor);
            if (error == ECANCELED)
                throw std::runtime_error("cancelled");
            if (error == EWOULDBLOCK)
                throw std::runtime_error(busyText);
            fail(mPath, error);
        }
    } while (!namesOpenFile(mPath, mDescriptor));
}

/// Opens the file again.
void HostLock::open()
{
    if (mDescriptor >= 0)
        close(mDescriptor);
    mDescriptor = ::open(mPath.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, kMode);
    if (mDescriptor < 0)
        fail(mPath, errno);
}

HostLock::HostLock(HostLock&& other) noexcept
    : mPath(std::move(other.mPath)), mDescriptor(std::exchange(other.mDescriptor, -1))
{
}

HostLock::~HostLock()
{
    if (mDescriptor < 0)
        return;
    // Removed while it is locked, so it cannot be another program's file.
    unlink(mPath.c_str());
    close(mDescriptor);
}

} // namespace OrvHost
