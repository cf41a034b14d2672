#pragma once

#include "OrvHost/OrvHostExport.h"
#include <string>

namespace OrvHost {

/// Keeps a second update off a root while one runs there, also from another program of ours. The lock ends
/// with the process, however it dies; a lock file that is left over does no harm.
class ORVHOST_EXPORT UpdateLock
{
public:
    /// Locks "update.lock" in the installed path service's temporary folder.
    /// @throws std::runtime_error at once when another update holds the lock, or when the file cannot be made
    UpdateLock();
    /// Removes the file.
    ~UpdateLock();
    UpdateLock(const UpdateLock&) = delete;
    UpdateLock& operator=(const UpdateLock&) = delete;

private:
    std::string mPath;
    int mDescriptor = -1;
};

} // namespace OrvHost
