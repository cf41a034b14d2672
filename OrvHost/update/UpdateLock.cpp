#include "OrvHost/update/UpdateLock.h"

#include <cerrno>
#include <cstring>
#include <stdexcept>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include "OrvLibrary/host/PathUtils.h"

namespace OrvHost {

namespace {

constexpr mode_t kMode = 0600;

/// Whether the path still names the open file: its former owner may have removed it meanwhile.
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

[[noreturn]] void fail(const std::string& path, int error)
{
    if (error == EWOULDBLOCK)
        throw std::runtime_error("another update is running on this root: " + path + " is locked");
    throw std::runtime_error("cannot lock " + path + ": " + std::strerror(error));
}

} // namespace

UpdateLock::UpdateLock()
    : mPath((PathUtils::getObject().getTempPath() / fileString("update.lock")).toNativeString())
{
    do {
        if (mDescriptor >= 0)
            close(mDescriptor);
        mDescriptor = open(mPath.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, kMode);
        if (mDescriptor < 0)
            fail(mPath, errno);
        // A file system without locks is used without them.
        if (flock(mDescriptor, LOCK_EX | LOCK_NB) != 0 && errno != ENOLCK && errno != EOPNOTSUPP) {
            const int error = errno;
            close(mDescriptor);
            fail(mPath, error);
        }
    } while (!namesOpenFile(mPath, mDescriptor));
}

UpdateLock::~UpdateLock()
{
    // Removed while it is still locked, so that it can only be our own.
    unlink(mPath.c_str());
    close(mDescriptor);
}

} // namespace OrvHost
