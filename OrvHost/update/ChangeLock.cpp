#include "OrvHost/update/ChangeLock.h"

#include <stdexcept>

#include "OrvLibrary/host/FileUtils.h"
#include "OrvLibrary/host/PathUtils.h"

namespace OrvHost {

ChangeLock::ChangeLock(const std::string& subject)
    : mPath(PathUtils::getObject().getTempPath() / fileString(subject + ".lock"))
{
    lock(subject);
}

ChangeLock::ChangeLock(const fileString& folder, const std::string& subject)
    : mPath(folder / fileString("." + subject + ".lock"))
{
    lock(subject);
}

void ChangeLock::lock(const std::string& subject)
{
    mStream = std::make_unique<LockingFStream>(mPath, std::ios_base::app);
    if (!mStream->is_open())
        throw std::runtime_error("cannot lock " + mPath.toNativeString() +
                                 ": another program is changing the " + subject);
}

ChangeLock::~ChangeLock()
{
    // Removed while it is still locked, so that it can only be our own.
    FileUtils::removePath(mPath);
}

} // namespace OrvHost
