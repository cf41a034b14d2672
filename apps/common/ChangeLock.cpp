#include "apps/common/ChangeLock.h"

#include <stdexcept>

#include "OrvLibrary/host/FileUtils.h"
#include "OrvLibrary/host/PathUtils.h"

ChangeLock::ChangeLock(const std::string& subject)
    : mPath(PathUtils::getObject().getTempPath() / fileString(subject + ".lock")),
      mStream(std::make_unique<LockingFStream>(mPath, std::ios_base::app))
{
    if (!mStream->is_open())
        throw std::runtime_error("cannot lock " + mPath.toNativeString() +
                                 ": another program is changing the " + subject);
}

ChangeLock::~ChangeLock()
{
    // Removed while it is still locked, so that it can only be our own.
    FileUtils::removePath(mPath);
}
